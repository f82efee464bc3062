#include <exception>
#include <stdexcept>
#include <vector>

#include "DefinitionReport.h"
#include "DefinitionText.h"
#include "Dictionary.h"
#include "HeaderText.h"
#include "LogLines.h"
#include "Options.h"
#include "PacketLines.h"
#include "StatementLines.h"
#include "support/Console.h"

namespace {

constexpr const char* kProgram = "talctool";

constexpr Call kCalls[] = {
    {"check", "Tell what is defined, as lines of JSON", Check},
    {"validate", "Tell what is wrong with each definition, as lines of JSON", Validate},
    {"write", "Write the definitions in the dictionary language", WriteDefinitions},
    {"header", "Write the definitions as a C header", WriteHeader},
    {"dump", "Write the definitions for people", DumpDefinitions},
    {"compile", "Make packets of the commands on standard input, lines of JSON", CompileLines},
    {"decompile", "Read the reply packets on standard input, lines of JSON", DecompileLines},
    {"text", "Read the statements on standard input, lines of JSON", StatementLines},
};

void Work(const Options& options, const std::vector<DictionaryText>& texts) {
  const LogLines log(options.detail);
  const Dictionary dictionary(texts);
  options.call->run(dictionary);
  FinishOutput();
  // Last, since a faulty dictionary ends no call: what it defined before its fault can be worked with.
  dictionary.RequireGoodSources();
}

int Run(int argc, char** argv) {
  Options options;
  if (const auto exitCode = ReadOptions(argc, argv, kCalls, options)) return *exitCode;
  std::vector<DictionaryText> texts;
  try {
    texts = ReadDictionaryFiles(options.dictionaries);
  } catch (const std::runtime_error& error) {
    return Complain(kProgram, error.what(), kBadUsage);
  }
  Work(options, texts);
  return kDone;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    return Complain(kProgram, error.what(), kFailed);
  }
}
