#include "caps/HwcReader.h"

#include <array>
#include <exception>
#include <istream>
#include <optional>
#include <string>
#include <utility>

#include "caps/TalcHWCaps.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "dictionary/TokenStream.h"

namespace TalcPathPrivate {
namespace {

class HwcReader {
 public:
  explicit HwcReader(TalcHWCaps& caps) : caps_(caps) {}

  bool Read(std::istream& stream);

 private:
  bool ReadStatement(std::string_view word, TokenStream& statement);
  bool ReadHardwareType(TokenStream& statement);
  bool BeginBlock();
  bool EndHeader();
  bool ReadKeyname(TokenStream& statement);
  bool ReadCondition(TokenStream& statement);
  bool ReadProperty(TokenStream& statement);
  bool ReadCommandValues(TokenStream& statement);
  bool ReadOverride(TokenStream& statement);
  bool ReadRange(TokenStream& statement, std::string_view command, std::string_view parameter);
  bool ReadSymbols(TokenStream& statement, std::string_view command, std::string_view parameter);

  bool ReadStatements(std::istream& stream);

  TalcHWCaps& caps_;
  /// What properties and values belong to.
  const HWCapsConditionBlock* block_ = &caps_.DefaultBlock();
  /// The block whose header is being read.
  std::optional<HWCapsConditionBlock> header_;
  bool hasHardwareType_ = false;
  bool isGood_ = true;
};

/// The reading of a number that touches the statement's end counts as failed.
bool ReadNumber(TokenStream& statement, std::int32_t& number) {
  return statement.ReadNumber(number) && !statement.AtEnd();
}

bool HwcReader::Read(std::istream& stream) {
  const bool isRead = ReadStatements(stream);
  // A text may end within a header: its block counts, with what it has.
  if (header_) caps_.AppendBlock(*std::move(header_));
  return isRead;
}

bool HwcReader::ReadStatements(std::istream& stream) {
  std::array<char, kLongestBlock + 1> buffer;
  while (true) {
    stream.getline(buffer.data(), buffer.size(), ';');
    // What stands behind the last ";" is no statement. One that does not fit ends the reading without a word, too.
    if (stream.eof() || stream.fail()) return isGood_;
    // The ";" counts among what was taken from the stream, but is not in the buffer.
    TokenStream statement({buffer.data(), static_cast<std::size_t>(stream.gcount() - 1)});
    const std::string_view word = statement.ReadWord();
    if (word.empty()) return isGood_;  // A statement without words is the end, whatever stands behind it.
    if (word.front() == '#') continue;
    const bool isRead = word == "HardwareType" ? ReadHardwareType(statement) : ReadStatement(word, statement);
    if (!isRead) return false;
  }
}

/// A second type fails the text, but does not end the reading.
bool HwcReader::ReadHardwareType(TokenStream& statement) {
  if (hasHardwareType_) {
    LogAlways("\n\nERROR - duplicate HardwareType key found in Hardware Capabilities file : ", caps_.fileName);
    isGood_ = false;
  }
  caps_.hardwareType = statement.ReadWord();
  hasHardwareType_ = true;
  return !caps_.hardwareType.empty();
}

bool HwcReader::ReadStatement(std::string_view word, TokenStream& statement) {
  if (word == "ConditionBlockEnd") return EndHeader();  // outside a header, too
  if (header_) {
    if (word == "ConditionKeyname") return ReadKeyname(statement);
    if (word == "Condition") return ReadCondition(statement);
    return false;
  }
  if (word == "ConditionBlockBegin") return BeginBlock();
  if (word == "Property") return ReadProperty(statement);
  if (word == "CommandValues") return ReadCommandValues(statement);
  if (word == "CmdOverrideTimeout") return ReadOverride(statement);
  return false;
}

bool HwcReader::BeginBlock() {
  header_.emplace();
  return true;
}

bool HwcReader::EndHeader() {
  // Behind a header its end may come again, and changes nothing; but the default block has no header that could end.
  if (!header_) return block_ != &caps_.DefaultBlock();
  // A header without conditions is the way back to the default block.
  block_ = header_->ConditionCount() == 0 ? &caps_.DefaultBlock() : &caps_.AppendBlock(*std::move(header_));
  header_.reset();
  return true;
}

bool HwcReader::ReadKeyname(TokenStream& statement) {
  header_->keyname = statement.ReadWord();
  return true;
}

bool HwcReader::ReadCondition(TokenStream& statement) {
  const std::string_view command = statement.ReadWord();
  const std::string_view parameter = statement.ReadWord();
  const std::string_view type = statement.ReadWord();
  if (statement.AtEnd() || command.empty() || parameter.empty()) return false;
  if (type == "SYMBOL") {
    const std::string_view symbol = statement.ReadWord();
    return !symbol.empty() && header_->AddSymbolCondition(command, parameter, symbol);
  }
  std::int32_t value = 0;
  return type == "INTEGER" && ReadNumber(statement, value) && header_->AddIntegerCondition(command, parameter, value);
}

bool HwcReader::ReadProperty(TokenStream& statement) {
  const std::string_view name = statement.ReadWord();
  const std::string_view type = statement.ReadWord();
  if (name.empty()) return false;
  if (type == "INTEGER") {
    std::int32_t number = 0;
    return ReadNumber(statement, number) && caps_.AddProperty(name, Variant(number), *block_);
  }
  if (type != "STRING") return false;
  const std::string_view text = statement.ReadWord();
  return !text.empty() && caps_.AddProperty(name, Variant(std::string(text)), *block_);
}

bool HwcReader::ReadCommandValues(TokenStream& statement) {
  const std::string_view command = statement.ReadWord();
  const std::string_view parameter = statement.ReadWord();
  const std::string_view kind = statement.ReadWord();
  if (command.empty() || parameter.empty()) return false;
  if (kind == "Range") return ReadRange(statement, command, parameter);
  return kind == "Symbol" && ReadSymbols(statement, command, parameter);
}

/// A range is taken for any command, also one that no dictionary has.
bool HwcReader::ReadRange(TokenStream& statement, std::string_view command, std::string_view parameter) {
  std::int32_t low = 0;
  std::int32_t high = 0;
  return ReadNumber(statement, low) && ReadNumber(statement, high) &&
         caps_.AddCommandValue(command, parameter, Variant(Range(low, high)), *block_);
}

bool HwcReader::ReadSymbols(TokenStream& statement, std::string_view command, std::string_view parameter) {
  TextList symbols;
  while (true) {
    const std::string_view word = statement.ReadWord();
    // The word that touches the end is lost.
    if (word.empty() || statement.AtEnd()) break;
    symbols.emplace_back(word);
  }
  const CommandFormat* const format = FindDefinedCommand(command);
  if (symbols.empty() || format == nullptr) return false;
  std::int32_t ignored = 0;
  for (const std::string& symbol : symbols)
    if (!format->GetSymbolValue(symbol, ignored)) return false;
  return caps_.AddCommandValue(command, parameter, Variant(std::move(symbols)), *block_);
}

/// Of two for a command the second one stands.
bool HwcReader::ReadOverride(TokenStream& statement) {
  const std::string_view command = statement.ReadWord();
  std::uint32_t milliseconds = 0;
  if (command.empty() || !statement.ReadNumber(milliseconds) || statement.AtEnd()) return false;
  caps_.overrideTimeouts.insert_or_assign(std::string(command), milliseconds);
  return true;
}

bool ReadCatchingAll(TalcHWCaps& caps, std::istream& stream) {
  try {
    if (HwcReader(caps).Read(stream)) return true;
    LogAlways("\n\nERROR - Failed To Successfully parse Hardware Capabilities file : ", caps.fileName);
  } catch (const std::exception& error) {
    LogAlways("\n\nERROR - Exception occurred : ", error.what());
  } catch (...) {
    LogAlways("\n\nERROR - Unknown exception occurred while processing file : ", caps.fileName);
  }
  return false;
}

}  // namespace

bool ReadHwc(TalcHWCaps& caps, std::istream& stream, std::string_view fileName) {
  caps.fileName = fileName;
  return ReadCatchingAll(caps, stream);
}

}  // namespace TalcPathPrivate
