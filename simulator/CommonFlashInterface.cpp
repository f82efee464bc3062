#include "simulator/CommonFlashInterface.h"

#include <iterator>

namespace simulator {
namespace {

constexpr std::uint32_t kFirst = 0x10;

constexpr std::uint8_t kTable[] = {
    'Q',  'R',  'Y',               // 10: here it is
    0x01, 0x00, 0x31, 0x00,        // 13: the command set, and where its own table begins
    0x00, 0x00, 0x00, 0x00,        // 17: no second command set
    0x27, 0x36, 0x00, 0x00,        // 1b: 2.7 to 3.6 V, no programming voltage
    0x07, 0x08, 0x0A, 0x00,        // 1f: typical times: a word, a buffer (2^n us), a block erase (2^n ms)
    0x04, 0x04, 0x01, 0x00,        // 23: greatest times, as 2^n times the typical ones
    0x17, 0x02, 0x00, 0x05, 0x00,  // 27: 2^23 bytes, x8 or x16, a buffer of 2^5 bytes
    0x01, 0x3F, 0x00, 0x00, 0x02,  // 2c: one region of 64 blocks of 512 * 256 bytes
    'P',  'R',  'I',  '1',  '1',   // 31: the command set's own table, version 1.1
    0x48, 0x00, 0x00, 0x00, 0x00,  // 36: lock bits and protection registers, no suspending
};

}  // namespace

std::uint16_t CommonFlashInterfaceWord(std::uint32_t wordAddress) {
  if (wordAddress < kFirst || wordAddress - kFirst >= std::size(kTable)) return 0;
  return kTable[wordAddress - kFirst];
}

}  // namespace simulator
