// The public compile and decompile.

#include "dictionary/Log.h"
#include "engine/ByteCodeCompiler.h"
#include "engine/ByteCodeDecompiler.h"
#include "engine/Library.h"
#include "talcpath.h"

using TalcPathPrivate::LogAlways;

namespace TalcPath {
namespace {

/// Only a started library compiles and decompiles, and only commands that have a packet.
bool IsRefused(const TalcCommand& command, const char* attempt, const char* what) {
  if (!TalcPathPrivate::IsInitialized()) {
    LogAlways("\n<-> ERROR Attempted to ", attempt, " ", what, " - TalcPath NOT INITIALIZED!\n");
    return true;
  }
  if (IsMetaCommandFormat(command)) {
    LogAlways("\n<-> ERROR Attempted to ", attempt, " a MetaCommand - MetaCommands can only be Execute(d)!\n");
    return true;
  }
  return false;
}

}  // namespace

bool TalcPathCompile(TalcCommand& command, TalcByteCode& byteCode, std::uint32_t* overrideTimeoutMillisec,
                     TalcPathStatus* status) {
  if (overrideTimeoutMillisec != nullptr) *overrideTimeoutMillisec = 0;
  if (status != nullptr) *status = kTPSuccess;
  byteCode.Clear();
  if (IsRefused(command, "Compile", "command")) return false;
  return TalcPathPrivate::ByteCodeCompiler(command, byteCode, overrideTimeoutMillisec, status).Compile();
}

bool TalcPathDecompile(TalcCommand& command, const TalcByteCode& byteCode, TalcPathStatus* status, bool tolerant) {
  if (status != nullptr) *status = kTPSuccess;
  if (IsRefused(command, "Decompile", "bytecode")) return false;
  return TalcPathPrivate::ByteCodeDecompiler(command, byteCode, status).Decompile(tolerant);
}

}  // namespace TalcPath
