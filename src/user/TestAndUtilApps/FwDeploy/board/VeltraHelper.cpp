#include "board/VeltraHelper.h"

#include "board/DeviceDiscovery.h"
#include "board/DriverRecords.h"
#include "platform/Platform.h"

namespace {

// Register window of a host card, byte offsets.
constexpr std::uint32_t kVpdArea = 0x02000;
constexpr std::uint32_t kKarvelVersion = 0x04000;
constexpr std::uint32_t kFlashAddress = 0x04008;
constexpr std::uint32_t kJtagPort = 0x80400;

}  // namespace

VeltraHelper::~VeltraHelper() {
  for (const Card* card : {&belmara_, &dovu_})
    if (card->handle != 0) platform::Current().devices().CloseHandle(card->handle);
}

bool VeltraHelper::Open() {
  OpenCard(belmara_, GUID_BelmaraDevice);
  if (openMode == OpenMode::kMorvakElseBothHostCards || openMode == OpenMode::kHostCards)
    OpenCard(dovu_, GUID_DovuDevice);

  const bool haveBelmara = belmara_.handle != 0;
  const bool haveDovu = dovu_.handle != 0;
  if (haveBelmara && haveDovu)
    boardKind = BoardKind::kBothHostCards;
  else if (haveBelmara)
    boardKind = BoardKind::kBelmaraOnly;
  else if (haveDovu)
    boardKind = BoardKind::kDovuOnly;
  return haveBelmara || haveDovu;
}

void VeltraHelper::OpenCard(Card& card, const platform::Guid& guid) {
  card.handle = OpenDeviceViaGuid(guid, 0);
  if (card.handle == 0) return;
  card.registers = MapBoardRegisters(card.handle);
  card.flash.Attach(card.registers.From(kFlashAddress));
}

void VeltraHelper::GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) {
  const Card* card = nullptr;
  // Unlike everywhere else, the case of the name does not matter here.
  const char initial = board == nullptr ? 'b' : board[0];
  if (initial == 'b' || initial == 'B') card = &belmara_;
  if (initial == 'd' || initial == 'D') card = &dovu_;
  if (card == nullptr || !card->registers) return;

  for (std::uint32_t i = 0; i < kBoardVpdBytes; i += 4) {
    const std::uint32_t word = card->registers.Read(kVpdArea + i);
    for (std::uint32_t byte = 0; byte < 4; ++byte)
      buffer[i + byte] = static_cast<std::uint8_t>(word >> 8 * byte);
  }
}

VeltraHelper::Card& VeltraHelper::CardNamed(const char* board) {
  return board[0] == 'd' ? dovu_ : belmara_;
}

C28FxJ3A* VeltraHelper::GetC28FxJ3A(const char* board) {
  Card& card = CardNamed(board);
  return card.registers ? &card.flash : nullptr;
}

platform::RegisterWindow VeltraHelper::GetKarvelProgramAddr(const char* board) {
  const Card& card = CardNamed(board);
  return card.registers ? card.registers.From(kJtagPort) : platform::RegisterWindow();
}

platform::RegisterWindow VeltraHelper::GetKarvelVersion(const char* board) {
  const Card& card = CardNamed(board);
  return card.registers ? card.registers.From(kKarvelVersion) : platform::RegisterWindow();
}
