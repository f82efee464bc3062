#include "VmeTokens.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <numeric>
#include <vector>

namespace vme_script {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kMarks = "()*";
constexpr std::string_view kEndsOfWord = " \t\r\n#\"()*";
constexpr std::size_t kLongestShown = 40;
constexpr std::size_t kMostBytes = 65536;

std::string Printable(std::string_view text) {
  std::string shown(text);
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return (c < ' ' && c != '\t') || c > '~'; }, '?');
  return shown;
}

std::size_t StartOfLine(std::string_view script, std::size_t offset) {
  return script.substr(0, offset).rfind('\n') + 1;  // npos + 1 is 0
}

std::string Place(std::string_view script, std::size_t offset) {
  const auto line = std::count(script.begin(), script.begin() + static_cast<std::ptrdiff_t>(offset), '\n') + 1;
  return std::to_string(line) + ":" + std::to_string(offset - StartOfLine(script, offset) + 1) + ": ";
}

std::string Found(const Token& token) {
  if (token.kind == Token::Kind::end) return "the end of the script";
  std::string shown = Printable(token.text.substr(0, kLongestShown));
  if (token.text.size() > kLongestShown) shown += "...";
  return token.kind == Token::Kind::text ? '"' + shown + '"' : "'" + shown + "'";
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool IsHex(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsHexDigit);
}

char HexPair(std::string_view pair) {
  std::uint8_t byte = 0;
  std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
  return static_cast<char>(byte);
}

/// No word of the language begins with a digit or has nothing but letters up to f.
bool LooksLikeBytes(std::string_view word) {
  return !word.empty() && (IsDigit(word.front()) || IsHex(word));
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// How many characters have to be put in, taken out or replaced; upper and lower case count as the same.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (Lower(a[i]) == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

/// The word that `text` comes closest to; empty when it is like none, or is one itself in the wrong place.
std::string_view NearMiss(std::string_view text, std::span<const std::string_view> words) {
  std::string_view nearest;
  std::size_t least = 3;
  for (const std::string_view word : words) {
    if (word == text) return {};
    if (text.size() > word.size() + least) continue;
    const std::size_t distance = Distance(text, word);
    // Of a short word one changed character is much: half of it has to be left.
    if (distance >= least || 2 * distance >= word.size()) continue;
    least = distance;
    nearest = word;
  }
  return nearest;
}

}  // namespace

ScriptError::ScriptError(std::string_view script, std::size_t offset, const std::string& message)
    : std::runtime_error(Place(script, offset) + message), column_(offset - StartOfLine(script, offset)) {
  const std::string_view line = script.substr(offset - column_);
  shownLine_ = Printable(line.substr(0, std::min(line.find('\n'), line.size())));
  if (line.substr(0, shownLine_.size()).ends_with('\r')) shownLine_.pop_back();
}

std::string ScriptError::Report(std::string_view scriptName) const {
  // Tabs stay tabs, so that the caret stands below its place however wide they are.
  std::string indent = shownLine_.substr(0, column_);
  std::replace_if(
      indent.begin(), indent.end(), [](char c) { return c != '\t'; }, ' ');
  return std::string(scriptName) + ":" + what() + "\n" + shownLine_ + "\n" + indent + "^\n";
}

Tokens::Tokens(std::string_view script) : script_(script), next_(Read()) {}

Token Tokens::Take() {
  const Token taken = next_;
  next_ = Read();
  return taken;
}

bool Tokens::TakeWord(std::string_view word) {
  if (!IsWord(word)) return false;
  Take();
  return true;
}

bool Tokens::TakeMark(std::string_view mark) {
  if (next_.kind != Token::Kind::mark || next_.text != mark) return false;
  Take();
  return true;
}

int Tokens::Number(int low, int high, std::span<const std::string_view> words) {
  std::string_view digits = PeekWord();
  const bool isNegative = digits.starts_with('-');
  if (isNegative) digits.remove_prefix(1);
  const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
  if (isHex) digits.remove_prefix(2);
  unsigned magnitude = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, magnitude, isHex ? 16 : 10);
  // Far beyond any range that is asked for, and small enough to be signed.
  const bool isWhole = error == std::errc() && stop == end && magnitude <= 0xFFFFFF;
  const int value = isNegative ? -static_cast<int>(magnitude & 0xFFFFFF) : static_cast<int>(magnitude & 0xFFFFFF);
  if (!isWhole || value < low || value > high)
    FailExpected("a number from " + std::to_string(low) + " to " + std::to_string(high), words);
  Take();
  return value;
}

std::string Tokens::Bytes() {
  std::string bytes;
  while (LooksLikeBytes(PeekWord())) {
    const Token group = next_;
    if (!IsHex(group.text) || group.text.size() % 2 != 0) FailExpected("pairs of hexadecimal digits without 0x");
    Take();
    const auto times = static_cast<std::size_t>(TakeMark("*") ? Number(1, 65535) : 1);
    if (group.text.size() / 2 * times > kMostBytes - bytes.size())
      Fail(group, "expected at most " + std::to_string(kMostBytes) + " bytes in a row");
    for (std::size_t time = 0; time < times; ++time)
      for (std::size_t at = 0; at < group.text.size(); at += 2)
        bytes += HexPair(group.text.substr(at, 2));
  }
  return bytes;
}

void Tokens::Fail(const Token& at, const std::string& message) const {
  throw ScriptError(script_, at.offset, message);
}

void Tokens::FailExpected(const std::string& what, std::span<const std::string_view> words) const {
  std::string message = "expected " + what + ", found " + Found(next_);
  const std::string_view meant = NearMiss(PeekWord(), words);
  if (!meant.empty()) message += "; did you mean '" + std::string(meant) + "'?";
  Fail(next_, message);
}

Token Tokens::Read() {
  for (;;) {
    at_ = std::min(script_.find_first_not_of(kBlanks, at_), script_.size());
    if (at_ == script_.size()) return {Token::Kind::end, {}, at_};
    if (script_[at_] != '#') break;
    at_ = std::min(script_.find('\n', at_), script_.size());
  }
  const std::size_t start = at_;
  if (script_[start] == '"') {
    const std::size_t close = script_.find_first_of("\"\n", start + 1);
    const Token opening{Token::Kind::text, {}, start};
    if (close == std::string_view::npos || script_[close] != '"') Fail(opening, "expected a '\"' before the line ends");
    at_ = close + 1;
    return {Token::Kind::text, script_.substr(start + 1, close - start - 1), start};
  }
  const bool isMark = kMarks.find(script_[start]) != std::string_view::npos;
  at_ = isMark ? start + 1 : std::min(script_.find_first_of(kEndsOfWord, start), script_.size());
  return {isMark ? Token::Kind::mark : Token::Kind::word, script_.substr(start, at_ - start), start};
}

}  // namespace vme_script
