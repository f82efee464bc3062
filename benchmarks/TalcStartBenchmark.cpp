// The library's start: the six dictionaries and the capabilities from text to tables, what of that is the
// dictionaries', and how it grows with their number.

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "dictionary/DefinedCommands.h"
#include "OtherTexts.h"
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

/// Starts that find the texts of `system`.
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
  Texts blocks = EmbeddedDictionaries();
  for (std::string& text : EmbeddedTexts("RT_HWC_FILE"))
    blocks.push_back(std::move(text));
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
Texts CopiesOfDictionaries(int copies) {
  static const char* const kMajors[] = {"VIDEO", "AUDIO", "SYSTEM", "DIAGNOSTIC"};
  Texts blocks;
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
  OtherTexts system(CopiesOfDictionaries(copies), {"# no capabilities ;"});
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
  reporter.PrintRatio("start without capabilities", CopiesName(1), kStart, "the start");
  reporter.PrintRatio("start, peer", kStartPeer, kStart, "ours");
  for (const int copies : {10, kMostCopies})
    reporter.PrintRatio("start with " + std::to_string(copies) + " copies of the dictionaries", CopiesName(copies),
                        CopiesName(1), "one copy");
}
