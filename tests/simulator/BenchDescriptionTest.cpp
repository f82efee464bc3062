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
  EXPECT_EQ(belmara.karvelStored, 0x00160000u);
  const auto& dovu = *description.state.cards[1];
  EXPECT_EQ(VpdText(dovu, 4), std::string("\x82\x00\x00\x78", 4));
  EXPECT_EQ(dovu.flashRunning, std::nullopt);
  EXPECT_EQ(dovu.flash.memory(), simulator::FlashMemory());
  EXPECT_EQ(dovu.karvelRunning, 0xFFu);
}

TEST(BenchDescription, TakesCharactersForBytes) {
  const BenchDescription description =
      ParseBenchDescription(R"({"veltra":{"dovu":{"vpd":{"\u00ffZ":"\u0080\u0000"}}}})");
  EXPECT_EQ(VpdText(*description.state.cards[1], 12), std::string("\x82\x00\x00\x90\x05\x00\xFFZ\x02\x80\x00\x78", 12));
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
        BadDescription{"Box", R"({"veltra":{"box":{}}})", "veltra.box: the box is not simulated yet"},
        BadDescription{"Morvak", R"({"morvak":{"boardKind":5}})", "morvak: the Orbo QX line is not simulated yet"},
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
