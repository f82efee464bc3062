#pragma once

#include <concepts>
#include <ostream>
#include <string>

/// The library's log. Lines come in three classes: written always, under the verbose flag, under the trace flag. Each
/// text brings its own line feed, mostly in front.
///
///     LogVerbose("\nError - did not find '", keyword, "' keyword");
///
/// Numbers are written in decimal, whatever the stream is set to.
namespace TalcPathPrivate {

struct LogState {
  bool verbose = false;
  bool trace = false;
  /// Null is standard output.
  std::ostream* stream = nullptr;
};
inline LogState logState;

std::ostream& LogStream();

template <typename Part>
void WritePart(std::ostream& stream, const Part& part) {
  if constexpr (std::integral<Part>)
    stream << std::to_string(part);
  else
    stream << part;
}

template <typename... Parts>
void LogAlways(const Parts&... parts) {
  std::ostream& stream = LogStream();
  (WritePart(stream, parts), ...);
}

template <typename... Parts>
void LogVerbose(const Parts&... parts) {
  if (logState.verbose) LogAlways(parts...);
}

template <typename... Parts>
void LogTrace(const Parts&... parts) {
  if (logState.trace) LogAlways(parts...);
}

}  // namespace TalcPathPrivate
