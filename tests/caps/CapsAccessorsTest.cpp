// The accessors by name, and what they tell of the program's own capabilities.

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "BoxHardware.h"
#include "caps/CapsState.h"
#include "CapsPlatform.h"
#include "GuardedBuffer.h"
#include "talccaps.h"
#include "talccapsmanager.h"

namespace {

using caps_test::GuardedBuffer;
using TalcPath::TalcHWCapsCondition;
using TalcPath::TalcHWCapsManager;

template <typename Accessor>
struct Named {
  const char* name;
  Accessor accessor;
};

using BooleanAccessor = bool (TalcHWCapsManager::*)(const TalcHWCapsCondition*, std::uint32_t);
using IntegerAccessor = bool (TalcHWCapsManager::*)(std::int32_t*, const TalcHWCapsCondition*, std::uint32_t);
using StringAccessor = bool (TalcHWCapsManager::*)(char*, std::uint32_t, const TalcHWCapsCondition*, std::uint32_t);

const Named<BooleanAccessor> kBooleans[] = {
    {"AllowRTEffectsForDigitalCutInHD", &TalcHWCapsManager::AllowRTEffectsForDigitalCutInHD},
    {"AllowRTEffectsForDigitalCutInSD", &TalcHWCapsManager::AllowRTEffectsForDigitalCutInSD},
    {"AnalogVideoOutUsesAGC", &TalcHWCapsManager::AnalogVideoOutUsesAGC},
    {"SupportsHWPassthroughMixer", &TalcHWCapsManager::SupportsHWPassthroughMixer},
    {"SoftwareReset", &TalcHWCapsManager::SoftwareReset},
    {"IsHDSupported", &TalcHWCapsManager::IsHDSupported},
    {"IsHDControl", &TalcHWCapsManager::IsHDControl},
    {"IsSDControl", &TalcHWCapsManager::IsSDControl},
    {"IsGlobalControl", &TalcHWCapsManager::IsGlobalControl},
    {"IsHiddenControl", &TalcHWCapsManager::IsHiddenControl},
    {"Supports10bit", &TalcHWCapsManager::Supports10bit},
    {"SupportsPyroOHCI", &TalcHWCapsManager::SupportsPyroOHCI},
    {"SupportsPyroKore", &TalcHWCapsManager::SupportsPyroKore},
    {"SupportsDIOOnly", &TalcHWCapsManager::SupportsDIOOnly},
    {"SupportsVDMOnly", &TalcHWCapsManager::SupportsVDMOnly},
    {"SupportsLTCInput", &TalcHWCapsManager::SupportsLTCInput},
    {"SupportsLTCOutput", &TalcHWCapsManager::SupportsLTCOutput},
    {"SupportsCachedVideoLine", &TalcHWCapsManager::SupportsCachedVideoLine},
    {"IsDigitalSource", &TalcHWCapsManager::IsDigitalSource},
    {"IsKVRAncillaryDataSupported", &TalcHWCapsManager::IsKVRAncillaryDataSupported},
    {"SupportsHardwareDVCodec", &TalcHWCapsManager::SupportsHardwareDVCodec},
    {"SupportsSeparate1394Bus", &TalcHWCapsManager::SupportsSeparate1394Bus},
    {"SupportsTrilevelSync", &TalcHWCapsManager::SupportsTrilevelSync},
    {"SupportsExtSync", &TalcHWCapsManager::SupportsExtSync},
    {"SupportsInputLock", &TalcHWCapsManager::SupportsInputLock},
    {"SupportsOnlyHELModeScrubbing", &TalcHWCapsManager::SupportsOnlyHELModeScrubbing},
    {"SupportsInputStartDelay", &TalcHWCapsManager::SupportsInputStartDelay},
    {"SupportsDigitalAudio", &TalcHWCapsManager::SupportsDigitalAudio},
    {"IsAPrimaryAudioDevice", &TalcHWCapsManager::IsAPrimaryAudioDevice},
    {"ReleasesHWForSharing", &TalcHWCapsManager::ReleasesHWForSharing},
    {"UsesDV_ADM", &TalcHWCapsManager::UsesDV_ADM},
    {"SupportsVideoIOMode", &TalcHWCapsManager::SupportsVideoIOMode},
    {"SupportsVideoInType", &TalcHWCapsManager::SupportsVideoInType},
    {"SupportsVideoOutputAdjustments", &TalcHWCapsManager::SupportsVideoOutputAdjustments},
    {"SupportsAESorSPDIFAudioIn", &TalcHWCapsManager::SupportsAESorSPDIFAudioIn},
    {"SupportsAESorSPDIFAudioOut", &TalcHWCapsManager::SupportsAESorSPDIFAudioOut},
    {"Requires411for1080i5994QuarterRes", &TalcHWCapsManager::Requires411for1080i5994QuarterRes},
    {"SupportsAudioPunchInStreamChannel", &TalcHWCapsManager::SupportsAudioPunchInStreamChannel},
    {"SupportsPunchInFromEmbedded", &TalcHWCapsManager::SupportsPunchInFromEmbedded},
    {"SupportsKVR", &TalcHWCapsManager::SupportsKVR},
    {"OutputDeviceSupportsFullResUncompHD", &TalcHWCapsManager::OutputDeviceSupportsFullResUncompHD},
    {"OutputDeviceDoesThePulldown", &TalcHWCapsManager::OutputDeviceDoesThePulldown},
    {"LTCDuringSingleFramePlay", &TalcHWCapsManager::LTCDuringSingleFramePlay},
    {"SupportsDolbyE", &TalcHWCapsManager::SupportsDolbyE},
    {"OutputDeviceSupportsReducedRes", &TalcHWCapsManager::OutputDeviceSupportsReducedRes},
    {"RequiresSwitchFor1394DIOCoexistence", &TalcHWCapsManager::RequiresSwitchFor1394DIOCoexistence},
    {"SupportsCrossconvertDownconvertWarning", &TalcHWCapsManager::SupportsCrossconvertDownconvertWarning},
    {"SupportsConsumerInputControls", &TalcHWCapsManager::SupportsConsumerInputControls},
    {"SupportsHD1080P30", &TalcHWCapsManager::SupportsHD1080P30},
    {"SupportsUniversalMastering", &TalcHWCapsManager::SupportsUniversalMastering},
    {"Supports1080True24toNTSC", &TalcHWCapsManager::Supports1080True24toNTSC},
    {"ShareComponentOutSDHD", &TalcHWCapsManager::ShareComponentOutSDHD},
    {"ShareRefAndTriLevel", &TalcHWCapsManager::ShareRefAndTriLevel},
    {"SupportsGennum", &TalcHWCapsManager::SupportsGennum},
    {"SupportsRealTimeEffectsInHD", &TalcHWCapsManager::SupportsRealTimeEffectsInHD},
    {"BlockRealTimeEffectsInRGB10bit", &TalcHWCapsManager::BlockRealTimeEffectsInRGB10bit},
    {"SDIIsSharedHDAndSD", &TalcHWCapsManager::SDIIsSharedHDAndSD},
    {"HighPerformanceSDResUnsupported", &TalcHWCapsManager::HighPerformanceSDResUnsupported},
    {"UsesHVControls", &TalcHWCapsManager::UsesHVControls},
    {"RequiresAlphaInRLE", &TalcHWCapsManager::RequiresAlphaInRLE},
    {"CompatibleWithGPUEffects", &TalcHWCapsManager::CompatibleWithGPUEffects},
    {"FrameBufferSupportsMultipleRates", &TalcHWCapsManager::FrameBufferSupportsMultipleRates},
    {"IsRealTimeDataSupported", &TalcHWCapsManager::IsRealTimeDataSupported},
    {"IsRGBdualLinkSupported", &TalcHWCapsManager::IsRGBdualLinkSupported},
    {"SupportsRealtimeAVCIEncoding", &TalcHWCapsManager::SupportsRealtimeAVCIEncoding},
    {"SupportsOnly48kHzAudio", &TalcHWCapsManager::SupportsOnly48kHzAudio},
    {"OutputDeviceSupportsSixteenthRes", &TalcHWCapsManager::OutputDeviceSupportsSixteenthRes},
    {"OutputDeviceSupportsQuarterRes", &TalcHWCapsManager::OutputDeviceSupportsQuarterRes},
};
static_assert(std::size(kBooleans) == 68);

const Named<IntegerAccessor> kIntegers[] = {
    {"MinVideoLineNumberPAL", &TalcHWCapsManager::MinVideoLineNumberPAL},
    {"MaxVideoLineNumberPAL", &TalcHWCapsManager::MaxVideoLineNumberPAL},
    {"MaxVideoLineNumberNTSC", &TalcHWCapsManager::MaxVideoLineNumberNTSC},
    {"MinVideoLineNumberNTSC", &TalcHWCapsManager::MinVideoLineNumberNTSC},
    {"CachedVideoLineWidth_NTSC", &TalcHWCapsManager::CachedVideoLineWidth_NTSC},
    {"CachedVideoLineWidth_PAL", &TalcHWCapsManager::CachedVideoLineWidth_PAL},
    {"MaxAudioChannels", &TalcHWCapsManager::MaxAudioChannels},
    {"MaxPunchInChannels", &TalcHWCapsManager::MaxPunchInChannels},
    {"MaxMonitorChanToMute", &TalcHWCapsManager::MaxMonitorChanToMute},
    {"MaxPassthroughMixChannels", &TalcHWCapsManager::MaxPassthroughMixChannels},
    {"AudioCurrentNumChannels", &TalcHWCapsManager::AudioCurrentNumChannels},
    {"EmbedKVRAncillaryDataSlotCount", &TalcHWCapsManager::EmbedKVRAncillaryDataSlotCount},
    {"NumberOfInputStatusLocksRecommended", &TalcHWCapsManager::NumberOfInputStatusLocksRecommended},
    {"DefaultVideoOutput", &TalcHWCapsManager::DefaultVideoOutput},
    {"TalcConduitBaseID", &TalcHWCapsManager::TalcConduitBaseID},
    {"Win32RecommendedVirtualMemoryInMB", &TalcHWCapsManager::Win32RecommendedVirtualMemoryInMB},
};
static_assert(std::size(kIntegers) == 16);

const Named<StringAccessor> kStrings[] = {
    {"AudioChannelEnumeration", &TalcHWCapsManager::AudioChannelEnumeration},
    {"PeripheralName", &TalcHWCapsManager::PeripheralName},
};
static_assert(std::size(kStrings) == 2);

/// Nothing is attached, so that the capabilities of the type "NULL" are in force. They have one property at a time.
class CapsAccessorsTest : public caps_test::CapsPlatformTest {
 protected:
  void StartWith(const char* property, const std::string& value) {
    blocks_.RemoveAll();
    blocks_.Add("Null.hwc", std::string("HardwareType NULL ; Property ") + property + " " + value + " ;");
    ASSERT_TRUE(TalcPathPrivate::StartCapabilities(nullptr, nullptr)) << log();
  }
  static TalcHWCapsManager& Manager() { return TalcHWCapsManager::Get(); }
};

TEST_F(CapsAccessorsTest, AskForTheTruthOfThePropertyOfTheirName) {
  for (const auto& [name, accessor] : kBooleans) {
    StartWith(name, "STRING TRUE");
    EXPECT_TRUE((Manager().*accessor)(nullptr, 0)) << name;
    StartWith(name, "STRING FALSE");
    EXPECT_FALSE((Manager().*accessor)(nullptr, 0)) << name;
    StartWith("Other", "STRING TRUE");
    EXPECT_FALSE((Manager().*accessor)(nullptr, 0)) << name;
  }
}

TEST_F(CapsAccessorsTest, AskForTheNumberOfThePropertyOfTheirName) {
  std::int32_t expected = -3;
  for (const auto& [name, accessor] : kIntegers) {
    StartWith(name, "INTEGER " + std::to_string(++expected));
    std::int32_t number = 99;
    EXPECT_TRUE((Manager().*accessor)(&number, nullptr, 0)) << name;
    EXPECT_EQ(number, expected) << name;
    EXPECT_TRUE((Manager().*accessor)(nullptr, nullptr, 0)) << name;
    StartWith("Other", "INTEGER 1");
    EXPECT_FALSE((Manager().*accessor)(&number, nullptr, 0)) << name;
    EXPECT_EQ(number, expected) << name;
  }
}

TEST_F(CapsAccessorsTest, AskForTheTextOfThePropertyOfTheirName) {
  for (const auto& [name, accessor] : kStrings) {
    StartWith(name, std::string("STRING Of") + name);
    char text[40];
    EXPECT_TRUE((Manager().*accessor)(text, sizeof text, nullptr, 0)) << name;
    EXPECT_EQ(text, std::string("Of") + name);
    StartWith("Other", "STRING word");
    EXPECT_FALSE((Manager().*accessor)(text, sizeof text, nullptr, 0)) << name;
    EXPECT_STREQ(text, "") << name;
  }
}

/// Answers all, and keeps what the last question was.
class Listener final : public TalcPath::TalcHWCapsOverrideProvider {
 public:
  std::string question;
  std::string text;
  const TalcHWCapsCondition* askedCondition = nullptr;
  char* askedBuffer = nullptr;

  bool QueryBoolean(const char* property, bool& result, const TalcHWCapsCondition* condition,
                    std::uint32_t conduitId) override {
    result = true;
    return Keep("boolean", property, condition, conduitId);
  }
  bool QueryInteger(const char* property, std::int32_t& result, const TalcHWCapsCondition* condition,
                    std::uint32_t conduitId) override {
    result = 5;
    return Keep("integer", property, condition, conduitId);
  }
  bool QueryString(const char* property, char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition,
                   std::uint32_t conduitId) override {
    askedBuffer = buffer;
    text.copy(buffer, size - 1);
    return Keep("string of " + std::to_string(size), property, condition, conduitId);
  }

 private:
  bool Keep(const std::string& kind, const char* property, const TalcHWCapsCondition* condition,
            std::uint32_t conduitId) {
    question = kind + " " + property + " " + std::to_string(conduitId);
    askedCondition = condition;
    return true;
  }
};

TEST_F(CapsAccessorsTest, HandConditionAndConduitIdOn) {
  Listener listener;
  Manager().SetOverrideProvider(&listener, 42);
  const TalcHWCapsCondition condition;
  for (const auto& [name, accessor] : kBooleans) {
    EXPECT_TRUE((Manager().*accessor)(&condition, 42)) << name;
    EXPECT_EQ(listener.question, std::string("boolean ") + name + " 42");
    EXPECT_EQ(listener.askedCondition, &condition) << name;
  }
  for (const auto& [name, accessor] : kIntegers) {
    std::int32_t number = 0;
    listener.askedCondition = nullptr;
    EXPECT_TRUE((Manager().*accessor)(&number, &condition, 42)) << name;
    EXPECT_EQ(number, 5) << name;
    EXPECT_EQ(listener.question, std::string("integer ") + name + " 42");
    EXPECT_EQ(listener.askedCondition, &condition) << name;
  }
  for (const auto& [name, accessor] : kStrings) {
    char text[7];
    listener.askedCondition = nullptr;
    EXPECT_TRUE((Manager().*accessor)(text, sizeof text, &condition, 42)) << name;
    EXPECT_EQ(listener.question, std::string("string of 7 ") + name + " 42");
    EXPECT_EQ(listener.askedCondition, &condition) << name;
    EXPECT_EQ(listener.askedBuffer, text) << name;
  }
  Manager().SetOverrideProvider(nullptr, 0);
}

TEST_F(CapsAccessorsTest, NeedNothingButTheirValue) {
  StartWith("IsHDSupported", "STRING TRUE");
  EXPECT_TRUE(Manager().IsHDSupported());
  StartWith("MaxAudioChannels", "INTEGER 8");
  std::int32_t number = 0;
  EXPECT_TRUE(Manager().MaxAudioChannels(&number));
  EXPECT_EQ(number, 8);
  StartWith("PeripheralName", "STRING A_Box");
  char text[10];
  EXPECT_TRUE(Manager().PeripheralName(text, sizeof text));
  EXPECT_STREQ(text, "A Box");
}

// ---- Buffers

TEST_F(CapsAccessorsTest, CutTheirTextToTheBuffer) {
  struct Case {
    std::uint32_t size;
    const char* shown;
  };
  for (const auto& [name, accessor] : kStrings) {
    StartWith(name, "STRING ABCD");
    for (const Case& each : {Case{1, "."}, {2, "A."}, {4, "ABC."}, {5, "ABCD."}, {8, "ABCD...."}}) {
      GuardedBuffer buffer(each.size);
      EXPECT_TRUE((Manager().*accessor)(buffer.data(), buffer.size(), nullptr, 0)) << name;
      EXPECT_EQ(buffer.Shown(), each.shown) << name;
    }
  }
}

TEST_F(CapsAccessorsTest, FailWithoutABufferAndAskNobody) {
  Listener listener;
  for (const auto& [name, accessor] : kStrings) {
    StartWith(name, "STRING ABCD");
    Manager().SetOverrideProvider(&listener, 0);
    EXPECT_FALSE((Manager().*accessor)(nullptr, 5, nullptr, 0)) << name;
    EXPECT_FALSE((Manager().*accessor)(nullptr, 0, nullptr, 0)) << name;
    GuardedBuffer buffer(0);
    EXPECT_FALSE((Manager().*accessor)(buffer.data(), 0, nullptr, 0)) << name;
    EXPECT_EQ(buffer.Shown(), "");
  }
  EXPECT_EQ(listener.question, "");
  Manager().SetOverrideProvider(nullptr, 0);
}

TEST_F(CapsAccessorsTest, LeaveTheBufferZeroedWhenTheyFail) {
  for (const auto& [name, accessor] : kStrings) {
    for (const char* const other : {"INTEGER 1", "STRING other"}) {
      StartWith(std::string_view(other) == "INTEGER 1" ? name : "Other", other);
      GuardedBuffer buffer(6);
      EXPECT_FALSE((Manager().*accessor)(buffer.data(), buffer.size(), nullptr, 0)) << name << other;
      EXPECT_EQ(buffer.Shown(), "......") << name << other;
    }
  }
}

TEST_F(CapsAccessorsTest, FailForAQuestionWithoutAProperty) {
  Listener listener;
  StartWith("P", "STRING TRUE");
  Manager().SetOverrideProvider(&listener, 0);
  std::int32_t number = 9;
  GuardedBuffer buffer(3);
  EXPECT_FALSE(Manager().GetBoolean(nullptr));
  EXPECT_FALSE(Manager().GetInteger(nullptr, &number));
  EXPECT_FALSE(Manager().GetString(nullptr, buffer.data(), buffer.size()));
  EXPECT_EQ(number, 9);
  EXPECT_EQ(buffer.Shown(), "...");
  EXPECT_EQ(listener.question, "");
  Manager().SetOverrideProvider(nullptr, 0);
}

TEST_F(CapsAccessorsTest, PutBlanksForUnderscoresInTheNameAlone) {
  GuardedBuffer buffer(8);
  StartWith("PeripheralName", "STRING _A__B_");
  EXPECT_TRUE(Manager().PeripheralName(buffer.data(), buffer.size()));
  EXPECT_EQ(buffer.Shown(), " A  B ..");
  EXPECT_TRUE(Manager().GetString("PeripheralName", buffer.data(), buffer.size()));
  EXPECT_EQ(buffer.Shown(), "_A__B_..");
  GuardedBuffer shortBuffer(3);
  EXPECT_TRUE(Manager().PeripheralName(shortBuffer.data(), shortBuffer.size()));
  EXPECT_EQ(shortBuffer.Shown(), " A.");
  StartWith("AudioChannelEnumeration", "STRING L_R");
  EXPECT_TRUE(Manager().AudioChannelEnumeration(buffer.data(), buffer.size()));
  EXPECT_EQ(buffer.Shown(), "L_R.....");
}

TEST_F(CapsAccessorsTest, PutBlanksForUnderscoresInAProvidersName) {
  Listener listener;
  listener.text = "X_Y";
  Manager().SetOverrideProvider(&listener, 0);
  GuardedBuffer buffer(5);
  EXPECT_TRUE(Manager().PeripheralName(buffer.data(), buffer.size()));
  EXPECT_EQ(buffer.Shown(), "X Y..");
  Manager().SetOverrideProvider(nullptr, 0);
}

// ---- The program's capabilities, with the box attached

class EmbeddedAccessorsTest : public caps_test::HardwareTest {
 protected:
  EmbeddedAccessorsTest() {
    Attach({caps_test::EmbeddedCapabilities()});
    hardware_.Expect({{caps_test::kAskType, caps_test::kIsTrelvane}});
    TalcHWCapsManager::Get();
    hardware_.ExpectDone();
  }
  static TalcHWCapsManager& Manager() { return TalcHWCapsManager::Get(); }
};

TEST_F(EmbeddedAccessorsTest, TellOfTheBox) {
  EXPECT_TRUE(Manager().IsHDSupported());
  EXPECT_TRUE(Manager().IsHDSupported(nullptr, 3000));
  EXPECT_FALSE(Manager().OutputDeviceSupportsReducedRes());
  EXPECT_FALSE(Manager().SupportsDolbyE());
  std::int32_t id = 0;
  EXPECT_TRUE(Manager().TalcConduitBaseID(&id));
  EXPECT_EQ(id, 3000);
  char name[20];
  EXPECT_TRUE(Manager().PeripheralName(name, sizeof name));
  EXPECT_STREQ(name, "Veltra");
  EXPECT_FALSE(Manager().AudioChannelEnumeration(name, sizeof name));
}

// The text spells it otherwise than the accessor, and is meant to.
TEST_F(EmbeddedAccessorsTest, MissThePropertyThatTheTextSpellsOtherwise) {
  EXPECT_TRUE(Manager().GetBoolean("IsPrimaryAudioDevice"));
  EXPECT_FALSE(Manager().IsAPrimaryAudioDevice());
}

// Twenty-one of the text's words are "TRUE" under an accessor's name; two more have no accessor, and one is "FALSE".
TEST_F(EmbeddedAccessorsTest, AnswerForEveryPropertyOfTheText) {
  int trueCount = 0;
  for (const auto& [name, accessor] : kBooleans)
    if ((Manager().*accessor)(nullptr, 0)) ++trueCount;
  EXPECT_EQ(trueCount, 21);
  int numberCount = 0;
  for (const auto& [name, accessor] : kIntegers)
    if ((Manager().*accessor)(nullptr, nullptr, 0)) ++numberCount;
  EXPECT_EQ(numberCount, 10);
}

TEST_F(EmbeddedAccessorsTest, TellWhereAControlBelongsUnderItsConditions) {
  const auto hue = Manager().GetMyCapabilities().GetBlockByName("VideoInputCompositeHue");
  ASSERT_GT(hue.GetConditionCount(), 0u);
  EXPECT_TRUE(Manager().IsSDControl(&hue));
  EXPECT_FALSE(Manager().IsHDControl(&hue));
  EXPECT_FALSE(Manager().IsSDControl());
  EXPECT_FALSE(Manager().IsHDSupported(&hue));
}

}  // namespace
