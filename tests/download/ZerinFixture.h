#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "board/C28FxJ3A.h"
#include "download/ZerinHelper.h"
#include "errorException.h"
#include "FakeEnvironment.h"
#include "StrictFlash.h"
#include "support/Environment.h"
#include "support/ManualClock.h"
#include "support/PlatformDouble.h"
#include "support/TempFolder.h"

using Bytes = std::vector<std::uint8_t>;

inline Bytes BytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

inline Bytes Join(const std::vector<Bytes>& pieces) {
  Bytes all;
  for (const Bytes& piece : pieces)
    all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

/// A system in which it is Sunday, 9 September 2001, 01:46:40 in Greenwich, and a local time without an offset. Time
/// stands still but for sleeps. It has to be there before a flash object, which looks at the clock.
struct StampSystem {
  StampSystem() {
    SetTimeZone("UTC0");
    clock.SetPresentTime(1'000'000'000);
    system_.Use(clock.clock());
    system_.Use(environment);
  }

  static void SetTimeZone(const char* zone) {
    test_support::SetVariable("TZ", zone);
    tzset();
  }

  test_support::ManualClock clock;
  FakeEnvironment environment;

 private:
  test_support::PlatformDouble system_;
  platform::ScopedPlatform scope_{system_};
};

/// A host card's flash and a `ZerinHelper` on it. The stamp's text is always the same: nobody of no domain installed.
class ZerinFixture : public testing::Test, protected StampSystem {
 protected:
  static constexpr std::uint32_t kBaseWord = 0x100000;
  static constexpr std::uint32_t kBlockBytes = 0x20000;
  static constexpr std::uint32_t kBlockWords = 0x10000;
  static constexpr std::uint32_t kTopBlockWord = 0x1F0000;
  static constexpr std::uint32_t kTopBlockByte = 0x3E0000;

  ZerinFixture() { flash.Attach(chip.Window()); }

  /// What the stamp's text is for a file of this name.
  static std::string StampText(const std::string& name) {
    return " Filename:     " + name + "\n Installer:     - \n Install Date: Sun Sep  9 01:46:40 2001\n";
  }

  /// A container's first bytes with this header length, and the bytes behind it.
  static Bytes Container(std::uint32_t headerLength, const std::string& behindLength) {
    Bytes bytes = BytesOf("ORBO.RBI");
    for (int shift = 24; shift >= 0; shift -= 8)
      bytes.push_back(static_cast<std::uint8_t>(headerLength >> shift));
    return Join({bytes, BytesOf(behindLength)});
  }

  /// Has `helper` read the file as `name`, and returns the payload's offset.
  std::uint32_t ReadHeader(const Bytes& file, const std::string& name = "a.rbi") {
    const std::string path = folder.Write("container", file);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> open(std::fopen(path.c_str(), "rb"), &std::fclose);
    return helper.GetPayloadOffset(open.get(), name.c_str());
  }

  /// Has the helper write the top block that it made of the file, and returns what then stands in flash.
  Bytes TopBlockOf(const Bytes& file, const std::string& name = "a.rbi") {
    ReadHeader(file, name);
    EXPECT_TRUE(helper.StartProgram());
    EXPECT_EQ(chip.Errors(), "");
    return chip.Bytes(kTopBlockByte, kBlockBytes);
  }

  test_support::TempFolder folder;
  StrictFlash chip;
  C28FxJ3A flash;
  ZerinHelper helper{&flash, kBaseWord};
};
