#include <gmock/gmock.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "download/BoxDownloadHelpers.h"
#include "download/DownloadDriver.h"
#include "support/FailureOf.h"
#include "support/ManualClock.h"
#include "support/PlatformDouble.h"
#include "support/ScopedWorkingFolder.h"
#include "support/ScriptedTransport.h"
#include "support/TempFolder.h"

// Downloads into an Orbo QX, command by command. What it has of the box is the box's test's.

namespace {

using test_support::Bytes;
using test_support::FromHex;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kFileName[] = "part.rbi";

// Length 8, then the block.
const std::string kDiagnostic = "0B 0B 00 0E C0 02 00 00 00 08 62 64 00 02 00 02 00 00";
const std::string kDiagnosticReply = "0B 0B 00 04 C0 02 00 00";

struct MorvakPart {
  const char* what;
  std::function<std::unique_ptr<DownloadHelper>(WyvrelHelper&)> make;
  /// The start command up to the size, which is behind it.
  const char* start;
  const char* startReply;
  /// A data command with the bytes DE AD 01.
  const char* chunk;
  const char* chunkReply;
  /// The program command and its reply, which are the same.
  const char* program;
  const char* startFailure;
  const char* chunkFailure;
  /// Of a file with a 22-byte header and the payload DE AD 01.
  const char* sizeOfFile;
  const char* chunkOfFile;
};

void PrintTo(const MorvakPart& part, std::ostream* out) {
  *out << part.what;
}

const MorvakPart kMorvakParts[] = {
    {"Fpga", [](WyvrelHelper& board) { return std::make_unique<MorvakFPGAHelper>(board, std::uint8_t{2}); },
     "0B 0B 00 0A 80 06 00 00 02 03 ", "0B 0B 00 04 80 06 00 00",  //
     "0B 0B 00 09 80 08 00 00 00 03 DE AD 01", "0B 0B 00 04 80 08 00 00", "0B 0B 00 04 80 0A 00 00",
     "Could not start FPGA download", "Failed FPGA download command", "00 00 00 19",
     "0B 0B 00 1F 80 08 00 00 00 19 "
     "4F 52 42 4F 2E 52 42 49 00 00 00 16 52 31 31 36 31 20 48 4C 4C 4E DE AD 01"},
    {"Firmware", [](WyvrelHelper& board) { return std::make_unique<MorvakFirmwareHelper>(board); },
     "0B 0B 00 0A 80 0C 00 00 03 00 ", "0B 0B 00 04 80 0C 00 00",  //
     "0B 0B 00 0D 80 0E 00 00 00 00 00 00 00 03 DE AD 01", "0B 0B 00 04 80 0E 00 00", "0B 0B 00 04 80 10 00 00",
     "Could not start firmware download", "Failed firmware download command", "00 00 00 19",
     "0B 0B 00 23 80 0E 00 00 00 00 00 00 00 19 "
     "4F 52 42 4F 2E 52 42 49 00 00 00 16 52 31 31 36 31 20 48 4C 4C 4E DE AD 01"},
    // The payload alone, and the type says so.
    {"Cpld", [](WyvrelHelper& board) { return std::make_unique<MorvakCPLDHelper>(board, std::uint8_t{1}); },
     "0B 0B 00 0A 80 12 00 00 01 02 ", "0B 0B 00 04 80 12 00 00",  //
     "0B 0B 00 09 80 14 00 00 00 03 DE AD 01", "0B 0B 00 04 80 14 00 00", "0B 0B 00 04 80 16 00 00",
     "Could not start Orbo QX CPLD download", "Failed CPLD download command", "00 00 00 03",
     "0B 0B 00 09 80 14 00 00 00 03 DE AD 01"},
};

class MorvakDownload : public testing::TestWithParam<MorvakPart> {
 protected:
  MorvakDownload() {
    clock.SetStepTicks(0);
    system.Use(clock.clock());
  }

  Exchange Diagnostic() {
    Exchange exchange = Replies(kDiagnostic, kDiagnosticReply);
    exchange.onExchange = [this] { EXPECT_THAT(clock.Sleeps(), IsEmpty()) << "before the diagnostic block"; };
    return exchange;
  }
  /// Comes behind the pause.
  Exchange Start(const std::string& size) {
    Exchange exchange = Replies(GetParam().start + size, GetParam().startReply);
    exchange.onExchange = [this] { EXPECT_THAT(clock.Sleeps(), ElementsAre(500)) << "before the start"; };
    return exchange;
  }

  static std::string Failure(const char* message) { return std::string("BoxDownloadHelpers.cpp: ") + message; }

  test_support::ManualClock clock;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  ScriptedTransport board;
  const std::unique_ptr<DownloadHelper> helper = GetParam().make(board);
};

INSTANTIATE_TEST_SUITE_P(Of, MorvakDownload, testing::ValuesIn(kMorvakParts),
                         [](const auto& named) { return named.param.what; });

TEST_P(MorvakDownload, StartsHalfASecondAfterTheDiagnosticBlock) {
  board.Expect({Diagnostic(), Start("12 34 56 78")});
  helper->StartDownload(0x12345678);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(500));
}

TEST_P(MorvakDownload, SendsTheDiagnosticBlockBeforeEachStart) {
  board.Expect({Diagnostic(), Start("00 00 00 01")});
  helper->StartDownload(1);
  clock.ForgetSleeps();
  board.Expect({Diagnostic(), Start("00 00 00 02")});
  helper->StartDownload(2);
}

TEST_P(MorvakDownload, DoesNotStartWhenTheDiagnosticBlockIsNotAnswered) {
  board.Expect({TimesOut(kDiagnostic)});
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), Failure("Failed to send Diagnostic Talc command"));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_P(MorvakDownload, PassesOnThatTheDiagnosticBlockIsRefused) {
  board.Expect({Replies(kDiagnostic, "0B 0B 00 04 C0 02 00 02"), Replies(kDiagnostic, "0B 0B 00 04 C0 02 00 01")});
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), "WyvrelHelper.cpp: Unsupported BOB command or parameters");
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), "WyvrelHelper.cpp: Bad BOB status");
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_P(MorvakDownload, FailsWhenTheStartIsNotAnswered) {
  board.Expect({Diagnostic(), TimesOut(std::string(GetParam().start) + "00 00 00 01")});
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), Failure(GetParam().startFailure));
}

TEST_P(MorvakDownload, SendsDataAsToTheBox) {
  const std::uint8_t data[] = {0xDE, 0xAD, 0x01};
  EXPECT_EQ(helper->chunkSize, 1970u);
  board.Expect({Replies(GetParam().chunk, GetParam().chunkReply), TimesOut(GetParam().chunk)});
  helper->DownloadChunk(data, 3);
  EXPECT_EQ(FailureOf([&] { helper->DownloadChunk(data, 3); }), Failure(GetParam().chunkFailure));
  EXPECT_THAT(clock.Sleeps(), IsEmpty());
}

TEST_P(MorvakDownload, ProgramsAsTheBoxDoes) {
  Exchange program = Replies(GetParam().program, GetParam().program);
  program.toldCapacityBytes = 2048;
  board.Expect({program});
  EXPECT_TRUE(helper->StartProgram());
}

TEST_P(MorvakDownload, TakesAWholeFile) {
  const test_support::TempFolder folder;
  const test_support::ScopedWorkingFolder workingFolder(folder.Path());
  folder.Write(kFileName, FromHex("4F 52 42 4F 2E 52 42 49 00 00 00 16 52 31 31 36 31 20 48 4C 4C 4E DE AD 01"));
  PartDescription part{"hollen", "HLLN", 0, 0, 0, 0, kFileName};
  PartLocation location{};
  location.part = &part;

  Exchange program = Replies(GetParam().program, GetParam().program);
  program.toldCapacityBytes = 2048;
  board.Expect(
      {Diagnostic(), Start(GetParam().sizeOfFile), Replies(GetParam().chunkOfFile, GetParam().chunkReply), program});
  DownloadDriver(false, location, 1'000'000, *helper);
  EXPECT_THAT(clock.Sleeps(), ElementsAre(500));
}

TEST(MorvakPartNumbers, GoOutAsTheyAre) {
  test_support::ManualClock clock;
  test_support::PlatformDouble system;
  system.Use(clock.clock());
  const platform::ScopedPlatform scope(system);
  ScriptedTransport board;
  const Exchange diagnostic = Replies(kDiagnostic, kDiagnosticReply);
  board.Expect({diagnostic, Replies("0B 0B 00 0A 80 06 00 00 00 03 00 00 00 05", "0B 0B 00 04 80 06 00 00"), diagnostic,
                Replies("0B 0B 00 0A 80 06 00 00 04 03 00 00 00 05", "0B 0B 00 04 80 06 00 00"), diagnostic,
                Replies("0B 0B 00 0A 80 12 00 00 00 02 00 00 00 05", "0B 0B 00 04 80 12 00 00"), diagnostic,
                Replies("0B 0B 00 0A 80 12 00 00 FF 02 00 00 00 05", "0B 0B 00 04 80 12 00 00")});
  MorvakFPGAHelper(board, 0).StartDownload(5);
  MorvakFPGAHelper(board, 4).StartDownload(5);
  MorvakCPLDHelper(board, 0).StartDownload(5);
  MorvakCPLDHelper(board, 255).StartDownload(5);
}

TEST(MorvakCpldFile, HasItsPayloadWhereTheFourBytesAt8Say) {
  test_support::PlatformDouble system;
  const platform::ScopedPlatform scope(system);
  ScriptedTransport board;
  MorvakCPLDHelper helper(board, 0);
  const test_support::TempFolder folder;
  const auto offsetOf = [&](const char* content) {
    const std::string path = folder.Write(kFileName, FromHex(content));
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    std::fseek(file.get(), 0, SEEK_END);
    return helper.GetPayloadOffset(file.get(), kFileName);
  };
  EXPECT_EQ(offsetOf("00 00 00 00 00 00 00 00 FE DC BA 98"), 0xFEDCBA98u);
  EXPECT_EQ(FailureOf([&] { offsetOf("4F 52 42 4F 2E 52 42 49 00 00 00"); }),
            "BoxDownloadHelpers.cpp: RBI file header is not usable");
}

}  // namespace
