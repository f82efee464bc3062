#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "talccaps.h"

namespace TalcPathPrivate {
bool StopCapabilities();
}  // namespace TalcPathPrivate

namespace TalcPath {

/// What a program puts in front of the capabilities, to answer some questions by itself. The operations stand in the
/// order of their slots. An operation that answers true has answered; after false the capabilities do.
class TalcHWCapsOverrideProvider {
 public:
  /// The library never destroys a provider.
  virtual ~TalcHWCapsOverrideProvider() = default;
  virtual bool QueryBoolean(const char* property, bool& result, const TalcHWCapsCondition* condition,
                            std::uint32_t conduitId) = 0;
  virtual bool QueryInteger(const char* property, std::int32_t& result, const TalcHWCapsCondition* condition,
                            std::uint32_t conduitId) = 0;
  /// The buffer is filled with zeros, and at least one byte long.
  virtual bool QueryString(const char* property, char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition,
                           std::uint32_t conduitId) = 0;
};

/// Finds out which capabilities the attached hardware has, and answers questions about them.
///
/// The hardware is asked through the library's current transport what it is, and what its sub components are, whose
/// capabilities are taken over into its own. Hardware that does not answer or is not known has empty capabilities.
///
///     if (TalcPath::TalcHWCapsManager::Get().IsHDSupported()) ...
///
/// Questions take a condition, which may be null, and a conduit id: 0 is the attached hardware, any other number that
/// which has it as its property "TalcConduitBaseID"; hardware that was not met yet is answered for by the attached one.
class TalcHWCapsManager {
 public:
  TalcHWCapsManager(const TalcHWCapsManager&) = delete;
  TalcHWCapsManager& operator=(const TalcHWCapsManager&) = delete;

  /// The one manager, good until the library's stop. The first call asks the hardware.
  static TalcHWCapsManager& Get();

  /// The capabilities of a hardware type, whatever is attached.
  static TalcHWCapsHandle GetByName(std::string_view hardwareType);
  /// Those of hardware that was met. False, and `caps` left alone, for another number or a null pointer.
  static bool GetByConduitId(std::uint32_t conduitId, TalcHWCapsHandle* caps);

  /// Asks the hardware what it is, whatever it was before.
  void FindMyCapabilities();
  /// Those of the attached hardware.
  const TalcHWCapsHandle& GetMyCapabilities();

  /// Answers before the capabilities do when a question's conduit id is 0 or `conduitId`. It must outlive its use; null
  /// takes it away.
  void SetOverrideProvider(TalcHWCapsOverrideProvider* provider, std::uint32_t conduitId);

  // ---- Properties by name

  /// Whether the property is the word "TRUE", "true" or "True".
  bool GetBoolean(const char* property, const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0);
  /// False without such a number. `value` may be null. Hardware that was met and lacks it answers false; the attached
  /// one does not stand in for it, as it does for words.
  bool GetInteger(const char* property, std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                  std::uint32_t conduitId = 0);
  /// Copies what fits. False without such a word.
  bool GetString(const char* property, char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition = nullptr,
                 std::uint32_t conduitId = 0);

  // ---- The properties that software asks for. Each asks for the property of its own name.

  bool AllowRTEffectsForDigitalCutInHD(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("AllowRTEffectsForDigitalCutInHD", condition, conduitId);
  }
  bool AllowRTEffectsForDigitalCutInSD(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("AllowRTEffectsForDigitalCutInSD", condition, conduitId);
  }
  bool AnalogVideoOutUsesAGC(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("AnalogVideoOutUsesAGC", condition, conduitId);
  }
  bool SupportsHWPassthroughMixer(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsHWPassthroughMixer", condition, conduitId);
  }
  bool SoftwareReset(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SoftwareReset", condition, conduitId);
  }
  bool IsHDSupported(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsHDSupported", condition, conduitId);
  }
  bool IsHDControl(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsHDControl", condition, conduitId);
  }
  bool IsSDControl(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsSDControl", condition, conduitId);
  }
  bool IsGlobalControl(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsGlobalControl", condition, conduitId);
  }
  bool IsHiddenControl(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsHiddenControl", condition, conduitId);
  }
  bool Supports10bit(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("Supports10bit", condition, conduitId);
  }
  bool SupportsPyroOHCI(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsPyroOHCI", condition, conduitId);
  }
  bool SupportsPyroKore(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsPyroKore", condition, conduitId);
  }
  bool SupportsDIOOnly(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsDIOOnly", condition, conduitId);
  }
  bool SupportsVDMOnly(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsVDMOnly", condition, conduitId);
  }
  bool SupportsLTCInput(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsLTCInput", condition, conduitId);
  }
  bool SupportsLTCOutput(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsLTCOutput", condition, conduitId);
  }
  bool SupportsCachedVideoLine(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsCachedVideoLine", condition, conduitId);
  }
  bool IsDigitalSource(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsDigitalSource", condition, conduitId);
  }
  bool IsKVRAncillaryDataSupported(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsKVRAncillaryDataSupported", condition, conduitId);
  }
  bool SupportsHardwareDVCodec(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsHardwareDVCodec", condition, conduitId);
  }
  bool SupportsSeparate1394Bus(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsSeparate1394Bus", condition, conduitId);
  }
  bool SupportsTrilevelSync(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsTrilevelSync", condition, conduitId);
  }
  bool SupportsExtSync(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsExtSync", condition, conduitId);
  }
  bool SupportsInputLock(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsInputLock", condition, conduitId);
  }
  bool SupportsOnlyHELModeScrubbing(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsOnlyHELModeScrubbing", condition, conduitId);
  }
  bool SupportsInputStartDelay(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsInputStartDelay", condition, conduitId);
  }
  bool SupportsDigitalAudio(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsDigitalAudio", condition, conduitId);
  }
  bool IsAPrimaryAudioDevice(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsAPrimaryAudioDevice", condition, conduitId);
  }
  bool ReleasesHWForSharing(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("ReleasesHWForSharing", condition, conduitId);
  }
  bool UsesDV_ADM(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("UsesDV_ADM", condition, conduitId);
  }
  bool SupportsVideoIOMode(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsVideoIOMode", condition, conduitId);
  }
  bool SupportsVideoInType(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsVideoInType", condition, conduitId);
  }
  bool SupportsVideoOutputAdjustments(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsVideoOutputAdjustments", condition, conduitId);
  }
  bool SupportsAESorSPDIFAudioIn(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsAESorSPDIFAudioIn", condition, conduitId);
  }
  bool SupportsAESorSPDIFAudioOut(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsAESorSPDIFAudioOut", condition, conduitId);
  }
  bool Requires411for1080i5994QuarterRes(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("Requires411for1080i5994QuarterRes", condition, conduitId);
  }
  bool SupportsAudioPunchInStreamChannel(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsAudioPunchInStreamChannel", condition, conduitId);
  }
  bool SupportsPunchInFromEmbedded(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsPunchInFromEmbedded", condition, conduitId);
  }
  bool SupportsKVR(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsKVR", condition, conduitId);
  }
  bool OutputDeviceSupportsFullResUncompHD(const TalcHWCapsCondition* condition = nullptr,
                                           std::uint32_t conduitId = 0) {
    return GetBoolean("OutputDeviceSupportsFullResUncompHD", condition, conduitId);
  }
  bool OutputDeviceDoesThePulldown(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("OutputDeviceDoesThePulldown", condition, conduitId);
  }
  bool LTCDuringSingleFramePlay(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("LTCDuringSingleFramePlay", condition, conduitId);
  }
  bool SupportsDolbyE(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsDolbyE", condition, conduitId);
  }
  bool OutputDeviceSupportsReducedRes(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("OutputDeviceSupportsReducedRes", condition, conduitId);
  }
  bool RequiresSwitchFor1394DIOCoexistence(const TalcHWCapsCondition* condition = nullptr,
                                           std::uint32_t conduitId = 0) {
    return GetBoolean("RequiresSwitchFor1394DIOCoexistence", condition, conduitId);
  }
  bool SupportsCrossconvertDownconvertWarning(const TalcHWCapsCondition* condition = nullptr,
                                              std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsCrossconvertDownconvertWarning", condition, conduitId);
  }
  bool SupportsConsumerInputControls(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsConsumerInputControls", condition, conduitId);
  }
  bool SupportsHD1080P30(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsHD1080P30", condition, conduitId);
  }
  bool SupportsUniversalMastering(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsUniversalMastering", condition, conduitId);
  }
  bool Supports1080True24toNTSC(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("Supports1080True24toNTSC", condition, conduitId);
  }
  bool ShareComponentOutSDHD(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("ShareComponentOutSDHD", condition, conduitId);
  }
  bool ShareRefAndTriLevel(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("ShareRefAndTriLevel", condition, conduitId);
  }
  bool SupportsGennum(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsGennum", condition, conduitId);
  }
  bool SupportsRealTimeEffectsInHD(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsRealTimeEffectsInHD", condition, conduitId);
  }
  bool BlockRealTimeEffectsInRGB10bit(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("BlockRealTimeEffectsInRGB10bit", condition, conduitId);
  }
  bool SDIIsSharedHDAndSD(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SDIIsSharedHDAndSD", condition, conduitId);
  }
  bool HighPerformanceSDResUnsupported(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("HighPerformanceSDResUnsupported", condition, conduitId);
  }
  bool UsesHVControls(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("UsesHVControls", condition, conduitId);
  }
  bool RequiresAlphaInRLE(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("RequiresAlphaInRLE", condition, conduitId);
  }
  bool CompatibleWithGPUEffects(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("CompatibleWithGPUEffects", condition, conduitId);
  }
  bool FrameBufferSupportsMultipleRates(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("FrameBufferSupportsMultipleRates", condition, conduitId);
  }
  bool IsRealTimeDataSupported(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsRealTimeDataSupported", condition, conduitId);
  }
  bool IsRGBdualLinkSupported(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("IsRGBdualLinkSupported", condition, conduitId);
  }
  bool SupportsRealtimeAVCIEncoding(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsRealtimeAVCIEncoding", condition, conduitId);
  }
  bool SupportsOnly48kHzAudio(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("SupportsOnly48kHzAudio", condition, conduitId);
  }
  bool OutputDeviceSupportsSixteenthRes(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("OutputDeviceSupportsSixteenthRes", condition, conduitId);
  }
  bool OutputDeviceSupportsQuarterRes(const TalcHWCapsCondition* condition = nullptr, std::uint32_t conduitId = 0) {
    return GetBoolean("OutputDeviceSupportsQuarterRes", condition, conduitId);
  }

  bool MinVideoLineNumberPAL(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                             std::uint32_t conduitId = 0) {
    return GetInteger("MinVideoLineNumberPAL", value, condition, conduitId);
  }
  bool MaxVideoLineNumberPAL(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                             std::uint32_t conduitId = 0) {
    return GetInteger("MaxVideoLineNumberPAL", value, condition, conduitId);
  }
  bool MaxVideoLineNumberNTSC(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                              std::uint32_t conduitId = 0) {
    return GetInteger("MaxVideoLineNumberNTSC", value, condition, conduitId);
  }
  bool MinVideoLineNumberNTSC(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                              std::uint32_t conduitId = 0) {
    return GetInteger("MinVideoLineNumberNTSC", value, condition, conduitId);
  }
  bool CachedVideoLineWidth_NTSC(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                                 std::uint32_t conduitId = 0) {
    return GetInteger("CachedVideoLineWidth_NTSC", value, condition, conduitId);
  }
  bool CachedVideoLineWidth_PAL(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                                std::uint32_t conduitId = 0) {
    return GetInteger("CachedVideoLineWidth_PAL", value, condition, conduitId);
  }
  bool MaxAudioChannels(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                        std::uint32_t conduitId = 0) {
    return GetInteger("MaxAudioChannels", value, condition, conduitId);
  }
  bool MaxPunchInChannels(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                          std::uint32_t conduitId = 0) {
    return GetInteger("MaxPunchInChannels", value, condition, conduitId);
  }
  bool MaxMonitorChanToMute(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                            std::uint32_t conduitId = 0) {
    return GetInteger("MaxMonitorChanToMute", value, condition, conduitId);
  }
  bool MaxPassthroughMixChannels(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                                 std::uint32_t conduitId = 0) {
    return GetInteger("MaxPassthroughMixChannels", value, condition, conduitId);
  }
  bool AudioCurrentNumChannels(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                               std::uint32_t conduitId = 0) {
    return GetInteger("AudioCurrentNumChannels", value, condition, conduitId);
  }
  bool EmbedKVRAncillaryDataSlotCount(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                                      std::uint32_t conduitId = 0) {
    return GetInteger("EmbedKVRAncillaryDataSlotCount", value, condition, conduitId);
  }
  bool NumberOfInputStatusLocksRecommended(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                                           std::uint32_t conduitId = 0) {
    return GetInteger("NumberOfInputStatusLocksRecommended", value, condition, conduitId);
  }
  bool DefaultVideoOutput(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                          std::uint32_t conduitId = 0) {
    return GetInteger("DefaultVideoOutput", value, condition, conduitId);
  }
  bool TalcConduitBaseID(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                         std::uint32_t conduitId = 0) {
    return GetInteger("TalcConduitBaseID", value, condition, conduitId);
  }
  bool Win32RecommendedVirtualMemoryInMB(std::int32_t* value, const TalcHWCapsCondition* condition = nullptr,
                                         std::uint32_t conduitId = 0) {
    return GetInteger("Win32RecommendedVirtualMemoryInMB", value, condition, conduitId);
  }

  bool AudioChannelEnumeration(char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition = nullptr,
                               std::uint32_t conduitId = 0) {
    return GetString("AudioChannelEnumeration", buffer, size, condition, conduitId);
  }
  /// With a blank in place of each "_".
  bool PeripheralName(char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition = nullptr,
                      std::uint32_t conduitId = 0);

 private:
  friend bool TalcPathPrivate::StopCapabilities();

  TalcHWCapsManager() = default;

  bool HasProviderFor(std::uint32_t conduitId) const;
  bool ReadString(const char* property, char* buffer, std::uint32_t size, const TalcHWCapsCondition* condition,
                  std::uint32_t conduitId);

  TalcHWCapsOverrideProvider* provider_ = nullptr;
  std::uint32_t providerId_ = 0;
  std::optional<TalcHWCapsHandle> myCaps_;
};

}  // namespace TalcPath
