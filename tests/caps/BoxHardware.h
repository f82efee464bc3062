#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "caps/CapsState.h"
#include "caps/CreateMyHWCaps.h"
#include "ScriptedHardware.h"
#include "support/PacketText.h"
#include "talccapsmanager.h"

/// A box and its sub components, as packets and as capabilities, and the lines that tell of trouble with them.
namespace caps_test {

inline const std::string kNobodyLine = "\nTalcHWCapsManager::CreateMyHWCaps No HWCaps file found setting to NULL";
inline const std::string kAddLine = "TalcHWCapsManager::AddTalcHWCapsToMap - Failed to AddTalcHWCapsToMap";
inline const std::string kCountLine = "CreateMyHWCaps - HardwareSubcompCount command failed";
inline const std::string kNoCountLine = "CreateMyHWCaps - HardwareSubcompCount command failed to get NumSubcomponents";
inline const std::string kInfoLine = "CreateMyHWCaps - HardwareSubcompInfo command failed";
inline const std::string kNoInfoLine = "CreateMyHWCaps - HardwareSubcompInfo command failed to get TypeID";
inline const std::string kLongLine = "CreateMyHWCaps - TypeID too large for local buffer";
inline const std::string kMergeLine = "CreateMyHWCaps - HWCaps for HD Board not found";

// A box whose capabilities do not say whether it has sub components, and two options.
inline const std::string kBox =
    "HardwareType Box ; Property TalcConduitBaseID INTEGER 4000 ; Property Own STRING box ;";
inline const std::string kHd = "HardwareType HDBoard ; Property Hd STRING hd ; Property Own STRING hd ;";
inline const std::string kAvci = "HardwareType AVCIboard ; Property Avci STRING avci ;";

// ---- What hardware is asked. SYSTEM is major type 2, in the top two bits; the function is doubled, and 1 in a
// request.

inline const std::string kAskType = "0B 0B 00 04 80 21 00 00";   // HardwareTypeID, function 16
inline const std::string kAskCount = "0B 0B 00 04 80 39 00 00";  // HardwareSubcompCount, function 28
/// HardwareSubcompInfo, function 29; the number of the sub component stands behind.
inline const std::string kAskInfo = "0B 0B 00 05 80 3B 00 00 ";

// ---- Replies, written out: mark, length, codes, 0, status, values.

inline const std::string kIsTrelvane = "0B 0B 00 0C 80 21 00 00 54 72 65 6C 76 61 6E 65";
inline const std::string kIsBox = "0B 0B 00 07 80 21 00 00 42 6F 78";
inline const std::string kHas0 = "0B 0B 00 05 80 39 00 00 00";
inline const std::string kHas1 = "0B 0B 00 05 80 39 00 00 01";
inline const std::string kHas2 = "0B 0B 00 05 80 39 00 00 02";
inline const std::string kHas3 = "0B 0B 00 05 80 39 00 00 03";
/// Sub component 0, board 0x1234, status 0x89ABCDEF, which nobody looks at.
inline const std::string kRest = "80 3B 00 00 00 12 34 89 AB CD EF ";
inline const std::string kIsHd = "0B 0B 00 12 " + kRest + "48 44 42 6F 61 72 64";           // HDBoard
inline const std::string kIsSpacedHd = "0B 0B 00 13 " + kRest + "48 44 20 42 6F 61 72 64";  // HD Board
inline const std::string kIsCodec =                                                         // Codec Module : ID 0x7
    "0B 0B 00 20 " + kRest + "43 6F 64 65 63 20 4D 6F 64 75 6C 65 20 3A 20 49 44 20 30 78 37";

inline std::string HexOf(const std::string& text) {
  return test_support::Hex(test_support::Bytes(text.begin(), text.end()));
}
/// A sub component of any type; the text is so long that two digits tell the length.
inline std::string IsOther(const std::string& type) {
  return "0B 0B 00 " + test_support::Hex({static_cast<std::uint8_t>(11 + type.size())}) + " " + kRest + HexOf(type);
}

/// The box "Box" is found with one sub component or more.
class BoxHardwareTest : public HardwareTest {
 protected:
  /// Asks the box "Box" with sub components of these replies.
  TalcPath::TalcHWCapsHandle FindBoxWith(const std::string& count, const Lines& infos) {
    static const char* const numbers[] = {"00", "01", "02"};
    hardware_.Expect({{kAskType, kIsBox}, {kAskCount, count}});
    for (std::size_t n = 0; n < infos.size(); ++n)
      hardware_.Expect({{kAskInfo + numbers[n], infos[n]}});
    return Find();
  }
  TalcPath::TalcHWCapsHandle Find() {
    const TalcPath::TalcHWCapsHandle caps = TalcPathPrivate::CreateMyHWCaps();
    hardware_.ExpectDone();
    return caps;
  }
  /// The words of three properties, "-" for one that is not there: "box hd avci".
  static std::string Words(const TalcPath::TalcHWCapsHandle& caps) {
    std::string words;
    for (const char* const name : {"Own", "Hd", "Avci"}) {
      char word[8];
      words += (words.empty() ? "" : " ") + std::string(caps.GetPropertyAsString(name, sizeof word, word) ? word : "-");
    }
    return words;
  }
  static bool IsMet(std::uint32_t conduitId) {
    TalcPath::TalcHWCapsHandle caps;
    return TalcPath::TalcHWCapsManager::GetByConduitId(conduitId, &caps);
  }
};

}  // namespace caps_test
