// The program fwbench, run as a user runs it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulator/Faults.h"
#include "support/Process.h"
#include "support/TempFolder.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kNewCards[] =
    "{\"errors\":[],\"part\":\"belmara\",\"running\":\"1160\",\"stored\":\"1160\"}\n"
    "{\"errors\":[],\"part\":\"bkarvel\",\"running\":\"0016\",\"stored\":\"0016\"}\n"
    "{\"errors\":[],\"part\":\"dovu\",\"running\":\"1160\",\"stored\":\"1160\"}\n"
    "{\"errors\":[],\"part\":\"dkarvel\",\"running\":\"0016\",\"stored\":\"0016\"}\n";
constexpr char kNewBox[] =
    "{\"errors\":[],\"part\":\"pelgrimar\",\"running\":\"0218\",\"stored\":\"0218\"}\n"
    "{\"errors\":[],\"part\":\"fwcore\",\"running\":\"0224\",\"stored\":\"0224\"}\n"
    "{\"errors\":[],\"part\":\"tulmen\",\"running\":\"0001\",\"stored\":\"0001\"}\n"
    "{\"errors\":[],\"part\":\"vulmen\",\"running\":\"00e1\",\"stored\":\"00e1\"}\n"
    "{\"errors\":[],\"part\":\"tolmarn\",\"running\":\"0230\",\"stored\":\"0230\"}\n"
    "{\"errors\":[],\"part\":\"ulmen\",\"running\":\"001b\",\"stored\":\"001b\"}\n";
constexpr char kNewOrboQx[] =
    "{\"errors\":[],\"part\":\"pico\",\"running\":\"0120\",\"stored\":\"0120\"}\n"
    "{\"errors\":[],\"part\":\"xandrel\",\"running\":\"030e\",\"stored\":\"030e\"}\n"
    "{\"errors\":[],\"part\":\"teskpro\",\"running\":\"000f\",\"stored\":\"000f\"}\n"
    "{\"errors\":[],\"part\":\"vqxpwr\",\"running\":\"0109\",\"stored\":\"0109\"}\n"
    "{\"errors\":[],\"part\":\"enc1\",\"running\":\"0203\",\"stored\":\"0203\"}\n"
    "{\"errors\":[],\"part\":\"vid1\",\"running\":\"0009\",\"stored\":\"0009\"}\n"
    "{\"errors\":[],\"part\":\"enc2b\",\"running\":\"001f\",\"stored\":\"001f\"}\n"
    "{\"errors\":[],\"part\":\"vid2\",\"running\":\"0009\",\"stored\":\"0009\"}\n";
const std::string kNewBench = std::string(kNewCards) + kNewBox + kNewOrboQx;
const std::vector<std::string> kReleaseFiles = {
    "BLMX0202.rbi", "BROX0201.rbi", "DVUX0202.rbi", "ENCD.rbi",     "ENSC.rbi",     "ENVC.rbi",
    "JQPW.rbi",     "JQPX.rbi",     "JQPY.rbi",     "KRVL0101.rbi", "PICO.rbi",     "PLGR0201.rbi",
    "QNDL.rbi",     "SPCT.rbi",     "TLM_0104.rbi", "TSKP.rbi",     "TULM0002.rbi", "ULMN0101.rbi",
    "VQPW.rbi",     "VQPX.rbi",     "VULM0101.rbi", "XNDR.rbi",     "YRVL.rbi",     "YRVX.rbi"};

MATCHER(IsOneLine, "is one line") {
  return arg.find('\n') == arg.size() - 1 && arg.size() > 1;
}

class Fwbench : public testing::Test {
 protected:
  test_support::ProcessResult Run(const std::vector<std::string>& arguments) const {
    return test_support::RunProcess(FWBENCH_PROGRAM, arguments, {.workingDirectory = folder_.Path().string()});
  }
  /// Runs what must work, and returns what it printed.
  std::string Output(const std::vector<std::string>& arguments) const {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 0) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardError, "");
    return run.standardOutput;
  }
  void Fails(const std::vector<std::string>& arguments, int exitCode, const std::string& complaint) const {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, exitCode) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardOutput, "");
    EXPECT_EQ(run.standardError, "fwbench: " + complaint + "\n");
  }
  std::vector<std::string> NamesIn(const std::string& name) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / name))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  void ChangeState(const std::function<void(nlohmann::json&)>& change) const {
    nlohmann::json state = nlohmann::json::parse(folder_.ReadText("bench/hardware/state.json"));
    change(state);
    folder_.Write("bench/hardware/state.json", state.dump());
  }

  test_support::TempFolder folder_;
};

TEST_F(Fwbench, MakesABenchOfAllHardwareAndItsFirmware) {
  EXPECT_EQ(Output({"new", "bench"}), "");
  EXPECT_THAT(NamesIn("bench"), ElementsAre("firmware", "hardware"));
  EXPECT_EQ(NamesIn("bench/firmware"), kReleaseFiles);
  EXPECT_THAT(folder_.ReadText("bench/firmware/DVUX0202.rbi").substr(12, 10), "R1161 DVUX");
  EXPECT_EQ(Output({"show", "bench", "--json"}), kNewBench);
}

TEST_F(Fwbench, MakesTheSameBenchFromTheSameSeed) {
  Output({"new", "one", "--seed", "7"});
  Output({"new", "two", "--seed", "7"});
  Output({"new", "other", "--seed", "8"});
  EXPECT_EQ(NamesIn("one/hardware"), NamesIn("two/hardware"));
  EXPECT_NE(NamesIn("one/hardware"), NamesIn("other/hardware"));
  EXPECT_EQ(folder_.ReadBytes("one/firmware/BLMX0202.rbi"), folder_.ReadBytes("two/firmware/BLMX0202.rbi"));
  EXPECT_NE(folder_.ReadBytes("one/firmware/BLMX0202.rbi"), folder_.ReadBytes("other/firmware/BLMX0202.rbi"));
}

TEST_F(Fwbench, PlugsInTheCardsThatAreAskedFor) {
  Output({"new", "b", "--host-cards", "belmara", "--box", "none", "--orbo-qx", "none"});
  Output({"new", "d", "--host-cards", "dovu", "--box", "none", "--orbo-qx", "none"});
  Output({"new", "n", "--host-cards", "none", "--box", "none", "--orbo-qx", "none"});
  EXPECT_EQ(Output({"show", "b", "--json"}) + Output({"show", "d", "--json"}), kNewCards);
  EXPECT_EQ(Output({"show", "n", "--json"}), "");
  EXPECT_EQ(NamesIn("n/firmware"), kReleaseFiles);
}

TEST_F(Fwbench, ConnectsTheBoxThatIsAskedFor) {
  const auto made = [&](const std::string& choice) {
    Output({"new", choice, "--host-cards", "belmara", "--box", choice, "--orbo-qx", "none"});
    return nlohmann::json::parse(folder_.ReadText(choice + "/hardware/state.json"));
  };
  EXPECT_EQ(made("on")["box"]["isOn"], true);
  EXPECT_EQ(made("off")["box"]["isOn"], false);
  EXPECT_FALSE(made("none").contains("box"));
  EXPECT_THAT(Output({"show", "off", "--json"}), EndsWith(kNewBox)) << "what it would run";
  EXPECT_THAT(Output({"show", "none", "--json"}), Not(HasSubstr("fwcore")));
  EXPECT_EQ(Output({"power-cycle", "off"}), "");
  EXPECT_EQ(nlohmann::json::parse(folder_.ReadText("off/hardware/state.json"))["box"]["isOn"], false);
}

TEST_F(Fwbench, MakesWhatADescriptionSays) {
  folder_.Write("odd.json",
                R"({"files":{"junk.rbi":{"raw":"00ff"}},"veltra":{"dovu":{"flash":null,"karvel":"a0000"}}})");
  EXPECT_EQ(Output({"new", "bench", "--describe", "odd.json"}), "");
  EXPECT_THAT(NamesIn("bench/firmware"), ElementsAre("junk.rbi"));
  EXPECT_THAT(folder_.ReadBytes("bench/firmware/junk.rbi"), ElementsAre(0x00, 0xFF));
  EXPECT_EQ(Output({"show", "bench", "--json"}),
            "{\"errors\":[],\"part\":\"dovu\",\"running\":null,\"stored\":null}\n"
            "{\"errors\":[],\"part\":\"dkarvel\",\"running\":\"000a\",\"stored\":\"000a\"}\n");
}

TEST_F(Fwbench, RefusesABadDescription) {
  folder_.Write("bad.json", R"({"veltra":{"dovu":{"flash":1160}}})");
  Fails({"new", "bench", "--describe", "bad.json"}, 1,
        "bad.json: veltra.dovu.flash: expected a text of 1 to 4 hexadecimal digits, found 1160");
  folder_.Write("box.json", R"({"veltra":{"box":{"config":{"FirmwareRev":2}}}})");
  Fails({"new", "bench", "--describe", "box.json"}, 1,
        "box.json: veltra.box.config.FirmwareRev: expected a text, found 2");
  Fails({"new", "bench", "--describe", "none.json"}, 2, "none.json: No such file or directory");
  EXPECT_FALSE(folder_.Has("bench"));
}

TEST_F(Fwbench, RefusesAFolderThatHoldsSomething) {
  folder_.Write("bench/file", "x");
  Fails({"new", "bench"}, 1, "bench: is not empty");
  EXPECT_THAT(NamesIn("bench"), ElementsAre("file"));
  std::filesystem::create_directory(folder_.Path() / "empty");
  Output({"new", "empty"});
  EXPECT_EQ(Output({"show", "empty", "--json"}), kNewBench);
}

TEST_F(Fwbench, PlugsInTheOrboQxThatIsAskedFor) {
  const auto made = [&](const std::string& model) {
    Output({"new", model, "--host-cards", "none", "--box", "none", "--orbo-qx", model});
    return Output({"show", model, "--json"});
  };
  EXPECT_EQ(made("4"), kNewOrboQx);
  EXPECT_EQ(made("5"),
            "{\"errors\":[],\"part\":\"pico\",\"running\":\"0120\",\"stored\":\"0120\"}\n"
            "{\"errors\":[],\"part\":\"yorvalen\",\"running\":\"0221\",\"stored\":\"0221\"}\n"
            "{\"errors\":[],\"part\":\"teskpro\",\"running\":\"000f\",\"stored\":\"000f\"}\n"
            "{\"errors\":[],\"part\":\"jqxpwry\",\"running\":\"0109\",\"stored\":\"0109\"}\n");
  EXPECT_EQ(made("none"), "");
}

TEST_F(Fwbench, MakesWhatADescriptionSaysOfAnOrboQx) {
  folder_.Write("odd.json", R"({"morvak":{"boardKind":8,"rev":{"MorvakFPGA":"UNKNOWN","MorvakFirmware":"01.23 a"}}})");
  Output({"new", "bench", "--describe", "odd.json"});
  EXPECT_EQ(Output({"show", "bench", "--json"}),
            "{\"errors\":[],\"part\":\"pico\",\"running\":\"0123\",\"stored\":\"0123\"}\n"
            "{\"errors\":[],\"part\":\"MorvakFPGA\",\"running\":null,\"stored\":null}\n");
  folder_.Write("bad.json", R"({"morvak":{"boardKind":6}})");
  Fails({"new", "other", "--describe", "bad.json"}, 1, "bad.json: morvak.boardKind: expected 5, 7 or 8, found 6");
}

TEST_F(Fwbench, ShowsATableForPeople) {
  Output({"new", "bench", "--host-cards", "belmara", "--box", "none", "--orbo-qx", "none"});
  ChangeState([](nlohmann::json& state) {
    auto& card = state["cards"]["belmara"];
    card["flashRunning"] = nullptr;
    card["karvel"]["rows"][0] = "00170000000000000000000000000000";
    card["errors"] = {{"texts", {"card: read of register 00000"}}, {"total", 3}};
  });
  EXPECT_EQ(Output({"show", "bench"}),
            "Part         Running  Stored  \n"
            "belmara      erased   1160    \n"
            "    protocol error: card: read of register 00000\n"
            "    protocol error: and 2 more\n"
            "bkarvel      0016     0017    \n");
}

TEST_F(Fwbench, ShowsErrorsAsJsonOfAsciiAlone) {
  Output({"new", "bench", "--host-cards", "belmara"});
  ChangeState([](nlohmann::json& state) {
    state["cards"]["belmara"]["errors"] = {{"texts", {"\"q\" \u00e9"}}, {"total", 1}};
  });
  EXPECT_THAT(
      Output({"show", "bench", "--json"}),
      StartsWith(
          "{\"errors\":[\"\\\"q\\\" \\u00e9\"],\"part\":\"belmara\",\"running\":\"1160\",\"stored\":\"1160\"}\n"));
}

TEST_F(Fwbench, MakesWhatIsStoredRunAtAPowerCycle) {
  Output({"new", "bench", "--host-cards", "belmara", "--box", "none", "--orbo-qx", "none"});
  ChangeState([](nlohmann::json& state) {
    state["cards"]["belmara"]["flashRunning"] = "1234";
    state["cards"]["belmara"]["karvel"]["rows"][0] = "00170000000000000000000000000000";
    state["cards"]["belmara"]["flash"]["hung"] = true;
  });
  EXPECT_THAT(Output({"show", "bench", "--json"}), HasSubstr(R"("running":"1234","stored":"1160")"));
  EXPECT_EQ(Output({"power-cycle", "bench"}), "");
  EXPECT_EQ(Output({"show", "bench", "--json"}),
            "{\"errors\":[],\"part\":\"belmara\",\"running\":\"1160\",\"stored\":\"1160\"}\n"
            "{\"errors\":[],\"part\":\"bkarvel\",\"running\":\"0017\",\"stored\":\"0017\"}\n");
  const auto state = nlohmann::json::parse(folder_.ReadText("bench/hardware/state.json"));
  EXPECT_EQ(state["cards"]["belmara"]["flash"]["hung"], false);
}

TEST_F(Fwbench, RefusesAFolderWithoutABenchAndADamagedOne) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"show", "."}, {"power-cycle", "."}, {"run", "."}}) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.standardError, EndsWith(": holds no bench\n"));
    EXPECT_THAT(run.standardError, IsOneLine());
  }
  Output({"new", "bench"});
  folder_.Write("bench/hardware/state.json", "{");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"show", "bench"}, {"power-cycle", "bench"}, {"run", "bench"}}) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.standardError, HasSubstr("state.json: is damaged: not readable as JSON: "));
    EXPECT_THAT(run.standardError, IsOneLine());
  }
}

TEST_F(Fwbench, ListsItsFaultsOneALine) {
  const std::string faults = Output({"faults"});
  EXPECT_THAT(faults,
              StartsWith("device-missing            enumerations of a device interface: the device is not there\n"));
  const auto table = simulator::FaultTable();
  ASSERT_GT(table.size(), 40u);
  for (const simulator::FaultEntry& entry : table.subspan(1))
    EXPECT_THAT(faults, HasSubstr(std::string("\n").append(entry.name).append(" ")));
}

TEST_F(Fwbench, ExitsWith2AndALineOnBadUsage) {
  Output({"new", "bench"});
  const std::vector<std::vector<std::string>> badUsages = {
      {},
      {"bogus"},
      {"--bogus"},
      {"new"},
      {"new", "a", "b"},
      {"new", "a", "--host-cards", "three"},
      {"new", "a", "--box", "maybe"},
      {"new", "a", "--orbo-qx", "6"},
      {"new", "a", "--seed", "x"},
      {"new", "a", "--seed", "-1"},
      {"new", "a", "--seed", "0x10"},
      {"new", "a", "--seed", ""},
      {"new", "a", "--seed", "18446744073709551616"},
      {"new", "a", "--describe"},
      {"new", "a", "--describe", "d.json", "--host-cards", "both"},
      {"new", "a", "--describe", "d.json", "--seed", "1"},
      {"show"},
      {"show", "bench", "--xml"},
      {"power-cycle"},
      {"power-cycle", "bench", "again"},
      {"faults", "all"},
      {"run"},
      {"run", "bench", "-version"},
      {"run", "bench", "--pace", "0", "--"},
      {"run", "bench", "--pace", "-1", "--"},
      {"run", "bench", "--pace", "fast", "--"},
      {"run", "bench", "--pace", "nan", "--"},
      {"run", "bench", "--pace", "1e9", "--"},
      {"run", "bench", "--trace", "--"},
      {"run", "bench", "--fault", "--"},
      {"run", "bench", "--fault", "bogus", "--"},
      {"run", "bench", "--fault", "erase-fails@0", "--"},
      {"run", "bench", "--fault", "erase-fails@x", "--"},
      {"run", "bench", "--fault", "power-cut", "--"},
      {"run", "bench", "--fault", "erase-fails", "bogus", "--"},
      {"show", "bench", "--", "-version"},
  };
  for (const auto& arguments : badUsages) {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardOutput, "") << testing::PrintToString(arguments);
    EXPECT_THAT(run.standardError, StartsWith("fwbench: "));
    EXPECT_THAT(run.standardError, IsOneLine());
  }
  EXPECT_FALSE(folder_.Has("a"));
  EXPECT_EQ(Output({"show", "bench", "--json"}), kNewBench);
}

TEST_F(Fwbench, TellsItsUsageAndVersion) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"new", "--help"}, {"run", "--help"}, {"show", "--help"}}) {
    const std::string help = Output(arguments);
    EXPECT_THAT(help, HasSubstr("Usage: fwbench"));
  }
  EXPECT_EQ(Output({"--version"}), "fwbench " PROJECT_VERSION "\n");
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(Fwbench, ExitsWith1WhereItsOutputCannotBeWritten) {
  Output({"new", "bench"});
  for (const char* line : {"exec \"$0\" show bench >/dev/full", "exec \"$0\" faults >/dev/full"}) {
    const auto run =
        test_support::RunProcess("sh", {"-c", line, FWBENCH_PROGRAM}, {.workingDirectory = folder_.Path().string()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.standardError, "fwbench: cannot write to standard output\n");
  }
}
#endif

// The installer itself has its own tests; these are about what fwbench does around it.

TEST_F(Fwbench, RunsTheInstallerInTheFirmwareFolder) {
  Output({"new", "bench"});
  EXPECT_THAT(Output({"run", "bench", "--", "-version", "-nopause"}), HasSubstr("belmara      02.01           1160"));
  const auto run = Run({"run", "bench", "--", "-dovu", "-noprogress", "-nopause"});
  EXPECT_EQ(run.exitCode, 2) << "the installer's own: restart the computer";
  EXPECT_EQ(run.standardError, "");
  EXPECT_THAT(Output({"show", "bench", "--json"}), HasSubstr(R"("part":"dovu","running":"1160","stored":"1161")"));
  EXPECT_EQ(Run({"run", "bench", "--", "-bogus", "-nopause"}).exitCode, 255);
}

TEST_F(Fwbench, WritesATraceBesideItsCaller) {
  Output({"new", "bench"});
  Output({"run", "bench", "--trace", "trace.txt", "--", "-version", "-nopause"});
  const std::string trace = folder_.ReadText("trace.txt");
  EXPECT_THAT(trace, StartsWith("belmara C c1762080 00000000\nbelmara C c1762404 00000000\n"));
  EXPECT_THAT(trace, HasSubstr("\ndovu C c1762404 00000000\n"));
  EXPECT_THAT(trace, HasSubstr("\nmorvak C aa010008 00000000\n"));
  EXPECT_THAT(trace, HasSubstr("\nbelmara W 0400c 000000ff\n"));
  EXPECT_THAT(trace, HasSubstr("\nbelmara R 04000 00160000\n"));
  Output({"run", "bench", "--trace", "again.txt", "--pace", "1000000", "--", "-version", "-nopause"});
  EXPECT_EQ(folder_.ReadText("again.txt"), trace) << "always the same run";
}

TEST_F(Fwbench, FailsBeforeTheRunWhereTheTraceCannotBeWritten) {
  Output({"new", "bench"});
  const auto run = Run({"run", "bench", "--trace", "no/trace.txt", "--", "-version", "-nopause"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardOutput, "");
  EXPECT_THAT(run.standardError, EndsWith(folder_.File("no/trace.txt") + ": cannot be written\n"));
}

#if !defined(_WIN32)  // which has no shell, and no device that is always full
TEST_F(Fwbench, SaysWhenTheTraceIsNotWhole) {
  Output({"new", "bench"});
  const auto run = Run({"run", "bench", "--trace", "/dev/full", "--", "-version", "-nopause"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "fwbench: /dev/full: the trace could not be written to its end\n");
}

TEST_F(Fwbench, SaysWhenTheWaveformIsNotWhole) {
  Output({"new", "bench"});
  const auto run = Run({"run", "bench", "--vcd", "/dev/full", "--", "-version", "-nopause"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError, "fwbench: /dev/full: the waveform could not be written to its end\n");
}
#endif

TEST_F(Fwbench, PullsThePlug) {
  Output({"new", "bench"});
  const auto run = Run({"run", "bench", "--fault", "power-cut@50", "--trace", "trace", "--", "-belmara", "-nopause"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.standardError, EndsWith("fwbench: power cut at write 50\n"));
  const std::string trace = folder_.ReadText("trace");
  std::size_t writes = 0;
  for (std::size_t at = trace.find(" W "); at != std::string::npos; at = trace.find(" W ", at + 1))
    ++writes;
  EXPECT_EQ(writes, 49u) << "the fiftieth did not take place";
}

TEST_F(Fwbench, KeepsWhatAPulledPlugLeaves) {
  Output({"new", "bench"});
  // The chip is stuck in its first erase until power is lost.
  EXPECT_EQ(Run({"run", "bench", "--fault", "erase-stuck", "--", "-belmara", "-nopause", "-noprogress"}).exitCode, 255);
  const auto stuck = nlohmann::json::parse(folder_.ReadText("bench/hardware/state.json"));
  EXPECT_EQ(stuck["cards"]["belmara"]["flash"]["hung"], true);
  Run({"run", "bench", "--fault", "power-cut@1", "--", "-version", "-nopause"});
  const auto cut = nlohmann::json::parse(folder_.ReadText("bench/hardware/state.json"));
  EXPECT_EQ(cut["cards"]["belmara"]["flash"]["hung"], false);
  EXPECT_EQ(cut["cards"]["belmara"]["flash"]["readMode"], "array");
}

TEST_F(Fwbench, TakesSeveralFaults) {
  Output({"new", "bench"});
  const auto run = Run({"run", "bench", "--fault", "device-missing@1", "--fault", "device-missing@2", "--fault",
                        "device-missing@3", "--", "-version", "-nopause"});
  EXPECT_EQ(run.exitCode, 255);
  EXPECT_THAT(run.standardOutput, IsEmpty());
}

}  // namespace
