// Any bytes as a dictionary file: they are checked, given a trailer, and checked again, against a CRC and a rule that
// are reckoned here. A trailer behind the last ";" must change nothing of what a dictionary defines. The input is the
// file's bytes.

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/TcdReader.h"
#include "engine/IntegrityTrailer.h"
#include "FuzzInput.h"

namespace {

/// Bit by bit, without a table.
std::uint32_t CrcOf(std::string_view bytes) {
  std::uint32_t rest = 0xFFFFFFFF;
  for (const char byte : bytes) {
    rest ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit)
      rest = (rest & 1) != 0 ? rest >> 1 ^ 0xEDB88320 : rest >> 1;
  }
  return ~rest;
}

std::string Trailer(std::uint32_t crc) {
  return "\n#$ " + std::to_string(crc) + " $ ";
}

enum class Verdict { kNoMarks, kBad, kValid };

Verdict ExpectedVerdict(std::string_view text) {
  const std::size_t closing = text.rfind('$');
  if (closing == std::string_view::npos || closing == 0) return Verdict::kNoMarks;
  const std::size_t opening = text.rfind('$', closing - 1);
  if (opening == std::string_view::npos) return Verdict::kNoMarks;
  std::istringstream number{std::string(text.substr(opening + 1))};
  std::uint32_t expected = 0;
  number >> expected;

  // What the buffer of 512 bytes held, piece after piece.
  std::string covered;
  std::string buffer(512, '\0');
  for (std::size_t at = 0; opening > 1 && at < text.size(); at += buffer.size()) {
    const std::string_view block = text.substr(at, buffer.size());
    buffer.replace(0, block.size(), block);
    covered += at + block.size() < opening ? buffer.substr(0, block.size()) : buffer.substr(0, opening - 1);
  }
  return CrcOf(covered) == expected ? Verdict::kValid : Verdict::kBad;
}

/// What the check says; the log must say the same.
Verdict Check(std::istream& stream) {
  std::ostringstream log;
  TalcPathPrivate::logState = {.verbose = true, .trace = true, .stream = &log};
  TalcPathPrivate::CRCCheckProcessor checker;
  const bool isValid = checker.Process(stream, "input");
  TalcPathPrivate::logState = {};
  const std::string begin = "\nChecking CRC on Talc Command Definition File : input";
  if (isValid) {
    Require(log.str() == begin + "\nValid CRC on Talc Command Definition File : input\n");
    return Verdict::kValid;
  }
  if (log.str() == begin) return Verdict::kNoMarks;
  Require(log.str() == begin + "\nBAD CRC on Talc Command Definition File : input\n");
  return Verdict::kBad;
}

void RequireExpectedVerdict(const std::string& text) {
  std::istringstream stream(text);
  Require(Check(stream) == ExpectedVerdict(text));
}

/// One file for the whole run.
class File {
 public:
  File() = default;
  ~File() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  void Write(std::string_view text) const {
    std::filesystem::remove(path_);  // some file systems wait for the disk when a file is cut to nothing and rewritten
    Require(bool(std::ofstream(path_) << text << std::flush));
  }
  std::string Read() const {
    std::ifstream stream(path_);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void Generate() const {
    std::istringstream unused;
    TalcPathPrivate::GenCRCFileProcessor generator;
    Require(generator.Process(unused, path_));
  }

 private:
  const std::string path_ =
      (std::filesystem::temp_directory_path() / ("IntegrityTrailerFuzz-" + std::to_string(getpid()))).string();
};

struct Definitions {
  bool isGood = false;
  std::map<std::string, std::string> texts;

  friend bool operator==(const Definitions&, const Definitions&) = default;
};

Definitions Parse(const std::string& text) {
  std::ostringstream log;
  TalcPathPrivate::logState = {.verbose = false, .trace = false, .stream = &log};
  std::istringstream stream(text);
  Definitions definitions;
  definitions.isGood = TalcPathPrivate::ParseTcdStream(stream, "input");
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    std::ostringstream definition;
    format->WriteDefinition(definition);
    definitions.texts[name] = definition.str();
  }
  TalcPathPrivate::ErrorList errors;
  Require(TalcPathPrivate::DeleteDefinedCommands(errors));
  Require(TalcPathPrivate::DeleteCommandTypeTable(errors));
  Require(TalcPathPrivate::DeleteDiagOpcodeTable(errors));
  TalcPathPrivate::logState = {};
  return definitions;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const File file;
  const std::string input(data, data + size);
  RequireExpectedVerdict(input);

  // A good trailer by hand. Behind a text of less than a block it is valid whatever the text is.
  const std::string byHand = input + Trailer(CrcOf(input + "\n"));
  RequireExpectedVerdict(byHand);
  if (byHand.size() <= 512) Require(ExpectedVerdict(byHand) == Verdict::kValid);

  const std::string text = input + ";";
  file.Write(text);
  file.Generate();
  const std::string once = file.Read();
  Require(once == text + Trailer(CrcOf(text + "\n#")));
  RequireExpectedVerdict(once);
  file.Generate();
  const std::string twice = file.Read();
  Require(twice == once + Trailer(CrcOf(once + "\n#")));
  RequireExpectedVerdict(twice);

  const Definitions without = Parse(text);
  Require(Parse(once) == without && Parse(twice) == without);
  return 0;
}
