// The library's start: the six dictionaries from text to tables, and how that grows with their number.

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "dictionary/DefinedCommands.h"
#include "platform/Platform.h"
#include "ProtobufPeer.h"
#include "TalcBenchmark.h"
#include "talcpath.h"
#include "TalcSchema.h"

namespace {

constexpr char kStart[] = "start";
constexpr char kStartFloor[] = "start_floor";
constexpr char kStartPeer[] = "start_peer";
constexpr char kCopies[] = "start_copies";
constexpr int kMostCopies = 100;

using Blocks = std::vector<std::string>;

/// The native platform with other dictionaries embedded.
class OtherDictionaries final : public platform::Platform, private platform::TextBlocks {
 public:
  explicit OtherDictionaries(Blocks blocks) : blocks_(std::move(blocks)) {}

  platform::Devices& devices() override { return platform::Native().devices(); }
  platform::Clock& clock() override { return platform::Native().clock(); }
  platform::FrontEnd& frontEnd() override { return platform::Native().frontEnd(); }
  platform::TextBlocks& textBlocks() override { return *this; }
  platform::Files& files() override { return platform::Native().files(); }

 private:
  std::vector<std::string> List(std::string_view) override {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < blocks_.size(); ++i)
      names.push_back(std::to_string(i));
    return names;
  }
  std::optional<std::string_view> Bytes(std::string_view, std::string_view name) override {
    return blocks_[std::stoul(std::string(name))];
  }

  Blocks blocks_;
};

Blocks EmbeddedDictionaries() {
  Blocks blocks;
  platform::TextBlocks& embedded = platform::Native().textBlocks();
  for (const std::string& name : embedded.List("RT_TCD_FILE"))
    blocks.emplace_back(*embedded.Bytes("RT_TCD_FILE", name));
  return blocks;
}

/// Runs `use` while the library is stopped.
template <typename Use>
void WhileStopped(Use use) {
  if (!TalcPath::TalcPathTerminate()) std::abort();
  use();
  if (!TalcPath::TalcPathInit()) std::abort();
}

/// Starts that find the dictionaries of `system`.
void RunStarts(benchmark::State& state, platform::Platform& system) {
  WhileStopped([&] {
    const platform::ScopedPlatform scope(system);
    for (auto _ : state) {
      if (!TalcPath::TalcPathInit()) std::abort();
      state.PauseTiming();
      TalcPath::TalcPathTerminate();
      state.ResumeTiming();
    }
  });
}

bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Finds all words of the texts, and keeps nothing of them.
void SplitIntoTokens(benchmark::State& state) {
  const Blocks blocks = EmbeddedDictionaries();
  for (auto _ : state) {
    for (const std::string& text : blocks) {
      const char* at = text.data();
      const char* const end = at + text.size();
      while (at < end) {
        while (at < end && IsWhiteSpace(*at))
          ++at;
        const char* const word = at;
        while (at < end && !IsWhiteSpace(*at))
          ++at;
        std::string_view token(word, static_cast<std::size_t>(at - word));
        benchmark::DoNotOptimize(token);
      }
    }
  }
}

void LoadPeerSchema(benchmark::State& state) {
  const std::string text = MakeSchemaText();
  for (auto _ : state) {
    google::protobuf::DescriptorPool pool;
    benchmark::DoNotOptimize(LoadSchema(text, pool));
  }
}

/// What stands behind the codes of a definition: its parameters and symbols, without the ";".
std::string BodyOf(const TalcPathPrivate::CommandFormat& format) {
  std::ostringstream definition;
  format.WriteDefinition(definition);
  const std::string text = definition.str();
  // Empty lines stand behind the kind and behind the codes.
  const std::size_t behindKind = text.find("\n\n");
  const std::size_t behindCodes = text.find("\n\n", behindKind + 1);
  return text.substr(behindCodes, text.size() - behindCodes - 1);
}

/// The embedded commands `copies` times, under other names and codes. A diagnostic code is one of 256, so only the
/// first copies have diagnostic commands.
Blocks CopiesOfDictionaries(int copies) {
  static const char* const kMajors[] = {"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC"};
  Blocks blocks;
  int code = 0;
  int opcode = 0;
  for (int copy = 0; copy < copies; ++copy) {
    std::ostringstream text;
    for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
      const bool isDiag = format->IsDiagCommandFormat();
      if (isDiag && opcode > 255) continue;
      text << "\n" << name << "_" << copy;
      if (isDiag) {
        text << " Diag DiagOpcode " << opcode++;
      } else {
        text << " Talc CommandTypeMajor " << kMajors[code >> 13 & 3] << " CommandTypeMinor " << (code >> 7 & 63)
             << " Function " << (code & 127);
        ++code;
      }
      text << BodyOf(*format) << ";";
    }
    blocks.push_back(text.str());
  }
  return blocks;
}

void RunStartsOfCopies(benchmark::State& state, int copies) {
  OtherDictionaries system(CopiesOfDictionaries(copies));
  RunStarts(state, system);
}

std::string CopiesName(int copies) {
  return std::string(kCopies) + "/" + std::to_string(copies);
}

}  // namespace

void AddStartBenchmarks() {
  AddRepeated(kStart, [](benchmark::State& state) { RunStarts(state, platform::Native()); });
  AddRepeated(kStartFloor, SplitIntoTokens);
  AddRepeated(kStartPeer, LoadPeerSchema);
  for (const int copies : {1, 10, kMostCopies})
    AddRepeated(CopiesName(copies), [copies](benchmark::State& state) { RunStartsOfCopies(state, copies); });
}

void PrintStartRatios(const FastestReporter& reporter) {
  reporter.PrintRatio("start", kStart, kStartFloor, "the floor");
  reporter.PrintRatio("start, peer", kStartPeer, kStart, "ours");
  for (const int copies : {10, kMostCopies})
    reporter.PrintRatio("start with " + std::to_string(copies) + " copies of the dictionaries", CopiesName(copies),
                        CopiesName(1), "one copy");
}
