#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "download/BoxDownloadHelpers.h"
#include "download/DownloadDriver.h"
#include "support/FailureOf.h"
#include "support/ManualClock.h"
#include "support/PlatformDouble.h"
#include "support/ScopedWorkingFolder.h"
#include "support/ScriptedTransport.h"
#include "support/TempFolder.h"

// Downloads into the box, command by command.

namespace {

using test_support::Bytes;
using test_support::FromHex;

constexpr char kFileName[] = "part.rbi";

Bytes Join(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// What differs between the three, as the box sees it.
struct BoxPart {
  const char* what;
  std::function<std::unique_ptr<DownloadHelper>(WyvrelHelper&)> make;
  /// The start command up to the size, which is behind it.
  const char* start;
  const char* startReply;
  /// Of a data command with 3 bytes, up to these; and with 1970.
  const char* chunkOf3;
  const char* chunkOf1970;
  const char* chunkReply;
  /// The program command and its reply, which are the same.
  const char* program;
  const char* startFailure;
  const char* chunkFailure;
};

void PrintTo(const BoxPart& part, std::ostream* out) {
  *out << part.what;
}

const BoxPart kBoxParts[] = {
    {"Fpga", [](WyvrelHelper& board) { return std::make_unique<BobFPGAHelper>(board, std::uint8_t{1}); },
     "0B 0B 00 0A 80 06 00 00 01 03 ", "0B 0B 00 04 80 06 00 00",  //
     "0B 0B 00 09 80 08 00 00 00 03", "0B 0B 07 B8 80 08 00 00 07 B2", "0B 0B 00 04 80 08 00 00",
     "0B 0B 00 04 80 0A 00 00", "Could not start FPGA download", "Failed FPGA download command"},
    // The type is in front of the region, and the address of all data is 0.
    {"Firmware", [](WyvrelHelper& board) { return std::make_unique<BobFirmwareHelper>(board); },
     "0B 0B 00 0A 80 0C 00 00 03 00 ", "0B 0B 00 04 80 0C 00 00",  //
     "0B 0B 00 0D 80 0E 00 00 00 00 00 00 00 03", "0B 0B 07 BC 80 0E 00 00 00 00 00 00 07 B2",
     "0B 0B 00 04 80 0E 00 00", "0B 0B 00 04 80 10 00 00", "Could not start firmware download",
     "Failed firmware download command"},
    {"Cpld", [](WyvrelHelper& board) { return std::make_unique<BobCPLDHelper>(board, std::uint8_t{4}); },
     "0B 0B 00 0A 80 12 00 00 04 03 ", "0B 0B 00 04 80 12 00 00",  //
     "0B 0B 00 09 80 14 00 00 00 03", "0B 0B 07 B8 80 14 00 00 07 B2", "0B 0B 00 04 80 14 00 00",
     "0B 0B 00 04 80 16 00 00", "Could not start Trelvane CPLD download", "Failed CPLD download command"},
};

class BoxDownload : public testing::TestWithParam<BoxPart> {
 protected:
  BoxDownload() {
    clock.SetStepTicks(0);
    system.Use(clock.clock());
  }

  static Exchange Start(const std::string& size) { return Replies(GetParam().start + size, GetParam().startReply); }
  static Exchange Chunk(const char* commandUpToTheData, const Bytes& data) {
    return {.command = Join(FromHex(commandUpToTheData), data), .reply = FromHex(GetParam().chunkReply)};
  }
  static Exchange Program(HwcStatus status = kHWCerr_None) {
    return {.command = FromHex(GetParam().program),
            .reply = FromHex(GetParam().program),
            .status = status,
            .toldCapacityBytes = 2048};
  }
  /// A wait for the answer to the program command.
  static Exchange Poll(HwcStatus status) {
    Exchange exchange = Program(status);
    exchange.command.clear();
    return exchange;
  }

  static std::string Failure(const char* message) { return std::string("BoxDownloadHelpers.cpp: ") + message; }

  /// Downloads a file, and leaves nothing of the script undone.
  void Download(const Bytes& content) {
    folder.Write(kFileName, content);
    PartDescription part{"hollen", "HLLN", 0, 0, 0, 0, kFileName};
    PartLocation location{};
    location.part = &part;
    DownloadDriver(false, location, 1'000'000, *helper);
    board.ExpectDone();
  }

  test_support::ManualClock clock;
  test_support::PlatformDouble system;
  platform::ScopedPlatform scope{system};
  test_support::TempFolder folder;
  test_support::ScopedWorkingFolder workingFolder{folder.Path()};
  ScriptedTransport board;
  const std::unique_ptr<DownloadHelper> helper = GetParam().make(board);
};

INSTANTIATE_TEST_SUITE_P(Of, BoxDownload, testing::ValuesIn(kBoxParts),
                         [](const auto& named) { return named.param.what; });

// ---- Start and data

TEST_P(BoxDownload, AnnouncesTheSize) {
  board.Expect({Start("12 34 56 78"), Start("00 00 00 00")});
  helper->StartDownload(0x12345678);
  helper->StartDownload(0);
}

TEST_P(BoxDownload, FailsWhenTheStartIsNotAnswered) {
  board.Expect({TimesOut(std::string(GetParam().start) + "00 00 00 01")});
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), Failure(GetParam().startFailure));
}

TEST_P(BoxDownload, SendsDataWithItsLength) {
  const std::uint8_t data[] = {0xDE, 0xAD, 0x01, 0xFF};
  board.Expect({Chunk(GetParam().chunkOf3, FromHex("DE AD 01"))});
  helper->DownloadChunk(data, 3);
}

TEST_P(BoxDownload, FitsItsLargestChunkIntoOneCommand) {
  EXPECT_EQ(helper->chunkSize, 1970u);
  const Bytes data(1970, 0xA5);
  board.Expect({Chunk(GetParam().chunkOf1970, data)});
  helper->DownloadChunk(data.data(), 1970);
}

TEST_P(BoxDownload, FailsWhenDataIsNotAnswered) {
  const std::uint8_t data[] = {0xDE, 0xAD, 0x01};
  board.Expect(
      {{.command = Join(FromHex(GetParam().chunkOf3), FromHex("DE AD 01")), .status = kHWCerr_CommandTimeout}});
  EXPECT_EQ(FailureOf([&] { helper->DownloadChunk(data, 3); }), Failure(GetParam().chunkFailure));
}

TEST_P(BoxDownload, PassesOnWhatTheBoxRefuses) {
  std::string refusal = GetParam().startReply;
  refusal.back() = '2';
  board.Expect({Replies(std::string(GetParam().start) + "00 00 00 01", refusal)});
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), "WyvrelHelper.cpp: Unsupported BOB command or parameters");
  refusal.back() = '1';
  board.Expect({Replies(std::string(GetParam().start) + "00 00 00 01", refusal)});
  EXPECT_EQ(FailureOf([&] { helper->StartDownload(1); }), "WyvrelHelper.cpp: Bad BOB status");
}

// ---- Programming

TEST_P(BoxDownload, IsDoneWhenTheProgramCommandIsAnsweredAtOnce) {
  board.Expect({Program()});
  EXPECT_TRUE(helper->StartProgram());
}

TEST_P(BoxDownload, PollsWithoutACommandUntilTheAnswerComes) {
  board.Expect({Program(kHWCerr_CommandTimeout), Poll(kHWCerr_CommandTimeout), Poll(kHWCerr_CommandTimeout),
                Poll(kHWCerr_None)});
  EXPECT_FALSE(helper->StartProgram());
  EXPECT_FALSE(helper->PollProgram());
  EXPECT_FALSE(helper->PollProgram());
  EXPECT_TRUE(helper->PollProgram());
}

TEST_P(BoxDownload, PassesOnWhatTheBoxSaysOfTheProgramming) {
  Exchange failed = Program();
  failed.reply[7] = 1;
  Exchange unsupported = Poll(kHWCerr_None);
  unsupported.reply[7] = 2;
  Exchange unreadable = Poll(kHWCerr_None);
  unreadable.reply[0] = 0;
  board.Expect({failed, unsupported, unreadable});
  EXPECT_EQ(FailureOf([&] { helper->StartProgram(); }), "WyvrelHelper.cpp: Bad BOB status");
  EXPECT_EQ(FailureOf([&] { helper->PollProgram(); }), "WyvrelHelper.cpp: Unsupported BOB command or parameters");
  EXPECT_EQ(FailureOf([&] { helper->PollProgram(); }),
            "WyvrelHelper.cpp: Talc error decompiling the returned %s Talc byte code packet");
}

TEST_P(BoxDownload, PassesOnThatTheTransportFailed) {
  board.Expect({Program(kHWCerr_BobCommsError), Poll(kHWCerr_NoDevice)});
  EXPECT_EQ(FailureOf([&] { helper->StartProgram(); }), "WyvrelHelper.cpp: IOCTL_TransactBoBCommand failed");
  EXPECT_EQ(FailureOf([&] { helper->PollProgram(); }), "WyvrelHelper.cpp: IOCTL_TransactBoBCommand failed");
}

TEST_P(BoxDownload, HasRoomForTheLongestReply) {
  Exchange exchange = Program();
  exchange.reply.resize(2052, 0x41);
  exchange.reply[2] = 0x08;
  exchange.reply[3] = 0x00;
  board.Expect({exchange});
  EXPECT_TRUE(helper->StartProgram());
}

// ---- Whole files

/// A container with a 22-byte header and a payload of bytes that differ from chunk to chunk.
Bytes Container(std::size_t payloadBytes) {
  Bytes file = FromHex("4F 52 42 4F 2E 52 42 49 00 00 00 16 52 31 31 36 31 20 48 4C 4C 4E");
  for (std::size_t i = 0; i < payloadBytes; ++i)
    file.push_back(static_cast<std::uint8_t>(i * 7 + i / 256));
  return file;
}

class WholeFileDownload : public BoxDownload {
 protected:
  static Bytes Slice(const Bytes& bytes, std::ptrdiff_t from, std::ptrdiff_t to) {
    return {bytes.begin() + from, bytes.begin() + to};
  }
};

INSTANTIATE_TEST_SUITE_P(Of, WholeFileDownload, testing::Values(kBoxParts[0], kBoxParts[1]),
                         [](const auto& named) { return named.param.what; });

TEST_P(WholeFileDownload, SendsTheHeaderToo) {
  const Bytes file = Container(3921);  // two whole chunks and 3 bytes
  ASSERT_EQ(file.size(), 3943u);
  board.Expect({Start("00 00 0F 67"), Chunk(GetParam().chunkOf1970, Slice(file, 0, 1970)),
                Chunk(GetParam().chunkOf1970, Slice(file, 1970, 3940)),
                Chunk(GetParam().chunkOf3, Slice(file, 3940, 3943)), Program(kHWCerr_CommandTimeout),
                Poll(kHWCerr_CommandTimeout), Poll(kHWCerr_None)});
  Download(file);
}

TEST_P(WholeFileDownload, IsOneCommandForAFileOfOneChunk) {
  const Bytes file = Container(1948);
  board.Expect({Start("00 00 07 B2"), Chunk(GetParam().chunkOf1970, file), Program()});
  Download(file);
}

TEST_P(WholeFileDownload, ProgramsNothingAfterAChunkThatFailed) {
  const Bytes file = Container(1951);
  board.Expect(
      {Start("00 00 07 B5"),
       Chunk(GetParam().chunkOf1970, Slice(file, 0, 1970)),
       {.command = Join(FromHex(GetParam().chunkOf3), Slice(file, 1970, 1973)), .status = kHWCerr_CommandTimeout}});
  EXPECT_EQ(FailureOf([&] { Download(file); }), Failure(GetParam().chunkFailure));
}

TEST_P(WholeFileDownload, SendsAnEmptyFile) {
  board.Expect({Start("00 00 00 00"), Program()});
  Download({});
}

class PayloadDownload : public WholeFileDownload {
 protected:
  std::uint32_t PayloadOffset(const Bytes& content) {
    const std::string path = folder.Write(kFileName, content);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    std::fseek(file.get(), 0, SEEK_END);
    return helper->GetPayloadOffset(file.get(), kFileName);
  }
};

INSTANTIATE_TEST_SUITE_P(Of, PayloadDownload, testing::Values(kBoxParts[2]),
                         [](const auto& named) { return named.param.what; });

TEST_P(PayloadDownload, LeavesTheHeaderOut) {
  const Bytes file = Container(3943);
  board.Expect({Start("00 00 0F 67"), Chunk(GetParam().chunkOf1970, Slice(file, 22, 1992)),
                Chunk(GetParam().chunkOf1970, Slice(file, 1992, 3962)),
                Chunk(GetParam().chunkOf3, Slice(file, 3962, 3965)), Program(kHWCerr_CommandTimeout),
                Poll(kHWCerr_CommandTimeout), Poll(kHWCerr_None)});
  Download(file);
}

TEST_P(PayloadDownload, SendsNothingOfAFileThatIsShorterThanItsHeader) {
  board.Expect({Start("00 00 00 00"), Program()});
  Download(FromHex("4F 52 42 4F 2E 52 42 49 00 00 00 16 52"));
}

// The file stands at its end, and neither magic nor tag matter.
TEST_P(PayloadDownload, ReadsTheOffsetFromTheFourBytesAt8) {
  EXPECT_EQ(PayloadOffset(Container(5)), 22u);
  EXPECT_EQ(PayloadOffset(FromHex("00 00 00 00 00 00 00 00 FE DC BA 98")), 0xFEDCBA98u);
}

TEST_P(PayloadDownload, FailsForAFileThatEndsBeforeItsHeaderLength) {
  for (const char* const content : {"", "4F 52 42 4F 2E 52 42 49", "4F 52 42 4F 2E 52 42 49 00 00 00"}) {
    SCOPED_TRACE(content);
    EXPECT_EQ(FailureOf([&] { PayloadOffset(FromHex(content)); }), Failure("RBI file header is not usable"));
    EXPECT_EQ(FailureOf([&] { Download(FromHex(content)); }), Failure("RBI file header is not usable"));
  }
}

// ---- Numbers

TEST(BoxPartNumbers, GoOutAsTheyAre) {
  test_support::PlatformDouble system;
  const platform::ScopedPlatform scope(system);
  ScriptedTransport board;
  board.Expect({Replies("0B 0B 00 0A 80 06 00 00 00 03 00 00 00 05", "0B 0B 00 04 80 06 00 00"),
                Replies("0B 0B 00 0A 80 06 00 00 FF 03 00 00 00 05", "0B 0B 00 04 80 06 00 00"),
                Replies("0B 0B 00 0A 80 12 00 00 02 03 00 00 00 05", "0B 0B 00 04 80 12 00 00"),
                Replies("0B 0B 00 0A 80 12 00 00 03 03 00 00 00 05", "0B 0B 00 04 80 12 00 00")});
  BobFPGAHelper(board, 0).StartDownload(5);
  BobFPGAHelper(board, 255).StartDownload(5);
  BobCPLDHelper(board, 2).StartDownload(5);
  BobCPLDHelper(board, 3).StartDownload(5);
}

}  // namespace
