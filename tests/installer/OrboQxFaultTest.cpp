#include <gtest/gtest.h>

#include <functional>

#include "FaultWalk.h"

// Bad days of the second line: each fault at each control call where it can strike while all parts of an Orbo QX are
// installed that this release has a version for.

namespace {

enum class Kind { kModel, kSlot, kBoardVpd, kRev, kVpd, kDiagnostic, kStart, kData, kProgram };

/// One control call of a whole install.
struct Call {
  Kind kind;
  std::string what;  ///< the part that is asked, or the group of the message
};

/// The four exchanges of a download.
void AddDownload(std::vector<Call>& calls, const std::string& group) {
  for (const Kind kind : {Kind::kDiagnostic, Kind::kStart, Kind::kData, Kind::kProgram})
    calls.push_back({kind, group});
}

/// All of them in order: a module in each of the two slots, of which the first answers to two names.
std::vector<Call> AllCalls() {
  std::vector<Call> calls = {
      {Kind::kModel, ""},
      {Kind::kRev, "MorvakFirmware"},
      {Kind::kVpd, "pico"},
      {Kind::kRev, "MorvakFPGA"},
      {Kind::kVpd, "xandrel"},
      {Kind::kModel, ""},
      {Kind::kSlot, ""},
      {Kind::kRev, "MorvakCodec1FPGA"},
      {Kind::kBoardVpd, "2"},
      {Kind::kVpd, "enc1"},
      {Kind::kRev, "MorvakCodec1VCID"},
      {Kind::kVpd, "vid1"},
      {Kind::kModel, ""},
      {Kind::kSlot, ""},
      {Kind::kRev, "MorvakCodec1FPGA"},
      {Kind::kBoardVpd, "2"},
      {Kind::kModel, ""},
      {Kind::kSlot, ""},
      {Kind::kRev, "MorvakCodec2FPGA"},
      {Kind::kBoardVpd, "3"},
      {Kind::kVpd, "enc2b"},
      {Kind::kRev, "MorvakCodec2VCID"},
      {Kind::kVpd, "vid2"},
  };
  AddDownload(calls, "firmware");
  for (int fpga = 0; fpga < 5; ++fpga)
    AddDownload(calls, "FPGA");
  return calls;
}

const std::vector<Call> kInstall = AllCalls();

std::vector<Call> CallsOf(const std::function<bool(Kind)>& isMeant) {
  std::vector<Call> calls;
  for (const Call& call : kInstall)
    if (isMeant(call.kind)) calls.push_back(call);
  return calls;
}

std::vector<Call> CallsOf(Kind kind) {
  return CallsOf([&](Kind other) { return other == kind; });
}

std::vector<Call> TalcCalls() {
  return CallsOf([](Kind kind) { return kind != Kind::kModel && kind != Kind::kSlot && kind != Kind::kBoardVpd; });
}

/// The run goes on, perhaps without some of the parts.
const Ending kInstalled{4, ""};

constexpr char kTransport[] = "MorvakHelper.cpp";
constexpr char kTalcFails[] = "TransactBoBCommand: can't send talc command - ioctl failed.";
constexpr char kModelFails[] = "MorvakHelper::Open can't get Morvak model - ioctl failed.";

Ending TimedOut(const Call& call) {
  constexpr char kHelpers[] = "BoxDownloadHelpers.cpp";
  switch (call.kind) {
    case Kind::kRev:
      return {4, "GetStringPartRev for " + call.what + " failed.\n"};
    case Kind::kVpd:
      return {-1, "Error: VPDInfo TALC command failed for VPD_Morvak, for device " + call.what + "\n" +
                      FailureLine("Unable to get VPD information", "VersionDiscovery.cpp")};
    case Kind::kDiagnostic:
      return Fails("Failed to send Diagnostic Talc command", kHelpers);
    case Kind::kStart:
      return Fails("Could not start " + call.what + " download", kHelpers);
    case Kind::kData:
      return Fails("Failed " + call.what + " download command", kHelpers);
    default:
      break;
  }
  // The question for the answer, which nobody knows of, is repeated until something fails.
  return Fails(kTalcFails, kTransport);
}

class OrboQxFaults : public FaultWalk {
 protected:
  OrboQxFaults()
      : FaultWalk(
            {simulator::MakeBench({.hostCards = simulator::HostCards::kNone,
                                   .box = simulator::BoxChoice::kNone,
                                   .orboQx = simulator::OrboQx::kModel4}),
             {"-all", "-nopause", "-noprogress", "-noveltra"},
             4,
             {{"pico", 0x123}, {"xandrel", 0x30F}, {"enc1", 0x204}, {"vid1", 0xA}, {"enc2b", 0x20}, {"vid2", 0xA}},
             "talc-fails@100"}) {
    folder_.Write("PICO.rbi", Container("PICO", "0123", "firmware"));
    folder_.Write("XNDR.rbi", Container("XNDR", "030f", "image"));
    folder_.Write("ENCD.rbi", Container("ENCD", "0204", "old encoder"));
    folder_.Write("ENSC.rbi", Container("ENSC", "0020", "new encoder"));
    folder_.Write("ENVC.rbi", Container("ENVC", "000a", "video"));
  }

  void WalkCalls(const std::string& name, const std::vector<Call>& calls,
                 const std::function<Ending(const Call&)>& expected) {
    Walk(name, calls.size(), [&](std::size_t place) { return expected(calls[place]); });
  }
};

TEST_F(OrboQxFaults, ATalcCallThatFails) {
  WalkCalls("talc-fails", TalcCalls(), [](const Call&) { return Fails(kTalcFails, kTransport); });
}

TEST_F(OrboQxFaults, ATalcCallThatReturnsTooLittle) {
  WalkCalls("talc-short", TalcCalls(), [](const Call&) {
    return Fails("TransactBoBCommand: can't send talc command - bad ioctl return.", kTransport);
  });
}

TEST_F(OrboQxFaults, AReplyThatWasNotWritten) {
  const auto expected = [](const Call&) {
    return Fails("TransactBoBCommand: bad header on Talc response packet.", kTransport);
  };
  WalkCalls("talc-unwritten", TalcCalls(), expected);
  WalkCalls("talc-bad-header", TalcCalls(), expected);
}

TEST_F(OrboQxFaults, ATimeOut) {
  WalkCalls("talc-time-out", TalcCalls(), TimedOut);
}

TEST_F(OrboQxFaults, ABoardWithoutItsPartNumberLosesItsParts) {
  const auto expected = [](const Call&) { return kInstalled; };
  WalkCalls("vpd-fails", CallsOf(Kind::kBoardVpd), expected);
  WalkCalls("board-vpd-damaged", CallsOf(Kind::kBoardVpd), expected);
}

TEST_F(OrboQxFaults, AModelThatIsNotTold) {
  Walk("model-fails", 4, [](std::size_t place) { return place == 0 ? Fails(kModelFails, kTransport) : kInstalled; });
}

TEST_F(OrboQxFaults, AnInvalidNumberOfSlots) {
  // The first question is for the model alone.
  Walk("slots-invalid", 4, [](std::size_t place) {
    return place == 0 ? kInstalled : Fails("MorvakHelper: Invalid number of codec slots.", kTransport);
  });
}

TEST_F(OrboQxFaults, ASlotThatIsNotTold) {
  WalkCalls("slot-fails", CallsOf(Kind::kSlot), [](const Call&) { return kInstalled; });
}

TEST_F(OrboQxFaults, APartThatDoesNotKnowItsVersion) {
  WalkCalls("part-unknown", CallsOf(Kind::kRev), [](const Call&) { return kInstalled; });
}

TEST_F(OrboQxFaults, AnyControlCallThatFails) {
  Walk("control-fails", kInstall.size(), [](std::size_t place) -> Ending {
    switch (kInstall[place].kind) {
      case Kind::kModel:
        return place == 0 ? Fails(kModelFails, kTransport) : kInstalled;
      case Kind::kSlot:
      case Kind::kBoardVpd:
        return kInstalled;
      default:
        return Fails(kTalcFails, kTransport);
    }
  });
}

}  // namespace
