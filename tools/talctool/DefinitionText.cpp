#include "DefinitionText.h"

#include <iostream>

#include "Dictionary.h"

void WriteDefinitions(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  for (const auto& [name, format] : dictionary.Commands())
    format->WriteDefinition(std::cout);
}

void DumpDefinitions(const Dictionary& dictionary) {
  dictionary.RequireCommands();
  for (const auto& [name, format] : dictionary.Commands())
    format->Dump(std::cout, false);
}
