#include "download/InstallerStamp.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <optional>

#include "BaseName.h"
#include "board/C28FxJ3A.h"
#include "container/ScanHex.h"

namespace {

/// Where the two words at the end of the image area are, counted in the words of the flash.
constexpr std::uint32_t kFormatWordAddress = 0x1FFFFD;
constexpr std::uint32_t kStampLocationWordAddress = 0x1FFFFE;

/// A format word of 4 marks the older layout, in which the stamp's location is a word address in the flash.
constexpr std::uint16_t kWordAddressFormat = 4;

/// No more than this much of a stamp is ever read back, in bytes.
constexpr std::int64_t kReadBytes = 1024;

constexpr std::size_t kEnvironmentCharacters = 19;

std::string EnvironmentText(platform::Files& environment, const char* name) {
  return environment.GetEnvironmentVariableA(name).value_or("").substr(0, kEnvironmentCharacters);
}

/// The local time as the C standard has `ctime` write it, with its newline: "Sun Sep  9 01:46:40 2001\n". (The systems'
/// own ones differ in how they fill a day of one digit.) The newline alone where there is no such date, and beyond the
/// year 9999, which has no place.
std::string LocalTimeText(std::time_t time) {
  constexpr int kLastYear = 9999 - 1900;
  const std::tm* const local = std::localtime(&time);
  if (local == nullptr || local->tm_year > kLastYear) return "\n";
  char weekdayAndMonth[16];
  char timeAndYear[32];
  std::strftime(weekdayAndMonth, sizeof weekdayAndMonth, "%a %b", local);
  std::strftime(timeAndYear, sizeof timeAndYear, "%H:%M:%S %Y\n", local);
  const std::string day = std::to_string(local->tm_mday);
  return weekdayAndMonth + std::string(day.size() == 1 ? "  " : " ") + day + " " + timeAndYear;
}

/// The version behind the text that starts at `start`: the terminator, the tag "R", four digits.
std::uint32_t VersionBehindText(const std::array<char, kReadBytes>& bytes, std::size_t start) {
  const auto text = bytes.begin() + static_cast<std::ptrdiff_t>(start);
  const auto terminator = std::find(text, bytes.end(), '\0');
  constexpr std::ptrdiff_t kTerminatorTagAndDigits = 1 + 1 + 4;
  if (bytes.end() - terminator < kTerminatorTagAndDigits) return 0;

  const std::string digits(terminator + 2, terminator + kTerminatorTagAndDigits);
  std::uint32_t version = 0;
  ScanHex32(digits.c_str(), version);
  return version;
}

}  // namespace

std::string FormatInstallerStamp(const char* fileName, platform::Files& environment, platform::Clock& clock) {
  std::string stamp = " Filename:     ";
  stamp += BaseName(fileName);
  stamp += "\n Installer:    ";
  stamp += EnvironmentText(environment, "USERDOMAIN");
  stamp += " - ";
  stamp += EnvironmentText(environment, "USERNAME");
  stamp += "\n Install Date: ";
  stamp += LocalTimeText(static_cast<std::time_t>(clock.PresentTime()));
  return stamp;
}

std::uint32_t ReadStampedVersion(C28FxJ3A& flash) {
  std::uint16_t formatWord = 0;
  flash.Read(1, kFormatWordAddress, &formatWord);
  std::uint16_t locationWords[2] = {};
  flash.Read(2, kStampLocationWordAddress, locationWords);
  const std::int64_t location = static_cast<std::int32_t>(std::uint32_t{locationWords[1]} << 16 | locationWords[0]);
  if (location <= 0) return 0;  // all ones: erased

  // The location comes from the flash and can be anything: everything is counted in 64 bits and cut to the buffer.
  const bool isWordAddress = formatWord == kWordAddressFormat;
  const std::int64_t byteOffset = isWordAddress ? location * 2 - kImageAreaBytes : location;
  const std::int64_t wordAddress = isWordAddress ? location : location / 2 + kImageAreaWord;
  const std::size_t textStart = !isWordAddress && location % 2 != 0 ? 1 : 0;
  const std::int64_t length = std::clamp<std::int64_t>(kImageAreaBytes - byteOffset, 0, kReadBytes);

  std::array<std::uint16_t, kReadBytes / 2> words{};
  flash.Read(static_cast<std::int32_t>(length / 2), static_cast<std::uint32_t>(wordAddress), words.data());
  std::array<char, kReadBytes> bytes{};
  std::memcpy(bytes.data(), words.data(), bytes.size());
  return VersionBehindText(bytes, textStart);
}
