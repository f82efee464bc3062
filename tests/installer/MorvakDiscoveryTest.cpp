#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "errorException.h"
#include "FakeHostCards.h"
#include "installer/PartDiscovery.h"
#include "ParsedInstaller.h"
#include "support/CapturedOutput.h"
#include "support/FailureOf.h"

// The second line's parts: what is asked, in which order, and what comes of it.

namespace {

using test_support::CapturedOutput;
using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::vector<std::string>;

constexpr BoardKind kModel4 = BoardKind::kMorvakModel4;
constexpr BoardKind kModel5 = BoardKind::kMorvakModel5;

/// An Orbo QX that tells what a test puts in, and notes down what it is asked. A part without a text does not answer, a
/// board without a part number has no VPD.
class FakeOrboQx : public FakeHostCards {
 public:
  explicit FakeOrboQx(BoardKind kind) { boardKind = kind; }

  /// Each part has a version and a suffix of its own.
  std::map<std::string, std::string> versions = {{"MorvakFirmware", "003Dfw"},  {"MorvakFPGA", "0310f"},
                                                 {"MorvakTesk", "0011t"},       {"MorvakPower", "0509p"},
                                                 {"MorvakCodec1FPGA", "0021c"}, {"MorvakCodec2FPGA", "0205d"},
                                                 {"MorvakCodec1VCID", "000Bv"}, {"MorvakCodec2VCID", "000Cw"}};
  std::map<std::string, std::string> partNumbers;
  bool codecs[3] = {};
  /// The function revision is 1 and this; every row takes 1.1.
  std::string functionMinor = "1";
  bool tellsVpd = true;

  HwcStatus ExecuteCommand(const char* name, Arguments arguments) override {
    std::string symbol;
    for (const Argument& argument : arguments)
      if (argument.tag == ArgumentTag::kText) symbol = static_cast<const char*>(argument.input);
    asked.push_back(std::string(name) == "GetStringPartRev" ? symbol : std::string(name) + " " + symbol);
    return std::string(name) == "VPDInfo" ? TellVpd(arguments) : TellVersion(symbol, arguments);
  }
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override {
    asked.push_back(std::string("board ") + board);
    const auto found = partNumbers.find(board);
    if (found == partNumbers.end()) throw errorException("no VPD");
    const auto vpd = VpdWith({{"PN", found->second}});
    std::copy(vpd.begin(), vpd.end(), buffer);
  }
  bool IsCodecPresent(std::int32_t slot) override {
    asked.push_back("codec " + std::to_string(slot));
    return codecs[slot];
  }

 private:
  HwcStatus TellVersion(const std::string& part, Arguments arguments) const {
    const auto found = versions.find(part);
    if (found == versions.end()) return kHWCerr_CommandTimeout;
    for (const Argument& argument : arguments)
      if (argument.tag == ArgumentTag::kOutBytes)
        std::memcpy(argument.place, found->second.data(), found->second.size());
    return kHWCerr_None;
  }
  HwcStatus TellVpd(Arguments arguments) const {
    if (!tellsVpd) return kHWCerr_CommandTimeout;
    const auto vpd = VpdWith({{"ZB", "1"}, {"ZC", functionMinor}});
    for (const Argument& argument : arguments) {
      if (argument.tag == ArgumentTag::kOutUInt16)
        *static_cast<std::uint16_t*>(argument.place) = static_cast<std::uint16_t>(vpd.size());
      if (argument.tag == ArgumentTag::kOutBytes) std::memcpy(argument.place, vpd.data(), vpd.size());
    }
    return kHWCerr_None;
  }
};

/// One text a location: name, id, current version with its suffix, expected version.
Texts Locations(const Installer& installer) {
  Texts texts;
  for (std::int32_t i = 0; i < installer.locationCount(); ++i) {
    const PartLocation& each = installer.location(i);
    char text[100];
    std::snprintf(text, sizeof text, "%s %s %x%s %x", each.part->name, each.part->id, unsigned{each.current},
                  each.suffix, unsigned{each.expected});
    texts.emplace_back(text);
  }
  return texts;
}

/// What is found with the default options, or without the one that holds parts back.
Texts Found(FakeOrboQx& orboQx, bool isFussy = true) {
  ParsedInstaller parsed;
  parsed.installer.fussy = isFussy ? 1 : 0;
  orboQx.asked.clear();
  DiscoverMorvakParts(parsed.installer, orboQx);
  return Locations(parsed.installer);
}

/// The questions that are left when those about the function revision are taken out.
Texts Questions(const FakeOrboQx& orboQx) {
  Texts texts;
  for (const std::string& each : orboQx.asked)
    if (each != "VPDInfo VPD_Morvak") texts.push_back(each);
  return texts;
}

// ---- Any model

TEST(DiscoverMorvakParts, FindsTheFirmwareAloneOnAModelThatItDoesNotKnow) {
  for (const int kind : {8, 6, 2, 0}) {
    FakeOrboQx orboQx(static_cast<BoardKind>(kind));
    EXPECT_THAT(Found(orboQx, false), ElementsAre("pico PICO 3d-fw 123")) << kind;
    EXPECT_THAT(orboQx.asked, ElementsAre("MorvakFirmware", "VPDInfo VPD_Morvak"));
  }
}

TEST(DiscoverMorvakParts, GoesOnWithoutTheVersionOfAPartThatDoesNotAnswer) {
  FakeOrboQx silent(kModel4);
  silent.versions.clear();
  CapturedOutput output;
  EXPECT_THAT(Found(silent, false), ElementsAre("pico PICO 0 123", "xandrel XNDR 0 30f"));
  EXPECT_EQ(output.err(), "GetStringPartRev for MorvakFirmware failed.\nGetStringPartRev for MorvakFPGA failed.\n");
  EXPECT_EQ(output.out(), "");
}

TEST(DiscoverMorvakParts, EndsWithABoardThatDoesNotTellItsFunctionRevision) {
  FakeOrboQx orboQx(kModel4);
  orboQx.tellsVpd = false;
  CapturedOutput output;
  EXPECT_EQ(FailureOf([&] { Found(orboQx); }), "VersionDiscovery.cpp: Unable to get VPD information");
  EXPECT_EQ(output.err(), "Error: VPDInfo TALC command failed for VPD_Morvak, for device pico\n");
}

TEST(DiscoverMorvakParts, HasALineForEachPartOfABoardThatIsTooNew) {
  FakeOrboQx orboQx(kModel4);
  orboQx.functionMinor = "2";
  CapturedOutput output;
  EXPECT_THAT(Found(orboQx), IsEmpty());
  EXPECT_EQ(output.err(),
            "The pico function rev 1.2 cannot be updated using this utility\n"
            "The xandrel function rev 1.2 cannot be updated using this utility\n");
}

// A part that says so leaves the text of the one before.
TEST(DiscoverMorvakParts, KeepsTheSuffixOfThePartBeforeOneThatIsUnknown) {
  FakeOrboQx orboQx(kModel4);
  orboQx.versions["MorvakFPGA"] = "0310UNKNOWN";
  EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 0-fw 30f"));
  orboQx.versions["MorvakFirmware"] = "UNKNOWN";
  EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 0 123", "xandrel XNDR 0 30f"));
}

// ---- Model 4

TEST(DiscoverMorvakParts, GoesThroughModel4InOrder) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[0] = orboQx.codecs[1] = orboQx.codecs[2] = true;
  orboQx.partNumbers = {{"0", "1-20040-2"}, {"2", "1-20173-1"}, {"3", "1-20035-1"}};
  EXPECT_THAT(Found(orboQx, false), ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 310-f 30f", "teskpro TSKP 11-t 10",
                                                "vqxpwr VQPW 509-p 50a", "enc1b ENSC 21-c 20", "vid1 ENVC b-v a",
                                                "enc2 ENCD 205-d 204", "vid2 ENVC c-w a"));
  EXPECT_THAT(orboQx.asked, ElementsAre("MorvakFirmware", "VPDInfo VPD_Morvak",               //
                                        "MorvakFPGA", "VPDInfo VPD_Morvak",                   //
                                        "MorvakTesk", "VPDInfo VPD_Morvak",                   //
                                        "MorvakPower", "board 0", "VPDInfo VPD_Morvak",       //
                                        "codec 0",                                            //
                                        "MorvakCodec1FPGA", "board 2", "VPDInfo VPD_Morvak",  //
                                        "MorvakCodec1VCID", "VPDInfo VPD_Morvak",             //
                                        "codec 2", "MorvakCodec1FPGA", "board 2",             //
                                        "codec 1",                                            //
                                        "MorvakCodec2FPGA", "board 3", "VPDInfo VPD_Morvak",  //
                                        "MorvakCodec2VCID", "VPDInfo VPD_Morvak"));
}

TEST(DiscoverMorvakParts, AsksForAllCodecsOfModel4EvenWhenThereIsNone) {
  FakeOrboQx orboQx(kModel4);
  EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 310-f 30f"));
  EXPECT_THAT(Questions(orboQx), ElementsAre("MorvakFirmware", "MorvakFPGA", "codec 0", "codec 2", "codec 1"));
}

TEST(DiscoverMorvakParts, HoldsPartsBackFromFussyUsersAndOldFirmware) {
  struct Case {
    const char* firmware;
    bool isFussy;
    bool showsMore;
  };
  for (const Case& each : {Case{"003D", true, false},
                           {"003D", false, true},
                           {"003C", false, false},
                           {"00.3D", false, true},
                           {"00.3C", false, false},
                           {"0100", false, true},
                           {"FFFF", true, false},
                           {"UNKNOWN", false, false}}) {
    SCOPED_TRACE(::testing::Message() << each.firmware << (each.isFussy ? ", fussy" : ""));
    for (const BoardKind kind : {kModel4, kModel5}) {
      FakeOrboQx orboQx(kind);
      orboQx.versions["MorvakFirmware"] = each.firmware;
      orboQx.partNumbers = {{"0", "1-20099-1"}};
      const Texts found = Found(orboQx, each.isFussy);
      const bool isModel4 = kind == kModel4;
      const std::string power = isModel4 ? "vqxpwr VQPW 509-p 50a" : "jqxpwr JQPW 509-p 50a";
      EXPECT_EQ(std::count(found.begin(), found.end(), "teskpro TSKP 11-t 10"), each.showsMore ? 1 : 0);
      EXPECT_EQ(std::count(found.begin(), found.end(), power), each.showsMore ? 1 : 0);
      EXPECT_EQ(found.size(), (isModel4 ? 2u : 1u) + (each.showsMore ? 2u : 0u));
      for (const char* const part : {"MorvakTesk", "MorvakPower"})
        EXPECT_EQ(std::count(orboQx.asked.begin(), orboQx.asked.end(), part), each.showsMore ? 1 : 0) << part;
    }
  }
}

// ---- Power

struct PowerCase {
  const char* what;
  const char* partNumber;  ///< null: board 0 has none
  const char* model4;      ///< null: no part
  const char* model5;
};

void PrintTo(const PowerCase& c, std::ostream* out) {
  *out << c.what;
}

class MorvakPowerPart : public testing::TestWithParam<PowerCase> {};

TEST_P(MorvakPowerPart, GoesByTheNumberOfBoard0) {
  const auto lastFound = [](BoardKind kind) {
    FakeOrboQx orboQx(kind);
    if (GetParam().partNumber != nullptr) orboQx.partNumbers = {{"0", GetParam().partNumber}};
    const Texts found = Found(orboQx, false);
    return found.empty() ? "" : found.back();
  };
  constexpr char kTesk[] = "teskpro TSKP 11-t 10";
  EXPECT_EQ(lastFound(kModel4), GetParam().model4 != nullptr ? GetParam().model4 : kTesk);
  EXPECT_EQ(lastFound(kModel5), GetParam().model5 != nullptr ? GetParam().model5 : kTesk);
}

constexpr char kVqx[] = "vqxpwr VQPW 509-p 50a";
constexpr char kVqxX[] = "vqxpwrx VQPX 509-p 50a";
constexpr char kJqx[] = "jqxpwr JQPW 509-p 50a";
constexpr char kJqxX[] = "jqxpwrx JQPX 509-p 50a";
constexpr char kJqxY[] = "jqxpwry JQPY 509-p 50a";

INSTANTIATE_TEST_SUITE_P(Each, MorvakPowerPart,
                         testing::Values(PowerCase{"20040 below 2", "1-20040-1", kVqxX, kJqxX},
                                         PowerCase{"20040 far below 2", "1-20040--5", kVqxX, kJqxX},
                                         PowerCase{"20040 from 2 on", "1-20040-2", kVqx, kJqx},
                                         PowerCase{"20040 without a third number", "1-20040", kVqx, kJqx},
                                         PowerCase{"20046 below 2", "1-20046-1", kVqx, kJqxY},
                                         PowerCase{"20046 below 3", "1-20046-2", kVqx, kJqxY},
                                         PowerCase{"20046 from 3 on", "1-20046-3", kVqx, kJqx},
                                         PowerCase{"another number", "1-20164-1", kVqx, kJqx},
                                         PowerCase{"a neighbour of 20040", "20040-20041-1", kVqx, kJqx},
                                         PowerCase{"a text that is no number", "?", kVqx, kJqx},
                                         PowerCase{"a board without one", nullptr, nullptr, nullptr}));

TEST(DiscoverMorvakParts, ExpectsOfThePowerPartItsOwnMajorVersion) {
  for (const BoardKind kind : {kModel4, kModel5}) {
    FakeOrboQx orboQx(kind);
    const bool isModel4 = kind == kModel4;
    orboQx.partNumbers = {{"0", "1-20040-1"}};
    const auto power = [&](const char* version) {
      orboQx.versions["MorvakPower"] = version;
      return Found(orboQx, false).back();
    };
    const std::string part = isModel4 ? "vqxpwrx VQPX " : "jqxpwrx JQPX ";
    EXPECT_EQ(power("0200"), part + "200 20a");
    EXPECT_EQ(power("FF0B"), part + "ff0b ff0a");
    EXPECT_EQ(power("00.3"), part + "3 a");
    EXPECT_EQ(power("UNKNOWN"), part + "0-t a") << "asked all the same";
  }
}

// ---- Codecs of model 4

struct CodecCase {
  const char* what;
  const char* partNumber;  ///< null: the codec's board has none
  const char* fpga;
  const char* vcid;
  bool readsNumber;
  bool asksVcid;
  Texts first;  ///< what comes of it in the first slot, behind firmware and FPGA
  Texts second;
};

void PrintTo(const CodecCase& c, std::ostream* out) {
  *out << c.what;
}

class MorvakCodecParts : public testing::TestWithParam<CodecCase> {
 protected:
  /// All but the first `count`.
  static Texts Behind(const Texts& texts, std::size_t count) {
    return {texts.begin() + static_cast<std::ptrdiff_t>(count), texts.end()};
  }
};

TEST_P(MorvakCodecParts, ComeOfTheFirstSlot) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[0] = true;
  orboQx.versions["MorvakCodec1FPGA"] = GetParam().fpga;
  orboQx.versions["MorvakCodec1VCID"] = GetParam().vcid;
  if (GetParam().partNumber != nullptr) orboQx.partNumbers = {{"2", GetParam().partNumber}};
  EXPECT_EQ(Behind(Found(orboQx), 2), GetParam().first);
  Texts questions = {"codec 0", "MorvakCodec1FPGA"};
  if (GetParam().readsNumber) questions.emplace_back("board 2");
  if (GetParam().asksVcid) questions.emplace_back("MorvakCodec1VCID");
  questions.insert(questions.end(), {"codec 2", "codec 1"});
  EXPECT_EQ(Behind(Questions(orboQx), 2), questions);
}

TEST_P(MorvakCodecParts, ComeOfTheSecondSlot) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[1] = true;
  orboQx.versions["MorvakCodec2FPGA"] = GetParam().fpga;
  orboQx.versions["MorvakCodec2VCID"] = GetParam().vcid;
  if (GetParam().partNumber != nullptr) orboQx.partNumbers = {{"3", GetParam().partNumber}};
  EXPECT_EQ(Behind(Found(orboQx), 2), GetParam().second);
  Texts questions = {"codec 0", "codec 2", "codec 1", "MorvakCodec2FPGA"};
  if (GetParam().readsNumber) questions.emplace_back("board 3");
  if (GetParam().asksVcid) questions.emplace_back("MorvakCodec2VCID");
  EXPECT_EQ(Behind(Questions(orboQx), 2), questions);
}

INSTANTIATE_TEST_SUITE_P(
    Each, MorvakCodecParts,
    testing::Values(
        CodecCase{"20173",
                  "1-20173-9",
                  "0021c",
                  "000Bv",
                  true,
                  true,
                  {"enc1b ENSC 21-c 20", "vid1 ENVC b-v a"},
                  {"enc2b ENSC 21-c 20", "vid2 ENVC b-v a"}},
        CodecCase{"20035",
                  "1-20035-9",
                  "0205c",
                  "000Av",
                  true,
                  true,
                  {"enc1 ENCD 205-c 204", "vid1 ENVC a-v a"},
                  {"enc2 ENCD 205-c 204", "vid2 ENVC a-v a"}},
        CodecCase{
            "another number", "1-20034-9", "0021c", "000Bv", true, true, {"vid1 ENVC b-v a"}, {"vid2 ENVC b-v a"}},
        CodecCase{
            "the spacer's number", "1-30024-9", "0021c", "000Bv", true, true, {"vid1 ENVC b-v a"}, {"vid2 ENVC b-v a"}},
        CodecCase{
            "a text that is no number", "?", "0021c", "000Bv", true, true, {"vid1 ENVC b-v a"}, {"vid2 ENVC b-v a"}},
        CodecCase{"a board without a number", nullptr, "0021c", "000Bv", true, false, {}, {}},
        CodecCase{"an FPGA of version 0.0", "1-20173-9", "0000c", "000Bv", false, false, {}, {}},
        CodecCase{"an FPGA of version 0.1",
                  "1-20173-9",
                  "0001c",
                  "UNKNOWN",
                  true,
                  true,
                  {"enc1b ENSC 1-c 20"},
                  {"enc2b ENSC 1-c 20"}},
        CodecCase{"an FPGA of version 1.0",
                  "1-20173-9",
                  "0100c",
                  "0000v",
                  true,
                  true,
                  {"enc1b ENSC 100-c 20"},
                  {"enc2b ENSC 100-c 20"}},
        CodecCase{"an FPGA that is unknown", "1-20173-9", "UNKNOWN", "000Bv", false, false, {}, {}},
        CodecCase{
            "a VCID of version 0.1", "1-20034-9", "0021c", "0001", true, true, {"vid1 ENVC 1 a"}, {"vid2 ENVC 1 a"}}));

TEST(DiscoverMorvakParts, GoesByTheBoardOfTheSlotInWhichTheCodecIs) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[0] = orboQx.codecs[1] = true;
  orboQx.partNumbers = {{"2", "1-20173-1"}};
  EXPECT_THAT(Found(orboQx),
              ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 310-f 30f", "enc1b ENSC 21-c 20", "vid1 ENVC b-v a"));
  orboQx.partNumbers = {{"3", "1-20173-1"}};
  EXPECT_THAT(Found(orboQx),
              ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 310-f 30f", "enc2b ENSC 205-d 20", "vid2 ENVC c-w a"));
}

// ---- Spacer

TEST(DiscoverMorvakParts, FindsASpacerInTheThirdSlot) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[2] = true;
  orboQx.partNumbers = {{"2", "1-30024-1"}};
  EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 310-f 30f", "spacer SPCR 21-c b"));
  EXPECT_THAT(Questions(orboQx), ElementsAre("MorvakFirmware", "MorvakFPGA", "codec 0", "codec 2", "MorvakCodec1FPGA",
                                             "board 2", "codec 1"));
}

TEST(DiscoverMorvakParts, AsksOneModuleTwiceUnderItsTwoNames) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[0] = orboQx.codecs[2] = true;
  orboQx.partNumbers = {{"2", "1-30024-1"}};
  EXPECT_THAT(Found(orboQx),
              ElementsAre("pico PICO 3d-fw 123", "xandrel XNDR 310-f 30f", "vid1 ENVC b-v a", "spacer SPCR 21-c b"));
}

TEST(DiscoverMorvakParts, FindsNoSpacerWithoutItsNumberOrItsVersion) {
  FakeOrboQx orboQx(kModel4);
  orboQx.codecs[2] = true;
  const auto found = [&] { return Found(orboQx).size(); };
  EXPECT_EQ(found(), 2u) << "no number";
  for (const char* const other : {"1-20173-1", "1-20035-1", "1-30023-1", "30024"}) {
    orboQx.partNumbers = {{"2", other}};
    EXPECT_EQ(found(), 2u) << other;
  }
  orboQx.partNumbers = {{"2", "1-30024-1"}};
  for (const char* const none : {"0000c", "UNKNOWN"}) {
    orboQx.versions["MorvakCodec1FPGA"] = none;
    EXPECT_EQ(found(), 2u) << none;
    EXPECT_EQ(orboQx.asked.back(), "codec 1") << "the board was not asked";
    EXPECT_EQ(std::count(orboQx.asked.begin(), orboQx.asked.end(), "board 2"), 0);
  }
  orboQx.versions["MorvakCodec1FPGA"] = "0001";
  EXPECT_EQ(found(), 3u);
}

// ---- Model 5

TEST(DiscoverMorvakParts, GoesThroughModel5InOrder) {
  FakeOrboQx orboQx(kModel5);
  orboQx.codecs[0] = orboQx.codecs[1] = orboQx.codecs[2] = true;
  orboQx.partNumbers = {{"0", "1-20046-2"}, {"2", "1-20173-1"}, {"3", "1-20035-1"}};
  EXPECT_THAT(Found(orboQx, false), ElementsAre("pico PICO 3d-fw 123", "yorvalen YRVL 310-f 222",
                                                "teskpro TSKP 11-t 10", "jqxpwry JQPY 509-p 50a"));
  EXPECT_THAT(orboQx.asked, ElementsAre("MorvakFirmware", "VPDInfo VPD_Morvak",         //
                                        "board 0", "MorvakFPGA", "VPDInfo VPD_Morvak",  //
                                        "MorvakTesk", "VPDInfo VPD_Morvak",             //
                                        "MorvakPower", "board 0", "VPDInfo VPD_Morvak"));
}

TEST(DiscoverMorvakParts, TellsTheFpgasOfModel5ByTheNumberOfBoard0) {
  struct Case {
    const char* partNumber;
    const char* fpga;
  };
  for (const Case& each : {Case{"1-20164-0", "qindel QNDL 310-f 100"},
                           {"1-20164-9", "qindel QNDL 310-f 100"},
                           {"1-20046-2", "yorvalen YRVL 310-f 222"},
                           {"1-20046-3", "yorvalen YRVL 310-f 222"},
                           {"1-20046", "yorvalen YRVL 310-f 222"},
                           {"1-20046-1", "yorvalenx YRVX 310-f 222"},
                           {"1-20046--1", "yorvalenx YRVX 310-f 222"}}) {
    FakeOrboQx orboQx(kModel5);
    orboQx.partNumbers = {{"0", each.partNumber}};
    EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 3d-fw 123", each.fpga)) << each.partNumber;
  }
}

TEST(DiscoverMorvakParts, AsksTheFpgaOfModel5OnlyOfABoardWithANumber) {
  FakeOrboQx orboQx(kModel5);
  EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 3d-fw 123"));
  EXPECT_THAT(Questions(orboQx), ElementsAre("MorvakFirmware", "board 0"));
  orboQx.partNumbers = {{"0", "1-20040-1"}};
  EXPECT_THAT(Found(orboQx), ElementsAre("pico PICO 3d-fw 123"));
  EXPECT_THAT(Questions(orboQx), ElementsAre("MorvakFirmware", "board 0", "MorvakFPGA"));
}

}  // namespace
