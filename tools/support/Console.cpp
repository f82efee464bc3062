#include "support/Console.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

int Complain(const char* program, std::string text, int exitCode) {
  while (!text.empty() && text.back() == '\n')
    text.pop_back();
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::cerr << (std::string(program) + ": " + text + '\n');
  return exitCode;
}

void FinishOutput() {
  std::cout.flush();
  if (!std::cout) throw std::runtime_error("cannot write to standard output");
}
