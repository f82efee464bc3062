#include "simulator/BenchDescription.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "simulator/FlashImage.h"
#include "simulator/JsonFields.h"

namespace simulator {
namespace {

constexpr std::size_t kLongestFileName = 255;
constexpr std::uint64_t kDescriptionSeed = 1;

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

VpdArea ReadVpdArea(const JsonFields& fields) {
  try {
    return MakeVpdArea("", {ReadVpdFields(fields)});
  } catch (const std::length_error&) {
    FailAt(fields.path(), "the fields do not fit into " + std::to_string(kVpdAreaBytes) + " bytes");
  }
}

HostCardState ReadCard(JsonFields fields, const FlashNames& names) {
  HostCardState card;
  auto vpd = fields.Object("vpd");
  card.vpd = std::make_shared<const VpdArea>(vpd ? ReadVpdArea(*vpd) : MakeVpdArea("", {}));
  card.karvelStored = static_cast<std::uint32_t>(fields.HexNumber("karvel", 8).value_or(0));
  if (const auto version = fields.HexNumber("flash", 4))
    card.flash = FlashChip(
        MakeInstalledFlash(names.fileName, names.partId, static_cast<std::uint16_t>(*version), kDescriptionSeed));
  fields.Finish();
  card.PowerCycle(0);
  return card;
}

BoxVersions ReadBoxConfig(JsonFields fields) {
  BoxVersions versions;
  for (std::size_t i = 0; i < kBoxRevisions; ++i)
    if (const auto revision = fields.HexNumber(std::string(kBoxRevisionNames[i]), 2))
      versions.revisions[i] = static_cast<std::uint8_t>(*revision);
  if (const auto text = fields.Text("FirmwareRev")) {
    const std::string path = fields.PathOf("FirmwareRev");
    versions.firmwareRev = Latin1(path, *text);
    if (versions.firmwareRev.size() > VeltraBox::kFirmwareRevBytes)
      FailAt(path, "does not fit into an answer: more than " + std::to_string(VeltraBox::kFirmwareRevBytes) + " bytes");
  }
  fields.Finish();
  return versions;
}

std::vector<std::uint8_t> ReadBoxVpd(const JsonFields& fields) {
  std::vector<std::uint8_t> vpd;
  try {
    vpd = MakeVpdBlock("", {ReadVpdFields(fields)});
  } catch (const std::length_error&) {
    vpd.clear();
  }
  if (vpd.empty() || vpd.size() > VeltraBox::kVpdBytes)
    FailAt(fields.path(), "does not fit into an answer: more than " + std::to_string(VeltraBox::kVpdBytes) + " bytes");
  return vpd;
}

VeltraBoxState ReadBox(JsonFields fields) {
  VeltraBoxState box;
  if (auto config = fields.Object("config")) box.stored = ReadBoxConfig(*std::move(config));
  box.running = box.stored;
  if (auto vpd = fields.Object("vpd")) {
    for (std::size_t i = 0; i < box.vpd.size(); ++i)
      if (const auto board = vpd->Object(std::string(kBoxBoards[i]))) box.vpd[i] = ReadBoxVpd(*board);
    vpd->Finish();
  }
  fields.Finish();
  return box;
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
  if (root.Value("morvak") != nullptr) FailAt(root.PathOf("morvak"), "the Orbo QX line is not simulated yet");
  root.Finish();
  return description;
}

}  // namespace simulator
