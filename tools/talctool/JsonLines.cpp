#include "JsonLines.h"

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "support/JsonText.h"

namespace {

Json Parse(const std::string& line) {
  // The parser would take a zero byte for the end of the text, whatever stands behind it.
  if (line.find('\0') != std::string::npos) throw BadInput();
  Json parsed = Json::parse(line, nullptr, false);
  if (parsed.is_discarded()) throw BadInput();
  return parsed;
}

}  // namespace

std::string BytesOf(const Json& text) {
  auto bytes = Latin1Bytes(text);
  if (!bytes) throw BadInput();
  return *std::move(bytes);
}

const Json& Member(const Json& object, const char* key) {
  if (!object.is_object()) throw BadInput();
  const auto found = object.find(key);
  if (found == object.end()) throw BadInput();
  return *found;
}

std::string TextMember(const Json& object, const char* key) {
  return BytesOf(Member(object, key));
}

void AnswerLines(Json (*answer)(const Json& question)) {
  for (std::string line; std::getline(std::cin, line);) {
    Json answered;
    try {
      answered = answer(Parse(line));
    } catch (const BadInput& bad) {
      answered = Json::object({{"error", bad.what()}});
    }
    std::cout << JsonLine(answered);
  }
  if (std::cin.bad() || std::ferror(stdin) != 0) throw std::runtime_error("cannot read standard input");
}
