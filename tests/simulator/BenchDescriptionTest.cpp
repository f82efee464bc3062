#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/BenchDescription.h"
#include "simulator/BenchError.h"
#include "simulator/FlashImage.h"

using simulator::BenchDescription;
using simulator::FirmwareFile;
using simulator::ParseBenchDescription;
using simulator::RbiContent;

namespace {

std::string VpdText(const simulator::HostCardState& card, std::size_t length) {
  return {card.vpd->begin(), card.vpd->begin() + static_cast<std::ptrdiff_t>(length)};
}

/// Fields that make a VPD block of so many bytes, 7 of which are around them.
std::string LongFields(std::size_t blockBytes) {
  std::string fields = "{";
  std::size_t left = blockBytes - 7;
  for (int keyword = 10; left > 0; ++keyword) {
    std::size_t field = std::min<std::size_t>(left, 258);
    if (left > 258 && left < 258 + 3) field = 100;
    fields.append(fields.size() > 1 ? "," : "").append("\"").append(std::to_string(keyword)).append("\":\"");
    fields.append(field - 3, 'x').append("\"");
    left -= field;
  }
  return fields + "}";
}

TEST(BenchDescription, CanBeEmpty) {
  for (const char* text : {"{}", R"({"files":null,"veltra":null,"morvak":null})",
                           R"({"veltra":{"belmara":null,"dovu":null,"box":null}})", R"({"files":{},"veltra":{}})"}) {
    const BenchDescription description = ParseBenchDescription(text);
    EXPECT_FALSE(description.state.cards[0].has_value()) << text;
    EXPECT_FALSE(description.state.cards[1].has_value()) << text;
    EXPECT_TRUE(description.files.empty()) << text;
  }
}

TEST(BenchDescription, DescribesCards) {
  const BenchDescription description = ParseBenchDescription(R"({
      "veltra": {"belmara": {"vpd": {"ZB": "1", "ZA": "5", "ZC": ""}, "flash": "1160", "karvel": "00160000"},
                 "dovu": {"flash": null, "karvel": "fF"}}})");
  const auto& belmara = *description.state.cards[0];
  EXPECT_EQ(VpdText(belmara, 18), std::string("\x82\x00\x00\x90\x0B\x00"
                                              "ZA\x01"
                                              "5"
                                              "ZB\x01"
                                              "1"
                                              "ZC\x00"
                                              "\x78",
                                              18));
  EXPECT_EQ(belmara.flashRunning, 0x1160);
  EXPECT_EQ(simulator::StoredVersion(belmara.flash.memory()), 0x1160);
  EXPECT_EQ(belmara.karvelRunning, 0x00160000u);
  EXPECT_EQ(belmara.karvel.cells().VersionWord(), 0x00160000u);
  EXPECT_THAT(belmara.karvel.cells().usercode, testing::ElementsAre('B', 'N', 'C', 'H'));
  const auto& dovu = *description.state.cards[1];
  EXPECT_EQ(VpdText(dovu, 4), std::string("\x82\x00\x00\x78", 4));
  EXPECT_EQ(dovu.flashRunning, std::nullopt);
  EXPECT_EQ(dovu.flash.memory(), simulator::FlashMemory());
  EXPECT_EQ(dovu.karvelRunning, 0xFFu);
  EXPECT_THAT(std::vector<std::uint8_t>(dovu.karvel.cells().rows[0].begin(), dovu.karvel.cells().rows[0].begin() + 4),
              testing::ElementsAre(0x00, 0x00, 0x00, 0xFF));
  EXPECT_TRUE(dovu.karvel.cells().done);
  EXPECT_EQ(ParseBenchDescription(R"({"veltra":{"dovu":{}}})").state.cards[1]->karvelRunning, 0u);
}

TEST(BenchDescription, TakesCharactersForBytes) {
  const BenchDescription description =
      ParseBenchDescription(R"({"veltra":{"dovu":{"vpd":{"\u00ffZ":"\u0080\u0000"}}}})");
  EXPECT_EQ(VpdText(*description.state.cards[1], 12), std::string("\x82\x00\x00\x90\x05\x00\xFFZ\x02\x80\x00\x78", 12));
}

TEST(BenchDescription, DescribesABox) {
  const BenchDescription description = ParseBenchDescription(R"({"veltra": {"box": {
      "config": {"SparkwellMajorRev": "2", "SparkwellMinorRev": "2F", "DolmbrinMajorRev": "3", "DolmbrinMinorRev": "4",
                 "TarnvaldMajorRev": "5", "TarnvaldMinorRev": "6", "RavenshaleMajorRev": "7",
                 "RavenshaleMinorRev": "8", "TanbrookMajorRev": "9", "TanbrookMinorRev": "a", "SalvikMajorRev": "b",
                 "SalvikMinorRev": "0c", "FirmwareRev": "2.25\u00e9\u0000"},
      "vpd": {"VPD_Fenrok": {"ZB": "1", "ZC": "0"}, "VPD_Jorl": null, "VPD_Brox": {}}}}})");
  const auto& box = *description.state.box;
  EXPECT_TRUE(box.isOn);
  EXPECT_THAT(box.running.revisions, testing::ElementsAre(0x02, 0x2F, 3, 4, 5, 6, 7, 8, 9, 0x0A, 0x0B, 0x0C));
  EXPECT_EQ(box.running.firmwareRev, std::string("2.25\xE9\0", 6));
  EXPECT_EQ(box.stored, box.running);
  EXPECT_THAT(*box.vpd[0], testing::ElementsAre(0x82, 0, 0, 0x90, 0, 0, 0x78));
  EXPECT_THAT(*box.vpd[1], testing::ElementsAre(0x82, 0, 0, 0x90, 8, 0, 'Z', 'B', 1, '1', 'Z', 'C', 1, '0', 0x78));
  EXPECT_FALSE(box.vpd[2].has_value());
  EXPECT_FALSE(description.state.cards[0].has_value());
}

TEST(BenchDescription, DescribesABoxOfWhichNothingIsSaid) {
  const BenchDescription description = ParseBenchDescription(R"({"veltra":{"box":{}}})");
  EXPECT_EQ(description.state.box->running, simulator::BoxVersions());
  EXPECT_FALSE(description.state.box->vpd[0].has_value());
  EXPECT_FALSE(ParseBenchDescription(R"({"veltra":{"box":null}})").state.box.has_value());
  EXPECT_FALSE(ParseBenchDescription("{}").state.box.has_value());
}

TEST(BenchDescription, TakesABoxWhoseAnswersAreFull) {
  const BenchDescription description =
      ParseBenchDescription("{\"veltra\":{\"box\":{\"config\":{\"FirmwareRev\":\"" + std::string(2032, '1') +
                            "\"},\"vpd\":{\"VPD_Jorl\":" + LongFields(2040) + "}}}}");
  EXPECT_EQ(description.state.box->running.firmwareRev.size(), 2032u);
  EXPECT_EQ(description.state.box->vpd[2]->size(), 2040u);
}

TEST(BenchDescription, DescribesAnOrboQx) {
  const BenchDescription description = ParseBenchDescription(R"({"morvak": {
      "boardKind": 7, "vpd": {"ZB": "1", "ZC": "0"},
      "rev": {"MorvakFirmware": "0123a", "MorvakCodec2Firmware": "\u00e9", "MorvakPower": "", "MorvakTesk": null},
      "codecSlots": 4294967295, "codecState": [1, 4294967295],
      "boards": {"0": {"PN": "1-20040-1"}, "31": {}, "2": null}}})");
  const auto& unit = *description.state.unit;
  EXPECT_EQ(unit.model, 5u);
  EXPECT_EQ(unit.codecSlots, 0xFFFFFFFF);
  EXPECT_THAT(unit.codecState, testing::ElementsAre(1, 0xFFFFFFFF));
  EXPECT_THAT(*unit.vpd, testing::ElementsAre(0x82, 0, 0, 0x90, 8, 0, 'Z', 'B', 1, '1', 'Z', 'C', 1, '0', 0x78));
  EXPECT_EQ(unit.running.Of(0), "0123a");
  EXPECT_EQ(unit.running.Of(13), "\xE9");
  EXPECT_EQ(unit.running.Of(10), "");
  EXPECT_EQ(unit.running.Of(2), std::nullopt);
  EXPECT_EQ(unit.stored, unit.running);
  ASSERT_EQ(unit.boards.size(), 2u);
  EXPECT_THAT(unit.boards.at(0), testing::ElementsAre(0x82, 0, 0, 0x90, 12, 0, 'P', 'N', 9, '1', '-', '2', '0', '0',
                                                      '4', '0', '-', '1', 0x78));
  EXPECT_THAT(unit.boards.at(31), testing::ElementsAre(0x82, 0, 0, 0x90, 0, 0, 0x78));
}

TEST(BenchDescription, DescribesTheModelsOfAnOrboQx) {
  const auto model = [](const std::string& kind) {
    return ParseBenchDescription("{\"morvak\":{\"boardKind\":" + kind + "}}").state.unit->model;
  };
  EXPECT_EQ(model("5"), 4u);
  EXPECT_EQ(model("7"), 5u);
  EXPECT_EQ(model("8"), 6u);
  EXPECT_EQ(model("null"), 6u);
}

TEST(BenchDescription, DescribesAnOrboQxOfWhichNothingIsSaid) {
  const auto unit = *ParseBenchDescription(R"({"morvak":{}})").state.unit;
  EXPECT_EQ(unit.codecSlots, 0u);
  EXPECT_TRUE(unit.codecState.empty());
  EXPECT_EQ(unit.running, simulator::MorvakTexts());
  EXPECT_FALSE(unit.vpd.has_value());
  EXPECT_TRUE(unit.boards.empty());
  EXPECT_FALSE(ParseBenchDescription(R"({"morvak":null})").state.unit.has_value());
}

TEST(BenchDescription, TakesAnOrboQxWhoseAnswersAreFull) {
  const auto description =
      ParseBenchDescription("{\"morvak\":{\"vpd\":" + LongFields(2036) + ",\"rev\":{\"MorvakFPGA\":\"" +
                            std::string(2038, '1') + "\"},\"boards\":{\"0\":" + LongFields(8192) + "}}}");
  EXPECT_EQ(description.state.unit->vpd->size(), 2036u);
  EXPECT_EQ(description.state.unit->running.Of(1)->size(), 2038u);
  EXPECT_EQ(description.state.unit->boards.at(0).size(), 8192u);
}

TEST(BenchDescription, DescribesFiles) {
  const BenchDescription description = ParseBenchDescription(R"({"files": {
      "BLMX0202.rbi": {"id": "BLMX", "version": "1161", "payload": 4096},
      "junk.rbi": {"raw": "00fF"},
      "empty": {"raw": ""},
      "short.rbi": {"id": "TLM_", "version": "a"},
      "absent.rbi": null}})");
  ASSERT_EQ(description.files.size(), 4u);
  EXPECT_EQ(description.files[0].name, "BLMX0202.rbi");
  const auto& rbi = std::get<RbiContent>(description.files[0].content);
  EXPECT_EQ(rbi.partId, "BLMX");
  EXPECT_EQ(rbi.version, 0x1161);
  EXPECT_EQ(rbi.payloadBytes, 4096u);
  EXPECT_EQ(description.files[1].name, "empty");
  EXPECT_TRUE(BytesOf(description.files[1], 1).empty());
  EXPECT_THAT(BytesOf(description.files[2], 1), testing::ElementsAre(0x00, 0xFF));
  const auto& shortRbi = std::get<RbiContent>(description.files[3].content);
  EXPECT_EQ(shortRbi.version, 0x000A);
  EXPECT_EQ(shortRbi.payloadBytes, 0u);
}

struct BadDescription {
  const char* name;
  std::string text;
  std::string complaint;
};

class BenchDescriptionRefuses : public testing::TestWithParam<BadDescription> {};

TEST_P(BenchDescriptionRefuses, WithTheKeyInTheText) {
  try {
    ParseBenchDescription(GetParam().text);
    FAIL() << "accepted";
  } catch (const simulator::BenchError& error) {
    EXPECT_EQ(error.what(), GetParam().complaint);
  }
}

std::string File(const std::string& name, const std::string& content) {
  return R"({"files":{")" + name + "\":" + content + "}}";
}

std::string Belmara(const std::string& content) {
  return R"({"veltra":{"belmara":)" + content + "}}";
}

std::string Box(const std::string& content) {
  return R"({"veltra":{"box":)" + content + "}}";
}

std::string Morvak(const std::string& content) {
  return R"({"morvak":)" + content + "}";
}

INSTANTIATE_TEST_SUITE_P(
    Bad, BenchDescriptionRefuses,
    testing::Values(
        BadDescription{"NoObject", "[]", "expected an object, found a list"},
        BadDescription{"AText", R"("x")", R"(expected an object, found "x")"},
        BadDescription{"UnknownKey", R"({"velta":{}})", "velta: unknown key"},
        BadDescription{"UnknownNullKey", R"({"velta":null})", "velta: unknown key"},
        BadDescription{"UnknownVeltraKey", R"({"veltra":{"belmarra":{}}})", "veltra.belmarra: unknown key"},
        BadDescription{"UnknownCardKey", Belmara(R"({"Flash":"1160"})"), "veltra.belmara.Flash: unknown key"},
        BadDescription{"UnknownFileKey", File("a", R"({"raw":"","size":1})"), "files.a.size: unknown key"},
        BadDescription{"KeyTwice", R"({"veltra":{"dovu":null,"dovu":{}}})",
                       R"(the key "dovu" stands twice in one object)"},
        BadDescription{"KeyWithLineEnd", R"({"a\nb":1})", "a?b: unknown key"},
        BadDescription{"BoxType", R"({"veltra":{"box":[]}})", "veltra.box: expected an object, found a list"},
        BadDescription{"BoxKey", Box(R"({"isOn":true})"), "veltra.box.isOn: unknown key"},
        BadDescription{"BoxConfigType", Box(R"({"config":"2.25"})"),
                       R"(veltra.box.config: expected an object, found "2.25")"},
        BadDescription{"BoxConfigKey", Box(R"({"config":{"SparkwellRev":"2"}})"),
                       "veltra.box.config.SparkwellRev: unknown key"},
        BadDescription{"BoxRevisionNumber", Box(R"({"config":{"SalvikMinorRev":2}})"),
                       "veltra.box.config.SalvikMinorRev: expected a text of 1 to 2 hexadecimal digits, found 2"},
        BadDescription{"BoxRevisionLong", Box(R"({"config":{"TanbrookMajorRev":"100"}})"),
                       "veltra.box.config.TanbrookMajorRev: expected a text of 1 to 2 hexadecimal digits, found "
                       "\"100\""},
        BadDescription{"BoxTextType", Box(R"({"config":{"FirmwareRev":2.25}})"),
                       "veltra.box.config.FirmwareRev: expected a text, found 2.25"},
        BadDescription{"BoxTextWide", Box(R"({"config":{"FirmwareRev":"\u0100"}})"),
                       "veltra.box.config.FirmwareRev: holds a character above U+00FF"},
        BadDescription{"BoxTextLong", Box(R"({"config":{"FirmwareRev":")" + std::string(2033, '1') + "\"}}"),
                       "veltra.box.config.FirmwareRev: does not fit into an answer: more than 2032 bytes"},
        BadDescription{"BoxBoard", Box(R"({"vpd":{"VPD_Morvak":{}}})"), "veltra.box.vpd.VPD_Morvak: unknown key"},
        BadDescription{"BoxVpdType", Box(R"({"vpd":{"VPD_Jorl":"ZB"}})"),
                       R"(veltra.box.vpd.VPD_Jorl: expected an object, found "ZB")"},
        BadDescription{"BoxKeyword", Box(R"({"vpd":{"VPD_Brox":{"ZBC":"1"}}})"),
                       "veltra.box.vpd.VPD_Brox.ZBC: a field's keyword has two characters"},
        BadDescription{"BoxVpdOneTooLong", Box("{\"vpd\":{\"VPD_Brox\":" + LongFields(2041) + "}}"),
                       "veltra.box.vpd.VPD_Brox: does not fit into an answer: more than 2040 bytes"},
        BadDescription{"BoxVpdHuge", Box("{\"vpd\":{\"VPD_Brox\":" + LongFields(8193) + "}}"),
                       "veltra.box.vpd.VPD_Brox: does not fit into an answer: more than 2040 bytes"},
        BadDescription{"MorvakType", R"({"morvak":5})", "morvak: expected an object, found 5"},
        BadDescription{"MorvakKey", Morvak(R"({"model":4})"), "morvak.model: unknown key"},
        BadDescription{"MorvakKind", Morvak(R"({"boardKind":4})"), "morvak.boardKind: expected 5, 7 or 8, found 4"},
        BadDescription{"MorvakKindHigh", Morvak(R"({"boardKind":9})"),
                       "morvak.boardKind: expected a whole number from 0 to 8, found 9"},
        BadDescription{"MorvakKindText", Morvak(R"({"boardKind":"5"})"),
                       R"(morvak.boardKind: expected a whole number from 0 to 8, found "5")"},
        BadDescription{"MorvakSlots", Morvak(R"({"codecSlots":4294967296})"),
                       "morvak.codecSlots: expected a whole number from 0 to 4294967295, found 4294967296"},
        BadDescription{"MorvakCodecsType", Morvak(R"({"codecState":1})"),
                       "morvak.codecState: expected a list of whole numbers from 0 to 4294967295, found 1"},
        BadDescription{"MorvakCodec", Morvak(R"({"codecState":[1,-1]})"),
                       "morvak.codecState: expected a list of whole numbers from 0 to 4294967295, found -1"},
        BadDescription{"MorvakCodecMany",
                       Morvak(R"({"codecState":[0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]})"),
                       "morvak.codecState: has more than 32 entries"},
        BadDescription{"MorvakRev", Morvak(R"({"rev":{"HollenFW":"1"}})"), "morvak.rev.HollenFW: unknown key"},
        BadDescription{"MorvakRevType", Morvak(R"({"rev":{"MorvakTesk":10}})"),
                       "morvak.rev.MorvakTesk: expected a text, found 10"},
        BadDescription{"MorvakRevLong", Morvak(R"({"rev":{"MorvakTesk":")" + std::string(2039, '1') + "\"}}"),
                       "morvak.rev.MorvakTesk: does not fit into an answer: more than 2038 bytes"},
        BadDescription{"MorvakVpdType", Morvak(R"({"vpd":"ZB"})"), R"(morvak.vpd: expected an object, found "ZB")"},
        BadDescription{"MorvakVpdLong", Morvak("{\"vpd\":" + LongFields(2037) + "}"),
                       "morvak.vpd: does not fit into an answer: more than 2036 bytes"},
        BadDescription{"MorvakBoardName", Morvak(R"({"boards":{"02":{}}})"), "morvak.boards.02: unknown key"},
        BadDescription{"MorvakBoardHigh", Morvak(R"({"boards":{"32":{}}})"), "morvak.boards.32: unknown key"},
        BadDescription{"MorvakBoardLong", Morvak("{\"boards\":{\"0\":" + LongFields(8193) + "}}"),
                       "morvak.boards.0: the fields do not fit into 8192 bytes"},
        BadDescription{"VeltraType", R"({"veltra":[]})", "veltra: expected an object, found a list"},
        BadDescription{"CardType", Belmara("true"), "veltra.belmara: expected an object, found true"},
        BadDescription{"FilesType", R"({"files":"x"})", R"(files: expected an object, found "x")"},
        BadDescription{"VpdType", Belmara(R"({"vpd":"ZB"})"), R"(veltra.belmara.vpd: expected an object, found "ZB")"},
        BadDescription{"FieldType", Belmara(R"({"vpd":{"ZB":1}})"), "veltra.belmara.vpd.ZB: expected a text, found 1"},
        BadDescription{"ShortKeyword", Belmara(R"({"vpd":{"Z":"1"}})"),
                       "veltra.belmara.vpd.Z: a field's keyword has two characters"},
        BadDescription{"LongKeyword", Belmara(R"({"vpd":{"ZBC":"1"}})"),
                       "veltra.belmara.vpd.ZBC: a field's keyword has two characters"},
        BadDescription{"WideCharacter", Belmara(R"({"vpd":{"ZB":"\u0100"}})"),
                       "veltra.belmara.vpd.ZB: holds a character above U+00FF"},
        BadDescription{"LongField", Belmara(R"({"vpd":{"ZB":")" + std::string(256, '0') + "\"}}"),
                       "veltra.belmara.vpd.ZB: a field has at most 255 characters"},
        BadDescription{"FlashNumber", Belmara(R"({"flash":1160})"),
                       "veltra.belmara.flash: expected a text of 1 to 4 hexadecimal digits, found 1160"},
        BadDescription{"FlashHex", Belmara(R"({"flash":"11g0"})"),
                       R"(veltra.belmara.flash: expected a text of 1 to 4 hexadecimal digits, found "11g0")"},
        BadDescription{"FlashEmpty", Belmara(R"({"flash":""})"),
                       R"(veltra.belmara.flash: expected a text of 1 to 4 hexadecimal digits, found "")"},
        BadDescription{"FlashLong", Belmara(R"({"flash":"11600"})"),
                       R"(veltra.belmara.flash: expected a text of 1 to 4 hexadecimal digits, found "11600")"},
        BadDescription{"KarvelPrefix", Belmara(R"({"karvel":"0x16"})"),
                       R"(veltra.belmara.karvel: expected a text of 1 to 8 hexadecimal digits, found "0x16")"},
        BadDescription{"FileType", File("a", "3"), "files.a: expected an object, found 3"},
        BadDescription{"NoId", File("a", R"({"version":"1"})"), "files.a.id: is missing"},
        BadDescription{"ShortId", File("a", R"({"id":"BLM","version":"1"})"),
                       "files.a.id: a part id has four characters"},
        BadDescription{"NoVersion", File("a", R"({"id":"BLMX"})"), "files.a.version: is missing"},
        BadDescription{"RawAndId", File("a", R"({"raw":"","id":"BLMX"})"), "files.a.id: unknown key"},
        BadDescription{"OddRaw", File("a", R"({"raw":"000"})"),
                       R"(files.a.raw: expected a text of two hexadecimal digits a byte, found "000")"},
        BadDescription{"RawHex", File("a", R"({"raw":"zz"})"),
                       R"(files.a.raw: expected a text of two hexadecimal digits a byte, found "zz")"},
        BadDescription{"PayloadText", File("a", R"({"id":"BLMX","version":"1","payload":"10"})"),
                       R"(files.a.payload: expected a whole number from 0 to 67108864, found "10")"},
        BadDescription{"PayloadNegative", File("a", R"({"id":"BLMX","version":"1","payload":-1})"),
                       "files.a.payload: expected a whole number from 0 to 67108864, found -1"},
        BadDescription{"PayloadFraction", File("a", R"({"id":"BLMX","version":"1","payload":1.5})"),
                       "files.a.payload: expected a whole number from 0 to 67108864, found 1.5"},
        BadDescription{"PayloadHuge", File("a", R"({"id":"BLMX","version":"1","payload":67108865})"),
                       "files.a.payload: expected a whole number from 0 to 67108864, found 67108865"},
        BadDescription{"FileAbove", File("../a", R"({"raw":""})"), "files.../a: is not a plain file name"},
        BadDescription{"FileBelow", File("a/b", R"({"raw":""})"), "files.a/b: is not a plain file name"},
        BadDescription{"FileBackslash", File("a\\\\b", R"({"raw":""})"), "files.a\\b: is not a plain file name"},
        BadDescription{"FileDots", File("..", R"({"raw":""})"), "files...: is not a plain file name"},
        BadDescription{"FileNoName", File("", R"({"raw":""})"), "files.: is not a plain file name"},
        BadDescription{"FileZero", File("a\\u0000b", R"({"raw":""})"), "files.a?b: is not a plain file name"},
        BadDescription{"FileLong", File(std::string(256, 'n'), R"({"raw":""})"),
                       "files." + std::string(256, 'n') + ": is not a plain file name"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(BenchDescription, RefusesTextThatIsNoJson) {
  for (const char* text : {"", "{", "{\"files\":}", "{} {}", "{\"a\":\"\xFF\"}", "{'a':1}"}) {
    try {
      ParseBenchDescription(text);
      FAIL() << text;
    } catch (const simulator::BenchError& error) {
      EXPECT_THAT(error.what(), testing::StartsWith("not readable as JSON: parse error at line 1, column ")) << text;
      EXPECT_THAT(error.what(), testing::Not(testing::HasSubstr("\n")));
    }
  }
}

TEST(BenchDescription, RefusesMoreFieldsThanAnAreaHolds) {
  std::string fields;
  for (int i = 10; i < 43; ++i) {
    if (!fields.empty()) fields += ',';
    fields.append("\"").append(std::to_string(i)).append("\":\"").append(255, 'x').append("\"");
  }
  EXPECT_THROW(ParseBenchDescription(Belmara("{\"vpd\":{" + fields + "}}")), simulator::BenchError);
}

TEST(BenchDescription, SurvivesDeepNesting) {
  const std::string deep = R"({"veltra":)" + std::string(200'000, '[') + std::string(200'000, ']') + "}";
  EXPECT_THROW(ParseBenchDescription(deep), simulator::BenchError);
}

}  // namespace
