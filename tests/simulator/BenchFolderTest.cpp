#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "simulator/BenchError.h"
#include "simulator/BenchFolder.h"
#include "support/TempFolder.h"

using simulator::Bench;
using simulator::BenchState;
using simulator::CreateBench;
using simulator::HostCards;
using simulator::HostCardState;
using simulator::kBelmaraBoard;
using simulator::LoadBench;
using simulator::MakeBench;
using simulator::SaveBench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

constexpr char kState[] = "bench/hardware/state.json";

class BenchFolderTest : public testing::Test {
 protected:
  fs::path Bench() const { return folder.Path() / "bench"; }
  void Create(const BenchState& state) const { CreateBench(Bench(), state, {}, 1); }
  std::vector<std::string> Images() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(Bench() / "hardware"))
      if (entry.path().extension() == ".flash") names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }
  /// What loading says, empty when it works.
  std::string Complaint() const {
    try {
      LoadBench(Bench());
    } catch (const simulator::BenchError& error) {
      return error.what();
    }
    return "";
  }
  /// The state file with one change.
  void Change(const std::function<void(nlohmann::json&)>& change) const {
    nlohmann::json state = nlohmann::json::parse(folder.ReadText(kState));
    change(state);
    folder.Write(kState, state.dump());
  }

  test_support::TempFolder folder;
};

void ExpectEqual(const HostCardState& a, const HostCardState& b) {
  EXPECT_EQ(*a.vpd, *b.vpd);
  EXPECT_EQ(a.karvelRunning, b.karvelRunning);
  EXPECT_EQ(a.karvel.cells(), b.karvel.cells());
  EXPECT_EQ(a.karvel.errors(), b.karvel.errors());
  EXPECT_EQ(a.flashRunning, b.flashRunning);
  EXPECT_EQ(a.errors, b.errors);
  EXPECT_EQ(a.flash.memory(), b.flash.memory());
  EXPECT_EQ(a.flash.registers(), b.flash.registers());
  EXPECT_EQ(a.flash.errors(), b.flash.errors());
}

TEST_F(BenchFolderTest, KeepsEverything) {
  BenchState state = MakeBench({});
  state.clockNanoseconds = 123'456'789'012;
  HostCardState& card = *state.cards[0];
  card.karvelRunning = 0xFFFFFFFF;
  card.karvel.cells().rows[0] = {0x00, 0x17, 0x00, 0x01};
  card.karvel.cells().rows[63][15] = 0xA5;
  card.karvel.cells().usercode = {'K', 'V', 0x00, 0x17};
  card.karvel.cells().done = false;
  card.karvel.errors() = simulator::ProtocolErrors({"karvel: four"}, 40);
  card.flashRunning = std::nullopt;
  card.errors.Add("one \"quoted\"");
  card.errors.Add("two");
  card.flash.memory().SetWord(0x3FFFFF, 0x1234);
  card.flash.registers() = {
      simulator::FlashReadMode::kQuery, 0x32, 0x8000000000000001, {1, 2, 3, 4, 5, 6, 7, 8, 0xFFFF}, true};
  card.flash.errors() = simulator::ProtocolErrors({"three"}, 12345);
  Create(state);

  const BenchState loaded = LoadBench(Bench());
  EXPECT_EQ(loaded.clockNanoseconds, 123'456'789'012);
  ExpectEqual(*loaded.cards[0], card);
  ExpectEqual(*loaded.cards[1], *state.cards[1]);
}

TEST_F(BenchFolderTest, KeepsTheBox) {
  BenchState state = MakeBench({.hostCards = HostCards::kBelmara, .box = simulator::BoxChoice::kOff});
  simulator::VeltraBoxState& box = *state.box;
  box.stored.revisions = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0xFF};
  box.stored.firmwareRev = std::string("2.25 \xE9\0", 7);
  box.vpd[0] = std::nullopt;
  box.vpd[1] = std::vector<std::uint8_t>{};
  box.vpd[2] = std::vector<std::uint8_t>(2040, 0xA5);
  box.errors = simulator::ProtocolErrors({"box: one"}, 12);
  state.cards[0]->fifo.SetReplies(std::vector<std::uint32_t>{0x0B0B0004, 0x80030000});
  state.cards[0]->fifo.errors().Add("fifo: two");
  Create(state);

  const BenchState loaded = LoadBench(Bench());
  EXPECT_FALSE(loaded.box->isOn);
  EXPECT_EQ(loaded.box->running, box.running);
  EXPECT_EQ(loaded.box->stored, box.stored);
  EXPECT_EQ(loaded.box->vpd, box.vpd);
  EXPECT_EQ(loaded.box->errors, box.errors);
  EXPECT_THAT(loaded.cards[0]->fifo.Replies(), ElementsAre(0x0B0B0004, 0x80030000));
  EXPECT_EQ(loaded.cards[0]->fifo.errors(), state.cards[0]->fifo.errors());
}

TEST_F(BenchFolderTest, LoadsABenchThatIsOlderThanTheBox) {
  Create(MakeBench({}));
  Change([](nlohmann::json& s) {
    s.erase("box");
    s["cards"]["belmara"].erase("fifo");
  });
  EXPECT_EQ(Complaint(), "");
  const BenchState loaded = LoadBench(Bench());
  EXPECT_FALSE(loaded.box.has_value());
  EXPECT_TRUE(loaded.cards[0]->fifo.Replies().empty());
}

TEST_F(BenchFolderTest, WritesTheKarvelRowByRow) {
  BenchState state = MakeBench({});
  state.cards[0]->karvel = simulator::KarvelCpld();
  state.cards[0]->karvel.cells().rows[1][0] = 0x12;
  Create(state);
  const nlohmann::json karvel = nlohmann::json::parse(folder.ReadText(kState))["cards"]["belmara"]["karvel"];
  EXPECT_EQ(karvel["rows"].size(), 64u);
  EXPECT_EQ(karvel["rows"][0], "ffffffffffffffffffffffffffffffff");
  EXPECT_EQ(karvel["rows"][1], "12ffffffffffffffffffffffffffffff");
  EXPECT_EQ(karvel["usercode"], "ffffffff");
  EXPECT_EQ(karvel["done"], false);
}

TEST_F(BenchFolderTest, LoadsABenchThatKnowsTheKarvelsWordAlone) {
  Create(MakeBench({.hostCards = HostCards::kDovu}));
  Change([](nlohmann::json& s) {
    s["cards"]["dovu"].erase("karvel");
    s["cards"]["dovu"]["karvelStored"] = "00170001";
  });
  EXPECT_EQ(Complaint(), "");
  const BenchState loaded = LoadBench(Bench());
  EXPECT_EQ(loaded.cards[1]->karvelRunning, 0x00160000u);
  EXPECT_EQ(loaded.cards[1]->karvel.cells().VersionWord(), 0x00170001u);
  SaveBench(Bench(), loaded);
  EXPECT_EQ(LoadBench(Bench()).cards[1]->karvel.cells(), loaded.cards[1]->karvel.cells());
}

TEST_F(BenchFolderTest, KeepsTheOrboQx) {
  BenchState state = MakeBench({.hostCards = HostCards::kNone, .orboQx = simulator::OrboQx::kModel4});
  simulator::MorvakUnitState& unit = *state.unit;
  unit.model = 0xFFFFFFFF;
  unit.codecSlots = 7;
  unit.codecState = {0, 0xFFFFFFFF};
  unit.stored.Set(0, std::string("01.23 \xE9\0", 8));
  unit.stored.Set(13, std::string(2038, '1'));
  unit.running.Set(2, std::nullopt);
  unit.vpd = std::vector<std::uint8_t>(2036, 0xA5);
  unit.boards[31] = std::vector<std::uint8_t>(8192, 0x5A);
  unit.errors = simulator::ProtocolErrors({"morvak: one"}, 12);
  Create(state);

  const simulator::MorvakUnitState loaded = *LoadBench(Bench()).unit;
  EXPECT_EQ(loaded.model, 0xFFFFFFFF);
  EXPECT_EQ(loaded.codecSlots, 7u);
  EXPECT_EQ(loaded.codecState, unit.codecState);
  EXPECT_EQ(loaded.running, unit.running);
  EXPECT_EQ(loaded.stored, unit.stored);
  EXPECT_EQ(loaded.vpd, unit.vpd);
  EXPECT_EQ(loaded.boards, unit.boards);
  EXPECT_EQ(loaded.errors, unit.errors);

  state.unit->vpd.reset();
  SaveBench(Bench(), state);
  EXPECT_FALSE(LoadBench(Bench()).unit->vpd.has_value());
}

TEST_F(BenchFolderTest, LoadsABenchWithoutAnOrboQx) {
  Create(MakeBench({}));
  EXPECT_FALSE(nlohmann::json::parse(folder.ReadText(kState)).contains("morvak"));
  EXPECT_FALSE(LoadBench(Bench()).unit.has_value());
}

TEST_F(BenchFolderTest, KeepsWhichCardsAreThere) {
  Create(MakeBench({.hostCards = HostCards::kDovu}));
  const BenchState loaded = LoadBench(Bench());
  EXPECT_FALSE(loaded.cards[0].has_value());
  EXPECT_TRUE(loaded.cards[1].has_value());
  EXPECT_THAT(Images(), ElementsAre(StartsWith("dovu-")));
}

TEST_F(BenchFolderTest, KeepsABenchWithoutCards) {
  Create(MakeBench({.hostCards = HostCards::kNone, .box = simulator::BoxChoice::kNone}));
  EXPECT_TRUE(simulator::RowsOf(LoadBench(Bench())).empty());
}

TEST_F(BenchFolderTest, HasAFolderForFirmware) {
  CreateBench(Bench(), MakeBench({}), {{"a.rbi", std::vector<std::uint8_t>{1}}}, 1);
  EXPECT_EQ(folder.ReadText("bench/firmware/a.rbi"), "\x01");
  EXPECT_EQ(simulator::FirmwareFolder(Bench()), Bench() / "firmware");
}

TEST_F(BenchFolderTest, IsMadeInAnEmptyFolder) {
  fs::create_directory(Bench());
  Create(MakeBench({.hostCards = HostCards::kNone}));
  EXPECT_EQ(Complaint(), "");
}

TEST_F(BenchFolderTest, IsNotMadeWhereSomethingIs) {
  folder.Write("bench/file", "x");
  try {
    Create(MakeBench({.hostCards = HostCards::kNone}));
    FAIL();
  } catch (const simulator::BenchError& error) {
    EXPECT_EQ(error.what(), Bench().string() + ": is not empty");
  }
  EXPECT_THAT(fs::directory_iterator(Bench())->path().filename().string(), "file");

  folder.Write("plain", "x");
  EXPECT_THROW(CreateBench(folder.File("plain"), MakeBench({}), {}, 1), simulator::BenchError);
  EXPECT_EQ(folder.ReadText("plain"), "x");
}

TEST_F(BenchFolderTest, LeavesNothingWhenItCannotBeMade) {
  EXPECT_THROW(CreateBench(Bench(), MakeBench({}), {{"no/such/folder.rbi", std::vector<std::uint8_t>{1}}}, 1),
               simulator::BenchError);
  EXPECT_FALSE(folder.Has("bench"));
  fs::create_directory(Bench());
  EXPECT_THROW(CreateBench(Bench(), MakeBench({}), {{"no/such/folder.rbi", std::vector<std::uint8_t>{1}}}, 1),
               simulator::BenchError);
  EXPECT_TRUE(fs::is_empty(Bench()));
}

TEST_F(BenchFolderTest, WritesOnlyTheImagesThatChanged) {
  Create(MakeBench({}));
  const auto before = Images();
  ASSERT_THAT(before, ElementsAre(StartsWith("belmara-"), StartsWith("dovu-")));
  for (const std::string& name : before)
    fs::last_write_time(Bench() / "hardware" / name, fs::file_time_type::clock::now() - std::chrono::hours(1));
  const auto stamp = fs::last_write_time(Bench() / "hardware" / before[1]);

  BenchState state = LoadBench(Bench());
  state.cards[0]->flash.memory().SetWord(0x100000, 0);
  SaveBench(Bench(), state);
  const auto after = Images();
  ASSERT_EQ(after.size(), 2u) << "the old image is gone";
  EXPECT_NE(after[0], before[0]);
  EXPECT_EQ(after[1], before[1]);
  EXPECT_EQ(fs::last_write_time(Bench() / "hardware" / after[1]), stamp) << "not written again";
  EXPECT_EQ(LoadBench(Bench()).cards[0]->flash.memory().Word(0x100000), 0);
}

// A crash before the state file is renamed leaves these behind.
TEST_F(BenchFolderTest, IsNotHurtByAnInterruptedSaving) {
  Create(MakeBench({}));
  folder.Write("bench/hardware/state.json.new", "{ half a st");
  folder.Write("bench/hardware/belmara-0000000000000000.flash.new", "half an image");
  folder.Write("bench/hardware/belmara-1111111111111111.flash", "an image that no state names");
  const BenchState state = LoadBench(Bench());
  EXPECT_EQ(state.cards[0]->flashRunning, 0x1160);
  SaveBench(Bench(), state);
  EXPECT_THAT(Images(), testing::SizeIs(2));
  EXPECT_FALSE(folder.Has("bench/hardware/state.json.new"));
  EXPECT_FALSE(folder.Has("bench/hardware/belmara-0000000000000000.flash.new"));
}

TEST_F(BenchFolderTest, KeepsTheOldStateWhenTheNewOneCannotBeWritten) {
  Create(MakeBench({.hostCards = HostCards::kNone}));
  const std::string before = folder.ReadText(kState);
  fs::create_directories(Bench() / "hardware" / "state.json.new" / "in the way");
  BenchState state = LoadBench(Bench());
  state.clockNanoseconds = 5;
  EXPECT_THROW(SaveBench(Bench(), state), simulator::BenchError);
  EXPECT_EQ(folder.ReadText(kState), before);
}

TEST_F(BenchFolderTest, SaysWhereThereIsNoBench) {
  EXPECT_EQ(Complaint(), Bench().string() + ": holds no bench");
  folder.Write("bench/firmware/a.rbi", "x");
  EXPECT_EQ(Complaint(), Bench().string() + ": holds no bench");
}

TEST_F(BenchFolderTest, RefusesAStateThatWasCutShort) {
  Create(MakeBench({.hostCards = HostCards::kNone}));
  const std::string whole = folder.ReadText(kState);
  ASSERT_GT(whole.size(), 20u);
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    folder.Write(kState, whole.substr(0, length));
    EXPECT_THAT(Complaint(), StartsWith(folder.File(kState) + ": is damaged: not readable as JSON: ")) << length;
  }
}

struct Damage {
  const char* name;
  std::function<void(nlohmann::json&)> change;
  const char* complaint;
};

class BenchFolderDamage : public BenchFolderTest, public testing::WithParamInterface<Damage> {};

TEST_P(BenchFolderDamage, IsRefused) {
  Create(MakeBench({.hostCards = HostCards::kBelmara, .orboQx = simulator::OrboQx::kModel4}));
  Change(GetParam().change);
  EXPECT_EQ(Complaint(), folder.File(kState) + ": is damaged: " + GetParam().complaint);
}

using Json = nlohmann::json;

INSTANTIATE_TEST_SUITE_P(
    Kinds, BenchFolderDamage,
    testing::Values(
        Damage{"NoObject", [](Json& s) { s = Json::array(); }, "expected an object, found a list"},
        Damage{"OtherFormat", [](Json& s) { s["format"] = 2; }, "format: made by another version of this program"},
        Damage{"NoFormat", [](Json& s) { s.erase("format"); }, "format: is missing"},
        Damage{"NegativeClock", [](Json& s) { s["clock"] = -1; },
               "clock: expected a whole number from 0 to 4611686018427387904, found -1"},
        Damage{"NoCards", [](Json& s) { s["cards"] = nullptr; }, "cards: is missing"},
        Damage{"UnknownCard", [](Json& s) { s["cards"]["velmara"] = nullptr; }, "cards.velmara: unknown key"},
        Damage{"UnknownKey", [](Json& s) { s["boxes"] = 1; }, "boxes: unknown key"},
        Damage{"Box", [](Json& s) { s["box"] = 1; }, "box: expected an object, found 1"},
        Damage{"BoxKey", [](Json& s) { s["box"]["burn"] = 1; }, "box.burn: unknown key"},
        Damage{"BoxPower", [](Json& s) { s["box"]["isOn"] = "on"; }, "box.isOn: expected true or false, found \"on\""},
        Damage{"NoBoxPower", [](Json& s) { s["box"].erase("isOn"); }, "box.isOn: is missing"},
        Damage{"NoBoxVersions", [](Json& s) { s["box"].erase("running"); }, "box.running: is missing"},
        Damage{"BoxRevisions", [](Json& s) { s["box"]["stored"]["revisions"] = "0102"; },
               "box.stored.revisions: has a wrong length"},
        Damage{"BoxText", [](Json& s) { s["box"]["stored"]["firmwareRev"] = std::string(2 * 2033, '3'); },
               "box.stored.firmwareRev: has a wrong length"},
        Damage{"BoxVersionsKey", [](Json& s) { s["box"]["stored"]["rev"] = ""; }, "box.stored.rev: unknown key"},
        Damage{"BoxBoard", [](Json& s) { s["box"]["vpd"]["VPD_Other"] = ""; }, "box.vpd.VPD_Other: unknown key"},
        Damage{"BoxVpdHex", [](Json& s) { s["box"]["vpd"]["VPD_Brox"] = "0"; },
               "box.vpd.VPD_Brox: expected a text of two hexadecimal digits a byte, found \"0\""},
        Damage{"BoxVpdLong", [](Json& s) { s["box"]["vpd"]["VPD_Brox"] = std::string(2 * 2041, '3'); },
               "box.vpd.VPD_Brox: has a wrong length"},
        Damage{"NoBoxErrors", [](Json& s) { s["box"].erase("errors"); }, "box.errors: is missing"},
        Damage{"Unit", [](Json& s) { s["morvak"] = 1; }, "morvak: expected an object, found 1"},
        Damage{"UnitKey", [](Json& s) { s["morvak"]["burn"] = 1; }, "morvak.burn: unknown key"},
        Damage{"UnitModel", [](Json& s) { s["morvak"]["model"] = 4294967296; },
               "morvak.model: expected a whole number from 0 to 4294967295, found 4294967296"},
        Damage{"NoUnitSlots", [](Json& s) { s["morvak"].erase("codecSlots"); }, "morvak.codecSlots: is missing"},
        Damage{"UnitCodecs", [](Json& s) { s["morvak"]["codecState"] = Json::array({"1"}); },
               "morvak.codecState: expected a list of whole numbers from 0 to 4294967295, found \"1\""},
        Damage{"UnitCodecsMany", [](Json& s) { s["morvak"]["codecState"] = std::vector<int>(33, 0); },
               "morvak.codecState: has a wrong length"},
        Damage{"NoUnitTexts", [](Json& s) { s["morvak"].erase("stored"); }, "morvak.stored: is missing"},
        Damage{"UnitText", [](Json& s) { s["morvak"]["stored"]["MorvakFPGA"] = "030e0"; },
               "morvak.stored.MorvakFPGA: expected a text of two hexadecimal digits a byte, found \"030e0\""},
        Damage{"UnitTextLong", [](Json& s) { s["morvak"]["running"]["MorvakFPGA"] = std::string(2 * 2039, '3'); },
               "morvak.running.MorvakFPGA: has a wrong length"},
        Damage{"UnitTextKey", [](Json& s) { s["morvak"]["running"]["HollenFW"] = ""; },
               "morvak.running.HollenFW: unknown key"},
        Damage{"UnitVpdLong", [](Json& s) { s["morvak"]["vpd"] = std::string(2 * 2037, '3'); },
               "morvak.vpd: has a wrong length"},
        Damage{"NoUnitBoards", [](Json& s) { s["morvak"].erase("boards"); }, "morvak.boards: is missing"},
        Damage{"UnitBoard", [](Json& s) { s["morvak"]["boards"]["32"] = ""; }, "morvak.boards.32: unknown key"},
        Damage{"UnitBoardLong", [](Json& s) { s["morvak"]["boards"]["3"] = std::string(2 * 8193, '3'); },
               "morvak.boards.3: has a wrong length"},
        Damage{"NoUnitErrors", [](Json& s) { s["morvak"].erase("errors"); }, "morvak.errors: is missing"},
        Damage{"HalfAReply", [](Json& s) { s["cards"]["belmara"]["fifo"]["replies"] = "0b0b00"; },
               "cards.belmara.fifo.replies: has a wrong length"},
        Damage{"TooManyReplies", [](Json& s) { s["cards"]["belmara"]["fifo"]["replies"] = std::string(8 * 4097, '0'); },
               "cards.belmara.fifo.replies: has a wrong length"},
        Damage{"FifoKey", [](Json& s) { s["cards"]["belmara"]["fifo"]["commands"] = ""; },
               "cards.belmara.fifo.commands: unknown key"},
        Damage{"NoFifoErrors", [](Json& s) { s["cards"]["belmara"]["fifo"].erase("errors"); },
               "cards.belmara.fifo.errors: is missing"},
        Damage{"ShortVpd", [](Json& s) { s["cards"]["belmara"]["vpd"] = "00"; },
               "cards.belmara.vpd: has a wrong length"},
        Damage{"VpdNoHex", [](Json& s) { s["cards"]["belmara"]["vpd"] = "0g"; },
               "cards.belmara.vpd: expected a text of two hexadecimal digits a byte, found \"0g\""},
        Damage{"NoKarvel", [](Json& s) { s["cards"]["belmara"].erase("karvel"); },
               "cards.belmara.karvelStored: is missing"},
        Damage{"OldKarvel",
               [](Json& s) {
                 s["cards"]["belmara"].erase("karvel");
                 s["cards"]["belmara"]["karvelStored"] = "123456789";
               },
               "cards.belmara.karvelStored: expected a text of 1 to 8 hexadecimal digits, found \"123456789\""},
        Damage{"TwoKarvels", [](Json& s) { s["cards"]["belmara"]["karvelStored"] = "00170000"; },
               "cards.belmara.karvelStored: unknown key"},
        Damage{"KarvelRunning", [](Json& s) { s["cards"]["belmara"]["karvelRunning"] = "123456789"; },
               "cards.belmara.karvelRunning: expected a text of 1 to 8 hexadecimal digits, found \"123456789\""},
        Damage{"KarvelRows", [](Json& s) { s["cards"]["belmara"]["karvel"]["rows"].erase(63); },
               "cards.belmara.karvel.rows: has a wrong length"},
        Damage{"KarvelRowShort", [](Json& s) { s["cards"]["belmara"]["karvel"]["rows"][1] = "00"; },
               "cards.belmara.karvel.rows: row 1 is no text of 32 hexadecimal digits"},
        Damage{"KarvelRowNoHex", [](Json& s) { s["cards"]["belmara"]["karvel"]["rows"][63] = std::string(32, 'g'); },
               "cards.belmara.karvel.rows: row 63 is no text of 32 hexadecimal digits"},
        Damage{"KarvelUsercode", [](Json& s) { s["cards"]["belmara"]["karvel"]["usercode"] = "4b5600"; },
               "cards.belmara.karvel.usercode: has a wrong length"},
        Damage{"NoKarvelDone", [](Json& s) { s["cards"]["belmara"]["karvel"].erase("done"); },
               "cards.belmara.karvel.done: is missing"},
        Damage{"NoKarvelErrors", [](Json& s) { s["cards"]["belmara"]["karvel"].erase("errors"); },
               "cards.belmara.karvel.errors: is missing"},
        Damage{"KarvelKey", [](Json& s) { s["cards"]["belmara"]["karvel"]["tap"] = "f"; },
               "cards.belmara.karvel.tap: unknown key"},
        Damage{"Version", [](Json& s) { s["cards"]["belmara"]["flashRunning"] = 1160; },
               "cards.belmara.flashRunning: expected a text of 1 to 4 hexadecimal digits, found 1160"},
        Damage{"ErrorTexts", [](Json& s) { s["cards"]["belmara"]["errors"]["texts"] = Json::array({1}); },
               "cards.belmara.errors.texts: expected a list of texts, found 1"},
        Damage{"ErrorTextsNoList", [](Json& s) { s["cards"]["belmara"]["errors"]["texts"] = "x"; },
               "cards.belmara.errors.texts: expected a list of texts, found \"x\""},
        Damage{"NoErrorTotal", [](Json& s) { s["cards"]["belmara"]["errors"].erase("total"); },
               "cards.belmara.errors.total: is missing"},
        Damage{"ReadMode", [](Json& s) { s["cards"]["belmara"]["flash"]["readMode"] = "arrays"; },
               "cards.belmara.flash.readMode: there is no such mode"},
        Damage{"ReadyAsAnError", [](Json& s) { s["cards"]["belmara"]["flash"]["errorBits"] = "80"; },
               "cards.belmara.flash.errorBits: holds the ready bit"},
        Damage{"Protection", [](Json& s) { s["cards"]["belmara"]["flash"]["protection"] = "0011"; },
               "cards.belmara.flash.protection: has a wrong length"},
        Damage{"Hung", [](Json& s) { s["cards"]["belmara"]["flash"]["hung"] = 0; },
               "cards.belmara.flash.hung: expected true or false, found 0"},
        Damage{"FlashKey", [](Json& s) { s["cards"]["belmara"]["flash"]["cells"] = 0; },
               "cards.belmara.flash.cells: unknown key"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(BenchFolderTest, KnowsNoFifosOfTheSecondCard) {
  Create(MakeBench({.hostCards = HostCards::kDovu}));
  Change([](nlohmann::json& s) { s["cards"]["dovu"]["fifo"] = nullptr; });
  EXPECT_EQ(Complaint(), folder.File(kState) + ": is damaged: cards.dovu.fifo: unknown key");
}

TEST_F(BenchFolderTest, RefusesAKeyThatStandsTwice) {
  Create(MakeBench({.hostCards = HostCards::kNone}));
  folder.Write(kState, R"({"format":1,"clock":1,"clock":2,"cards":{}})");
  EXPECT_EQ(Complaint(), folder.File(kState) + ": is damaged: the key \"clock\" stands twice in one object");
}

TEST_F(BenchFolderTest, RefusesADamagedImage) {
  Create(MakeBench({.hostCards = HostCards::kBelmara}));
  const std::string name = "bench/hardware/" + Images()[0];
  const std::vector<std::uint8_t> bytes = folder.ReadBytes(name);
  const std::string whole(bytes.begin(), bytes.end());

  std::string changed = whole;
  changed[0x500000] ^= 1;
  folder.Write(name, changed);
  EXPECT_EQ(Complaint(), folder.File(name) + ": is damaged: its content is not what its name says");
  folder.Write(name, whole.substr(1));
  EXPECT_EQ(Complaint(), folder.File(name) + ": is damaged: has 8388607 bytes instead of 8388608");
  folder.Write(name, whole + "x");
  EXPECT_EQ(Complaint(), folder.File(name) + ": has 8388609 bytes, more than the 8388608 that it may have");
  fs::remove(folder.Path() / name);
  EXPECT_EQ(Complaint(), folder.File(name) + ": No such file or directory");
}

TEST_F(BenchFolderTest, RefusesAStateFileOfAnUnlikelyLength) {
  Create(MakeBench({.hostCards = HostCards::kNone}));
  folder.Write(kState, std::string((1 << 20) + 1, ' '));
  EXPECT_THAT(Complaint(), HasSubstr("more than the 1048576 that it may have"));
  fs::remove(folder.Path() / kState);
  fs::create_directory(folder.Path() / kState);
  EXPECT_THAT(Complaint(), HasSubstr("is not a regular file"));
}

}  // namespace
