#pragma once

#include <string>

#include "dictionary/CommandFormat.h"

namespace TalcPathPrivate {

/// A transfer of more data than one packet holds: it stands for three other commands and has no packet of its own.
class MetaCommandFormat final : public CommandFormat {
 public:
  bool ReadCommandTypeBlock(TokenStream& stream) override;
  void WriteCommandTypeBlock(std::ostream& stream) const override;
  bool ValidateCommandType(ErrorList& errors) const override;
  void SetHasVariableLengthData(bool) override {}
  void Clear() override;
  bool IsMetaCommandFormat() const override { return true; }
  void Dump(std::ostream& stream, bool brief) const override;
  bool HasCommandCodes() const override { return false; }
  bool WriteCommandCodes(std::ostream&) const override { return false; }
  bool HasDataDefinition() const override { return false; }
  bool WriteDataDefinition(std::ostream&) const override { return false; }

  const std::string& GetStartCommand() const { return startCommand; }
  const std::string& GetRepeatCommand() const { return repeatCommand; }
  const std::string& GetStopCommand() const { return stopCommand; }

 private:
  // Names of other commands, which need not be defined yet.
  std::string startCommand;
  std::string repeatCommand;
  std::string stopCommand;
};

}  // namespace TalcPathPrivate
