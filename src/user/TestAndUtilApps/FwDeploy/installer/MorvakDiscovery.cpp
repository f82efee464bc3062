#include "installer/PartDiscovery.h"
#include "installer/VersionDiscovery.h"
#include "installer/VpdBlock.h"

namespace {

constexpr std::uint32_t kFirstFirmwareThatTellsMore = 0x3D;

/// The second line's road: what was asked last, and the parts that come of it.
class MorvakRoad {
 public:
  MorvakRoad(Installer& installer, WyvrelHelper& helper) : installer_(installer), helper_(helper) {}

  void Discover() {
    Ask("MorvakFirmware");
    const std::uint32_t firmware = rev_.Version();
    Query("pico", "PICO", ExpectedRev(0x123, 0x129));
    // Some parts only take files from users who ask for more than this release's versions.
    const bool showsMore = installer_.fussy == 0 && firmware >= kFirstFirmwareThatTellsMore;
    if (helper_.boardKind == BoardKind::kMorvakModel4) {
      Ask("MorvakFPGA");
      Query("xandrel", "XNDR", 0x30F);
      if (showsMore) QueryTeskAndPower(&MorvakRoad::QueryPowerOfModel4);
      QueryCodec(0, "MorvakCodec1FPGA", "MorvakCodec1VCID", "2", "enc1b", "enc1", "vid1");
      QuerySpacer();
      QueryCodec(1, "MorvakCodec2FPGA", "MorvakCodec2VCID", "3", "enc2b", "enc2", "vid2");
    } else if (helper_.boardKind == BoardKind::kMorvakModel5) {
      QueryFpgaOfModel5();
      if (showsMore) QueryTeskAndPower(&MorvakRoad::QueryPowerOfModel5);
    }
  }

 private:
  void Ask(const char* part) { GetPartRev(helper_, part, rev_); }
  bool ReadNumber(const char* board) { return ReadBoardPartNumber(&helper_, board, &number_) == kVpdSuccess; }
  void Query(const char* name, const char* id, std::uint32_t expected) {
    QueryVpdPart(installer_, helper_, name, id, "VPD_Morvak", rev_.Version(), rev_.suffix, expected);
  }

  void QueryTeskAndPower(void (MorvakRoad::*queryPower)(std::uint32_t expected)) {
    Ask("MorvakTesk");
    Query("teskpro", "TSKP", ExpectedRev(0x10, 0x1F));
    Ask("MorvakPower");
    // Of whatever major version the part is.
    if (ReadNumber("0")) (this->*queryPower)(rev_.major << 8 | 0x0A);
  }
  void QueryPowerOfModel4(std::uint32_t expected) {
    if (number_.second == 20040 && number_.third < 2)
      Query("vqxpwrx", "VQPX", expected);
    else
      Query("vqxpwr", "VQPW", expected);
  }
  void QueryPowerOfModel5(std::uint32_t expected) {
    if (number_.second == 20040 && number_.third < 2)
      Query("jqxpwrx", "JQPX", expected);
    else if (number_.second == 20046 && number_.third < 3)
      Query("jqxpwry", "JQPY", expected);
    else
      Query("jqxpwr", "JQPW", expected);
  }

  void QueryCodec(std::int32_t slot, const char* fpga, const char* vcid, const char* board, const char* newName,
                  const char* oldName, const char* vidName) {
    if (!helper_.IsCodecPresent(slot)) return;
    Ask(fpga);
    if (!rev_.IsThere() || !ReadNumber(board)) return;
    if (number_.second == 20173) Query(newName, "ENSC", 0x20);
    if (number_.second == 20035) Query(oldName, "ENCD", 0x204);
    // Asked whatever the number was.
    Ask(vcid);
    if (rev_.IsThere()) Query(vidName, "ENVC", 0x0A);
  }
  /// The module of the first slot again, under its other name.
  void QuerySpacer() {
    if (!helper_.IsCodecPresent(2)) return;
    Ask("MorvakCodec1FPGA");
    if (rev_.IsThere() && ReadNumber("2") && number_.second == 30024) Query("spacer", "SPCR", 0x0B);
  }

  void QueryFpgaOfModel5() {
    if (!ReadNumber("0")) return;
    Ask("MorvakFPGA");
    if (number_.second == 20164) Query("qindel", "QNDL", 0x100);
    if (number_.second != 20046) return;
    if (number_.third >= 2)
      Query("yorvalen", "YRVL", 0x222);
    else
      Query("yorvalenx", "YRVX", 0x222);
  }

  Installer& installer_;
  WyvrelHelper& helper_;
  PartRev rev_;  ///< of the last question; its suffix outlives an answer that tells none
  BoardPartNumber number_;
};

}  // namespace

void DiscoverMorvakParts(Installer& installer, WyvrelHelper& helper) {
  MorvakRoad(installer, helper).Discover();
}
