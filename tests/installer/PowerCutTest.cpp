#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <map>

#include "BenchRun.h"
#include "simulator/WrappedPlatform.h"
#include "support/ScopedWorkingFolder.h"

// The promise of a host card install: wherever the plug is pulled, the next run shows the old version, or none, or the
// new one with the whole image in place.

namespace {

constexpr int kShards = 4;

/// Standard output led into a file, cheap enough to be read half a million times.
class OutputInFile {
 public:
  OutputInFile() : file_(open(folder_.Write("output", "").c_str(), O_RDWR)), saved_(dup(1)) {
    std::fflush(stdout);
    dup2(file_, 1);
  }
  ~OutputInFile() {
    std::fflush(stdout);
    dup2(saved_, 1);
    close(saved_);
    close(file_);
  }
  OutputInFile(const OutputInFile&) = delete;
  OutputInFile& operator=(const OutputInFile&) = delete;

  /// What was written since the last call, of which there is little.
  std::string Take() {
    std::fflush(stdout);
    if (lseek(file_, 0, SEEK_CUR) == 0) return "";
    char text[4096];
    if (lseek(file_, 0, SEEK_SET) != 0) return "unreadable output";
    const auto length = read(file_, text, sizeof text);
    if (ftruncate(file_, 0) != 0 || lseek(file_, 0, SEEK_SET) != 0 || length < 0) return "unreadable output";
    return std::string(text, static_cast<std::size_t>(length));
  }

 private:
  test_support::TempFolder folder_;
  int file_;
  int saved_;
};

/// Devices that stop before each write to the hardware and let a test look.
class StopsAtWrites : public simulator::WrappedDevices {
 public:
  StopsAtWrites(platform::Devices& inner, std::function<void()> look) : WrappedDevices(inner), look_(std::move(look)) {}

 protected:
  void WriteRegister(std::uint64_t window, platform::RegisterTrap& inner, std::uint32_t offset,
                     std::uint32_t value) override {
    look_();
    WrappedDevices::WriteRegister(window, inner, offset, value);
  }

 private:
  std::function<void()> look_;
};

class StoppingPlatform : public simulator::WrappedPlatform {
 public:
  StoppingPlatform(platform::Platform& inner, std::function<void()> look)
      : WrappedPlatform(inner), devices_(inner.devices(), std::move(look)) {}
  StopsAtWrites& devices() override { return devices_; }

 private:
  StopsAtWrites devices_;
};

constexpr char kHeading[] =
    "   Part Name   Board Fn Rev   Current Flash   Expected Flash\n"
    "   ---------   ------------   -------------   --------------\n";

/// The version that `FwDeploy -version` shows of the first card on this bench, as four digits.
std::string ShownVersion(const simulator::BenchState& state, OutputInFile& output) {
  static const char* const kArguments[] = {"FwDeploy", "-version", "-nopause"};
  simulator::Bench bench(state);
  const platform::ScopedPlatform current(bench.platform());
  if (FwDeployMain(3, kArguments) != 0) return "failed";
  const std::string table = output.Take();
  const std::string line = table.substr(table.find('\n', sizeof kHeading - 2) + 1);
  // "     belmara      02.01           1160           1161"
  if (table.rfind(kHeading, 0) != 0 || line.rfind("     belmara      ", 0) != 0 || line.size() < 38) return table;
  return line.substr(34, 4);
}

class PowerCut : public testing::TestWithParam<int> {};

TEST_P(PowerCut, NeverLeavesTheNewVersionOverAnIncompleteImage) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder inside(folder.Path());
  const std::string payload = "a small image keeps this fast";
  folder.Write("BLMX0202.rbi", Container("BLMX", "1161", payload));

  simulator::Bench bench(simulator::MakeBench({.hostCards = simulator::HostCards::kBelmara}));
  const auto imageByte = [](const simulator::BenchState& state, std::uint32_t offset) {
    const std::uint16_t word = state.cards[0]->flash.memory().Word(0x100000 + offset / 2);
    return static_cast<std::uint8_t>(word >> offset % 2 * 8);
  };

  std::uint64_t writes = 0;
  std::map<std::string, std::uint64_t> shown;
  std::vector<simulator::BenchState> complete;
  {
    OutputInFile output;
    const auto cut = [&] {
      if (++writes % kShards != static_cast<std::uint64_t>(GetParam())) return;
      const simulator::BenchState left = bench.StateAfterPowerLoss();
      const std::string version = ShownVersion(left, output);
      ++shown[version];
      if (version == "1161") complete.push_back(left);
    };
    StoppingPlatform stopping(bench.platform(), cut);
    const platform::ScopedPlatform current(stopping);
    static const char* const kArguments[] = {"FwDeploy", "-belmara", "-noprogress", "-nopause"};
    ASSERT_EQ(FwDeployMain(4, kArguments), 2);
  }

  std::uint64_t cuts = 0;
  for (const auto& [version, count] : shown) {
    EXPECT_TRUE(version == "1160" || version == "0000" || version == "1161") << count << " cuts showed " << version;
    cuts += count;
  }
  // Every write of this shard was cut, and each of the three outcomes was met.
  EXPECT_GT(writes, 2u * 4096 * 32) << "two blocks of 4096 runs of 16 words, each at an address of its own";
  EXPECT_EQ(cuts, (writes + kShards - static_cast<std::uint64_t>(GetParam() == 0 ? kShards : GetParam())) / kShards);
  EXPECT_GT(shown["1160"], 0u);
  EXPECT_GT(shown["0000"], 0u);
  EXPECT_GT(shown["1161"], 0u);

  const simulator::BenchState end = bench.StateAfterPowerLoss();
  complete.push_back(end);
  for (const simulator::BenchState& state : complete) {
    for (std::uint32_t i = 0; i < 0x20000; ++i) {
      const auto expected = i < payload.size() ? static_cast<std::uint8_t>(payload[i]) : std::uint8_t{0xFF};
      ASSERT_EQ(imageByte(state, i), expected) << "image byte " << i;
      ASSERT_EQ(imageByte(state, 0x1E0000 + i), imageByte(end, 0x1E0000 + i)) << "stamp block byte " << i;
    }
  }
  std::printf("power cut: shard %d of %d made %llu cuts of %llu writes: %llu showed 1160, %llu 0000, %llu 1161\n",
              GetParam() + 1, kShards, static_cast<unsigned long long>(cuts), static_cast<unsigned long long>(writes),
              static_cast<unsigned long long>(shown["1160"]), static_cast<unsigned long long>(shown["0000"]),
              static_cast<unsigned long long>(shown["1161"]));
}

INSTANTIATE_TEST_SUITE_P(EveryWrite, PowerCut, testing::Range(0, kShards));

}  // namespace
