// Any version texts, VPD and part numbers of the second line under the discovery of its parts. The input is a byte with
// the model and the options, and then the answers in the order of the questions. What is missing at the end is 0.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>

#include "errorException.h"
#include "FuzzInput.h"
#include "installer/PartDiscovery.h"

namespace {

/// A helper that answers from the input, and holds its callers to their questions.
class AnyOrboQx final : public WyvrelHelper {
 public:
  AnyOrboQx(Input& input, BoardKind kind) : input_(input) { boardKind = kind; }

  HwcStatus ExecuteCommand(const char* name, Arguments arguments) override {
    if (std::strcmp(name, "GetStringPartRev") == 0) return TellVersion(arguments);
    Require(std::strcmp(name, "VPDInfo") == 0);
    return TellVpd(arguments);
  }
  void GetBoardVPD(const char* board, std::uint8_t (&buffer)[kBoardVpdBytes]) override {
    const std::string name(board);
    Require(name == "0" || name == "2" || name == "3");
    switch (const std::uint8_t kind = input_.Byte(); kind) {
      case 0:
        throw errorException("no VPD");
      case 1:
        Put(buffer, sizeof buffer, input_.Byte());
        break;
      default:
        PutNumber(buffer, kind);
    }
  }
  bool IsCodecPresent(std::int32_t slot) override {
    Require(slot >= 0 && slot <= 2 && boardKind == BoardKind::kMorvakModel4);
    const std::uint8_t state = input_.Byte();
    if (state == 255) throw errorException("MorvakHelper: Invalid number of codec slots.");
    return (state & 1) == 0;
  }

  // Discovery only asks.
  HwcStatus SendCommand(const char*, Arguments) override { std::abort(); }
  HwcStatus PrecompileCommand(std::uint8_t*, std::uint32_t*, std::uint8_t, const char*, Arguments) override {
    std::abort();
  }
  HwcStatus DecodeReply(const std::uint8_t*, std::uint32_t, const char*, Arguments) override { std::abort(); }
  HwcStatus TransactBoBCommand(const std::uint8_t*, std::uint32_t, std::uint8_t*, std::uint32_t*, std::uint32_t,
                               std::uint32_t) override {
    std::abort();
  }
  HwcStatus TransactCommand(TalcPath::TalcCommand&) override { std::abort(); }
  const char* GetPrompt() const override { return ""; }

 private:
  /// A time-out, or something worse, or an answer.
  HwcStatus Status() {
    const std::uint8_t status = input_.Byte();
    if (status == 255) throw errorException("Bad BOB status");
    return status == 254 ? kHWCerr_CommandTimeout : kHWCerr_None;
  }

  HwcStatus TellVersion(Arguments arguments) {
    Require(arguments.size() == 2 && arguments.begin()[1].sizeBytes == 31);
    const HwcStatus status = Status();
    if (status == kHWCerr_None) Put(arguments.begin()[1].place, 31, input_.Byte() % 32);
    return status;
  }

  HwcStatus TellVpd(Arguments arguments) {
    Require(arguments.size() == 3 && arguments.begin()[2].sizeBytes == 1999);
    Require(std::strcmp(static_cast<const char*>(arguments.begin()[0].input), "VPD_Morvak") == 0);
    const HwcStatus status = Status();
    if (status != kHWCerr_None) return status;
    auto* const size = static_cast<std::uint16_t*>(arguments.begin()[1].place);
    auto* const vpd = static_cast<std::uint8_t*>(arguments.begin()[2].place);
    const std::uint8_t length = input_.Byte();
    if (length == 0) {
      // Revision 1.1, so that most inputs get beyond the first part.
      constexpr std::uint8_t kGood[] = {0x90, 8, 0, 'Z', 'B', 1, '1', 'Z', 'C', 1, '1', 0x78};
      std::memcpy(vpd, kGood, sizeof kGood);
      *size = sizeof kGood;
      return status;
    }
    *size = static_cast<std::uint16_t>(length == 255 ? input_.Word() : length);
    Put(vpd, 1999, length);
    return status;
  }

  /// A part number with one of the numbers that mean something, and any third.
  void PutNumber(std::uint8_t* area, std::uint8_t kind) {
    constexpr int kSeconds[] = {20035, 20040, 20046, 20164, 20173, 30024};
    char text[32];
    const int length = std::snprintf(text, sizeof text, "1-%d-%d", kSeconds[kind % 6], kind / 6 % 5);
    area[0] = 0x90;
    area[1] = static_cast<std::uint8_t>(3 + length);
    area[2] = 0;
    area[3] = 'P';
    area[4] = 'N';
    area[5] = static_cast<std::uint8_t>(length);
    std::memcpy(area + 6, text, static_cast<std::size_t>(length));
    area[6 + length] = 0x78;
  }

  void Put(void* to, std::size_t room, std::size_t length) {
    const auto bytes = input_.Bytes(std::min(room, length));
    if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  }

  Input& input_;
};

/// What each model can have.
const std::set<std::string> kPartsOfModel4 = {"pico", "xandrel", "teskpro", "vqxpwr", "vqxpwrx", "enc1b",
                                              "enc1", "vid1",    "spacer",  "enc2b",  "enc2",    "vid2"};
const std::set<std::string> kPartsOfModel5 = {"pico",    "qindel", "yorvalen", "yorvalenx",
                                              "teskpro", "jqxpwr", "jqxpwrx",  "jqxpwry"};
const std::set<std::string> kPartsThatAreHeldBack = {"teskpro", "vqxpwr", "vqxpwrx", "jqxpwr", "jqxpwrx", "jqxpwry"};

void Check(const Installer& installer, BoardKind kind) {
  Require(installer.locationCount() >= 0 && installer.locationCount() <= 100);
  std::set<std::string> found;
  for (std::int32_t i = 0; i < installer.locationCount(); ++i) {
    const PartLocation& location = installer.location(i);
    const std::string name = location.part->name;
    Require(found.insert(name).second);
    Require(kind == BoardKind::kMorvakModel4   ? kPartsOfModel4.contains(name)
            : kind == BoardKind::kMorvakModel5 ? kPartsOfModel5.contains(name)
                                               : name == "pico");
    Require(installer.fussy == 0 || !kPartsThatAreHeldBack.contains(name));
    Require(IsRevisionInRange(*location.part, location.major, location.minor));
    Require(std::memchr(location.suffix, '\0', sizeof location.suffix) != nullptr);
    Require(location.suffix[0] == '\0' || location.suffix[0] == '-');
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The lines about parts go nowhere.
  stderr = std::fopen("/dev/null", "w");
  return stderr == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input({data, size});
  const std::uint8_t what = input.Byte();
  constexpr BoardKind kKinds[] = {BoardKind::kMorvakModel4, BoardKind::kMorvakModel5, BoardKind::kUnknown,
                                  BoardKind::kMorvakModel4};
  const BoardKind kind = kKinds[what & 3];
  Installer installer;
  installer.AddPartDescriptions();
  installer.fussy = (what & 4) != 0 ? 1 : 0;
  AnyOrboQx orboQx(input, kind);
  try {
    DiscoverMorvakParts(installer, orboQx);
  } catch (const errorException&) {
    // A box that answers badly ends the run.
  }
  Check(installer, kind);
  return 0;
}
