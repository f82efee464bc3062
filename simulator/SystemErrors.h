#pragma once

#include <cstdint>
#include <string>

namespace simulator {

// The system's own error codes, as its calls and drivers report them.
inline constexpr std::uint32_t kErrorSuccess = 0;
inline constexpr std::uint32_t kErrorInvalidFunction = 1;
inline constexpr std::uint32_t kErrorFileNotFound = 2;
inline constexpr std::uint32_t kErrorInvalidHandle = 6;
inline constexpr std::uint32_t kErrorGeneralFailure = 31;
inline constexpr std::uint32_t kErrorInvalidParameter = 87;
inline constexpr std::uint32_t kErrorInsufficientBuffer = 122;
inline constexpr std::uint32_t kErrorNoMoreItems = 259;
inline constexpr std::uint32_t kErrorNoAccess = 998;
inline constexpr std::uint32_t kErrorInvalidFlags = 1004;
inline constexpr std::uint32_t kErrorInvalidUserBuffer = 1784;

/// The system's text for one of these codes, with the line end that it has there; empty for any other.
std::string SystemErrorText(std::uint32_t code);

}  // namespace simulator
