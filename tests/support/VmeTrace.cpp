#include "support/VmeTrace.h"

#include <algorithm>
#include <sstream>

namespace test_support {
namespace {

constexpr std::uint8_t kTck = 0x01;
constexpr std::uint8_t kTms = 0x02;
constexpr std::uint8_t kTdi = 0x04;
constexpr std::uint8_t kEnable = 0x08;

/// Writes traces word by word.
class TraceWriter {
 public:
  explicit TraceWriter(std::uint8_t pins) : pins_(pins) {}

  void AddWords(std::string_view words) {
    while (true) {
      const std::size_t start = words.find_first_not_of(" \n");
      if (start == std::string_view::npos) return;
      words.remove_prefix(start);
      const bool isText = words.front() == '\'';
      const std::size_t end = isText ? words.find('\'', 1) : words.find_first_of(" \n");
      if (isText)
        AddLine("P ", words.substr(1, end - 1));
      else
        AddWord(words.substr(0, end));
      words.remove_prefix(std::min(words.size(), isText ? end + 1 : end));
    }
  }

  const std::string& text() const { return text_; }

 private:
  void AddLine(std::string_view kind, std::string_view rest) { text_.append(kind).append(rest).push_back('\n'); }

  void Drive(std::uint8_t pin, bool isHigh) {
    static constexpr char kDigits[] = "0123456789abcdef";
    pins_ = static_cast<std::uint8_t>(isHigh ? pins_ | pin : pins_ & ~pin);
    const char byte[] = {kDigits[pins_ >> 4], kDigits[pins_ & 0x0F]};
    AddLine("W ", {byte, 2});
  }
  void Pulse() {
    for (int i = 0; i < high_; ++i)
      Drive(kTck, true);
    for (int i = 0; i < high_; ++i) {
      Drive(kTck, false);
      Drive(kTck, false);
    }
  }

  /// Digits that are driven on a pin, each with a pulse but where a dot follows.
  void Clocked(std::uint8_t pin, std::string_view digits) {
    for (std::size_t i = 0; i < digits.size(); ++i) {
      if (digits[i] == '.') continue;
      Drive(pin, digits[i] == '1');
      if (i + 1 == digits.size() || digits[i + 1] != '.') Pulse();
    }
  }
  void ReadAndDriven(std::string_view in, std::string_view out) {
    const bool isLastClocked = out.back() != '.';
    if (!isLastClocked) out.remove_suffix(1);
    if (in.size() != out.size()) throw std::invalid_argument("as many bits come in as go out");
    for (std::size_t i = 0; i < in.size(); ++i) {
      AddLine("R ", in.substr(i, 1));
      Drive(kTdi, out[i] == '1');
      if (isLastClocked || i + 1 < in.size()) Pulse();
    }
  }

  void AddWord(std::string_view word) {
    const std::size_t colon = word.find(':');
    const std::string_view name = word.substr(0, colon);
    const std::string_view value = colon == std::string_view::npos ? "" : word.substr(colon + 1);
    const auto number = [&] { return value.empty() ? 1 : std::stoi(std::string(value)); };
    if (name == "on" || name == "off") {
      Drive(kEnable, name == "on");
    } else if (name == "tms") {
      Clocked(kTms, value);
    } else if (name == "rest") {
      Drive(kTdi, false);
      Drive(kTms, false);
    } else if (name == "tdi") {
      Clocked(kTdi, value);
    } else if (name == "io") {
      ReadAndDriven(value.substr(0, value.find('/')), value.substr(value.find('/') + 1));
    } else if (name == "pulse") {
      for (int i = number(); i > 0; --i)
        Pulse();
    } else if (name == "high") {
      high_ = number();
    } else if (name == "eof") {
      AddLine("P ", "Reached end of file/n");
    } else if (name == "enter") {
      AddWords("on tms:111111 rest");
    } else if (name == "leave") {
      AddWords("tms:" + Times(static_cast<std::size_t>(number()), "1") + " rest D3 0% off");
    } else if (name.front() == 'D') {
      AddLine("D ", name.substr(1));
    } else if (name.front() == '=') {
      AddLine("RESULT ", name.substr(1));
    } else if (name.back() == '%') {
      AddLine("P ", std::string(name) + "\\n");
    } else {
      throw std::invalid_argument("no word of a trace: " + std::string(word));
    }
  }

  std::uint8_t pins_;
  int high_ = 1;
  std::string text_;
};

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

/// Some lines up to the one at which two traces part, and what follows in this one.
std::string Around(const std::vector<std::string>& lines, std::size_t at) {
  std::string text;
  for (std::size_t i = at < 12 ? 0 : at - 12; i < std::min(lines.size(), at + 8); ++i)
    text += (i == at ? " >> " : " ") + lines[i] + (i % 8 == 7 ? "\n" : ";");
  return at < lines.size() ? text : text + " >> end";
}

}  // namespace

std::vector<std::uint8_t> HexBytes(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  std::string pair;
  for (const char c : text) {
    if (c == ' ' || c == '\n') continue;
    pair += c;
    if (pair.size() < 2) continue;
    if (pair.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos)
      throw std::invalid_argument("no hex text: " + std::string(text));
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
    pair.clear();
  }
  if (!pair.empty()) throw std::invalid_argument("half a byte: " + std::string(text));
  return bytes;
}

std::string Times(std::size_t count, std::string_view text) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i)
    all.append(text);
  return all;
}

std::vector<std::uint8_t> VmeFile(std::string_view body) {
  std::vector<std::uint8_t> file = {'O', 'R', 'B', 'O', '.', 'R', 'B', 'I', 0,   0,
                                    0,   12,  '_', '_', 'V', 'M', 'E', '2', '.', '0'};
  const std::vector<std::uint8_t> rest = HexBytes(body);
  file.insert(file.end(), rest.begin(), rest.end());
  return file;
}

std::string Trace(std::string_view words, std::uint8_t pins) {
  TraceWriter writer(pins);
  writer.AddWords(words);
  return writer.text();
}

testing::AssertionResult SameTrace(const std::string& actual, const std::string& expected) {
  if (actual == expected) return testing::AssertionSuccess();
  const std::vector<std::string> made = Lines(actual);
  const std::vector<std::string> wanted = Lines(expected);
  std::size_t at = 0;
  while (at < made.size() && at < wanted.size() && made[at] == wanted[at])
    ++at;
  return testing::AssertionFailure() << "the traces part at line " << at << "\nmade:\n"
                                     << Around(made, at) << "\nexpected:\n"
                                     << Around(wanted, at) << "\n";
}

}  // namespace test_support
