#pragma once

#include <string>
#include <vector>

#include "dictionary/DefinedCommands.h"

/// A dictionary file in memory.
struct DictionaryText {
  std::string path;
  std::string bytes;
};

/// Throws std::runtime_error, with a text for the user, for the first file that cannot be read.
std::vector<DictionaryText> ReadDictionaryFiles(const std::vector<std::string>& paths);

/// The library, started with the dictionaries of the user's choice, for as long as the object lives. There is one at a
/// time.
class Dictionary {
 public:
  struct Source {
    /// The path as it was given, or the name of an embedded block.
    std::string name;
    bool isGood = false;
  };

  /// Reads the texts, in their order, into one set of tables. A faulty one keeps what it defined before its fault, and
  /// the next one is read all the same. Without any text the embedded dictionaries are read.
  explicit Dictionary(const std::vector<DictionaryText>& texts);
  ~Dictionary();
  Dictionary(const Dictionary&) = delete;
  Dictionary& operator=(const Dictionary&) = delete;

  const std::vector<Source>& Sources() const { return sources_; }
  /// Throws std::runtime_error unless there are commands to work with.
  void RequireCommands() const;
  /// All commands in name order, after `RequireCommands`.
  const TalcPathPrivate::CommandTable& Commands() const;
  /// Throws std::runtime_error when a source was faulty.
  void RequireGoodSources() const;

 private:
  std::vector<Source> sources_;
  bool isStarted_ = false;
};
