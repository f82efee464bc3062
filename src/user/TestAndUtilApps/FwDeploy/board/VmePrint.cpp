#include "board/VmePrint.h"

#include <cstdio>

void PrintToConsole(const char* text) {
  std::fputs(text, stdout);
  std::fflush(stdout);
}
