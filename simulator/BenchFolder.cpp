#include "simulator/BenchFolder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "simulator/BenchError.h"
#include "simulator/HexText.h"
#include "simulator/JsonFields.h"
#include "simulator/LittleEndian.h"
#include "simulator/WholeFile.h"

namespace simulator {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr std::uint64_t kFormat = 1;
constexpr std::uint64_t kLatestNanosecond = std::uint64_t{1} << 62;
constexpr std::uint64_t kGreatestWord = 0xFFFFFFFF;
constexpr std::uintmax_t kLongestStateFile = 1 << 20;
constexpr std::string_view kImageEnding = ".flash";
constexpr std::string_view kReadModes[] = {"array", "identifier", "query", "status"};

fs::path HardwareFolder(const fs::path& folder) {
  return folder / "hardware";
}

fs::path StateFile(const fs::path& folder) {
  return HardwareFolder(folder) / "state.json";
}

/// The FNV-1a hash, taken 8 bytes at a step.
std::uint64_t Checksum(std::span<const std::uint8_t> image) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (std::size_t at = 0; at + 8 <= image.size(); at += 8)
    hash = (hash ^ Get64(&image[at])) * 0x100000001B3;
  return hash;
}

std::string ImageName(const Board& board, std::uint64_t checksum) {
  return std::string(board.name) + "-" + Hex(checksum, 16) + std::string(kImageEnding);
}

json Version(const std::optional<std::uint16_t>& version) {
  return version ? json(Hex(*version, 4)) : json();
}

json Errors(const ProtocolErrors& errors) {
  return {{"texts", errors.texts()}, {"total", errors.total()}};
}

ProtocolErrors ReadErrors(JsonFields fields) {
  auto texts = fields.Needed("texts", fields.Texts("texts"));
  const std::uint64_t total = fields.Needed("total", fields.Number("total", ~std::uint64_t{0}));
  fields.Finish();
  return {std::move(texts), total};
}

/// Writes a card's flash image, unless a file of this content is there, and returns the checksum that names it.
std::uint64_t SaveImage(const fs::path& folder, const Board& board, const FlashMemory& cells) {
  const std::vector<std::uint8_t> image = cells.ToBytes();
  const std::uint64_t checksum = Checksum(image);
  const fs::path path = HardwareFolder(folder) / ImageName(board, checksum);
  if (!fs::exists(path)) ReplaceFile(path, image);
  return checksum;
}

FlashMemory LoadImage(const fs::path& folder, const Board& board, std::uint64_t checksum) {
  const fs::path path = HardwareFolder(folder) / ImageName(board, checksum);
  const std::string image = ReadWholeFile(path, FlashMemory::kSizeBytes);
  if (image.size() != FlashMemory::kSizeBytes)
    throw BenchError(path.string() + ": is damaged: has " + std::to_string(image.size()) + " bytes instead of " +
                     std::to_string(FlashMemory::kSizeBytes));
  if (Checksum(AsBytes(image)) != checksum)
    throw BenchError(path.string() + ": is damaged: its content is not what its name says");
  return FlashMemory::FromBytes(AsBytes(image));
}

json FlashJson(const FlashChip& flash, std::uint64_t imageChecksum) {
  const FlashRegisters& registers = flash.registers();
  std::array<std::uint8_t, 18> protection{};
  for (std::size_t i = 0; i < registers.protection.size(); ++i)
    Put16(&protection[i * 2], registers.protection[i]);
  return {{"image", Hex(imageChecksum, 16)},
          {"readMode", kReadModes[static_cast<std::size_t>(registers.readMode)]},
          {"errorBits", Hex(registers.errorBits, 2)},
          {"lockBits", Hex(registers.lockBits, 16)},
          {"protection", HexOfBytes(protection)},
          {"hung", registers.hung},
          {"errors", Errors(flash.errors())}};
}

/// The chip without its cells, whose image's checksum goes to `image`.
FlashChip ReadFlash(JsonFields fields, std::uint64_t& image) {
  FlashRegisters registers;
  const std::string mode = fields.Needed("readMode", fields.Text("readMode"));
  const auto* const known = std::find(std::begin(kReadModes), std::end(kReadModes), mode);
  if (known == std::end(kReadModes)) FailAt(fields.PathOf("readMode"), "there is no such mode");
  registers.readMode = static_cast<FlashReadMode>(known - std::begin(kReadModes));
  const std::uint64_t errorBits = fields.Needed("errorBits", fields.HexNumber("errorBits", 2));
  if ((errorBits & FlashChip::kReady) != 0) FailAt(fields.PathOf("errorBits"), "holds the ready bit");
  registers.errorBits = static_cast<std::uint8_t>(errorBits);
  registers.lockBits = fields.Needed("lockBits", fields.HexNumber("lockBits", 16));
  const auto protection = fields.Needed("protection", fields.HexBytes("protection"));
  if (protection.size() != registers.protection.size() * 2) FailAt(fields.PathOf("protection"), "has a wrong length");
  for (std::size_t i = 0; i < registers.protection.size(); ++i)
    registers.protection[i] = Get16(&protection[i * 2]);
  registers.hung = fields.Needed("hung", fields.Flag("hung"));
  ProtocolErrors errors = ReadErrors(fields.Needed("errors", fields.Object("errors")));
  image = fields.Needed("image", fields.HexNumber("image", 16));
  fields.Finish();
  FlashChip flash({}, registers);
  flash.errors() = std::move(errors);
  return flash;
}

json FifoJson(const BoxFifo& fifo) {
  std::vector<std::uint8_t> bytes;
  for (const std::uint32_t word : fifo.Replies())
    for (const int shift : {24, 16, 8, 0})
      bytes.push_back(static_cast<std::uint8_t>(word >> shift));
  return {{"replies", HexOfBytes(bytes)}, {"errors", Errors(fifo.errors())}};
}

BoxFifo ReadFifo(JsonFields fields) {
  const auto bytes = fields.Needed("replies", fields.HexBytes("replies"));
  if (bytes.size() % 4 != 0 || bytes.size() / 4 > BoxFifo::kReplyWords)
    FailAt(fields.PathOf("replies"), "has a wrong length");
  std::vector<std::uint32_t> words(bytes.size() / 4);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    words[i / 4] = words[i / 4] << 8 | bytes[i];
  BoxFifo fifo;
  fifo.SetReplies(words);
  fifo.errors() = ReadErrors(fields.Needed("errors", fields.Object("errors")));
  fields.Finish();
  return fifo;
}

json KarvelJson(const KarvelCpld& karvel) {
  json rows = json::array();
  for (const KarvelRow& row : karvel.cells().rows)
    rows.push_back(HexOfBytes(row));
  return {{"rows", std::move(rows)},
          {"usercode", HexOfBytes(karvel.cells().usercode)},
          {"done", karvel.cells().done},
          {"errors", Errors(karvel.errors())}};
}

KarvelCpld ReadKarvel(JsonFields fields) {
  KarvelCells cells;
  const auto rows = fields.Needed("rows", fields.Texts("rows"));
  if (rows.size() != cells.rows.size()) FailAt(fields.PathOf("rows"), "has a wrong length");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto row = ParseHexBytes(rows[i]);
    if (!row || row->size() != sizeof(KarvelRow))
      FailAt(fields.PathOf("rows"), "row " + std::to_string(i) + " is no text of 32 hexadecimal digits");
    std::copy(row->begin(), row->end(), cells.rows[i].begin());
  }
  const auto usercode = fields.Needed("usercode", fields.HexBytes("usercode"));
  if (usercode.size() != cells.usercode.size()) FailAt(fields.PathOf("usercode"), "has a wrong length");
  std::copy(usercode.begin(), usercode.end(), cells.usercode.begin());
  cells.done = fields.Needed("done", fields.Flag("done"));
  KarvelCpld karvel(cells);
  karvel.errors() = ReadErrors(fields.Needed("errors", fields.Object("errors")));
  fields.Finish();
  return karvel;
}

json CardJson(const Board& board, const HostCardState& card, std::uint64_t imageChecksum) {
  json value = {{"vpd", HexOfBytes(*card.vpd)},
                {"karvelRunning", Hex(card.karvelRunning, 8)},
                {"karvel", KarvelJson(card.karvel)},
                {"flashRunning", Version(card.flashRunning)},
                {"flash", FlashJson(card.flash, imageChecksum)},
                {"errors", Errors(card.errors)}};
  if (board.hasBoxFifo) value["fifo"] = FifoJson(card.fifo);
  return value;
}

HostCardState ReadCard(const Board& board, JsonFields fields, std::uint64_t& image) {
  HostCardState card;
  const auto vpd = fields.Needed("vpd", fields.HexBytes("vpd"));
  if (vpd.size() != kVpdAreaBytes) FailAt(fields.PathOf("vpd"), "has a wrong length");
  VpdArea area;
  std::copy(vpd.begin(), vpd.end(), area.begin());
  card.vpd = std::make_shared<const VpdArea>(area);
  card.karvelRunning = static_cast<std::uint32_t>(fields.Needed("karvelRunning", fields.HexNumber("karvelRunning", 8)));
  if (auto karvel = fields.Object("karvel")) {
    card.karvel = ReadKarvel(*std::move(karvel));
  } else {
    // Benches that are older than the part's cells have the word that is to run instead.
    const auto word = fields.Needed("karvelStored", fields.HexNumber("karvelStored", 8));
    card.karvel = KarvelCpld(MakeShelfKarvel(static_cast<std::uint32_t>(word)));
  }
  if (const auto running = fields.HexNumber("flashRunning", 4))
    card.flashRunning = static_cast<std::uint16_t>(*running);
  card.errors = ReadErrors(fields.Needed("errors", fields.Object("errors")));
  card.flash = ReadFlash(fields.Needed("flash", fields.Object("flash")), image);
  // Not there in benches that are older than the box.
  if (auto fifo = board.hasBoxFifo ? fields.Object("fifo") : std::nullopt) card.fifo = ReadFifo(*std::move(fifo));
  fields.Finish();
  return card;
}

json BoxVersionsJson(const BoxVersions& versions) {
  return {{"revisions", HexOfBytes(versions.revisions)}, {"firmwareRev", HexOfBytes(AsBytes(versions.firmwareRev))}};
}

BoxVersions ReadBoxVersions(JsonFields fields) {
  BoxVersions versions;
  const auto revisions = fields.Needed("revisions", fields.HexBytes("revisions"));
  if (revisions.size() != versions.revisions.size()) FailAt(fields.PathOf("revisions"), "has a wrong length");
  std::copy(revisions.begin(), revisions.end(), versions.revisions.begin());
  const auto text = fields.Needed("firmwareRev", fields.HexBytes("firmwareRev"));
  if (text.size() > VeltraBox::kFirmwareRevBytes) FailAt(fields.PathOf("firmwareRev"), "has a wrong length");
  versions.firmwareRev.assign(text.begin(), text.end());
  fields.Finish();
  return versions;
}

json BoxJson(const VeltraBoxState& box) {
  json vpd = json::object();
  for (std::size_t i = 0; i < box.vpd.size(); ++i)
    if (box.vpd[i]) vpd[std::string(kBoxBoards[i])] = HexOfBytes(*box.vpd[i]);
  return {{"isOn", box.isOn},
          {"running", BoxVersionsJson(box.running)},
          {"stored", BoxVersionsJson(box.stored)},
          {"vpd", std::move(vpd)},
          {"errors", Errors(box.errors)}};
}

VeltraBoxState ReadBox(JsonFields fields) {
  VeltraBoxState box;
  box.isOn = fields.Needed("isOn", fields.Flag("isOn"));
  box.running = ReadBoxVersions(fields.Needed("running", fields.Object("running")));
  box.stored = ReadBoxVersions(fields.Needed("stored", fields.Object("stored")));
  JsonFields vpd = fields.Needed("vpd", fields.Object("vpd"));
  for (std::size_t i = 0; i < box.vpd.size(); ++i) {
    const std::string board(kBoxBoards[i]);
    box.vpd[i] = vpd.HexBytes(board);
    if (box.vpd[i] && box.vpd[i]->size() > VeltraBox::kVpdBytes) FailAt(vpd.PathOf(board), "has a wrong length");
  }
  vpd.Finish();
  box.errors = ReadErrors(fields.Needed("errors", fields.Object("errors")));
  fields.Finish();
  return box;
}

json TextsJson(const MorvakTexts& texts) {
  json value = json::object();
  for (const MorvakVersion& version : kMorvakVersions)
    if (const auto text = texts.Of(version.number)) value[std::string(version.symbol)] = HexOfBytes(AsBytes(*text));
  return value;
}

MorvakTexts ReadTexts(JsonFields fields) {
  MorvakTexts texts;
  for (const MorvakVersion& version : kMorvakVersions) {
    const std::string symbol(version.symbol);
    const auto text = fields.HexBytes(symbol);
    if (!text) continue;
    if (text->size() > MorvakUnit::kVersionBytes) FailAt(fields.PathOf(symbol), "has a wrong length");
    texts.Set(version.number, std::string(text->begin(), text->end()));
  }
  fields.Finish();
  return texts;
}

json UnitJson(const MorvakUnitState& unit) {
  json boards = json::object();
  for (const auto& [number, vpd] : unit.boards)
    boards[std::to_string(number)] = HexOfBytes(vpd);
  return {{"model", unit.model},
          {"codecSlots", unit.codecSlots},
          {"codecState", unit.codecState},
          {"running", TextsJson(unit.running)},
          {"stored", TextsJson(unit.stored)},
          {"vpd", unit.vpd ? json(HexOfBytes(*unit.vpd)) : json()},
          {"boards", std::move(boards)},
          {"errors", Errors(unit.errors)}};
}

MorvakUnitState ReadUnit(JsonFields fields) {
  MorvakUnitState unit;
  unit.model = static_cast<std::uint32_t>(fields.Needed("model", fields.Number("model", kGreatestWord)));
  unit.codecSlots = static_cast<std::uint32_t>(fields.Needed("codecSlots", fields.Number("codecSlots", kGreatestWord)));
  const auto codecs = fields.Needed("codecState", fields.Numbers("codecState", kGreatestWord));
  if (codecs.size() > MorvakUnit::kMostSlots) FailAt(fields.PathOf("codecState"), "has a wrong length");
  for (const std::uint64_t codec : codecs)
    unit.codecState.push_back(static_cast<std::uint32_t>(codec));
  unit.running = ReadTexts(fields.Needed("running", fields.Object("running")));
  unit.stored = ReadTexts(fields.Needed("stored", fields.Object("stored")));
  unit.vpd = fields.HexBytes("vpd");
  if (unit.vpd && unit.vpd->size() > MorvakUnit::kVpdBytes) FailAt(fields.PathOf("vpd"), "has a wrong length");
  JsonFields boards = fields.Needed("boards", fields.Object("boards"));
  for (std::uint32_t number = 0; number < MorvakUnit::kMostBoards; ++number) {
    const std::string board = std::to_string(number);
    const auto vpd = boards.HexBytes(board);
    if (!vpd) continue;
    if (vpd->size() > kVpdAreaBytes) FailAt(boards.PathOf(board), "has a wrong length");
    unit.boards[number] = *vpd;
  }
  boards.Finish();
  unit.errors = ReadErrors(fields.Needed("errors", fields.Object("errors")));
  fields.Finish();
  return unit;
}

BenchState ReadState(JsonFields fields, std::array<std::uint64_t, 2>& images) {
  if (fields.Needed("format", fields.Number("format", ~std::uint64_t{0})) != kFormat)
    FailAt("format", "made by another version of this program");
  BenchState state;
  state.clockNanoseconds = static_cast<std::int64_t>(fields.Needed("clock", fields.Number("clock", kLatestNanosecond)));
  JsonFields cards = fields.Needed("cards", fields.Object("cards"));
  for (std::size_t i = 0; i < state.cards.size(); ++i)
    if (auto card = cards.Object(std::string(kHostCards[i]->name)))
      state.cards[i] = ReadCard(*kHostCards[i], *std::move(card), images[i]);
  cards.Finish();
  if (auto box = fields.Object("box")) state.box = ReadBox(*std::move(box));
  if (auto unit = fields.Object("morvak")) state.unit = ReadUnit(*std::move(unit));
  fields.Finish();
  return state;
}

/// Images that no state names any more, and what interrupted savings left.
void RemoveOldFiles(const fs::path& folder, const std::set<std::string>& images) {
  std::error_code ignored;
  for (const fs::directory_entry& entry : fs::directory_iterator(HardwareFolder(folder), ignored)) {
    const std::string name = entry.path().filename().string();
    if (name.ends_with(".new") || (name.ends_with(kImageEnding) && !images.contains(name)))
      fs::remove(entry.path(), ignored);
  }
}

}  // namespace

fs::path FirmwareFolder(const fs::path& folder) {
  return folder / "firmware";
}

void SaveBench(const fs::path& folder, const BenchState& state) {
  json cards = json::object();
  std::set<std::string> images;
  for (std::size_t i = 0; i < state.cards.size(); ++i) {
    if (!state.cards[i]) continue;
    const Board& board = *kHostCards[i];
    const std::uint64_t image = SaveImage(folder, board, state.cards[i]->flash.memory());
    images.insert(ImageName(board, image));
    cards[std::string(board.name)] = CardJson(board, *state.cards[i], image);
  }
  json whole = {{"format", kFormat}, {"clock", state.clockNanoseconds}, {"cards", std::move(cards)}};
  if (state.box) whole["box"] = BoxJson(*state.box);
  if (state.unit) whole["morvak"] = UnitJson(*state.unit);
  ReplaceFile(StateFile(folder), AsBytes(whole.dump(1) + "\n"));
  RemoveOldFiles(folder, images);
}

BenchState LoadBench(const fs::path& folder) {
  const fs::path file = StateFile(folder);
  std::error_code ignored;
  if (!fs::exists(file, ignored)) throw BenchError(folder.string() + ": holds no bench");
  const std::string text = ReadWholeFile(file, kLongestStateFile);
  BenchState state;
  std::array<std::uint64_t, 2> images{};
  try {
    const json whole = ParseJson(text);
    state = ReadState(JsonFields(whole, ""), images);
  } catch (const BenchError& error) {
    throw BenchError(file.string() + ": is damaged: " + error.what());
  }
  for (std::size_t i = 0; i < state.cards.size(); ++i)
    if (state.cards[i]) state.cards[i]->flash.memory() = LoadImage(folder, *kHostCards[i], images[i]);
  return state;
}

void CreateBench(const fs::path& folder, const BenchState& state, const std::vector<FirmwareFile>& files,
                 std::uint64_t seed) {
  std::error_code error;
  const bool existed = fs::exists(folder, error);
  if (existed && !fs::is_directory(folder, error)) throw BenchError(folder.string() + ": is not a folder");
  if (existed && !fs::is_empty(folder, error)) throw BenchError(folder.string() + ": is not empty");
  try {
    fs::create_directories(HardwareFolder(folder));
    fs::create_directories(FirmwareFolder(folder));
    WriteFirmwareFiles(FirmwareFolder(folder), files, seed);
    SaveBench(folder, state);
  } catch (const std::exception& failure) {
    fs::remove_all(HardwareFolder(folder), error);
    fs::remove_all(FirmwareFolder(folder), error);
    if (!existed) fs::remove(folder, error);
    throw BenchError(failure.what());
  }
}

}  // namespace simulator
