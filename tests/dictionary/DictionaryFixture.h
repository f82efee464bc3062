#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>

#include "dictionary/CommandFormat.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"

/// Starts without defined commands and with a quiet log that is kept as text, and leaves nothing of it behind.
class DictionaryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    StartOver();
    TalcPathPrivate::logState.stream = &log_;
  }
  void TearDown() override { StartOver(); }

  /// All that was logged, or since the last `ClearLog`.
  std::string log() const { return log_.str(); }
  void ClearLog() { log_.str(""); }
  static void SetVerbose(bool verbose) { TalcPathPrivate::logState.verbose = verbose; }
  static void SetTrace(bool trace) { TalcPathPrivate::logState.trace = trace; }

  /// Reads a dictionary whose source is called "test.tcd".
  static bool Parse(const std::string& text) {
    std::istringstream stream(text);
    return TalcPathPrivate::ParseTcdStream(stream, "test.tcd");
  }
  /// The defined command of that name, or null.
  static TalcPathPrivate::CommandFormat* Find(std::string_view name) {
    return TalcPathPrivate::FindDefinedCommand(name);
  }

 private:
  static void StartOver() {
    TalcPathPrivate::logState = {};
    TalcPathPrivate::ErrorList errors;
    TalcPathPrivate::DeleteDefinedCommands(errors);
    TalcPathPrivate::DeleteCommandTypeTable(errors);
    TalcPathPrivate::DeleteDiagOpcodeTable(errors);
  }

  std::ostringstream log_;
};
