#include "simulator/BenchDescription.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include "simulator/FlashImage.h"
#include "simulator/JsonFields.h"

namespace simulator {
namespace {

constexpr std::size_t kLongestFileName = 255;
constexpr std::uint64_t kDescriptionSeed = 1;

constexpr std::uint64_t kGreatestWord = 0xFFFFFFFF;

/// Kinds of an Orbo QX, and the models that its driver reports for them.
constexpr struct {
  std::uint64_t boardKind;
  std::uint32_t model;
} kModels[] = {{5, 4}, {7, 5}, {8, 6}};

/// Container ids of the cards' flash, in the order of `kHostCards`: they go into the stamp.
struct FlashNames {
  const char* fileName;
  const char* partId;
};
constexpr FlashNames kFlashNames[] = {{"BLMX0202.rbi", "BLMX"}, {"DVUX0202.rbi", "DVUX"}};

/// The bytes of a text whose characters stand for bytes of the same number.
std::string Latin1(const std::string& path, const std::string& utf8) {
  std::string bytes;
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    const auto lead = static_cast<unsigned char>(utf8[at]);
    if (lead < 0x80) {
      bytes.push_back(utf8[at]);
      continue;
    }
    // The reader of the text saw to it that it is well formed: 0xC2 and 0xC3 lead a character below 0x100.
    if (lead > 0xC3) FailAt(path, "holds a character above U+00FF");
    const auto trail = static_cast<unsigned char>(utf8.at(++at));
    bytes.push_back(static_cast<char>((lead & 0x03) << 6 | (trail & 0x3F)));
  }
  return bytes;
}

std::vector<VpdField> ReadVpdFields(const JsonFields& outer) {
  JsonFields fields = outer;
  std::vector<VpdField> content;
  for (const std::string& key : fields.Keys()) {
    const std::string path = fields.PathOf(key);
    const std::string keyword = Latin1(path, key);
    const std::string text = Latin1(path, *fields.Text(key));
    if (keyword.size() != 2) FailAt(path, "a field's keyword has two characters");
    if (text.size() > 255) FailAt(path, "a field has at most 255 characters");
    content.emplace_back(keyword, text);
  }
  return content;
}

std::vector<std::uint8_t> ReadVpdBlock(const JsonFields& fields) {
  try {
    return MakeVpdBlock("", {ReadVpdFields(fields)});
  } catch (const std::length_error&) {
    FailAt(fields.path(), "the fields do not fit into " + std::to_string(kVpdAreaBytes) + " bytes");
  }
}

VpdArea ReadVpdArea(const JsonFields& fields) {
  const std::vector<std::uint8_t> block = ReadVpdBlock(fields);
  VpdArea area{};
  std::copy(block.begin(), block.end(), area.begin());
  return area;
}

HostCardState ReadCard(JsonFields fields, const FlashNames& names) {
  HostCardState card;
  auto vpd = fields.Object("vpd");
  card.vpd = std::make_shared<const VpdArea>(vpd ? ReadVpdArea(*vpd) : MakeVpdArea("", {}));
  const auto karvelWord = static_cast<std::uint32_t>(fields.HexNumber("karvel", 8).value_or(0));
  card.karvel = KarvelCpld(MakeShelfKarvel(karvelWord));
  if (const auto version = fields.HexNumber("flash", 4))
    card.flash = FlashChip(
        MakeInstalledFlash(names.fileName, names.partId, static_cast<std::uint16_t>(*version), kDescriptionSeed));
  fields.Finish();
  card.PowerCycle(0);
  return card;
}

std::string DoesNotFit(std::size_t longest) {
  return "does not fit into an answer: more than " + std::to_string(longest) + " bytes";
}

/// A text that a device tells in an answer with room for `longest` bytes.
std::optional<std::string> ReadToldText(JsonFields& fields, const std::string& key, std::size_t longest) {
  const auto text = fields.Text(key);
  if (!text) return std::nullopt;
  std::string bytes = Latin1(fields.PathOf(key), *text);
  if (bytes.size() > longest) FailAt(fields.PathOf(key), DoesNotFit(longest));
  return bytes;
}

BoxVersions ReadBoxConfig(JsonFields fields) {
  BoxVersions versions;
  for (std::size_t i = 0; i < kBoxRevisions; ++i)
    if (const auto revision = fields.HexNumber(std::string(kBoxRevisionNames[i]), 2))
      versions.revisions[i] = static_cast<std::uint8_t>(*revision);
  if (auto text = ReadToldText(fields, "FirmwareRev", VeltraBox::kFirmwareRevBytes))
    versions.firmwareRev = *std::move(text);
  fields.Finish();
  return versions;
}

/// VPD that a device tells in an answer with room for `longest` bytes.
std::vector<std::uint8_t> ReadToldVpd(const JsonFields& fields, std::size_t longest) {
  std::vector<std::uint8_t> vpd;
  try {
    vpd = MakeVpdBlock("", {ReadVpdFields(fields)});
  } catch (const std::length_error&) {
    vpd.clear();
  }
  if (vpd.empty() || vpd.size() > longest) FailAt(fields.path(), DoesNotFit(longest));
  return vpd;
}

VeltraBoxState ReadBox(JsonFields fields) {
  VeltraBoxState box;
  if (auto config = fields.Object("config")) box.stored = ReadBoxConfig(*std::move(config));
  box.running = box.stored;
  if (auto vpd = fields.Object("vpd")) {
    for (std::size_t i = 0; i < box.vpd.size(); ++i)
      if (const auto board = vpd->Object(std::string(kBoxBoards[i])))
        box.vpd[i] = ReadToldVpd(*board, VeltraBox::kVpdBytes);
    vpd->Finish();
  }
  fields.Finish();
  return box;
}

std::uint32_t ReadModel(JsonFields& fields) {
  constexpr std::uint64_t kGreatestKind = 8;
  const std::uint64_t kind = fields.Number("boardKind", kGreatestKind).value_or(kGreatestKind);
  for (const auto& [boardKind, model] : kModels)
    if (boardKind == kind) return model;
  FailAt(fields.PathOf("boardKind"), "expected 5, 7 or 8, found " + std::to_string(kind));
}

MorvakBoards ReadBoards(JsonFields fields) {
  MorvakBoards boards;
  for (std::uint32_t number = 0; number < MorvakUnit::kMostBoards; ++number)
    if (const auto vpd = fields.Object(std::to_string(number))) boards[number] = ReadVpdBlock(*vpd);
  fields.Finish();
  return boards;
}

MorvakUnitState ReadUnit(JsonFields fields) {
  MorvakUnitState unit;
  unit.model = ReadModel(fields);
  unit.codecSlots = static_cast<std::uint32_t>(fields.Number("codecSlots", kGreatestWord).value_or(0));
  for (const std::uint64_t codec : fields.Numbers("codecState", kGreatestWord).value_or(std::vector<std::uint64_t>()))
    unit.codecState.push_back(static_cast<std::uint32_t>(codec));
  if (unit.codecState.size() > MorvakUnit::kMostSlots)
    FailAt(fields.PathOf("codecState"), "has more than " + std::to_string(MorvakUnit::kMostSlots) + " entries");
  if (const auto vpd = fields.Object("vpd")) unit.vpd = ReadToldVpd(*vpd, MorvakUnit::kVpdBytes);
  if (auto rev = fields.Object("rev")) {
    for (const MorvakVersion& version : kMorvakVersions)
      unit.stored.Set(version.number, ReadToldText(*rev, std::string(version.symbol), MorvakUnit::kVersionBytes));
    rev->Finish();
  }
  if (auto boards = fields.Object("boards")) unit.boards = ReadBoards(*std::move(boards));
  fields.Finish();
  unit.PowerCycle(0);
  return unit;
}

void CheckFileName(const std::string& path, const std::string& name) {
  // What the file system would take for more than a name: separators of any system, and its own two entries.
  const bool plain = !name.empty() && name.size() <= kLongestFileName && name != "." && name != ".." &&
                     name.find_first_of(std::string_view("/\\:\0", 4)) == std::string::npos;
  if (!plain) FailAt(path, "is not a plain file name");
}

FirmwareFile ReadFile(const std::string& name, JsonFields fields) {
  CheckFileName(fields.path(), name);
  FirmwareFile file{name, {}};
  if (auto raw = fields.HexBytes("raw")) {
    if (raw->size() > kLongestDescribedFile) FailAt(fields.PathOf("raw"), "is too long");
    file.content = *std::move(raw);
  } else {
    RbiContent rbi{Latin1(fields.PathOf("id"), fields.Needed("id", fields.Text("id"))), 0, 0};
    if (rbi.partId.size() != 4) FailAt(fields.PathOf("id"), "a part id has four characters");
    rbi.version = static_cast<std::uint16_t>(fields.Needed("version", fields.HexNumber("version", 4)));
    rbi.payloadBytes = fields.Number("payload", kLongestDescribedFile).value_or(0);
    file.content = std::move(rbi);
  }
  fields.Finish();
  return file;
}

}  // namespace

BenchDescription ParseBenchDescription(std::string_view text) {
  const nlohmann::json json = ParseJson(text);
  JsonFields root(json, "");
  BenchDescription description;

  if (auto files = root.Object("files"))
    for (const std::string& name : files->Keys())
      description.files.push_back(ReadFile(name, *files->Object(name)));

  if (auto veltra = root.Object("veltra")) {
    for (std::size_t i = 0; i < description.state.cards.size(); ++i)
      if (auto card = veltra->Object(std::string(kHostCards[i]->name)))
        description.state.cards[i] = ReadCard(*std::move(card), kFlashNames[i]);
    if (auto box = veltra->Object("box")) description.state.box = ReadBox(*std::move(box));
    veltra->Finish();
  }
  if (auto morvak = root.Object("morvak")) description.state.unit = ReadUnit(*std::move(morvak));
  root.Finish();
  return description;
}

}  // namespace simulator
