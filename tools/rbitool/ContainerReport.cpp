#include "ContainerReport.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>

#include "container/RbiContainer.h"
#include "support/JsonText.h"

namespace {

using Json = nlohmann::json;

/// A field that was copied over zeros without a terminator of its own.
Json Copied(std::span<const char> field) {
  const auto end = std::find(field.begin(), field.end(), '\0');
  return Latin1Text({field.data(), static_cast<std::size_t>(end - field.begin())});
}

Json NumberField(std::span<const std::uint8_t> container) {
  // The result tells nothing, so a number that two digits cannot give stands for "not there".
  constexpr std::int32_t kAbsent = std::numeric_limits<std::int32_t>::min();
  std::int32_t first = kAbsent;
  std::int32_t second = kAbsent;
  GetRbiNumberField(container, first, second);
  return first == kAbsent ? Json() : Json{first, second};
}

}  // namespace

std::string ReportContainer(std::string_view id, unsigned version, std::string_view bytes) {
  const std::span container(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  Json report = {{"id", Latin1Text(id)}, {"version", version}, {"header", nullptr}, {"payload", nullptr},
                 {"revision", nullptr},  {"string", nullptr},  {"number", nullptr}};

  ResetRbiHeader();
  if (ParseRbiHeader(container)) {
    report["header"] = GetRbiHeaderLength();
    const std::uint8_t* const payload = GetRbiPayload(container, nullptr);
    report["payload"] = container.data() + container.size() - payload;
  }
  std::array<char, 4> revision{};
  if (GetRbiRevision(container, revision) == 0) report["revision"] = Copied(revision);
  std::array<char, 19> text{};
  if (GetRbiStringField(container, text) == 0) report["string"] = Copied(text);
  report["number"] = NumberField(container);
  return JsonLine(report);
}
