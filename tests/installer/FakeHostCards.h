#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "board/C28FxJ3A.h"
#include "FwDeploy.h"
#include "platform/RegisterWindow.h"

/// A VPD area of one fields resource with these fields, and an end resource behind it.
inline std::vector<std::uint8_t> VpdWith(const std::vector<std::pair<std::string, std::string>>& fields) {
  std::vector<std::uint8_t> content;
  for (const auto& [keyword, text] : fields) {
    content.insert(content.end(), keyword.begin(), keyword.end());
    content.push_back(static_cast<std::uint8_t>(text.size()));
    content.insert(content.end(), text.begin(), text.end());
  }
  std::vector<std::uint8_t> area(content.size() + 4);
  area[0] = 0x90;
  area[1] = static_cast<std::uint8_t>(content.size());
  area[2] = static_cast<std::uint8_t>(content.size() >> 8);
  std::copy(content.begin(), content.end(), area.begin() + 3);
  area.back() = 0x78;
  return area;
}

/// A flash that can only be read. Words that were not put are erased.
class ReadOnlyFlash : public platform::RegisterTrap {
 public:
  void PutWord(std::uint32_t wordAddress, std::uint16_t value) { words_[wordAddress] = value; }
  /// Puts bytes at a byte offset in the image area, an even one.
  void PutImageBytes(std::uint32_t byteOffset, const std::string& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      const auto at = byteOffset + static_cast<std::uint32_t>(i);
      std::uint16_t& word = words_.try_emplace(0x100000 + at / 2, std::uint16_t{0xFFFF}).first->second;
      const auto byte = static_cast<std::uint8_t>(bytes[i]);
      word = static_cast<std::uint16_t>(at % 2 == 0 ? (word & 0xFF00) | byte : (word & 0x00FF) | byte << 8);
    }
  }
  /// Puts a stamp at an even byte offset in the image area: text, header copy, and the two words at the end.
  void PutStamp(std::uint32_t byteOffset, const std::string& text, const std::string& headerCopy) {
    PutImageBytes(byteOffset, text + '\0' + headerCopy);
    PutWord(0x1FFFFD, 8);
    PutWord(0x1FFFFE, static_cast<std::uint16_t>(byteOffset));
    PutWord(0x1FFFFF, static_cast<std::uint16_t>(byteOffset >> 16));
  }

  std::uint32_t Read(std::uint32_t) override { return std::uint32_t{Word(address_ | 1)} << 16 | Word(address_ & ~1u); }
  void Write(std::uint32_t offset, std::uint32_t value) override {
    if (offset == 0) address_ = value;
  }

 private:
  std::uint16_t Word(std::uint32_t address) const {
    const auto found = words_.find(address);
    return found == words_.end() ? std::uint16_t{0xFFFF} : found->second;
  }

  std::map<std::uint32_t, std::uint16_t> words_;
  std::uint32_t address_ = 0;
};

/// A helper with host cards that a test makes up, and a box that is silent unless a class of the test's answers for it.
class FakeHostCards : public VeltraSpecificHelper {
 public:
  struct Card {
    bool present = false;
    std::vector<std::uint8_t> vpd;
    std::uint32_t karvel = 0;
    ReadOnlyFlash chip;
    C28FxJ3A flash;
  };

  Card belmara;
  Card dovu;

  /// Puts a card into its slot, with a function revision in range.
  void Insert(Card& card) {
    card.present = true;
    card.vpd = VpdWith({{"ZA", "5"}, {"ZB", "1"}, {"ZC", "2"}});
    card.flash.Attach(platform::RegisterWindow(0x4008, &card.chip));
  }

  /// The commands that the box was asked with.
  std::vector<std::string> asked;

  HwcStatus ExecuteCommand(const char* name, Arguments) override {
    asked.emplace_back(name);
    return kHWCerr_CommandTimeout;
  }
  // Discovery only asks.
  HwcStatus SendCommand(const char*, Arguments) override { std::abort(); }
  HwcStatus PrecompileCommand(std::uint8_t*, std::uint32_t*, std::uint8_t, const char*, Arguments) override {
    std::abort();
  }
  HwcStatus DecodeReply(const std::uint8_t*, std::uint32_t, const char*, Arguments) override { std::abort(); }
  HwcStatus TransactBoBCommand(const std::uint8_t*, std::uint32_t, std::uint8_t*, std::uint32_t*, std::uint32_t,
                               std::uint32_t) override {
    std::abort();
  }
  HwcStatus TransactCommand(TalcPath::TalcCommand&) override { std::abort(); }
  const char* GetPrompt() const override { return ""; }
  bool IsCodecPresent(std::int32_t) override { return false; }
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override {
    const Card& card = Named(board);
    if (card.present) std::copy(card.vpd.begin(), card.vpd.end(), buffer);
  }
  C28FxJ3A* GetC28FxJ3A(const char* board) override { return Named(board).present ? &Named(board).flash : nullptr; }
  platform::RegisterWindow GetKarvelProgramAddr(const char*) override { return {}; }
  platform::RegisterWindow GetKarvelVersion(const char* board) override {
    Card& card = Named(board);
    if (!card.present) return {};
    return platform::RegisterWindow(reinterpret_cast<std::uintptr_t>(&card.karvel));
  }

 private:
  Card& Named(const char* board) { return board[0] == 'd' ? dovu : belmara; }
};
