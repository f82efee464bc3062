#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "support/PageBlock.h"
#include "support/ScriptedRegisters.h"

/// The accesses in the fenced block of the page at `path` that is opened by "```" and `name`; empty if there is none.
inline test_support::RegisterScript ScriptOnThePage(const char* path, const std::string& name) {
  test_support::RegisterScript script;
  for (const std::string& line : test_support::LinesOnThePage(path, name)) {
    char kind = 0;
    std::uint32_t offset = 0;
    std::uint32_t value = 0;
    if (std::sscanf(line.c_str(), "%c %x %8x", &kind, &offset, &value) != 3 || (kind != 'W' && kind != 'R')) {
      ADD_FAILURE() << "not an access: " << line;
      return {};
    }
    script.push_back(kind == 'W' ? test_support::W(offset, value) : test_support::R(offset, value));
  }
  return script;
}
