#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary/NameFilter.h"
#include "dictionary/ParameterFormat.h"

namespace TalcPathPrivate {

class TokenStream;

/// A number with a name, for the values of a command's parameters. It belongs to the command, not to a parameter.
struct Symbol {
  std::string name;
  std::int32_t value;
};

/// The definition of a command: what it is called, how it is addressed, what data it carries.
///
/// Formats are read from dictionaries and live in `DefinedCommands()`. Copies are lopsided, as other code relies on:
/// copying this part takes the name and the parameters, and leaves symbols, documentation and file alone.
class CommandFormat {
 public:
  CommandFormat() = default;
  CommandFormat(const CommandFormat& other);
  CommandFormat& operator=(const CommandFormat& other);

  // The operations that vary, in the order of their slots.

  /// Reads the codes that a definition begins with.
  virtual bool ReadCommandTypeBlock(TokenStream& stream) = 0;
  virtual void WriteCommandTypeBlock(std::ostream& stream) const = 0;
  /// Appends a text for each code that is out of range. True when there is none.
  virtual bool ValidateCommandType(ErrorList& errors) const = 0;
  virtual void SetHasVariableLengthData(bool hasVariableLengthData) = 0;
  virtual ~CommandFormat() = default;
  /// In milliseconds; 0 is the transport's default.
  virtual std::uint32_t GetOverrideTimeoutMillisec() const { return 0; }
  /// Ignored but by ordinary commands.
  virtual void SetOverrideTimeoutMillisec(std::uint32_t) {}
  virtual void Clear();
  virtual bool IsMetaCommandFormat() const { return false; }
  virtual bool IsDiagCommandFormat() const { return false; }
  /// True when the packet's length depends on a value.
  virtual bool HasVariableLengthData() const { return false; }
  /// True when neither the name nor the code is defined yet; tells in the log what is.
  virtual bool IsUnique() const;
  virtual void Dump(std::ostream& stream, bool brief) const;
  /// Lays out the packet of a command of fixed size. False when that cannot be.
  virtual bool PrecomputePacketSizes() { return true; }
  /// Hands this object over to the table of defined commands, and its code to the table of codes. False, and nothing
  /// handed over, without a table.
  virtual bool AddToDefinedCommands();
  virtual bool HasCommandCodes() const = 0;
  /// The codes as C enumerators. True where the kind has a packet.
  virtual bool WriteCommandCodes(std::ostream& stream) const = 0;
  virtual bool HasDataDefinition() const = 0;
  /// The symbols as a C enumeration and the values as a C struct. False where there is nothing to write, or a type is
  /// unknown.
  virtual bool WriteDataDefinition(std::ostream& stream) const = 0;

  const std::string& GetName() const { return name; }
  void SetName(std::string_view text) { name = text; }
  void SetDefinitionFile(std::string_view text) { definitionFile = text; }

  /// Reads the definition behind name and kind. False for a faulty one; the log tells why.
  bool ReadDefinition(TokenStream& stream, std::string_view commandName);
  /// Reads one parameter or symbol. `done` is set at the end of the block, `sendOnly` by a parameter that a request
  /// does not carry.
  bool ReadParameterOrSymbol(TokenStream& stream, bool& done, bool& sendOnly);
  /// Writes the definition in its canonical form, with line feeds.
  void WriteDefinition(std::ostream& stream) const;

  /// False for a name that is there already.
  bool AddSymbol(std::string_view symbolName, std::int32_t value);
  bool GetSymbolValue(std::string_view symbolName, std::int32_t& value) const;
  std::size_t GetNumSymbols() const { return symbols.size(); }
  bool GetSymbolByIndex(std::ptrdiff_t index, std::string& symbolName, std::int32_t& value) const;

  bool HasParameter(std::string_view parameterName) const { return FindParameter(parameterName) != nullptr; }
  bool GetParameterDataType(std::string_view parameterName, std::string& dataType) const;
  std::size_t GetNumParameters() const { return parameters.size(); }
  bool GetParameterByIndex(std::ptrdiff_t index, std::string& parameterName, std::string& dataType,
                           bool& isRequiredForRequestData) const;
  std::vector<ParameterFormat>& Parameters() { return parameters; }
  const std::vector<ParameterFormat>& Parameters() const { return parameters; }

  /// Appends a text for each fault. True when there is none. Loading a dictionary does not ask for it.
  bool Validate(ErrorList& errors) const;

 protected:
  const ParameterFormat* FindParameter(std::string_view parameterName) const;
  /// The parameters between their braces.
  void DumpParameters(std::ostream& stream, bool brief) const;

  std::string name;
  std::vector<ParameterFormat> parameters;
  std::vector<Symbol> symbols;
  NameFilter symbolNames;
  /// Written when there is one; the reader has never kept any.
  std::string documentation;
  std::string definitionFile;

 private:
  bool CheckNewParameter(std::string_view keyword, std::string_view typeKeyword,
                         const ParameterFormat& parameter) const;
  void WriteDocumentation(std::ostream& stream) const;
};

}  // namespace TalcPathPrivate
