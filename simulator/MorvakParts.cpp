#include "simulator/MorvakParts.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "simulator/HexText.h"
#include "simulator/Vpd.h"

namespace simulator {
namespace {

constexpr std::uint32_t kFirstModel = 4;
constexpr std::uint32_t kSecondModel = 5;

/// The second and third number of a part number; a number that is missing keeps its value.
struct PartNumber {
  long second = 99999;
  long third = 99;
};

std::optional<PartNumber> PartNumberOf(const MorvakBoards& boards, std::uint32_t board) {
  const auto at = boards.find(board);
  if (at == boards.end()) return std::nullopt;
  const auto text = FindVpdField(at->second, "PN");
  if (!text) return std::nullopt;
  PartNumber number;
  long first = 0;
  const char* from = text->data();
  const char* const end = from + text->size();
  for (long* const value : {&first, &number.second, &number.third}) {
    const auto [behind, error] = std::from_chars(from, end, *value);
    if (error != std::errc() || behind == end || *behind != '-') break;
    from = behind + 1;
  }
  return number;
}

std::string_view FpgaName(std::uint32_t model, const MorvakBoards& boards) {
  if (model == kFirstModel) return "xandrel";
  const auto number = PartNumberOf(boards, 0);
  if (model != kSecondModel || !number) return {};
  if (number->second == 20164) return "qindel";
  if (number->second == 20046) return number->third >= 2 ? "yorvalen" : "yorvalenx";
  return {};
}

std::string_view PowerName(std::uint32_t model, const MorvakBoards& boards) {
  const auto number = PartNumberOf(boards, 0);
  if (!number) return {};
  const bool isEarly = number->second == 20040 && number->third < 2;
  if (model == kFirstModel) return isEarly ? "vqxpwrx" : "vqxpwr";
  if (model != kSecondModel) return {};
  if (isEarly) return "jqxpwrx";
  return number->second == 20046 && number->third < 3 ? "jqxpwry" : "jqxpwr";
}

/// What sits in the codec slot whose module is this board.
std::string_view CodecName(std::uint32_t model, const MorvakBoards& boards, std::uint32_t board) {
  const auto number = PartNumberOf(boards, board);
  if (model != kFirstModel || !number) return {};
  const bool isFirst = board == 2;
  if (number->second == 20173) return isFirst ? "enc1b" : "enc2b";
  if (number->second == 20035) return isFirst ? "enc1" : "enc2";
  return isFirst && number->second == 30024 ? "spacer" : "";
}

std::string_view NameOf(std::uint16_t version, std::uint32_t model, const MorvakBoards& boards) {
  const bool isKnown = model == kFirstModel || model == kSecondModel;
  switch (version) {
    case 0:
      return "pico";
    case 1:
      return FpgaName(model, boards);
    case 2:
      return isKnown ? "teskpro" : "";
    case 10:
      return PowerName(model, boards);
    case 3:
      return CodecName(model, boards, 2);
    case 5:
      return CodecName(model, boards, 3);
    case 7:
      return model == kFirstModel && PartNumberOf(boards, 2) ? "vid1" : "";
    case 8:
      return model == kFirstModel && PartNumberOf(boards, 3) ? "vid2" : "";
    default:
      return {};
  }
}

std::optional<std::size_t> PlaceOf(std::uint16_t number) {
  const auto* const version = std::find_if(std::begin(kMorvakVersions), std::end(kMorvakVersions),
                                           [&](const MorvakVersion& candidate) { return candidate.number == number; });
  if (version == std::end(kMorvakVersions)) return std::nullopt;
  return static_cast<std::size_t>(version - std::begin(kMorvakVersions));
}

}  // namespace

const MorvakPart* FindMorvakPart(PartKind kind, std::uint8_t number) {
  const auto* const part =
      std::find_if(std::begin(kMorvakParts), std::end(kMorvakParts),
                   [&](const MorvakPart& candidate) { return candidate.kind == kind && candidate.number == number; });
  return part == std::end(kMorvakParts) ? nullptr : part;
}

const MorvakPart* FindMorvakPart(std::string_view id) {
  const auto* const part = std::find_if(std::begin(kMorvakParts), std::end(kMorvakParts),
                                        [&](const MorvakPart& candidate) { return candidate.Takes(id); });
  return part == std::end(kMorvakParts) ? nullptr : part;
}

MorvakTexts::Text MorvakTexts::Of(std::uint16_t number) const {
  const auto place = PlaceOf(number);
  return place ? texts_[*place] : std::nullopt;
}

void MorvakTexts::Set(std::uint16_t number, Text text) {
  texts_.at(PlaceOf(number).value()) = std::move(text);
}

std::optional<std::uint16_t> VersionInText(const MorvakTexts::Text& text) {
  if (!text) return std::nullopt;
  if (text->size() > 2 && (*text)[2] == '.') return ParseDottedVersion(*text);
  const auto version = text->size() < 4 ? std::nullopt : ParseHex(std::string_view(*text).substr(0, 4), 4);
  if (!version) return std::nullopt;
  return static_cast<std::uint16_t>(*version);
}

std::string MorvakRowName(const MorvakVersion& version, std::uint32_t model, const MorvakBoards& boards) {
  const std::string_view name = NameOf(version.number, model, boards);
  return std::string(name.empty() ? version.symbol : name);
}

}  // namespace simulator
