// The example front end against senders that mean no good, and its command line.

#include <gmock/gmock.h>
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempFolder.h"
#include "TestDesktop.h"

namespace {

using frontend_test::kTitle;
using test_support::RunProcess;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

constexpr DWORD kLongestWaitMilliseconds = 60000;

Bytes Field(const std::string& text) {
  Bytes field(text.begin(), text.end());
  field.resize(260, 0);
  return field;
}

Bytes Join(const std::vector<Bytes>& pieces) {
  Bytes all;
  for (const Bytes& piece : pieces)
    all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

std::string Hex(const Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 0xF];
  }
  return text;
}

/// The front end on the test's desktop. It ends with the restart record.
class RunningFrontEnd {
 public:
  RunningFrontEnd(const frontend_test::TestDesktop& desktop, const std::string& log) {
    std::string commandLine = "\"" FRONT_END_PROGRAM "\" --exit-after-restart --log \"" + log + "\"";
    std::string desktopName = desktop.Name();
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.lpDesktop = desktopName.data();
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                       &process_) == FALSE)
      throw std::runtime_error("the front end cannot be started");
    WaitForInputIdle(process_.hProcess, kLongestWaitMilliseconds);
    window_ = FindWindowA(nullptr, kTitle);
  }
  RunningFrontEnd(const RunningFrontEnd&) = delete;
  RunningFrontEnd& operator=(const RunningFrontEnd&) = delete;
  ~RunningFrontEnd() {
    TerminateProcess(process_.hProcess, 99);  // does nothing to one that has ended
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  /// The front end's answer; -1 when it gives none.
  std::intptr_t Send(std::uint64_t kind, const Bytes& bytes) const {
    COPYDATASTRUCT data{static_cast<ULONG_PTR>(kind), static_cast<DWORD>(bytes.size()),
                        bytes.empty() ? nullptr : const_cast<std::uint8_t*>(bytes.data())};
    DWORD_PTR answer = 0;
    const LRESULT sent = SendMessageTimeoutA(window_, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data), SMTO_NORMAL,
                                             kLongestWaitMilliseconds, &answer);
    return sent != 0 ? static_cast<std::intptr_t>(answer) : -1;
  }

  /// The exit code of the ended program; 259 when it goes on.
  DWORD ExitCode() const {
    DWORD code = 0;
    WaitForSingleObject(process_.hProcess, kLongestWaitMilliseconds);
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
  }

 private:
  PROCESS_INFORMATION process_{};
  HWND window_ = nullptr;
};

class FrontEndProgram : public testing::Test {
 protected:
  std::string Log() const { return folder_.ReadText("log"); }
  std::string LogPath() const { return folder_.File("log"); }

  const frontend_test::TestDesktop desktop;

 private:
  const test_support::TempFolder folder_;
};

TEST_F(FrontEndProgram, RefusesWhatIsNoRecordAndGoesOn) {
  const RunningFrontEnd frontEnd(desktop, LogPath());
  EXPECT_EQ(frontEnd.Send(82, {}), 0);
  EXPECT_EQ(frontEnd.Send(102, {1, 0, 0, 0, 0, 0, 0}), 0);
  EXPECT_EQ(frontEnd.Send(42, Bytes(268, 'n')), 0);
  EXPECT_EQ(frontEnd.Send(82, Join({Field("pico"), Bytes(260, 'n'), Bytes(4, 0)})), 0);
  EXPECT_EQ(frontEnd.Send(0x100000066, Bytes(8, 0)), 0);
  EXPECT_EQ(frontEnd.Send(7, Bytes(100000, 0xAB)), 0);
  EXPECT_EQ(frontEnd.Send(102, {1, 0, 0, 0, 0, 0, 0, 0}), 1);
  EXPECT_EQ(frontEnd.ExitCode(), 0u);

  EXPECT_EQ(Log(),
            R"({"bytes":0,"hex":"","kind":82,"reason":"has 0 bytes, not 524","record":"refused"})"
            "\n"
            R"({"bytes":7,"hex":"01000000000000","kind":102,"reason":"has 7 bytes, not 8","record":"refused"})"
            "\n"
            R"({"bytes":268,"hex":")" +
                Hex(Bytes(268, 'n')) +
                R"(","kind":42,"reason":"the part has no terminator","record":"refused"})"
                "\n"
                R"({"bytes":524,"hex":")" +
                Hex(Field("pico")) + Hex(Bytes(260, 'n')) +
                R"(00000000","kind":82,"reason":"the phase has no terminator","record":"refused"})"
                "\n"
                R"({"bytes":8,"hex":"0000000000000000","kind":4294967398,"reason":"unknown kind","record":"refused"})"
                "\n"
                R"({"bytes":100000,"hex":")" +
                Hex(Bytes(1024, 0xAB)) +
                R"(","kind":7,"reason":"unknown kind","record":"refused"})"
                "\n"
                R"({"boxPowerCycle":0,"bytes":8,"cpuRestart":1,"hex":"0100000000000000","kind":102,"record":"restart"})"
                "\n");
}

TEST_F(FrontEndProgram, ShowsAnyTextAndAnyNumber) {
  const RunningFrontEnd frontEnd(desktop, LogPath());
  const std::string oddText = "%s%n\t\"\x80\xFF&";
  EXPECT_EQ(frontEnd.Send(42, Join({Field(oddText), Bytes(8, 0xFF)})), 1);
  EXPECT_EQ(frontEnd.Send(42, Join({Field(""), Bytes(8, 0)})), 1);
  EXPECT_EQ(frontEnd.Send(82, Join({Field(oddText), Field(oddText), {0x00, 0x00, 0x00, 0x80}})), 1);
  EXPECT_EQ(frontEnd.Send(82, Join({Field(std::string(259, 'n')), Field(""), {0xFF, 0xFF, 0xFF, 0x7F}})), 1);
  EXPECT_EQ(frontEnd.Send(102, Bytes(8, 0xFF)), 1);
  EXPECT_EQ(frontEnd.ExitCode(), 0u);
  EXPECT_THAT(Log(), HasSubstr(R"("part":"%s%n\u0009\"\u0080\u00ff&","percent":-2147483648,"phase":"%s%n)"));
  EXPECT_THAT(Log(), HasSubstr(R"("percent":2147483647,)"));
  EXPECT_THAT(Log(), HasSubstr(R"({"boxPowerCycle":4294967295,"bytes":8,"cpuRestart":4294967295,)"));
}

TEST_F(FrontEndProgram, LivesWithMorePartsThanThereAre) {
  const RunningFrontEnd frontEnd(desktop, LogPath());
  for (int i = 0; i < 300; ++i)
    ASSERT_EQ(frontEnd.Send(82, Join({Field("part" + std::to_string(i)), Field("Loading"), {9, 0, 0, 0}})), 1);
  EXPECT_EQ(frontEnd.Send(102, Bytes(8, 0)), 1);
  EXPECT_EQ(frontEnd.ExitCode(), 0u);
  EXPECT_THAT(Log(), HasSubstr(R"("part":"part299","percent":9,)"));
}

TEST(FrontEndCommandLine, IsRefusedWithTheUsage) {
  for (const std::string argument : {"--nonsense", "--log", "--hold", "file"}) {
    const auto run = RunProcess(FRONT_END_PROGRAM, {argument});
    EXPECT_EQ(run.exitCode, 2) << argument;
    EXPECT_EQ(run.standardError, "usage: frontend [--log FILE] [--hold PART FILE] [--exit-after-restart]\n");
  }
}

TEST(FrontEndCommandLine, ALogThatCannotBeWrittenIsTold) {
  const test_support::TempFolder folder;
  const std::string log = folder.File("none") + "/log";
  const auto run = RunProcess(FRONT_END_PROGRAM, {"--log", log});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "frontend: " + log + " cannot be written\n");
}

}  // namespace
