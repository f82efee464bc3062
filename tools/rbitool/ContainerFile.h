#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Makes firmware containers.
///
///     WriteWhole("BLMX0202.rbi", BuildContainer("BLMX", 0x1161, "S:demo;", payload));

/// The bytes of a container: the fixed header, `taggedText` as it stands, and the payload. The header ends where the
/// tagged text ends; nothing is padded. `partId` has four characters. Throws std::runtime_error, with a text for the
/// user, when the text is too long for a header.
std::string BuildContainer(std::string_view partId, std::uint16_t version, std::string_view taggedText,
                           std::string_view payload);

/// True for four printable ASCII characters, as every part id has.
bool IsPartId(std::string_view text);

/// A version of one to four hexadecimal digits, without sign, blanks or "0x"; nothing for any other text.
std::optional<std::uint16_t> ParseVersion(std::string_view text);
