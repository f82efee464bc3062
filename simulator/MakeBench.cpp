#include <string>
#include <string_view>
#include <vector>

#include "simulator/Bench.h"
#include "simulator/FlashImage.h"

namespace simulator {
namespace {

/// A card as it comes from the shelf.
struct ShelfCard {
  const Board* board;
  const char* product;
  const char* partNumber;
  const char* serialNumber;
  const char* fileName;
  const char* partId;
  std::uint16_t flashVersion;
  std::uint32_t karvelWord;
};

constexpr ShelfCard kShelf[] = {
    {&kBelmaraBoard, "BELMARA HOST CARD", "1-10017-3", "BB000417", "BLMX0202.rbi", "BLMX", 0x1160, 0x00160000},
    {&kDovuBoard, "DOVU HOST CARD", "1-10018-2", "BD000292", "DVUX0202.rbi", "DVUX", 0x1160, 0x00160000},
};

/// Some fields stand in a resource of their own, as on boards that were labelled in two places.
VpdArea ShelfVpd(const ShelfCard& card) {
  return MakeVpdArea(card.product, {{{"PN", card.partNumber}, {"EC", "C04"}, {"ZB", "2"}, {"ZC", "1"}},
                                    {{"SN", card.serialNumber}, {"ZA", "5"}, {"MN", "BENCH"}}});
}

bool Wanted(HostCards choice, const Board& board) {
  switch (choice) {
    case HostCards::kBoth:
      return true;
    case HostCards::kBelmara:
      return &board == &kBelmaraBoard;
    case HostCards::kDovu:
      return &board == &kDovuBoard;
    case HostCards::kNone:
      break;
  }
  return false;
}

struct ShelfBoard {
  const char* product;
  const char* partNumber;
  const char* serialNumber;
};

std::vector<std::uint8_t> LabelVpd(const ShelfBoard& board, const char* revision) {
  return MakeVpdBlock(board.product,
                      {{{"PN", board.partNumber}, {"ZB", revision}, {"ZC", "1"}}, {{"SN", board.serialNumber}}});
}

/// The boards of a box, in the order of `kBoxBoards`.
constexpr ShelfBoard kShelfBoards[] = {
    {"BROX MAIN BOARD", "1-10020-4", "BX000733"},
    {"FENROK BOARD", "1-10021-1", "BF000518"},
    {"JORL BOARD", "1-10022-2", "BJ000264"},
};
static_assert(std::size(kShelfBoards) == std::size(kBoxBoards));

/// The version of each part of a box, in the order of `kBoxParts`. Of vulmen nothing is older than this release's 0001
/// but 0, which means that the part is absent: so it has one that was made before the release.
constexpr std::uint16_t kShelfVersions[] = {0x0218, 0x0224, 0x0001, 0x00E1, 0x0230, 0x001B};
static_assert(std::size(kShelfVersions) == std::size(kBoxParts));

/// Salvik, which nothing can load, is 1.0.
constexpr std::size_t kSalvikMajor = 10;

VeltraBoxState ShelfBox() {
  VeltraBoxState box;
  for (std::size_t i = 0; i < std::size(kBoxParts); ++i)
    box.stored.Set(kBoxParts[i], kShelfVersions[i]);
  box.stored.revisions[kSalvikMajor] = 1;
  box.stored.firmwareRev += " b";
  for (std::size_t i = 0; i < std::size(kShelfBoards); ++i) {
    const ShelfBoard& board = kShelfBoards[i];
    box.vpd[i] = LabelVpd(board, "2");
  }
  box.PowerCycle(0);
  return box;
}

struct ShelfVersion {
  const char* symbol;
  const char* text;
};

struct ShelfModule {
  std::uint32_t board;
  ShelfBoard label;
};

/// An Orbo QX as it comes from the shelf. Its firmware is old, but new enough to tell of the CPLDs.
struct ShelfUnit {
  std::uint32_t model;
  std::vector<std::uint32_t> codecs;
  std::vector<ShelfModule> modules;
  std::vector<ShelfVersion> versions;
};

ShelfUnit ShelfUnitOf(OrboQx choice) {
  if (choice == OrboQx::kModel5)
    return {5,
            {},
            {{0, {"ORBO QX", "1-20046-2", "OQ000857"}}},
            {{"MorvakFirmware", "0120b"}, {"MorvakFPGA", "0221"}, {"MorvakTesk", "000f"}, {"MorvakPower", "0109"}}};
  return {4,
          {1, 2},
          {{0, {"ORBO QX", "1-20040-2", "OQ000391"}},
           {2, {"CODEC MODULE", "1-20035-1", "OC000144"}},
           {3, {"CODEC MODULE", "1-20173-1", "OC000612"}}},
          {{"MorvakFirmware", "0120b"},
           {"MorvakFPGA", "030e"},
           {"MorvakTesk", "000f"},
           {"MorvakPower", "0109"},
           {"MorvakCodec1FPGA", "0203"},
           {"MorvakCodec1VCID", "0009"},
           {"MorvakCodec2FPGA", "001f"},
           {"MorvakCodec2VCID", "0009"}}};
}

MorvakUnitState UnitFrom(const ShelfUnit& shelf) {
  MorvakUnitState unit;
  unit.model = shelf.model;
  unit.codecSlots = static_cast<std::uint32_t>(shelf.codecs.size());
  unit.codecState = shelf.codecs;
  for (const ShelfModule& module : shelf.modules)
    unit.boards[module.board] = LabelVpd(module.label, "1");
  unit.vpd = unit.boards.at(0);
  for (const ShelfVersion& shelfVersion : shelf.versions)
    for (const MorvakVersion& version : kMorvakVersions)
      if (version.symbol == shelfVersion.symbol) unit.stored.Set(version.number, shelfVersion.text);
  unit.PowerCycle(0);
  return unit;
}

}  // namespace

BenchState MakeBench(const BenchOptions& options) {
  BenchState state;
  for (std::size_t i = 0; i < state.cards.size(); ++i) {
    const ShelfCard& shelf = kShelf[i];
    if (!Wanted(options.hostCards, *shelf.board)) continue;
    HostCardState card;
    card.vpd = std::make_shared<const VpdArea>(ShelfVpd(shelf));
    card.karvel = KarvelCpld(MakeShelfKarvel(shelf.karvelWord));
    card.flash = FlashChip(MakeInstalledFlash(shelf.fileName, shelf.partId, shelf.flashVersion, options.seed));
    card.PowerCycle(0);
    state.cards[i] = std::move(card);
  }
  if (options.box != BoxChoice::kNone) {
    state.box = ShelfBox();
    state.box->isOn = options.box == BoxChoice::kOn;
  }
  if (options.orboQx != OrboQx::kNone) state.unit = UnitFrom(ShelfUnitOf(options.orboQx));
  return state;
}

}  // namespace simulator
