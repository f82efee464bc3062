#include "HeaderText.h"

#include <iostream>
#include <stdexcept>

#include "Dictionary.h"

namespace {

using TalcPathPrivate::CommandFormat;

constexpr const char* kHead =
    R"(/* Talc commands: their codes, their symbols, and their data as it lies in a packet behind the header.
   Written by talctool from a dictionary; change the dictionary instead. */
#ifndef TALC_COMMANDS_H
#define TALC_COMMANDS_H
)";
constexpr const char* kEnd = "\n\n#endif\n";

bool WriteCodes(const CommandFormat& format) {
  std::cout << "\n\n /* Codes of command " << format.GetName() << " */"
            << "\nenum " << format.GetName() << "CommandCodes\n{";
  const bool isWritten = format.WriteCommandCodes(std::cout);
  std::cout << "\n};";
  return isWritten;
}

}  // namespace

void WriteHeader(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  std::cout << kHead;
  for (const auto& [name, format] : dictionary.Commands()) {
    if (format->HasCommandCodes() && !WriteCodes(*format))
      throw std::runtime_error("cannot write the codes of command " + name);
    if (format->HasDataDefinition() && !format->WriteDataDefinition(std::cout))
      throw std::runtime_error("cannot write the data of command " + name);
  }
  std::cout << kEnd;
}
