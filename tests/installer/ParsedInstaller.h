#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "FwDeploy.h"

/// An installer with its 28 rows, and a command line folded into it as the program does.
class ParsedInstaller {
 public:
  explicit ParsedInstaller(std::initializer_list<const char*> arguments = {}) {
    installer.AddPartDescriptions();
    Parse(arguments);
  }

  void Parse(std::initializer_list<const char*> arguments) {
    const std::vector<const char*> args(arguments);
    for (std::size_t at = 0; at < args.size();)
      at += static_cast<std::size_t>(installer.ParseOption(static_cast<int>(args.size() - at), args.data() + at));
  }

  /// Row numbers count from 1, as people count them.
  const PartDescription& Row(std::int32_t number) const { return installer.description(number - 1); }

  std::vector<std::int32_t> RowsWith(std::uint8_t PartDescription::*flag) const {
    std::vector<std::int32_t> rows;
    for (std::int32_t number = 1; number <= installer.descriptionCount(); ++number)
      if (Row(number).*flag != 0) rows.push_back(number);
    return rows;
  }
  std::vector<std::int32_t> Shown() const { return RowsWith(&PartDescription::show); }
  std::vector<std::int32_t> Loaded() const { return RowsWith(&PartDescription::load); }

  Installer installer;
};
