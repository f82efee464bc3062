#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "BenchProcess.h"
#include "support/InstallerRun.h"

// What the program decides about the parts of the box, and all that it says then, on benches from descriptions. The
// versions that this release expects: pelgrimar 220, fwcore 225, tulmen 2, vulmen 1, tolmarn 232, ulmen 1c.

namespace {

using nlohmann::json;

/// A first card and a box with all its boards, and no files.
json Bench() {
  const json vpd = {{"ZB", "1"}, {"ZC", "2"}};
  return {{"files", json::object()},
          {"veltra",
           {{"belmara", {{"vpd", {{"ZA", "5"}, {"ZB", "1"}, {"ZC", "0"}}}, {"flash", "1160"}, {"karvel", "00160000"}}},
            {"box",
             {{"config",
               {{"SparkwellMajorRev", "2"},
                {"SparkwellMinorRev", "18"},
                {"DolmbrinMajorRev", "0"},
                {"DolmbrinMinorRev", "e1"},
                {"TarnvaldMajorRev", "0"},
                {"TarnvaldMinorRev", "1"},
                {"RavenshaleMajorRev", "2"},
                {"RavenshaleMinorRev", "30"},
                {"TanbrookMajorRev", "0"},
                {"TanbrookMinorRev", "1b"},
                {"FirmwareRev", "2.24 b"}}},
              {"vpd", {{"VPD_Brox", vpd}, {"VPD_Fenrok", vpd}, {"VPD_Jorl", vpd}}}}}}}};
}

json& Config(json& bench) {
  return bench["veltra"]["box"]["config"];
}

void AddFile(json& bench, const std::string& name, const std::string& id, const std::string& version) {
  bench["files"][name] = {{"id", id}, {"version", version}, {"payload", 100}};
}

/// A failure line, up to the number of the line in the source.
std::string Failed(const std::string& message, const std::string& file = "FwDeploy.cpp") {
  return "FwDeploy failed: " + message + " File: " + file + " Line: #\n";
}

constexpr char kDone[] = "Loading\nProgramming\n100%\nDone\n";
constexpr char kWrongVersion[] = "RBI file is not the correct version for this installer";
constexpr char kNotUsable[] = "Required RBI file is missing or not usable";

// ---- One part, and the rules

struct Rule {
  const char* what;
  std::vector<std::string> arguments;
  std::string fileVersion;
  int exitCode;
  std::string out;
  std::string err;
};

void PrintTo(const Rule& rule, std::ostream* stream) {
  *stream << rule.what;
}

class BoxRules : public BenchProcess, public testing::WithParamInterface<Rule> {};

/// The first FPGA runs 218; its file is of the rule's version, or absent.
TEST_P(BoxRules, DecideAboutAPart) {
  const Rule& rule = GetParam();
  json bench = Bench();
  AddFile(bench, "PLGR0201.rbi", "PLGR", rule.fileVersion);
  AddFile(bench, "foreign.rbi", "BROX", "0220");
  AddFile(bench, "KRVL0101.rbi", "KRVL", "0016");
  MakeBench(bench.dump());
  std::vector<std::string> arguments = rule.arguments;
  arguments.push_back("-nopause");
  const auto run = Run(arguments);
  EXPECT_EQ(run.exitCode, rule.exitCode);
  EXPECT_EQ(run.standardOutput, rule.out);
  EXPECT_EQ(WithoutLineNumber(run.standardError), rule.err);
  const json row = Shown("pelgrimar");
  EXPECT_EQ(row["running"], "0218");
  EXPECT_EQ(row["stored"], rule.exitCode == 1 ? rule.fileVersion : "0218");
  EXPECT_EQ(row["errors"], json::array());
  EXPECT_EQ(Shown("fwcore")["errors"], json::array());
}

const std::string kProgrammed = std::string("pelgrimar\n") + kDone;

INSTANTIATE_TEST_SUITE_P(
    Fussy, BoxRules,
    testing::Values(Rule{"the expected version, which the part lacks", {"-pelgrimar"}, "0220", 1, kProgrammed, ""},
                    Rule{"another version", {"-pelgrimar"}, "0221", 255, "", Failed(kWrongVersion)},
                    Rule{"the version that the part has, and another is expected",
                         {"-pelgrimar"},
                         "0218",
                         255,
                         "",
                         Failed(kWrongVersion)},
                    Rule{"a part without an expected version", {"-bkarvel"}, "0220", 0, "", ""},
                    Rule{"not selected", {"-noprogress"}, "0220", 0, "", ""},
                    Rule{"silent", {"-pelgrimar", "-noprogress"}, "0220", 1, "", ""}));

INSTANTIATE_TEST_SUITE_P(
    NotFussy, BoxRules,
    testing::Values(Rule{"another version", {"-pelgrimar", "-nofussy"}, "0221", 1, kProgrammed, ""},
                    Rule{"an older version", {"-pelgrimar", "-nofussy"}, "0001", 1, kProgrammed, ""},
                    Rule{"the version that the part has", {"-pelgrimar", "-nofussy"}, "0218", 1, kProgrammed, ""}));

INSTANTIATE_TEST_SUITE_P(
    Update, BoxRules,
    testing::Values(
        Rule{"a newer version",
             {"-pelgrimar", "-nofussy", "-update"},
             "1000",
             1,
             "Replacing pelgrimar version 218 with new version 1000\n" + kProgrammed +
                 "Replaced pelgrimar version 218 with new version 1000\n",
             ""},
        Rule{"an older version",
             {"-pelgrimar", "-nofussy", "-update"},
             "000a",
             1,
             "Replacing pelgrimar version 218 with new version a\n" + kProgrammed +
                 "Replaced pelgrimar version 218 with new version a\n",
             ""},
        Rule{"the version that the part has",
             {"-pelgrimar", "-nofussy", "-update"},
             "0218",
             0,
             "pelgrimar is already at version 218\n",
             ""},
        Rule{"fussy too, the expected version",
             {"-pelgrimar", "-update"},
             "0220",
             1,
             "Replacing pelgrimar version 218 with new version 220\n" + kProgrammed +
                 "Replaced pelgrimar version 218 with new version 220\n",
             ""},
        Rule{"fussy too, another version", {"-pelgrimar", "-update"}, "0221", 255, "", Failed(kWrongVersion)},
        Rule{"without progress",
             {"-pelgrimar", "-update", "-noprogress"},
             "0220",
             1,
             "Replacing pelgrimar version 218 with new version 220\n"
             "Replaced pelgrimar version 218 with new version 220\n",
             ""}));

INSTANTIATE_TEST_SUITE_P(
    Files, BoxRules,
    testing::Values(
        Rule{"named: any version will do", {"PLGR0201.rbi"}, "0199", 1, kProgrammed, ""},
        Rule{"named, and fussy behind it", {"PLGR0201.rbi", "-fussy"}, "0199", 255, "", Failed(kWrongVersion)},
        Rule{"named behind fussy, which it takes back", {"-fussy", "PLGR0201.rbi"}, "0199", 1, kProgrammed, ""},
        Rule{"named, and an update that is none",
             {"PLGR0201.rbi", "-update"},
             "0218",
             0,
             "pelgrimar is already at version 218\n",
             ""},
        Rule{"of another part", {"-pelgrimar", "foreign.rbi"}, "0220", 255, "", Failed(kNotUsable)},
        Rule{"that is not there",
             {"-pelgrimar", "absent.rbi"},
             "0220",
             255,
             "",
             "Unable to open file absent.rbi\n" + Failed(kNotUsable)}));

INSTANTIATE_TEST_SUITE_P(
    OptionsInConflict, BoxRules,
    testing::Values(
        Rule{"-fussy -nofussy", {"-pelgrimar", "-fussy", "-nofussy"}, "0221", 1, kProgrammed, ""},
        Rule{"-nofussy -fussy", {"-pelgrimar", "-nofussy", "-fussy"}, "0221", 255, "", Failed(kWrongVersion)},
        Rule{"-update -noupdate", {"-pelgrimar", "-nofussy", "-update", "-noupdate"}, "0218", 1, kProgrammed, ""},
        Rule{"-noupdate -update",
             {"-pelgrimar", "-nofussy", "-noupdate", "-update"},
             "0218",
             0,
             "pelgrimar is already at version 218\n",
             ""},
        Rule{"-pelgrimar -nopelgrimar", {"-pelgrimar", "-nopelgrimar"}, "0220", 0, "", ""},
        Rule{"-nopelgrimar -pelgrimar", {"-nopelgrimar", "-pelgrimar"}, "0220", 1, kProgrammed, ""},
        Rule{"-pelgrimar -noveltra -veltra", {"-pelgrimar", "-noveltra", "-veltra"}, "0220", 1, kProgrammed, ""}));

// ---- Whole runs

class FwbenchBox : public BenchProcess {
 protected:
  void Expect(const std::vector<std::string>& arguments, int exitCode, const std::string& out,
              const std::string& err = "") {
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, exitCode) << testing::PrintToString(arguments);
    EXPECT_EQ(run.standardOutput, out) << testing::PrintToString(arguments);
    EXPECT_EQ(WithoutLineNumber(run.standardError), err) << testing::PrintToString(arguments);
  }
};

constexpr char kCardRows[] =
    "     belmara      01.00           1160           1161\n"
    "     bkarvel      01.00           0016           N/A\n";

TEST_F(FwbenchBox, ShowsTheVersionsInOrder) {
  MakeBench(Bench().dump());
  Expect({"-version"}, 0,
         std::string(kTableHeading) + kCardRows +
             "   pelgrimar      01.02           0218           0220\n"
             "      fwcore      01.02           0224-b         0225\n"
             "      tulmen      01.02           0001           0002\n"
             "      vulmen      01.02           00e1           0001\n"
             "     tolmarn      01.02           0230           0232\n"
             "       ulmen      01.02           001b           001c\n"
             "Press 'Enter' to exit.\n");
}

TEST_F(FwbenchBox, InstallsEveryPartAndRunsItAfterThePowerCycle) {
  json bench = Bench();
  AddFile(bench, "PLGR0201.rbi", "PLGR", "0220");
  AddFile(bench, "BROX0201.rbi", "BROX", "0225");
  AddFile(bench, "TULM0002.rbi", "TULM", "0002");
  AddFile(bench, "VULM0101.rbi", "VULM", "0001");
  AddFile(bench, "TLM_0104.rbi", "TLM_", "0232");
  AddFile(bench, "ULMN0101.rbi", "ULMN", "001c");
  MakeBench(bench.dump());
  std::string all;
  for (const char* part : {"pelgrimar", "fwcore", "tulmen", "vulmen", "tolmarn", "ulmen"})
    all += part + std::string("\n") + kDone;
  Expect({"-all"}, 1, all + "To complete installation, power cycle your Veltra Kore.\nPress 'Enter' to exit.\n");
  // Until the power cycle the old versions run, and the next run would do it all again.
  EXPECT_EQ(Shown("fwcore")["running"], "0224");
  PowerCycle();
  Expect({"-version", "-nopause"}, 0,
         std::string(kTableHeading) + kCardRows +
             "   pelgrimar      01.02           0220           0220\n"
             "      fwcore      01.02           0225           0225\n"
             "      tulmen      01.02           0002           0002\n"
             "      vulmen      01.02           0001           0001\n"
             "     tolmarn      01.02           0232           0232\n"
             "       ulmen      01.02           001c           001c\n");
  Expect({"-all", "-nopause"}, 0,
         "pelgrimar does not need to be loaded\nfwcore does not need to be loaded\n"
         "tulmen does not need to be loaded\nvulmen does not need to be loaded\n"
         "tolmarn does not need to be loaded\nulmen does not need to be loaded\n");
  for (const char* part : {"belmara", "pelgrimar", "fwcore", "tulmen", "vulmen", "tolmarn", "ulmen"})
    EXPECT_EQ(Shown(part)["errors"], json::array()) << part;
}

TEST_F(FwbenchBox, CardAndBoxTogetherAskForBothPowerCycles) {
  json bench = Bench();
  AddFile(bench, "BLMX0202.rbi", "BLMX", "1161");
  AddFile(bench, "ULMN0101.rbi", "ULMN", "001c");
  MakeBench(bench.dump());
  Expect({"-all", "-noprogress"}, 3,
         "To complete installation, power cycle your CPU and your Veltra Kore.\nPress 'Enter' to exit.\n");
}

TEST_F(FwbenchBox, APartThatFailsLosesTheResultOfThoseBefore) {
  json bench = Bench();
  AddFile(bench, "PLGR0201.rbi", "PLGR", "0220");
  AddFile(bench, "BROX0201.rbi", "BROX", "0226");
  MakeBench(bench.dump());
  Expect({"-all"}, 255,
         kProgrammed + "An error has occurred. Installation may not be complete.\nPress 'Enter' to exit.\n",
         Failed(kWrongVersion));
  EXPECT_EQ(Shown("pelgrimar")["stored"], "0220");
}

// ---- tolmarn

/// A box that tells nothing of the board that vulmen and tolmarn are on.
json BenchWithoutJorl() {
  json bench = Bench();
  Config(bench)["DolmbrinMinorRev"] = "0";
  bench["veltra"]["box"]["vpd"].erase("VPD_Jorl");
  AddFile(bench, "TLM_0104.rbi", "TLM_", "0232");
  AddFile(bench, "VULM0101.rbi", "VULM", "0001");
  return bench;
}

TEST_F(FwbenchBox, WithoutTheBoardThereIsNoTolmarnUnlessForced) {
  MakeBench(BenchWithoutJorl().dump());
  Expect({"-tolmarn", "-vulmen", "-nopause"}, 0, "");
  Expect({"-tolmarn", "-vulmen", "-forcetolmarn", "-noforcetolmarn", "-nopause"}, 0, "");
  // Taken for 202, whatever it is; vulmen stays away.
  Expect({"-tolmarn", "-vulmen", "-forcetolmarn", "-update", "-nopause"}, 1,
         "Replacing tolmarn version 202 with new version 232\n"
         "tolmarn\nLoading\nProgramming\n100%\nDone\n"
         "Replaced tolmarn version 202 with new version 232\n");
}

TEST_F(FwbenchBox, AForcedTolmarnStandsInTheTable) {
  MakeBench(BenchWithoutJorl().dump());
  Expect({"-version", "-noforcetolmarn", "-forcetolmarn", "-nopause"}, 0,
         std::string(kTableHeading) + kCardRows +
             "   pelgrimar      01.02           0218           0220\n"
             "      fwcore      01.02           0224-b         0225\n"
             "      tulmen      01.02           0001           0002\n"
             "     tolmarn      01.02           0202           0232\n"
             "       ulmen      01.02           001b           001c\n");
}

TEST_F(FwbenchBox, ForceChangesNothingWhereTheBoardIs) {
  json bench = Bench();
  AddFile(bench, "TLM_0104.rbi", "TLM_", "0232");
  MakeBench(bench.dump());
  Expect({"-tolmarn", "-forcetolmarn", "-update", "-noprogress", "-nopause"}, 1,
         "Replacing tolmarn version 230 with new version 232\n"
         "Replaced tolmarn version 230 with new version 232\n");
}

// ---- What the box answers

TEST_F(FwbenchBox, APartOfVersionZeroIsNotThere) {
  json bench = Bench();
  Config(bench)["TarnvaldMinorRev"] = nullptr;
  MakeBench(bench.dump());
  const auto run = Run({"-version", "-nopause"});
  EXPECT_EQ(run.standardOutput.find("tulmen"), std::string::npos) << run.standardOutput;
  EXPECT_NE(run.standardOutput.find("vulmen"), std::string::npos) << run.standardOutput;
}

TEST_F(FwbenchBox, ABoardRevisionAboveTheRowsRangeCannotBeUpdated) {
  json bench = Bench();
  bench["veltra"]["box"]["vpd"]["VPD_Fenrok"] = {{"ZB", "2"}, {"ZC", "3"}};
  bench["veltra"]["box"]["vpd"]["VPD_Jorl"] = {{"ZB", "2"}, {"ZC", "3"}};
  AddFile(bench, "TULM0002.rbi", "TULM", "0002");
  AddFile(bench, "VULM0101.rbi", "VULM", "0001");
  MakeBench(bench.dump());
  Expect({"-tulmen", "-vulmen", "-noprogress", "-nopause"}, 1, "",
         "The tulmen function rev 2.3 cannot be updated using this utility\n");
  EXPECT_EQ(Shown("tulmen")["stored"], "0001");
  EXPECT_EQ(Shown("vulmen")["stored"], "0001");
}

TEST_F(FwbenchBox, ABoardWithoutAnAnswerEndsTheRun) {
  json bench = Bench();
  bench["veltra"]["box"]["vpd"].erase("VPD_Fenrok");
  MakeBench(bench.dump());
  Expect({"-version", "-nopause"}, 255, "",
         "Error: VPDInfo TALC command failed for VPD_Fenrok, for device tulmen\n" +
             Failed("Unable to get VPD information", "VersionDiscovery.cpp"));
}

TEST_F(FwbenchBox, ABoardWithoutARevisionEndsTheRun) {
  const struct {
    json vpd;
    const char* message;
  } cases[] = {{{{"ZC", "2"}}, "Unable to decode major VPD information"},
               {{{"ZB", "1"}}, "Unable to decode minor VPD information"}};
  for (const auto& each : cases) {
    json bench = Bench();
    bench["veltra"]["box"]["vpd"]["VPD_Brox"] = each.vpd;
    MakeBench(bench.dump());
    Expect({"-version", "-nopause"}, 255, "", Failed(each.message, "VersionDiscovery.cpp"));
    std::filesystem::remove_all(folder_.File("bench"));
  }
}

struct FirmwareCase {
  const char* text;
  const char* column;  ///< of the table
};

void PrintTo(const FirmwareCase& firmware, std::ostream* stream) {
  *stream << '"' << firmware.text << '"';
}

class FirmwareText : public BenchProcess, public testing::WithParamInterface<FirmwareCase> {};

TEST_P(FirmwareText, ShowsAsVersionAndLetter) {
  json bench = Bench();
  Config(bench)["FirmwareRev"] = GetParam().text;
  MakeBench(bench.dump());
  const auto run = Run({"-version", "-nopause"});
  EXPECT_EQ(run.exitCode, 0) << run.standardError;
  const std::string line = std::string("      fwcore      01.02           ") + GetParam().column + " 0225\n";
  EXPECT_NE(run.standardOutput.find(line), std::string::npos) << run.standardOutput;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FirmwareText,
    testing::Values(FirmwareCase{"2.24 b", "0224-b        "}, FirmwareCase{"2.24", "0224          "},
                    FirmwareCase{"2.24 0", "0224          "}, FirmwareCase{"2.24q", "0224-q        "},
                    // The letter is a digit, and goes into the minor number.
                    FirmwareCase{"2.35B", "055b          "}, FirmwareCase{"2.24  release", "0224-r        "},
                    FirmwareCase{"a", "0a00          "}, FirmwareCase{"", "0000          "},
                    FirmwareCase{"none", "0000          "},
                    FirmwareCase{"2.24 b, a text of 29 letters.", "0224-b        "}));

TEST_F(FwbenchBox, AFirmwareTextThatDoesNotFitEndsTheRun) {
  json bench = Bench();
  Config(bench)["FirmwareRev"] = "2.24 b, a text of thirty chars";
  MakeBench(bench.dump());
  Expect({"-version", "-nopause"}, 255, "", Failed("kHWCerr_UnexpectedObjectTypeError", "WyvrelHelper.cpp"));
}

// ---- No box

constexpr char kInaccessible[] = "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?\n";

TEST_F(FwbenchBox, ASilentBoxLeavesTheCardsUsable) {
  json bench = Bench();
  bench["veltra"]["box"] = nullptr;
  AddFile(bench, "BLMX0202.rbi", "BLMX", "1161");
  AddFile(bench, "PLGR0201.rbi", "PLGR", "0220");
  MakeBench(bench.dump());
  Expect({"-all", "-noprogress"}, 2, "To complete installation, power cycle your CPU.\nPress 'Enter' to exit.\n",
         kInaccessible);
}

TEST_F(FwbenchBox, WithoutTheFirstCardTheBoxCannotBeReached) {
  json bench = Bench();
  bench["veltra"]["dovu"] = bench["veltra"]["belmara"];
  bench["veltra"]["belmara"] = nullptr;
  MakeBench(bench.dump());
  Expect({"-version", "-nopause"}, 0,
         std::string(kTableHeading) +
             "        dovu      01.00           1160           1161\n"
             "     dkarvel      01.00           0016           N/A\n",
         "There is no Belmara card (driver not loaded?), so Veltra BOB is inaccessible.\n");
}

TEST_F(FwbenchBox, ABoxThatIsOffIsSilent) {
  ASSERT_EQ(test_support::RunProcess(FWBENCH_PROGRAM, {"new", folder_.File("bench"), "--box", "off"}).exitCode, 0);
  Expect({"-nopause"}, 0, "", kInaccessible);
}

// ---- A fresh bench

TEST_F(FwbenchBox, AFreshBenchInstallsEverything) {
  ASSERT_EQ(test_support::RunProcess(FWBENCH_PROGRAM, {"new", folder_.File("bench")}).exitCode, 0);
  Expect({"-all", "-noprogress"}, 7,
         "To complete installation, power cycle your CPU and your Veltra Kore.\n"
         "To complete installation, power cycle your CPU (and therefore also your Orbo QX).\n"
         "Press 'Enter' to exit.\n");
  PowerCycle();
  Expect({"-version", "-nopause"}, 0,
         std::string(kTableHeading) +
             "     belmara      02.01           1161           1161\n"
             "        dovu      02.01           1161           1161\n"
             "     bkarvel      02.01           0016           N/A\n"
             "     dkarvel      02.01           0016           N/A\n"
             "   pelgrimar      02.01           0220           0220\n"
             "      fwcore      02.01           0225           0225\n"
             "      tulmen      02.01           0002           0002\n"
             "      vulmen      02.01           0001           0001\n"
             "     tolmarn      02.01           0232           0232\n"
             "       ulmen      02.01           001c           001c\n"
             "        pico      01.01           0123           0123\n"
             "     xandrel      01.01           030f           030f\n"
             "        enc1      01.01           0204           0204\n"
             "        vid1      01.01           000a           000a\n"
             "       enc2b      01.01           0020           0020\n"
             "        vid2      01.01           000a           000a\n");
  for (const char* part : {"belmara", "dovu", "pelgrimar", "fwcore", "tulmen", "vulmen", "tolmarn", "ulmen", "pico"})
    EXPECT_EQ(Shown(part)["errors"], json::array()) << part;
}

TEST_F(FwbenchBox, AFreshBenchOfTheOtherModelInstallsItsParts) {
  ASSERT_EQ(test_support::RunProcess(FWBENCH_PROGRAM, {"new", folder_.File("bench"), "--host-cards", "none", "--box",
                                                       "none", "--orbo-qx", "5"})
                .exitCode,
            0);
  Expect({"-pico", "-yorvalen", "-teskpro", "-jqxpwry", "-nofussy", "-noprogress", "-nopause"}, 4, "");
  PowerCycle();
  Expect({"-version", "-nofussy", "-nopause"}, 0,
         std::string(kTableHeading) +
             "        pico      01.01           0123           0123\n"
             "    yorvalen      01.01           0222           0222\n"
             "     teskpro      01.01           0010           0010\n"
             "     jqxpwry      01.01           010a           010a\n");
  EXPECT_EQ(Shown("pico")["errors"], json::array());
}

}  // namespace
