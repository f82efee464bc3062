#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "EmbeddedCodes.h"

/// The dictionaries of the data folder as they lie there, taken apart without the library's reader, so that the two
/// can be held against each other.
namespace embedded {

struct RawParameter {
  std::string name;
  std::string type;
  bool isRequired = false;
};

struct RawSymbol {
  std::string name;
  std::string value;
};

struct RawCommand {
  std::string name;
  std::string kind;
  /// Empty for diagnostic commands.
  std::string major;
  std::string minor;
  /// Function or opcode.
  std::string code;
  std::vector<RawParameter> parameters;
  std::vector<RawSymbol> symbols;
  /// The block behind the command: the name it gives, and its words.
  std::string documentedName;
  std::vector<std::string> documentation;
};

struct RawFile {
  std::string text;
  std::vector<RawCommand> commands;
  /// What stands behind the last ";".
  std::string rest;
};

inline std::string ReadText(const std::string& name) {
  const std::filesystem::path path = std::filesystem::path(DATA_FOLDER) / (name + ".tcd");
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The next word, which must be there.
inline std::string Word(std::istream& words) {
  std::string word;
  if (!(words >> word)) throw std::runtime_error("a block ends early");
  return word;
}

inline void Expect(std::istream& words, const std::string& keyword) {
  const std::string word = Word(words);
  if (word != keyword) throw std::runtime_error("'" + word + "' in place of '" + keyword + "'");
}

inline RawCommand TakeApart(const std::string& name, std::istream& words) {
  RawCommand command;
  command.name = name;
  command.kind = Word(words);
  if (command.kind == "Talc") {
    Expect(words, "CommandTypeMajor");
    command.major = Word(words);
    Expect(words, "CommandTypeMinor");
    command.minor = Word(words);
    Expect(words, "Function");
  } else {
    Expect(words, "DiagOpcode");
  }
  command.code = Word(words);
  for (std::string keyword; words >> keyword;) {
    if (keyword == "Symbol") {
      const std::string symbol = Word(words);
      command.symbols.push_back({symbol, Word(words)});
      continue;
    }
    if (keyword != "DataName") throw std::runtime_error("'" + keyword + "' in " + name);
    RawParameter parameter;
    parameter.name = Word(words);
    std::string next = Word(words);
    parameter.isRequired = next == "RD";
    if (parameter.isRequired) next = Word(words);
    if (next != "DataType") throw std::runtime_error("'" + next + "' in " + name);
    parameter.type = Word(words);
    command.parameters.push_back(parameter);
  }
  return command;
}

inline RawFile ReadRaw(const std::string& name) {
  RawFile file;
  file.text = ReadText(name);
  std::size_t at = 0;
  for (std::size_t end = 0; (end = file.text.find(';', at)) != std::string::npos; at = end + 1) {
    std::istringstream words(file.text.substr(at, end - at));
    const std::string first = Word(words);
    if (first.front() == '#') continue;
    if (first != "DOCUMENTATION") {
      file.commands.push_back(TakeApart(first, words));
      continue;
    }
    if (file.commands.empty() || !file.commands.back().documentedName.empty())
      throw std::runtime_error("a documentation without its command");
    file.commands.back().documentedName = Word(words);
    for (std::string word; words >> word;)
      file.commands.back().documentation.push_back(word);
  }
  file.rest = file.text.substr(at);
  return file;
}

/// All files, in the order of `kFiles`.
inline const std::vector<RawFile>& RawFiles() {
  static const std::vector<RawFile> kRaw = [] {
    std::vector<RawFile> files;
    for (const File& file : kFiles)
      files.push_back(ReadRaw(file.name));
    return files;
  }();
  return kRaw;
}

/// All commands of all files.
inline std::vector<RawCommand> RawCommands() {
  std::vector<RawCommand> commands;
  for (const RawFile& file : RawFiles())
    commands.insert(commands.end(), file.commands.begin(), file.commands.end());
  return commands;
}

/// "Foo {A UINT8 RD, B BYTES} {On 1}"
inline std::string Summary(const RawCommand& command) {
  std::string text = command.name + " {";
  for (const RawParameter& parameter : command.parameters) {
    text += (&parameter == &command.parameters.front() ? "" : ", ") + parameter.name + " " + parameter.type +
            (parameter.isRequired ? " RD" : "");
  }
  text += "} {";
  for (const RawSymbol& symbol : command.symbols)
    text += (&symbol == &command.symbols.front() ? "" : ", ") + symbol.name + " " + symbol.value;
  return text + "}";
}

}  // namespace embedded
