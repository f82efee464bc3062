#include <exception>
#include <stdexcept>
#include <vector>

#include "CapsReport.h"
#include "CrcReport.h"
#include "DefinitionReport.h"
#include "DefinitionText.h"
#include "Dictionary.h"
#include "HeaderText.h"
#include "LogLines.h"
#include "Options.h"
#include "PacketLines.h"
#include "StatementLines.h"
#include "support/Console.h"
#include "support/WholeFile.h"

namespace {

constexpr const char* kProgram = "talctool";

constexpr Call kCalls[] = {
    {"check", "Tell what is defined, as lines of JSON", Check},
    {"validate", "Tell what is wrong with each definition, as lines of JSON", Validate},
    {"write", "Write the definitions in the dictionary language", WriteDefinitions},
    {"header", "Write the definitions as a C header", WriteHeader},
    {"dump", "Write the definitions for people", DumpDefinitions},
    {"compile", "Make packets of the commands on standard input, lines of JSON", CompileLines},
    {"meta", "Make all packets of the meta commands on standard input, lines of JSON", MetaLines},
    {"decompile", "Read the reply packets on standard input, lines of JSON", DecompileLines},
    {"text", "Read the statements on standard input, lines of JSON", StatementLines},
    {"crc", "Write or check the integrity trailer of a dictionary file"},
    {"crc add", "Write a trailer behind what the file holds", nullptr, "FILE", nullptr, AddCrc},
    {"crc check", "Tell whether the file's last trailer is valid, as a line of JSON", nullptr, "FILE", nullptr,
     CheckCrc},
    {"caps", "Tell what a capabilities file holds, as lines of JSON", nullptr, "--hwc", ReportCapabilities},
};

void Work(const Options& options, const std::vector<DictionaryText>& texts, const std::string& fileText) {
  const LogLines log(options.detail);
  const Call& call = *options.call;
  if (call.runOnFileAlone != nullptr) {
    call.runOnFileAlone(options.file);
    FinishOutput();
    return;
  }
  const Dictionary dictionary(texts);
  if (call.fileOption == nullptr)
    call.run(dictionary);
  else
    call.runOnFile(dictionary, options.file, fileText);
  FinishOutput();
  // Last, since a faulty dictionary ends no call: what it defined before its fault can be worked with.
  dictionary.RequireGoodSources();
}

int Run(int argc, char** argv) {
  Options options;
  if (const auto exitCode = ReadOptions(argc, argv, kCalls, options)) return *exitCode;
  std::vector<DictionaryText> texts;
  std::string fileText;
  try {
    texts = ReadDictionaryFiles(options.dictionaries);
    if (options.call->fileOption != nullptr) fileText = ReadWhole(options.file);
  } catch (const std::runtime_error& error) {
    return Complain(kProgram, error.what(), kBadUsage);
  }
  Work(options, texts, fileText);
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
