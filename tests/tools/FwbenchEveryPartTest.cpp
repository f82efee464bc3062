#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "BenchProcess.h"
#include "simulator/BenchDescription.h"
#include "simulator/Faulty.h"
#include "simulator/FirmwareFiles.h"
#include "support/InstallerRun.h"
#include "support/ScopedWorkingFolder.h"

// Every row of the part table found and programmed by the program under fwbench, each on hardware that has it, and
// every result that a run can have. A second run of the same in this process shows what a front end is told at the end,
// which a process under fwbench cannot show.

namespace {

using nlohmann::json;

/// What a run asks a front end to restart: the computer, and the box.
struct Restart {
  std::uint32_t cpu;
  std::uint32_t box;
  friend bool operator==(const Restart&, const Restart&) = default;
  friend void PrintTo(const Restart& restart, std::ostream* stream) { *stream << restart.cpu << ' ' << restart.box; }
};

class EveryPart : public BenchProcess {
 protected:
  /// Runs the program on this bench, once under fwbench and once in this process, and expects both to go the same way.
  void ExpectRun(const json& bench, const std::vector<std::string>& arguments, int exitCode, const std::string& out,
                 const std::string& err, const Restart& restart) {
    MakeBench(bench.dump());
    const auto run = Run(arguments);
    EXPECT_EQ(run.exitCode, exitCode);
    EXPECT_EQ(run.standardOutput, out);
    EXPECT_EQ(WithoutLineNumber(run.standardError), err);

    const simulator::BenchDescription description = simulator::ParseBenchDescription(bench.dump());
    const test_support::TempFolder firmware;
    simulator::WriteFirmwareFiles(firmware.Path(), description.files, 1);
    const test_support::ScopedWorkingFolder inside(firmware.Path());
    simulator::Bench hardware(description.state);
    hardware.frontEnd().Open("Orbo\xAE Veltra Kore");
    const platform::ScopedPlatform current(hardware.platform());
    std::vector<const char*> words;
    for (const std::string& argument : arguments)
      words.push_back(argument.c_str());
    const InstallerRun again = RunInstaller(words);
    EXPECT_EQ(again.exitCode & 0xFF, exitCode);
    EXPECT_EQ(again.out, out);
    EXPECT_EQ(WithoutLineNumber(again.err), err);
    const auto& received = hardware.frontEnd().received();
    ASSERT_FALSE(received.empty());
    ASSERT_EQ(received.back().kind, 102u);
    ASSERT_EQ(received.back().bytes.size(), 8u);
    const auto& bytes = received.back().bytes;
    EXPECT_EQ((Restart{bytes[0], bytes[4]}), restart);
  }
};

const json kVpd = {{"ZB", "1"}, {"ZC", "0"}};

json Card() {
  return {{"vpd", {{"ZA", "5"}, {"ZB", "1"}, {"ZC", "0"}}}, {"flash", "1160"}, {"karvel", "00150000"}};
}

/// Both cards, and a box whose parts are all older than this release.
json Veltra() {
  return {{"belmara", Card()},
          {"dovu", Card()},
          {"box",
           {{"config",
             {{"SparkwellMajorRev", "2"},
              {"SparkwellMinorRev", "18"},
              {"DolmbrinMinorRev", "e1"},
              {"TarnvaldMinorRev", "1"},
              {"RavenshaleMajorRev", "2"},
              {"RavenshaleMinorRev", "30"},
              {"TanbrookMinorRev", "1b"},
              {"FirmwareRev", "2.24"}}},
            {"vpd", {{"VPD_Brox", kVpd}, {"VPD_Fenrok", kVpd}, {"VPD_Jorl", kVpd}}}}}};
}

/// An Orbo QX, model 4 or 5, that tells all its versions, with this part number on its main board.
json Morvak(int model, const std::string& partNumber) {
  return {{"boardKind", model == 4 ? 5 : 7},
          {"vpd", kVpd},
          {"rev",
           {{"MorvakFirmware", "0120"},
            {"MorvakFPGA", "00f0"},
            {"MorvakTesk", "000f"},
            {"MorvakPower", "0105"},
            {"MorvakCodec1FPGA", "0008"},
            {"MorvakCodec2FPGA", "0008"},
            {"MorvakCodec1VCID", "0009"},
            {"MorvakCodec2VCID", "0009"}}},
          {"codecSlots", 0},
          {"codecState", {0, 0}},
          {"boards", {{"0", {{"PN", partNumber}}}}}};
}

/// One with a codec in the slot of this board, 2 or 3.
json WithCodec(const std::string& board, const std::string& partNumber) {
  json morvak = Morvak(4, "1-20040-2");
  morvak["codecSlots"] = 2;
  morvak["codecState"] = board == "2" ? json{1, 0} : json{0, 2};
  morvak["boards"][board] = {{"PN", partNumber}};
  return morvak;
}

json Files(const std::vector<std::array<std::string, 3>>& files) {
  json object = json::object();
  for (const auto& [name, id, version] : files)
    object[name] = {{"id", id}, {"version", version}, {"payload", 64}};
  return object;
}

std::string Programmed(const std::string& part) {
  return part + "\nLoading\nProgramming\n100%\nDone\n";
}

// ---- Rows

struct Row {
  const char* name;
  const char* file;
  const char* id;
  const char* version;
  json hardware;  ///< "veltra" or "morvak"
  bool isHidden;  ///< unless the user is not fussy
  int exitCode;
};

void PrintTo(const Row& row, std::ostream* stream) {
  *stream << row.name;
}

class EveryRow : public EveryPart, public testing::WithParamInterface<Row> {};

TEST_P(EveryRow, IsFoundAndProgrammed) {
  const Row& row = GetParam();
  const bool isMorvak = row.hardware.contains("boardKind");
  const json bench = {{"files", Files({{row.file, row.id, row.version}})},
                      {isMorvak ? "morvak" : "veltra", row.hardware}};
  std::vector<std::string> arguments = {std::string("-") + row.name, "-nopause"};
  if (row.isHidden) arguments.push_back("-nofussy");
  const Restart restart = row.exitCode == 1 ? Restart{0, 1} : row.exitCode == 2 ? Restart{1, 0} : Restart{1, 1};
  ExpectRun(bench, arguments, row.exitCode, Programmed(row.name), "", restart);
  const json shown = Shown(row.name);
  EXPECT_EQ(shown["stored"], row.version);
  EXPECT_NE(shown["running"], row.version);
  EXPECT_EQ(shown["errors"], json::array());
  PowerCycle();
  EXPECT_EQ(Shown(row.name)["running"], row.version);
}

INSTANTIATE_TEST_SUITE_P(Box, EveryRow,
                         testing::Values(Row{"pelgrimar", "PLGR0201.rbi", "PLGR", "0220", Veltra(), false, 1},
                                         Row{"fwcore", "BROX0201.rbi", "BROX", "0225", Veltra(), false, 1},
                                         Row{"ulmen", "ULMN0101.rbi", "ULMN", "001c", Veltra(), false, 1},
                                         Row{"tulmen", "TULM0002.rbi", "TULM", "0002", Veltra(), false, 1},
                                         Row{"vulmen", "VULM0101.rbi", "VULM", "0001", Veltra(), false, 1},
                                         Row{"tolmarn", "TLM_0104.rbi", "TLM_", "0232", Veltra(), false, 1}));

INSTANTIATE_TEST_SUITE_P(
    OrboQx, EveryRow,
    testing::Values(Row{"spacer", "SPCT.rbi", "SPCR", "000b", WithCodec("2", "1-30024-1"), false, 4},
                    Row{"pico", "PICO.rbi", "PICO", "0123", Morvak(4, "1-20040-2"), false, 4},
                    Row{"xandrel", "XNDR.rbi", "XNDR", "030f", Morvak(4, "1-20040-2"), false, 4},
                    Row{"yorvalen", "YRVL.rbi", "YRVL", "0222", Morvak(5, "1-20046-2"), false, 4},
                    Row{"yorvalenx", "YRVX.rbi", "YRVX", "0222", Morvak(5, "1-20046-1"), false, 4},
                    Row{"qindel", "QNDL.rbi", "QNDL", "0100", Morvak(5, "1-20164-1"), false, 4},
                    Row{"teskpro", "TSKP.rbi", "TSKP", "0010", Morvak(4, "1-20040-2"), true, 4},
                    Row{"enc1", "ENCD.rbi", "ENCD", "0204", WithCodec("2", "1-20035-1"), false, 4},
                    Row{"enc1b", "ENSC.rbi", "ENSC", "0020", WithCodec("2", "1-20173-1"), false, 4},
                    Row{"vid1", "ENVC.rbi", "ENVC", "000a", WithCodec("2", "1-20173-1"), false, 4},
                    Row{"enc2", "ENCD.rbi", "ENCD", "0204", WithCodec("3", "1-20035-1"), false, 4},
                    Row{"enc2b", "ENSC.rbi", "ENSC", "0020", WithCodec("3", "1-20173-1"), false, 4},
                    Row{"vid2", "ENVC.rbi", "ENVC", "000a", WithCodec("3", "1-20035-1"), false, 4},
                    Row{"vqxpwr", "VQPW.rbi", "VQPW", "010a", Morvak(4, "1-20040-2"), true, 4},
                    Row{"vqxpwrx", "VQPX.rbi", "VQPX", "010a", Morvak(4, "1-20040-1"), true, 4},
                    Row{"jqxpwr", "JQPW.rbi", "JQPW", "010a", Morvak(5, "1-20046-3"), true, 4},
                    Row{"jqxpwrx", "JQPX.rbi", "JQPX", "010a", Morvak(5, "1-20040-1"), true, 4},
                    Row{"jqxpwry", "JQPY.rbi", "JQPY", "010a", Morvak(5, "1-20046-2"), true, 4}));

/// The host cards' flash takes long enough for a report.
TEST_F(EveryPart, HostCardsAreProgrammed) {
  const json bench = {{"files", Files({{"BLMX0202.rbi", "BLMX", "1161"}, {"DVUX0202.rbi", "DVUX", "1161"}})},
                      {"veltra", Veltra()}};
  ExpectRun(bench, {"-belmara", "-dovu", "-nopause"}, 2,
            "belmara\nLoading\n100%\nProgramming\n100%\nDone\ndovu\nLoading\n100%\nProgramming\n100%\nDone\n", "",
            {1, 0});
}

/// An empty VME file, which programs nothing and goes well: "ORBO.RBI", a header of 22 bytes, "__VME2.0", plain, and
/// ENDVME.
TEST_F(EveryPart, KarvelsArePlayedTheirFile) {
  const json bench = {
      {"files", {{"KRVL0101.rbi", {{"raw", "4f52424f2e5242490000001652303031373b4b52564c5f5f564d45322e30f27f"}}}}},
      {"veltra", Veltra()}};
  const struct {
    std::string name;
    const char* title;
  } cases[] = {{"bkarvel", "Belmara"}, {"dkarvel", "Dovu"}};
  for (const auto& each : cases) {
    ExpectRun(bench, {"-" + each.name, "-nofussy", "-nopause"}, 2,
              each.name + "\nProgramming " + each.title + " Karvel\n\r0%\n", "", {1, 0});
    std::filesystem::remove_all(folder_.File("bench"));
  }
}

// ---- Results

struct Result {
  int mask;
  const char* closing;
  Restart restart;
};

void PrintTo(const Result& result, std::ostream* stream) {
  *stream << result.mask;
}

class EveryResult : public EveryPart, public testing::WithParamInterface<Result> {};

TEST_P(EveryResult, TellsWhatToPowerCycle) {
  const Result& result = GetParam();
  std::vector<std::array<std::string, 3>> files;
  if ((result.mask & 2) != 0) files.push_back({"BLMX0202.rbi", "BLMX", "1161"});
  if ((result.mask & 1) != 0) files.push_back({"ULMN0101.rbi", "ULMN", "001c"});
  if ((result.mask & 4) != 0) files.push_back({"PICO.rbi", "PICO", "0123"});
  // One that is there and whose part has it.
  files.push_back({"DVUX0202.rbi", "DVUX", "1161"});
  json veltra = Veltra();
  veltra["dovu"]["flash"] = "1161";
  const json bench = {{"files", Files(files)}, {"veltra", veltra}, {"morvak", Morvak(5, "1-20046-2")}};
  ExpectRun(bench, {"-all", "-noprogress"}, result.mask,
            std::string("dovu does not need to be loaded\n") + result.closing + "Press 'Enter' to exit.\n", "",
            result.restart);
}

constexpr char kBoxWords[] = "To complete installation, power cycle your Veltra Kore.\n";
constexpr char kCpuWords[] = "To complete installation, power cycle your CPU.\n";
constexpr char kBothWords[] = "To complete installation, power cycle your CPU and your Veltra Kore.\n";
#define ORBO_QX_WORDS "To complete installation, power cycle your CPU (and therefore also your Orbo QX).\n"

// The records go by the values of the result, and not by its bits.
INSTANTIATE_TEST_SUITE_P(
    All, EveryResult,
    testing::Values(
        Result{0, "", {0, 0}}, Result{1, kBoxWords, {0, 1}}, Result{2, kCpuWords, {1, 0}},
        Result{3, kBothWords, {1, 1}}, Result{4, ORBO_QX_WORDS, {1, 1}},
        Result{5, "To complete installation, power cycle your Veltra Kore.\n" ORBO_QX_WORDS, {0, 0}},
        Result{6, "To complete installation, power cycle your CPU.\n" ORBO_QX_WORDS, {0, 0}},
        Result{7, "To complete installation, power cycle your CPU and your Veltra Kore.\n" ORBO_QX_WORDS, {0, 0}}));

// ---- The default hides, and what is not told

TEST_F(EveryPart, ByDefaultTeskproAndPowerAreNeitherShownNorProgrammed) {
  json bench = {{"files", Files({{"TSKP.rbi", "TSKP", "0010"}, {"VQPW.rbi", "VQPW", "010a"}})},
                {"morvak", Morvak(4, "1-20040-2")}};
  ExpectRun(bench, {"-version", "-teskpro", "-vqxpwr", "-nopause"}, 0,
            std::string(kTableHeading) +
                "        pico      01.00           0120           0123\n"
                "     xandrel      01.00           00f0           030f\n",
            "", {0, 0});
}

TEST_F(EveryPart, NotFussyShowsThem) {
  const json bench = {{"files", json::object()}, {"morvak", Morvak(4, "1-20040-2")}};
  ExpectRun(bench, {"-version", "-nofussy", "-nopause"}, 0,
            std::string(kTableHeading) +
                "        pico      01.00           0120           0123\n"
                "     xandrel      01.00           00f0           030f\n"
                "     teskpro      01.00           000f           0010\n"
                "      vqxpwr      01.00           0105           010a\n",
            "", {0, 0});
}

TEST_F(EveryPart, APartThatDoesNotAnswerIsALineOfWarning) {
  json bench = {{"files", json::object()}, {"morvak", Morvak(4, "1-20040-2")}};
  bench["morvak"]["rev"] = {{"MorvakFirmware", "01.20 rc1"}};
  ExpectRun(bench, {"-version", "-nopause"}, 0,
            std::string(kTableHeading) +
                "        pico      01.00           0120-rc1       0123\n"
                "     xandrel      01.00           0000           030f\n",
            "GetStringPartRev for MorvakFPGA failed.\n", {0, 0});
}

// The text of the part before is still there.
TEST_F(EveryPart, APartThatIsUnknownShowsTheSuffixOfTheOneBefore) {
  json bench = {{"files", json::object()}, {"morvak", Morvak(4, "1-20040-2")}};
  bench["morvak"]["rev"]["MorvakFirmware"] = "0120b";
  bench["morvak"]["rev"]["MorvakFPGA"] = "UNKNOWN";
  ExpectRun(bench, {"-version", "-nopause"}, 0,
            std::string(kTableHeading) +
                "        pico      01.00           0120-b         0123\n"
                "     xandrel      01.00           0000-b         030f\n",
            "", {0, 0});
}

TEST_F(EveryPart, BoxAndOrboQxAreFoundInOneRun) {
  const json bench = {{"files", json::object()}, {"veltra", Veltra()}, {"morvak", WithCodec("2", "1-20035-1")}};
  ExpectRun(bench, {"-version", "-nopause"}, 0,
            std::string(kTableHeading) +
                "     belmara      01.00           1160           1161\n"
                "        dovu      01.00           1160           1161\n"
                "     bkarvel      01.00           0015           N/A\n"
                "     dkarvel      01.00           0015           N/A\n"
                "   pelgrimar      01.00           0218           0220\n"
                "      fwcore      01.00           0224           0225\n"
                "      tulmen      01.00           0001           0002\n"
                "      vulmen      01.00           00e1           0001\n"
                "     tolmarn      01.00           0230           0232\n"
                "       ulmen      01.00           001b           001c\n"
                "        pico      01.00           0120           0123\n"
                "     xandrel      01.00           00f0           030f\n"
                "        enc1      01.00           0008           0204\n"
                "        vid1      01.00           0009           000a\n",
            "", {0, 0});
}

TEST_F(EveryPart, EitherLineCanBeLeftOut) {
  const json bench = {{"files", Files({{"ULMN0101.rbi", "ULMN", "001c"}, {"PICO.rbi", "PICO", "0123"}})},
                      {"veltra", Veltra()},
                      {"morvak", Morvak(5, "1-20046-2")}};
  const struct {
    const char* option;
    int exitCode;
    const char* part;
    Restart restart;
  } cases[] = {{"-noorboqx", 1, "ulmen", {0, 1}},
               {"-veltra", 1, "ulmen", {0, 1}},
               {"-noveltra", 4, "pico", {1, 1}},
               {"-orboqx", 4, "pico", {1, 1}}};
  for (const auto& each : cases) {
    ExpectRun(bench, {"-all", each.option, "-nopause"}, each.exitCode, Programmed(each.part), "", each.restart);
    std::filesystem::remove_all(folder_.File("bench"));
  }
}

}  // namespace
