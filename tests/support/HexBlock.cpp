#include "support/HexBlock.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace test_support {
namespace {

unsigned HexNumber(const std::string& text, std::size_t digits) {
  if (text.size() != digits || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
    throw std::runtime_error("not " + std::to_string(digits) + " hexadecimal digits: " + text);
  return static_cast<unsigned>(std::stoul(text, nullptr, 16));
}

void AppendLine(const std::string& line, std::vector<std::uint8_t>& bytes) {
  const std::size_t colon = line.find(':');
  if (colon == std::string::npos) throw std::runtime_error("no offset in the line: " + line);
  if (HexNumber(line.substr(0, colon), 4) != bytes.size())
    throw std::runtime_error("wrong offset in the line: " + line);
  std::istringstream pairs(line.substr(colon + 1, line.find('|') - colon - 1));
  for (std::string pair; pairs >> pair;)
    bytes.push_back(static_cast<std::uint8_t>(HexNumber(pair, 2)));
}

}  // namespace

std::vector<std::uint8_t> ReadHexBlock(const std::string& page) {
  std::ifstream file(page);
  if (!file) throw std::runtime_error("cannot read " + page);
  std::string line;
  while (std::getline(file, line) && line != "```hex") {
  }
  std::vector<std::uint8_t> bytes;
  while (std::getline(file, line)) {
    if (line == "```") return bytes;
    AppendLine(line, bytes);
  }
  throw std::runtime_error("no whole hex block in " + page);
}

}  // namespace test_support
