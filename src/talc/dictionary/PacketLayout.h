#pragma once

#include <cstdint>

#include "dictionary/PacketSizes.h"
#include "talcpath.h"

/// Where a command's values lie in its packet. The layout is written into the definition's parameters, so two layouts
/// of one definition must not run at the same time.
namespace TalcPathPrivate {

class CommandFormat;
class TalcDataCommandFormat;

inline constexpr std::int32_t kLayoutFault = -1;
inline constexpr std::int32_t kTooMuchData = -2;

/// Gives every parameter its place and fills `sizes`. `BYTES` parameters take the length of their value, so they need a
/// command; without one only definitions of fixed size can be laid out.
///
/// Returns the packet's size in bytes, that of the command's direction, and of a send without a command. Returns
/// `kLayoutFault` for a fault of the definition or a missing value, `kTooMuchData` when the values exceed the limit;
/// the send sizes are 0 then, the request sizes what they were. Throws `bad_variant_cast` when the value of a `BYTES`
/// parameter is a number.
std::int32_t ComputePacketLayout(const TalcPath::TalcCommand* command, TalcDataCommandFormat* format,
                                 PacketSizes& sizes);

/// The bytes that all values take together, without any limit; 0 for a fault. For commands that are cut into several
/// packets: it forgets the places of a layout.
std::uint32_t ComputePayloadSize(const TalcPath::TalcCommand& command, CommandFormat* format);

}  // namespace TalcPathPrivate
