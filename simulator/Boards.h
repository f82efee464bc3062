#pragma once

#include <cstdint>
#include <string_view>

#include "platform/Devices.h"

namespace simulator {

/// What a bench and a trace know of a kind of board.
struct Board {
  std::string_view name;
  platform::Guid interfaceClass;
  std::string_view devicePath;
  /// Where its register window is said to be: a name, not memory, whose low half is not 0. 0 on a board without one.
  std::uint64_t windowAddress;
  /// The break-out box hangs on it.
  bool hasBoxFifo = false;
};

inline constexpr Board kBelmaraBoard = {"belmara",
                                        {0x65703B92, 0x7B12, 0x41B3, {0x9B, 0x07, 0x9B, 0x13, 0x1B, 0xAA, 0x36, 0x4B}},
                                        R"(\\?\pci#slot02#0&00000000&0&0010#{65703b92-7b12-41b3-9b07-9b131baa364b})",
                                        0x0000'7B32'4C40'0000,
                                        true};

inline constexpr Board kDovuBoard = {"dovu",
                                     {0x02201D82, 0x4779, 0x40DE, {0xBB, 0xD8, 0xF1, 0x4D, 0x9E, 0xF4, 0xD8, 0x3E}},
                                     R"(\\?\pci#slot03#0&00000000&0&0018#{02201d82-4779-40de-bbd8-f14d9ef4d83e})",
                                     0x0000'7D0F'8E80'0000};

inline constexpr Board kMorvakBoard = {"morvak",
                                       {0x5519CF2B, 0xF6FC, 0x4A48, {0x96, 0x51, 0x73, 0xDB, 0x09, 0xCF, 0x50, 0x91}},
                                       R"(\\?\pci#slot05#0&00000000&0&0028#{5519cf2b-f6fc-4a48-9651-73db09cf5091})",
                                       0};

/// The host cards, in the order in which everything lists them.
inline constexpr const Board* kHostCards[] = {&kBelmaraBoard, &kDovuBoard};
/// All that has a driver.
inline constexpr const Board* kBoards[] = {&kBelmaraBoard, &kDovuBoard, &kMorvakBoard};

}  // namespace simulator
