// Any text as a script of rbitool vme. What is accepted gives a container with a VME file in it, and the same one when
// the lines end in another way; what is refused is reported in three lines with the caret under the script's own.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "FuzzInput.h"
#include "VmeScript.h"
#include "VmeTokens.h"

namespace {

constexpr std::size_t kFixedHeaderBytes = 22;

void LookAt(std::string_view container) {
  Require(container.starts_with("ORBO.RBI") && container.size() >= kFixedHeaderBytes);
  std::size_t headerBytes = 0;
  for (const char byte : container.substr(8, 4))
    headerBytes = headerBytes << 8 | static_cast<std::uint8_t>(byte);
  Require(headerBytes >= kFixedHeaderBytes && headerBytes <= container.size());
  const std::string_view vme = container.substr(headerBytes);
  Require(vme.starts_with("__VME2.0\xF1") || vme.starts_with("__VME2.0\xF2"));
}

void LookAtReport(std::string_view report) {
  Require(report.starts_with("script:") && report.ends_with("^\n"));
  Require(std::count(report.begin(), report.end(), '\n') == 3);
  const std::size_t line = report.find('\n') + 1;
  const std::size_t caret = report.find('\n', line) + 1;
  const std::size_t lineBytes = caret - line - 1;
  const std::size_t indentBytes = report.size() - 2 - caret;
  Require(indentBytes <= lineBytes);
  for (std::size_t at = 0; at < indentBytes; ++at)
    Require(report[caret + at] == (report[line + at] == '\t' ? '\t' : ' '));
  for (const char c : report)
    Require((c >= ' ' && c <= '~') || c == '\t' || c == '\n');
}

std::string WithLinesOfAnotherSystem(std::string_view script) {
  std::string text;
  for (const char c : script)
    text += c == '\n' ? std::string("\r\n\t") : std::string(1, c);
  return text + "\r\n# the end";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string script(data, data + size);
  std::string container;
  try {
    container = vme_script::AssembleVme(script);
  } catch (const vme_script::ScriptError& error) {
    LookAtReport(error.Report("script"));
    return 0;
  }
  LookAt(container);
  Require(vme_script::AssembleVme(WithLinesOfAnotherSystem(script)) == container);
  return 0;
}
