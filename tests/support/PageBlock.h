#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace test_support {

/// The lines of the first fenced block of the page at `path` that is opened by "```" and `name`; none if there is no
/// such block.
inline std::vector<std::string> LinesOnThePage(const char* path, const std::string& name) {
  std::ifstream page(path);
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(page, line) && line != "```" + name)
    continue;
  while (std::getline(page, line) && line != "```")
    lines.push_back(line);
  return lines;
}

/// The same as one text, each line with its line feed.
inline std::string TextOnThePage(const char* path, const std::string& name) {
  std::string text;
  for (const std::string& line : LinesOnThePage(path, name))
    text += line + "\n";
  return text;
}

}  // namespace test_support
