#pragma once

#include <cstdint>

#include "dictionary/TalcDataCommandFormat.h"

namespace TalcPathPrivate {

/// A diagnostic command, addressed by its opcode.
class DiagCommandFormat : public TalcDataCommandFormat {
 public:
  bool ReadCommandTypeBlock(TokenStream& stream) override;
  void WriteCommandTypeBlock(std::ostream& stream) const override;
  bool ValidateCommandType(ErrorList& errors) const override;
  bool IsDiagCommandFormat() const override { return true; }
  bool IsUnique() const override;
  void Dump(std::ostream& stream, bool brief) const override;
  bool AddToDefinedCommands() override;
  bool WriteCommandCodes(std::ostream& stream) const override;

  std::int16_t GetDiagOpcode() const { return diagOpcode; }

 protected:
  std::int16_t diagOpcode = 0;
};

}  // namespace TalcPathPrivate
