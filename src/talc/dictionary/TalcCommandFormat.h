#pragma once

#include <cstdint>

#include "dictionary/CommandType.h"
#include "dictionary/TalcDataCommandFormat.h"

namespace TalcPathPrivate {

/// An ordinary command, addressed by its type.
class TalcCommandFormat : public TalcDataCommandFormat {
 public:
  bool ReadCommandTypeBlock(TokenStream& stream) override;
  void WriteCommandTypeBlock(std::ostream& stream) const override;
  bool ValidateCommandType(ErrorList& errors) const override;
  std::uint32_t GetOverrideTimeoutMillisec() const override { return overrideTimeoutMillisec; }
  void SetOverrideTimeoutMillisec(std::uint32_t milliseconds) override { overrideTimeoutMillisec = milliseconds; }
  void Clear() override;
  bool IsUnique() const override;
  void Dump(std::ostream& stream, bool brief) const override;
  bool AddToDefinedCommands() override;
  bool WriteCommandCodes(std::ostream& stream) const override;

  const CommandType& GetCommandType() const { return commandType; }

 protected:
  CommandType commandType;
  std::uint32_t overrideTimeoutMillisec = 0;

 private:
  bool ReadMajor(TokenStream& stream);
  bool ReadMinor(TokenStream& stream);
  bool ReadFunction(TokenStream& stream);
};

}  // namespace TalcPathPrivate
