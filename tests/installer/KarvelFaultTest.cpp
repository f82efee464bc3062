#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <span>

#include "FaultWalk.h"
#include "simulator/FirmwareFiles.h"
#include "simulator/KarvelProgram.h"
#include "simulator/RbiFile.h"

// Bad days of a host card's CPLD. Whatever happens while it is programmed, the run ends by itself and says so, the part
// never runs as the new one unless it is that whole, and after a power cycle another run puts everything right.

namespace {

using simulator::BenchState;

constexpr char kPlace[] = "FwDeploy.cpp";

Ending FailsWith(int code) {
  return Fails("Belmara Karvel Programming Error... Error Code: " + std::to_string(code), kPlace);
}

class KarvelFaults : public FaultWalk {
 protected:
  KarvelFaults()
      : FaultWalk({simulator::MakeBench({.hostCards = simulator::HostCards::kBelmara}),
                   {"-bkarvel", "-nofussy", "-nopause", "-noprogress", "-noorboqx"},
                   2,
                   {{"bkarvel", 0x17}},
                   ""}) {}

  /// The file puts these rows, from the first on, into the part.
  void WriteFile(std::size_t rows) {
    wanted_ = simulator::KarvelCells();
    const auto made = simulator::MakeKarvelRows(0x00170000, 1);
    std::copy_n(made.begin(), rows, wanted_.rows.begin());
    wanted_.usercode = {'K', 'V', 0x00, 0x17};
    wanted_.done = true;
    const auto file =
        simulator::MakeRbi("KRVL", 0x0017, simulator::MakeKarvelProgram(std::span(made).first(rows), wanted_.usercode));
    folder_.Write("KRVL0101.rbi", std::string(file.begin(), file.end()));
  }

  /// A part that says that it is the new one has all that is new. Another run brings it there, or finds it there.
  void ExpectWholeOrMended(BenchState state, const std::string& fault) const {
    PowerCycle(state);
    if (state.cards[0]->karvelRunning == 0x00170000) {
      EXPECT_EQ(state.cards[0]->karvel.cells().rows, wanted_.rows) << fault;
    }
    const Ending mended = Run(state, {}, install_.arguments);
    if (mended.exitCode != 2) {
      EXPECT_EQ(mended.err, FailsWith(1).err) << fault << ": it can only be there already";
    }
    PowerCycle(state);
    EXPECT_EQ(state.cards[0]->karvel.cells(), wanted_) << fault;
    EXPECT_EQ(state.cards[0]->karvelRunning, 0x00170000u) << fault;
  }

  /// Strikes the events of this fault's kind from `first` on in steps, each in a run of its own.
  void Strike(const std::string& name, std::size_t first, std::size_t step) {
    const std::size_t places = Places(name);
    std::map<int, std::size_t> exitCodes;
    std::size_t runs = 0;
    for (std::size_t place = first; place <= places && !HasFailure(); place += step) {
      BenchState state = install_.fresh;
      const std::string fault = name + "@" + std::to_string(place);
      const Ending ending = Run(state, {fault}, install_.arguments);
      ++exitCodes[ending.exitCode];
      if (ending.exitCode == -1) {
        EXPECT_THAT(ending.err, testing::HasSubstr("FwDeploy failed: "));
      }
      ExpectWholeOrMended(state, fault);
      ++runs;
    }
    EXPECT_GT(runs, 0u);
    std::printf("fault walk: %s struck %zu of %zu places of a small CPLD program from %zu on:", name.c_str(), runs,
                places, first);
    for (const auto& [exitCode, count] : exitCodes)
      std::printf(" %zu ended with %s", count,
                  exitCode == kWaitsForEver.exitCode ? "no power" : std::to_string(exitCode).c_str());
    std::printf("\n");
  }

  simulator::KarvelCells wanted_;
};

TEST_F(KarvelFaults, EachRowThatDoesNotTakeIsFoundByTheVerification) {
  WriteFile(64);
  ASSERT_EQ(Places("karvel-row-fails"), 64u);
  for (int row = 1; row <= 64; ++row) {
    BenchState state = install_.fresh;
    const std::string fault = "karvel-row-fails@" + std::to_string(row);
    const Ending ending = Run(state, {fault}, install_.arguments);
    EXPECT_EQ(ending.exitCode, -1) << fault;
    EXPECT_EQ(ending.err, FailsWith(-1).err) << fault;
    ExpectWholeOrMended(state, fault);
  }
}

TEST_F(KarvelFaults, AnEraseThatDoesNotTakeIsFound) {
  WriteFile(64);
  BenchState state = install_.fresh;
  const Ending ending = Run(state, {"karvel-erase-fails"}, install_.arguments);
  EXPECT_EQ(ending.exitCode, -1);
  EXPECT_EQ(ending.err, FailsWith(-1).err);
  ExpectWholeOrMended(state, "karvel-erase-fails");
}

TEST_F(KarvelFaults, APartThatIsNotThereIsAMismatch) {
  WriteFile(64);
  for (const std::string fault : {"karvel-unplugged@1", "karvel-tdo-low@1", "karvel-unplugged", "karvel-tdo-low"}) {
    BenchState state = install_.fresh;
    const Ending ending = Run(state, {fault}, install_.arguments);
    EXPECT_EQ(ending.exitCode, -1) << fault;
    EXPECT_EQ(ending.err, FailsWith(-1).err) << fault;
    EXPECT_EQ(state.cards[0]->karvel.cells(), install_.fresh.cards[0]->karvel.cells()) << fault;
    ExpectWholeOrMended(state, fault);
  }
}

constexpr std::size_t kShards = 4;

class KarvelWalk : public KarvelFaults, public testing::WithParamInterface<std::size_t> {
 protected:
  KarvelWalk() { WriteFile(1); }
};

TEST_P(KarvelWalk, ThePlugIsPulledAtEachWrite) {
  Strike("power-cut", GetParam(), kShards);
}

TEST_P(KarvelWalk, EachWriteIsLost) {
  Strike("write-lost", GetParam(), kShards);
}

TEST_P(KarvelWalk, ThePartIsPulledAtEachAccess) {
  Strike("karvel-unplugged", GetParam(), kShards);
}

INSTANTIATE_TEST_SUITE_P(Shards, KarvelWalk, testing::Range<std::size_t>(1, kShards + 1));

}  // namespace
