#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

/// The records that FwDeploy sends to its front end, as WM_COPYDATA carries them: a kind (dwData) and bytes. Any
/// program of the desktop can send anything, so what does not hold is told as such and never trusted.
///
///     const frontend::Record record = frontend::DecodeRecord(data->dwData, {bytes, data->cbData});
///     if (const auto* version = std::get_if<frontend::Version>(&record)) Show(*version);
namespace frontend {

inline constexpr std::uint64_t kVersionKind = 42;
inline constexpr std::uint64_t kProgressKind = 82;
inline constexpr std::uint64_t kRestartKind = 102;

/// Texts are bytes of code page 1252, at most 259 of them.
struct Progress {
  std::string part;
  std::string phase;     ///< "Loading", "Programming" or "Done"
  std::int32_t percent;  ///< an estimate: it can be above 100
  bool operator==(const Progress&) const = default;
};

struct Version {
  std::string part;
  std::uint32_t current;   ///< what runs on the part
  std::uint32_t expected;  ///< what the installer ships
  bool operator==(const Version&) const = default;
};

struct Restart {
  std::uint32_t cpuRestart;     ///< 1: restart the computer
  std::uint32_t boxPowerCycle;  ///< 1: power-cycle the Veltra Kore
  bool operator==(const Restart&) const = default;
};

/// A record that is none of the above.
struct Refused {
  std::string reason;
  bool operator==(const Refused&) const = default;
};

using Record = std::variant<Progress, Version, Restart, Refused>;

/// Refuses an unknown kind, any size but the kind's own (524, 268, 8 bytes), and a text without a terminator in its 260
/// bytes. What stands behind a terminator is not looked at.
Record DecodeRecord(std::uint64_t kind, std::span<const std::uint8_t> bytes);

}  // namespace frontend
