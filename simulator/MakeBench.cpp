#include <string>
#include <string_view>

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
    box.vpd[i] = MakeVpdBlock(board.product,
                              {{{"PN", board.partNumber}, {"ZB", "2"}, {"ZC", "1"}}, {{"SN", board.serialNumber}}});
  }
  box.PowerCycle(0);
  return box;
}

}  // namespace

BenchState MakeBench(const BenchOptions& options) {
  BenchState state;
  for (std::size_t i = 0; i < state.cards.size(); ++i) {
    const ShelfCard& shelf = kShelf[i];
    if (!Wanted(options.hostCards, *shelf.board)) continue;
    HostCardState card;
    card.vpd = std::make_shared<const VpdArea>(ShelfVpd(shelf));
    card.karvelStored = shelf.karvelWord;
    card.flash = FlashChip(MakeInstalledFlash(shelf.fileName, shelf.partId, shelf.flashVersion, options.seed));
    card.PowerCycle(0);
    state.cards[i] = std::move(card);
  }
  if (options.box != BoxChoice::kNone) {
    state.box = ShelfBox();
    state.box->isOn = options.box == BoxChoice::kOn;
  }
  return state;
}

}  // namespace simulator
