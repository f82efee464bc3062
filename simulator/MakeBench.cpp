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
  return state;
}

}  // namespace simulator
