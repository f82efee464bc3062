#include "VmeScript.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "ContainerFile.h"
#include "VmeData.h"
#include "VmeTokens.h"
#include "VmeWords.h"

namespace vme_script {
namespace {

constexpr std::string_view kMagic = "__VME2.0";
constexpr std::uint8_t kCompressed = 0xF1;
constexpr std::uint8_t kNotCompressed = 0xF2;
constexpr std::uint8_t kTdi = 0x13;
constexpr std::uint8_t kXtdo = 0x18;
constexpr std::uint8_t kHeap = 0x32;
constexpr std::uint8_t kRepeat = 0x33;
constexpr std::uint8_t kEndLoop = 0x59;
constexpr std::uint8_t kHeapCheck = 0x60;
constexpr std::uint8_t kContinue = 0x70;
/// In the data of a loop: the rest of the block comes from the file.
constexpr std::uint8_t kFromFile = 0x55;

constexpr int kLargestNumber = std::numeric_limits<std::uint16_t>::max();
constexpr int kLargestByte = std::numeric_limits<std::uint8_t>::max();
constexpr int kLargestDelay = 0x7FFF;
constexpr int kDelayInMilliseconds = 0x8000;
constexpr int kCascade = 0x0002;
constexpr int kShortestPattern = 3;
constexpr int kLongestPattern = 254;

std::size_t BytesOf(int bits) {
  return (static_cast<std::size_t>(bits) + 7) / 8;
}

std::string CountOfBytes(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string HexByte(std::uint8_t byte) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  return {'0', 'x', kDigits[byte >> 4], kDigits[byte & 0x0F]};
}

/// What is known of a block before its data are read.
struct Block {
  Token word;
  std::size_t sizeBytes;
  bool isCompressed;
};

/// The text that is played from memory, pass by pass.
struct LoopText {
  std::string bytes;
  std::vector<Block> fromFile;  ///< what each pass takes from the file, in order
};

class Assembler {
 public:
  explicit Assembler(std::string_view script) : tokens_(script) {}
  std::string Assemble();

 private:
  void ReadStatement();
  void ReadContainer(const Token& word);
  void ReadCompressed(const Token& word);
  void ReadHeader();
  void ReadShift();
  void ReadLoop(const Token& word);
  void ReadPasses(const std::vector<Block>& blocks, int passes);
  void ReadBlock(const Block& block);
  void ReadRestFromFile(const Block& block, const std::string& data);
  void ReadRaw();
  std::optional<Form> ReadForm(const Block& block);
  std::uint8_t ReadParameter(int low, int high);
  int ReadState();
  int ReadFlow();
  int ReadDelay();

  [[noreturn]] void FailUnknownStatement() const;
  void RequireNoStepYet(const Token& word, bool isFirst) const;
  void RefuseFromFile(const Block& block, const std::string& data) const;

  void AddCompressed(const Block& block, const Form& form, const std::string& data);
  std::string& Steps() { return loop_ ? loop_->bytes : steps_; }
  void AddByte(int byte) { Steps() += static_cast<char>(byte); }
  void AddNumber(int number) { AppendNumber(Steps(), static_cast<std::uint16_t>(number)); }

  Tokens tokens_;
  std::string partId_ = "KRVL";
  std::uint16_t version_ = 0;
  std::string taggedText_;
  bool hasContainer_ = false;
  std::optional<bool> isCompressed_;
  std::string steps_;
  std::optional<LoopText> loop_;  ///< while the text of a loop is read
};

std::string Assembler::Assemble() {
  while (tokens_.Peek().kind != Token::Kind::end)
    ReadStatement();
  std::string payload(kMagic);
  payload += static_cast<char>(isCompressed_.value_or(false) ? kCompressed : kNotCompressed);
  return BuildContainer(partId_, version_, taggedText_, payload + steps_);
}

void Assembler::ReadStatement() {
  const Token word = tokens_.Peek();
  const Statement* const statement = FindWord(kStatements, tokens_.PeekWord());
  if (statement == nullptr) FailUnknownStatement();
  // It would end the pass only, and what follows would never be played.
  if (loop_ && statement->operand == Operand::end) tokens_.FailExpected("'endrepeat' as the end of the loop");
  tokens_.Take();
  if (statement->opcode != 0) AddByte(statement->opcode);
  switch (statement->operand) {
    case Operand::none:
    case Operand::end:
      break;
    case Operand::number:
      AddNumber(tokens_.Number(0, kLargestNumber));
      break;
    case Operand::byte:
      AddByte(tokens_.Number(0, kLargestByte));
      break;
    case Operand::signedByte:
      AddByte(tokens_.Number(-128, 127));
      break;
    case Operand::state:
      AddByte(ReadState());
      break;
    case Operand::flow:
      AddNumber(ReadFlow());
      break;
    case Operand::wait:
      AddNumber(ReadDelay());
      break;
    case Operand::header:
      ReadHeader();
      break;
    case Operand::shift:
      ReadShift();
      break;
    case Operand::loop:
      ReadLoop(word);
      break;
    case Operand::raw:
      ReadRaw();
      break;
    case Operand::container:
      ReadContainer(word);
      break;
    case Operand::compressed:
      ReadCompressed(word);
      break;
  }
}

void Assembler::FailUnknownStatement() const {
  std::vector<std::string_view> words = WordsOf(kStatements, WordsOf(kDataWords, {"xtdo"}));
  if (loop_) words.insert(words.end(), {"pass", "endrepeat"});
  tokens_.FailExpected(loop_ ? "a statement, 'pass' or 'endrepeat'" : "a statement", words);
}

void Assembler::RequireNoStepYet(const Token& word, bool isFirst) const {
  if (isFirst && steps_.empty() && !loop_) return;
  tokens_.Fail(word, "expected '" + std::string(word.text) + "' once and before the first step");
}

void Assembler::ReadContainer(const Token& word) {
  RequireNoStepYet(word, !std::exchange(hasContainer_, true));
  if (!IsPartId(tokens_.Peek().text)) tokens_.FailExpected("a part id of four printable characters");
  partId_ = tokens_.Take().text;
  const auto version = ParseVersion(tokens_.Peek().text);
  if (!version) tokens_.FailExpected("a version of one to four hexadecimal digits");
  version_ = *version;
  tokens_.Take();
  if (tokens_.Peek().kind == Token::Kind::text) taggedText_ = tokens_.Take().text;
}

void Assembler::ReadCompressed(const Token& word) {
  RequireNoStepYet(word, !isCompressed_);
  isCompressed_ = tokens_.IsWord("on");
  if (!tokens_.TakeWord("on") && !tokens_.TakeWord("off")) tokens_.FailExpected("'on' or 'off'");
}

int Assembler::ReadState() {
  const StateWord* const state = FindWord(kStateWords, tokens_.PeekWord());
  if (state == nullptr) return tokens_.Number(0, kLargestByte, WordsOf(kStateWords));
  tokens_.Take();
  return state->number;
}

int Assembler::ReadFlow() {
  constexpr std::string_view kWords[] = {"cascade"};
  return tokens_.TakeWord(kWords[0]) ? kCascade : tokens_.Number(0, kLargestNumber, kWords);
}

int Assembler::ReadDelay() {
  constexpr std::string_view kUnits[] = {"us", "ms"};
  const int time = tokens_.Number(0, kLargestDelay);
  if (tokens_.TakeWord("us")) return time;
  if (!tokens_.TakeWord("ms")) tokens_.FailExpected("'us' or 'ms'", kUnits);
  return kDelayInMilliseconds | time;
}

void Assembler::ReadHeader() {
  const int bits = tokens_.Number(0, kLargestNumber);
  AddNumber(bits);
  if (bits == 0) return;
  const Token word = tokens_.Peek();
  constexpr std::string_view kWords[] = {"tdi"};
  if (!tokens_.TakeWord(kWords[0])) tokens_.FailExpected("'tdi'", kWords);
  AddByte(kTdi);
  ReadBlock({word, BytesOf(bits), false});
  AddByte(kContinue);
}

void Assembler::ReadShift() {
  const int bits = tokens_.Number(0, kLargestNumber);
  AddNumber(bits);
  for (;;) {
    const Token word = tokens_.Peek();
    if (tokens_.TakeWord("xtdo")) {
      AddByte(kXtdo);
      continue;
    }
    const DataWord* const data = FindWord(kDataWords, tokens_.PeekWord());
    if (data == nullptr) break;
    tokens_.Take();
    AddByte(data->opcode);
    ReadBlock({word, BytesOf(bits), isCompressed_.value_or(false)});
  }
  AddByte(kContinue);
}

void Assembler::ReadLoop(const Token& word) {
  if (loop_) tokens_.Fail(word, "expected no loop in a loop, found 'repeat'");
  const int passes = tokens_.Number(0, kLargestNumber);
  loop_.emplace();
  while (!tokens_.IsWord("pass") && !tokens_.IsWord("endrepeat"))
    ReadStatement();
  AddByte(kEndLoop);
  const LoopText loop = *std::exchange(loop_, std::nullopt);
  if (loop.bytes.size() > kLargestNumber)
    tokens_.Fail(word, "expected a loop of at most 65535 bytes, found " + CountOfBytes(loop.bytes.size()));
  AddByte(kHeap);
  AddByte(kHeapCheck);
  AddNumber(static_cast<int>(loop.bytes.size()));
  AddByte(kRepeat);
  AddNumber(passes);
  Steps() += loop.bytes;
  ReadPasses(loop.fromFile, passes);
}

void Assembler::ReadPasses(const std::vector<Block>& blocks, int passes) {
  for (int pass = 1; pass <= passes && !blocks.empty(); ++pass) {
    if (!tokens_.TakeWord("pass"))
      tokens_.FailExpected("'pass' " + std::to_string(pass) + " of " + std::to_string(passes));
    for (const Block& block : blocks) {
      const Token word = tokens_.Peek();
      if (!tokens_.TakeWord(block.word.text)) tokens_.FailExpected("'" + std::string(block.word.text) + "'");
      ReadBlock({word, block.sizeBytes, block.isCompressed});
    }
  }
  constexpr std::string_view kWords[] = {"endrepeat"};
  if (!tokens_.TakeWord(kWords[0])) tokens_.FailExpected("'endrepeat'", kWords);
}

void Assembler::ReadBlock(const Block& block) {
  if (tokens_.TakeWord("raw")) return ReadRaw();
  const std::optional<Form> form = ReadForm(block);
  const std::string data = tokens_.Bytes();
  if (loop_ && !form && tokens_.IsWord("file")) return ReadRestFromFile(block, data);
  if (data.empty() && block.sizeBytes > 0) {
    std::vector<std::string_view> words = WordsOf(kFormWords, {"raw"});
    if (loop_) words.push_back("file");
    tokens_.FailExpected(CountOfBytes(block.sizeBytes) + " of data", words);
  }
  if (data.size() != block.sizeBytes)
    tokens_.Fail(block.word,
                 "expected " + CountOfBytes(block.sizeBytes) + " of data, found " + std::to_string(data.size()));
  if (block.isCompressed) {
    AddCompressed(block, form.value_or(Form{FormKind::plain}), data);
  } else {
    RefuseFromFile(block, data);
    Steps() += data;
  }
}

void Assembler::AddCompressed(const Block& block, const Form& form, const std::string& data) {
  if (loop_ && KindByte(form) == kFromFile)
    tokens_.Fail(block.word,
                 "expected a form that begins with another byte than 0x55, which in a loop stands for 'file'");
  if (const auto misfit = FindMisfit(form, data))
    tokens_.Fail(block.word, "expected " + HexByte(misfit->expected) + " as byte " + std::to_string(misfit->index + 1) +
                                 " of this pattern, found " + HexByte(static_cast<std::uint8_t>(data[misfit->index])));
  Steps() += EncodeBlock(form, data);
}

void Assembler::ReadRestFromFile(const Block& block, const std::string& data) {
  if (block.isCompressed && !data.empty())
    tokens_.Fail(block.word, "expected no data before 'file': a compressed block comes from the file as a whole");
  if (!block.isCompressed && data.size() >= block.sizeBytes)
    tokens_.Fail(block.word, "expected fewer than " + CountOfBytes(block.sizeBytes) + " before 'file', found " +
                                 std::to_string(data.size()));
  RefuseFromFile(block, data);
  tokens_.Take();
  Steps() += data;
  AddByte(kFromFile);
  loop_->fromFile.push_back({block.word, block.sizeBytes - data.size(), block.isCompressed});
}

void Assembler::RefuseFromFile(const Block& block, const std::string& data) const {
  const std::size_t index = data.find(static_cast<char>(kFromFile));
  if (loop_ && index != std::string::npos)
    tokens_.Fail(block.word, "expected 'file' instead of byte " + std::to_string(index + 1) +
                                 ": in a loop 0x55 sends the player to the file");
}

std::optional<Form> Assembler::ReadForm(const Block& block) {
  const FormWord* const word = FindWord(kFormWords, tokens_.PeekWord());
  if (word == nullptr) return std::nullopt;
  if (!block.isCompressed && word->kind != FormKind::plain)
    tokens_.FailExpected("plain data, as this block is not compressed");
  tokens_.Take();
  Form form{word->kind};
  if (form.kind == FormKind::bitmap) form.parameter = ReadParameter(0, kLargestByte);
  if (form.kind == FormKind::nibbles) form.parameter = ReadParameter(kShortestPattern, kLongestPattern);
  return form;
}

std::uint8_t Assembler::ReadParameter(int low, int high) {
  if (!tokens_.TakeMark("(")) tokens_.FailExpected("'('");
  const int value = tokens_.Number(low, high);
  if (!tokens_.TakeMark(")")) tokens_.FailExpected("')'");
  return static_cast<std::uint8_t>(value);
}

void Assembler::ReadRaw() {
  const std::string bytes = tokens_.Bytes();
  if (bytes.empty()) tokens_.FailExpected("bytes as pairs of hexadecimal digits");
  Steps() += bytes;
}

}  // namespace

std::string AssembleVme(std::string_view script) {
  return Assembler(script).Assemble();
}

}  // namespace vme_script
