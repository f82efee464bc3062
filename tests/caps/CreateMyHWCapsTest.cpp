// What the hardware is asked at its finding, and what is made of its answers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "BoxHardware.h"

namespace {

using namespace caps_test;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using CreateMyHWCapsTest = BoxHardwareTest;

// ---- The type

TEST_F(CreateMyHWCapsTest, AsksABoxWithoutSubcomponentsForItsTypeAlone) {
  Attach({EmbeddedCapabilities()});
  hardware_.Expect({{kAskType, kIsTrelvane}});
  const TalcHWCapsHandle caps = Find();
  EXPECT_EQ(caps.GetName(), "Trelvane");
  EXPECT_EQ(caps.GetHardwareType(), "Trelvane");
  EXPECT_EQ(caps.GetNamedBlockCount(), 101u);
  EXPECT_TRUE(IsMet(3000));
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, CutsTheTypeAtItsFirstZeroByte) {
  Attach({kBox});
  for (const char* const reply :
       {"0B 0B 00 08 80 21 00 00 42 6F 78 00", "0B 0B 00 0B 80 21 00 00 42 6F 78 00 41 00 42"}) {
    TalcPathPrivate::capsState.conduits.clear();
    hardware_.Expect({{kAskType, reply}, {kAskCount, kHas0}});
    EXPECT_EQ(Find().GetName(), "Box") << reply;
  }
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, TakesATypeOfAnyLength) {
  const std::string type(300, 'x');
  Attach({"HardwareType " + type + " ; Property HasHardwareSubcompCount INTEGER 0 ;"});
  hardware_.Expect({{kAskType, "0B 0B 01 30 80 21 00 00 " + HexOf(type)}});
  EXPECT_EQ(Find().GetHardwareType(), type);
}

// The text is empty, but its zero byte counts as something.
TEST_F(CreateMyHWCapsTest, TakesTheCapabilitiesWithoutATypeForAZeroByte) {
  Attach({"Property Own STRING none ; Property HasHardwareSubcompCount INTEGER 0 ;"});
  hardware_.Expect({{kAskType, "0B 0B 00 05 80 21 00 00 00"}});
  const TalcHWCapsHandle caps = Find();
  EXPECT_EQ(caps.GetName(), "");
  EXPECT_EQ(Words(caps), "none - -");
  EXPECT_EQ(log(), kAddLine);
}

TEST_F(CreateMyHWCapsTest, TakesNoCapabilitiesWhenTheHardwareDoesNotTellItsType) {
  Attach({kBox});
  for (const std::string& reply : {std::string("0B 0B 00 04 80 21 00 00"),           // nothing
                                   std::string("0B 0B 00 07 80 21 00 01 42 6F 78"),  // failed
                                   std::string("0B 0B 00 07 80 21 00 02 42 6F 78"),  // not supported
                                   std::string("0B 0B 00 04 80 21 00 F0"),           // transmit failure
                                   std::string("0B 0B 00 04 80 21 00 FF"),           // time-out
                                   std::string("0C 0B 00 07 80 21 00 00 42 6F 78"),  // not a packet
                                   std::string("0B 0B 00 04 80"), std::string()}) {
    ClearLog();
    hardware_.Expect({{kAskType, reply}});
    EXPECT_EQ(Find().GetName(), "EMPTY") << reply;
    EXPECT_EQ(log(), kNobodyLine) << reply;
  }
}

TEST_F(CreateMyHWCapsTest, TakesNoCapabilitiesWithoutAnExecution) {
  blocks_.Add("Box", kBox);
  ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, nullptr));
  const TalcHWCapsHandle caps = TalcPathPrivate::CreateMyHWCaps();
  EXPECT_EQ(caps.GetName(), "EMPTY");
  EXPECT_EQ(caps.GetHardwareType(), "EMPTY");
  EXPECT_EQ(log(), kNobodyLine);
}

// They would be found, but are no hardware that was met, and have no sub components.
TEST_F(CreateMyHWCapsTest, TakesTheCapabilitiesOfTheTypeNullWhenThereAreSome) {
  Attach({kBox, "HardwareType NULL ; Property TalcConduitBaseID INTEGER 5 ; Property Own STRING null ;"});
  hardware_.Expect({{kAskType, ""}});
  const TalcHWCapsHandle caps = Find();
  EXPECT_EQ(caps.GetName(), "NULL");
  EXPECT_EQ(Words(caps), "null - -");
  EXPECT_FALSE(IsMet(5));
  EXPECT_EQ(log(), kNobodyLine);
}

TEST_F(CreateMyHWCapsTest, AsksHardwareOfAnUnknownTypeForItsSubcomponents) {
  Attach({kHd, kAvci, "HardwareType NULL ; Property Own STRING null ;"});
  const TalcHWCapsHandle caps = FindBoxWith(kHas2, {kIsHd, kIsCodec});
  EXPECT_EQ(caps.GetName(), "EMPTY");
  EXPECT_EQ(Words(caps), "- - -");
  EXPECT_EQ(log(), kAddLine + kMergeLine + kMergeLine);
}

// ---- Hardware that was met

TEST_F(CreateMyHWCapsTest, KeepsHardwareUnderItsConduitBaseId) {
  Attach({kBox});
  EXPECT_EQ(FindBoxWith(kHas0, {}).GetName(), "Box");
  TalcHWCapsHandle known;
  ASSERT_TRUE(TalcHWCapsManager::GetByConduitId(4000, &known));
  EXPECT_EQ(Words(known), "box - -");
  EXPECT_EQ(TalcPathPrivate::capsState.conduits.size(), 1u);
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, KeepsNoHardwareWithoutAConduitBaseId) {
  for (const char* const property :
       {"", "Property TalcConduitBaseID INTEGER 0 ;", "Property TalcConduitBaseID STRING 4000 ;"}) {
    ClearLog();
    Attach({std::string("HardwareType Box ; ") + property});
    EXPECT_EQ(FindBoxWith(kHas0, {}).GetName(), "Box");
    EXPECT_EQ(log(), kAddLine) << property;
    EXPECT_TRUE(TalcPathPrivate::capsState.conduits.empty()) << property;
  }
}

TEST_F(CreateMyHWCapsTest, KeepsANegativeConduitBaseIdAsUnsigned) {
  Attach({"HardwareType Box ; Property TalcConduitBaseID INTEGER -2 ;"});
  FindBoxWith(kHas0, {});
  EXPECT_TRUE(IsMet(0xFFFFFFFE));
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, AsksHardwareThatWasMetForItsTypeAlone) {
  Attach({kBox, kHd});
  FindBoxWith(kHas1, {kIsHd});
  hardware_.Expect({{kAskType, kIsBox}});
  EXPECT_EQ(Words(Find()), "hd hd -");
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, AnswersWithTheHardwareThatFirstHadTheConduitBaseId) {
  Attach({kBox, "HardwareType Trelvane ; Property TalcConduitBaseID INTEGER 4000 ; Property Own STRING other ;"});
  FindBoxWith(kHas0, {});
  hardware_.Expect({{kAskType, kIsTrelvane}});
  const TalcHWCapsHandle caps = Find();
  EXPECT_EQ(caps.GetName(), "Box");
  EXPECT_EQ(Words(caps), "box - -");
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, MeetsEveryConduitBaseIdOfItsOwn) {
  Attach({kBox, "HardwareType Trelvane ; Property TalcConduitBaseID INTEGER 4001 ; Property Own STRING other ;"});
  FindBoxWith(kHas0, {});
  hardware_.Expect({{kAskType, kIsTrelvane}, {kAskCount, kHas0}});
  EXPECT_EQ(Words(Find()), "other - -");
  EXPECT_EQ(TalcPathPrivate::capsState.conduits.size(), 2u);
}

TEST_F(CreateMyHWCapsTest, AddsOnlyWhatIsNoneOfBoth) {
  Attach({kBox, kHd});
  const TalcHWCapsHandle box = TalcHWCapsManager::GetByName("Box");
  const TalcHWCapsHandle hd = TalcHWCapsManager::GetByName("HDBoard");
  TalcPathPrivate::AddTalcHWCapsToMap(7, nullptr);
  TalcPathPrivate::AddTalcHWCapsToMap(0, &box);
  EXPECT_EQ(log(), kAddLine + kAddLine);
  EXPECT_FALSE(IsMet(7));
  EXPECT_FALSE(IsMet(0));
  ClearLog();
  TalcPathPrivate::AddTalcHWCapsToMap(7, &box);
  TalcPathPrivate::AddTalcHWCapsToMap(7, &hd);
  EXPECT_EQ(log(), "");
  TalcHWCapsHandle known;
  ASSERT_TRUE(TalcHWCapsManager::GetByConduitId(7, &known));
  EXPECT_EQ(known.GetName(), "Box");
}

// ---- Sub components

TEST_F(CreateMyHWCapsTest, AsksForSubcomponentsUnlessThereAreSaidToBeNone) {
  for (const char* const property :
       {"", "Property HasHardwareSubcompCount INTEGER 1 ;", "Property HasHardwareSubcompCount INTEGER -1 ;",
        "Property HasHardwareSubcompCount INTEGER 2 ;", "Property HasHardwareSubcompCount STRING 0 ;"}) {
    Attach({kBox + property, kHd});
    EXPECT_EQ(Words(FindBoxWith(kHas1, {kIsHd})), "hd hd -") << property;
  }
  Attach({kBox + "Property HasHardwareSubcompCount INTEGER 0 ;", kHd});
  hardware_.Expect({{kAskType, kIsBox}});
  EXPECT_EQ(Words(Find()), "box - -");
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, TakesOverWhatTheSubcomponentsBring) {
  struct Case {
    std::string info;
    const char* words;
  };
  for (const Case& each : std::vector<Case>{{kIsHd, "hd hd -"}, {kIsSpacedHd, "hd hd -"}, {kIsCodec, "box - avci"}}) {
    Attach({kBox, kHd, kAvci});
    EXPECT_EQ(Words(FindBoxWith(kHas1, {each.info})), each.words);
  }
  Attach({kBox, kHd, kAvci});
  EXPECT_EQ(Words(FindBoxWith(kHas3, {kIsCodec, IsOther("Fan"), kIsSpacedHd})), "hd hd avci");
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, TakesNothingOverFromOtherSubcomponents) {
  for (const char* const type : {"", "Fan", "HDBoar", "HDBoard ", "HDBoardX", " HDBoard", "HD  Board", "hd board",
                                 "HDBOARD", "HD_Board", "AVCIboard", "Box", "Codec Module : ID 0x",
                                 "Codec Module : ID 0x8", "Codec Module : ID 0x70", "codec module : id 0x7"}) {
    Attach({kBox, kHd, kAvci});
    EXPECT_EQ(Words(FindBoxWith(kHas1, {IsOther(type)})), "box - -") << type;
  }
  EXPECT_EQ(log(), "");
}

// Two types of sub component, one type of capabilities: none of the name with a blank is looked for.
TEST_F(CreateMyHWCapsTest, LooksForCapabilitiesOfTheOptionsOwnNames) {
  Attach({kBox, "HardwareType HD ; Property Hd STRING no ;", "HardwareType Codec ; Property Avci STRING no ;"});
  EXPECT_EQ(Words(FindBoxWith(kHas3, {kIsSpacedHd, kIsCodec, kIsHd})), "box - -");
  EXPECT_EQ(log(), kMergeLine + kMergeLine + kMergeLine);
}

TEST_F(CreateMyHWCapsTest, CutsTheTypeOfASubcomponentAtItsFirstZeroByte) {
  for (const char* const tail : {"00", "00 00 00", "00 58 59"}) {
    Attach({kBox, kHd});
    const std::string length =
        test_support::Hex({static_cast<std::uint8_t>(0x12 + test_support::FromHex(tail).size())});
    EXPECT_EQ(Words(FindBoxWith(kHas1, {"0B 0B 00 " + length + " " + kRest + "48 44 42 6F 61 72 64 " + tail})),
              "hd hd -");
  }
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsTest, TakesATypeOf126BytesAndNoneOf127) {
  std::string type("HDBoard");
  type.resize(126, '\0');
  Attach({kBox, kHd});
  EXPECT_EQ(Words(FindBoxWith(kHas1, {"0B 0B 00 89 " + kRest + HexOf(type)})), "hd hd -");
  EXPECT_EQ(log(), "");
  type.resize(127, '\0');
  Attach({kBox, kHd, kAvci});
  EXPECT_EQ(Words(FindBoxWith(kHas2, {"0B 0B 00 8A " + kRest + HexOf(type), kIsCodec})), "box - avci");
  EXPECT_EQ(log(), kLongLine);
}

TEST_F(CreateMyHWCapsTest, AsksForUpTo255Subcomponents) {
  Attach({kBox, kAvci});
  hardware_.Expect({{kAskType, kIsBox}, {kAskCount, "0B 0B 00 05 80 39 00 00 FF"}});
  for (int n = 0; n < 255; ++n) {
    char number[3];
    std::snprintf(number, sizeof number, "%02X", n);
    hardware_.Expect({{kAskInfo + number, n == 254 ? kIsCodec : IsOther("Fan")}});
  }
  EXPECT_EQ(Words(Find()), "box - avci");
  EXPECT_EQ(log(), "");
}

}  // namespace
