#include "engine/Library.h"

#include <memory>
#include <string>

#include "caps/CapsState.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "engine/CommandLog.h"
#include "engine/DictionaryFiles.h"
#include "engine/Transports.h"
#include "talcpath.h"

using TalcPathPrivate::LogAlways;
using TalcPathPrivate::LogVerbose;

namespace TalcPathPrivate {
namespace {

struct LibraryState {
  std::uint32_t initCount = 0;
  bool terminatedCleanly = true;
  std::unique_ptr<std::string> dictionaryDirectory;
};
LibraryState library;

/// Null when there is none.
const char* DirectoryThatWasSet() {
  const std::string* const directory = library.dictionaryDirectory.get();
  return directory == nullptr || directory->empty() ? nullptr : directory->c_str();
}

/// The files of the working directory, then those of the directory that was set. A failure does not stop the other.
bool ReadDirectories(TCDFileProcessor& processor) {
  bool isGood = true;
  if (!ProcessDirectory("./", processor)) {
    isGood = false;
    LogVerbose("\n\nTalcPath failed initializing while reading current directory");
  }
  const char* const directory = DirectoryThatWasSet();
  if (directory != nullptr && !ProcessDirectory(directory, processor)) {
    isGood = false;
    LogVerbose("\n\nTalcPath failed initializing while reading directory : ", directory);
  }
  return isGood;
}

/// Directories are read only by a program that carries no dictionary at all.
bool ReadDictionaries(TCDFileProcessor& processor) {
  bool isFound = false;
  bool isGood = ProcessTextBlocks("RT_TCD_FILE", processor, isFound);
  if (!isGood) LogVerbose("\n\nTalcPath failed initializing while reading Talc Command Definition resources");
  if (!isFound && !ReadDirectories(processor)) isGood = false;
  return isGood;
}

bool HasCommands() {
  const CommandTable* const table = DefinedCommands();
  return table != nullptr && !table->empty();
}

bool ReadHardwareCapabilities() {
  if (StartCapabilities(DirectoryThatWasSet(), TalcPath::TalcPathExecute)) return true;
  LogAlways("\n\nTalcPath Hardware Capabilities FAILED to initialize!!!!!!!");
  return false;
}

bool Start() {
  ParseFileProcessor parser;
  LogVerbose("\n<-> Initializing TalcPath...\n");
  bool isGood = ReadDictionaries(parser);
  if (!HasCommands()) {
    LogAlways("\n\nTalcPath Initialization failed to find any Talc commands!!!!!!!");
    isGood = false;
  }
  if (isGood && !ReadHardwareCapabilities()) return false;
  // Spelled so, and written also after a failure above, when there was nothing to initialize: those who read logs look
  // for this line.
  LogVerbose("\n\nTalcPath initialized Hardware Capabilites");
  return isGood;
}

}  // namespace

bool IsInitialized() {
  return library.initCount != 0;
}

}  // namespace TalcPathPrivate

namespace TalcPath {

using TalcPathPrivate::library;

bool TalcPathInit() {
  if (library.initCount != 0) {
    LogAlways("\n<-> TalcPath already inited\n");
    ++library.initCount;
    return true;
  }
  if (!library.terminatedCleanly) {
    LogAlways("\n<-> ERROR TalcPath did not terminate cleanly!\n");
    return false;
  }
  if (!TalcPathPrivate::RunCatchingAll(TalcPathPrivate::Start)) {
    LogAlways("\n>>> FAILED to initialize TalcPath <<<");
    return false;
  }
  LogVerbose("\n<->Finished initializing TalcPath - no errors.");
  ++library.initCount;
  return true;
}

bool TalcPathTerminate() {
  if (library.initCount == 0) return true;
  if (--library.initCount != 0) return true;
  if (!library.terminatedCleanly) return false;
  TalcPathCloseCommandLog();
  TalcPathPrivate::ForgetTransports();
  TalcPathPrivate::FreeCapsManager();
  if (!TalcPathPrivate::StopCapabilities()) library.terminatedCleanly = false;
  // One list for all three, each of which empties it first: what the first one found shows in the result alone.
  TalcPathPrivate::ErrorList errors;
  if (!TalcPathPrivate::DeleteDefinedCommands(errors)) library.terminatedCleanly = false;
  if (!TalcPathPrivate::DeleteCommandTypeTable(errors)) library.terminatedCleanly = false;
  if (!TalcPathPrivate::DeleteDiagOpcodeTable(errors)) library.terminatedCleanly = false;
  library.dictionaryDirectory.reset();
  if (!errors.empty()) {
    LogAlways("\nErrors during termination... : ");
    for (const std::string& error : errors)
      LogAlways("\n\t", error);
    library.terminatedCleanly = false;
  }
  return library.terminatedCleanly;
}

bool TalcPathSetDirectory(const char* directory) {
  if (directory == nullptr) return false;
  if (library.dictionaryDirectory == nullptr) library.dictionaryDirectory = std::make_unique<std::string>();
  *library.dictionaryDirectory = directory;
  return !library.dictionaryDirectory->empty();
}

bool TalcPathSetLogFlags(std::uint8_t, bool trace) {
  TalcPathPrivate::logState.verbose = true;
  TalcPathPrivate::logState.trace = trace;
  return true;
}

void TalcPathSetLogStream(std::ostream* stream) {
  TalcPathPrivate::logState.stream = stream;
}

}  // namespace TalcPath
