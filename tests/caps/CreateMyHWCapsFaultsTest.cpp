// The finding of hardware that answers badly: each failure writes its line, and the finding goes on with what it has.

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "BoxHardware.h"

namespace {

using namespace caps_test;
using TalcPath::TalcCommand;
using TalcPath::TalcHWCapsHandle;
using TalcPath::TalcHWCapsManager;
using TalcPathPrivate::CreateMyHWCaps;

void Throw() {
  throw std::runtime_error("the cable is gone");
}
void ThrowCast() {
  throw TalcPath::bad_variant_cast();
}

class CreateMyHWCapsFaultsTest : public BoxHardwareTest {
 protected:
  /// Attaches what is not a packet script: it takes the command itself for the transport.
  void AttachExecution(const Lines& texts, TalcPathPrivate::ExecuteCommand execute) {
    Attach(texts);
    TalcPathPrivate::capsState.execute = execute;
  }
};

/// A box of the type "Box" that leaves the count to `answer`.
template <typename Answer>
bool ExecuteWithCount(TalcCommand& command, Answer answer) {
  if (command.GetName() == "HardwareSubcompCount") return answer(command);
  EXPECT_EQ(command.GetName(), "HardwareTypeID");
  const std::uint8_t type[] = {0x42, 0x6F, 0x78};
  command.SetBytes("TypeID", type, sizeof type);
  return true;
}

// ---- The number of sub components

// A failed command lacks its value, too, so that both lines come.
TEST_F(CreateMyHWCapsFaultsTest, AsksForNoSubcomponentWhenTheCountFails) {
  for (const std::string& reply :
       {std::string(), std::string("0B 0B 00 05 80 39 00 01 03"), std::string("0B 0B 00 05 80 39 00 02 03"),
        std::string("0B 0B 00 04 80 39 00 FF"), std::string("0B 0B 00 04 80 39 00 00")}) {
    Attach({kBox, kHd});
    ClearLog();
    EXPECT_EQ(Words(FindBoxWith(reply, {})), "box - -") << reply;
    EXPECT_EQ(log(), kCountLine + kNoCountLine) << reply;
  }
}

TEST_F(CreateMyHWCapsFaultsTest, AsksForNoSubcomponentWhenTheCountIsMissingOrOfAnotherKind) {
  AttachExecution({kBox},
                  [](TalcCommand& command) { return ExecuteWithCount(command, [](TalcCommand&) { return true; }); });
  EXPECT_EQ(CreateMyHWCaps().GetName(), "Box");
  EXPECT_EQ(log(), kNoCountLine);
  ClearLog();
  AttachExecution({kBox}, [](TalcCommand& command) {
    return ExecuteWithCount(command, [](TalcCommand& count) {
      count.SetUInt16("NumSubcomponents", 3);
      return true;
    });
  });
  EXPECT_EQ(CreateMyHWCaps().GetName(), "Box");
  EXPECT_EQ(log(), kNoCountLine);
}

TEST_F(CreateMyHWCapsFaultsTest, TakesACountThatCameInSpiteOfAFailure) {
  AttachExecution({kBox}, [](TalcCommand& command) {
    if (command.GetName() == "HardwareSubcompInfo") return false;
    return ExecuteWithCount(command, [](TalcCommand& count) {
      count.SetUInt8("NumSubcomponents", 1);
      return false;
    });
  });
  EXPECT_EQ(CreateMyHWCaps().GetName(), "Box");
  EXPECT_EQ(log(), kCountLine + kInfoLine + kNoInfoLine);
}

TEST_F(CreateMyHWCapsFaultsTest, TakesATypeOfAnotherKindForNone) {
  AttachExecution({kBox}, [](TalcCommand& command) {
    command.SetSymbol("TypeID", "Box");
    return true;
  });
  EXPECT_EQ(CreateMyHWCaps().GetName(), "EMPTY");
  EXPECT_EQ(log(), kNobodyLine);
}

TEST_F(CreateMyHWCapsFaultsTest, TakesNoTypeThatCameInSpiteOfAFailure) {
  AttachExecution({kBox}, [](TalcCommand& command) {
    ExecuteWithCount(command, [](TalcCommand&) { return false; });
    return false;
  });
  EXPECT_EQ(CreateMyHWCaps().GetName(), "EMPTY");
  EXPECT_EQ(log(), kNobodyLine);
}

// ---- One sub component

TEST_F(CreateMyHWCapsFaultsTest, GoesOnBehindASubcomponentThatFails) {
  const std::string failed = "0B 0B 00 12 80 3B 00 01 00 12 34 89 AB CD EF 48 44 42 6F 61 72 64";
  const std::string endsInItsBoard = "0B 0B 00 07 80 3B 00 00 00 12 34";
  for (const std::string& reply : {std::string(), failed, std::string("0B 0B 00 04 80 3B 00 F0"), endsInItsBoard}) {
    Attach({kBox, kHd, kAvci});
    ClearLog();
    EXPECT_EQ(Words(FindBoxWith(kHas3, {reply, kIsCodec, reply})), "box - avci") << reply;
    EXPECT_EQ(log(), kInfoLine + kNoInfoLine + kInfoLine + kNoInfoLine) << reply;
  }
}

TEST_F(CreateMyHWCapsFaultsTest, TellsOfATypeThatIsMissingOrOfAnotherKind) {
  static bool isSymbol;
  for (const bool isOfAnotherKind : {false, true}) {
    isSymbol = isOfAnotherKind;
    ClearLog();
    AttachExecution({kBox}, [](TalcCommand& command) {
      if (command.GetName() == "HardwareSubcompInfo") {
        if (isSymbol) command.SetSymbol("TypeID", "HDBoard");
        return true;
      }
      return ExecuteWithCount(command, [](TalcCommand& count) {
        count.SetUInt8("NumSubcomponents", 1);
        return true;
      });
    });
    EXPECT_EQ(CreateMyHWCaps().GetName(), "Box");
    EXPECT_EQ(log(), kNoInfoLine);
  }
}

// ---- Merging

TEST_F(CreateMyHWCapsFaultsTest, TellsOfAnHdBoardForEveryOptionThatIsNotKnown) {
  Attach({kBox});
  EXPECT_EQ(Words(FindBoxWith(kHas3, {kIsSpacedHd, kIsCodec, kIsHd})), "box - -");
  EXPECT_EQ(log(), kMergeLine + kMergeLine + kMergeLine);
}

const std::string kBlock =
    "ConditionBlockBegin ; ConditionKeyname Twice ; Condition VideoIOControl Control INTEGER 1 ; "
    "ConditionBlockEnd ; Property P INTEGER 1 ;";

// The time-outs come first, so that they are taken over before the block is refused.
TEST_F(CreateMyHWCapsFaultsTest, LeavesTheCapabilitiesHalfMergedWhenAMergeFails) {
  Attach({kBox + kBlock, kHd + "CmdOverrideTimeout VPDInfo 900 ;" + kBlock, kAvci});
  const TalcHWCapsHandle caps = FindBoxWith(kHas2, {kIsHd, kIsCodec});
  EXPECT_EQ(Words(caps), "box - avci");
  std::uint32_t milliseconds = 0;
  EXPECT_TRUE(caps.GetOverrideTimeout("VPDInfo", &milliseconds));
  EXPECT_EQ(milliseconds, 900u);
  EXPECT_EQ(log(), "\n\nERROR - duplicate Condition list key found trying to merge options file : 2.hwc" + kMergeLine);
}

TEST_F(CreateMyHWCapsFaultsTest, RefusesTheSecondOfTwoOptionsWithANamedBlock) {
  Attach({kBox, kHd + kBlock});
  EXPECT_EQ(Words(FindBoxWith(kHas2, {kIsHd, kIsSpacedHd})), "hd hd -");
  EXPECT_EQ(log(), "\n\nERROR - duplicate Condition list key found trying to merge options file : 2.hwc" + kMergeLine);
}

TEST_F(CreateMyHWCapsFaultsTest, TakesTwoOptionsOfOneTypeWithoutNamedBlocks) {
  Attach({kBox, kHd});
  EXPECT_EQ(Words(FindBoxWith(kHas2, {kIsHd, kIsSpacedHd})), "hd hd -");
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsFaultsTest, KeepsWhatWasMergedUntilTheStop) {
  Attach({kBox, kHd});
  FindBoxWith(kHas1, {kIsHd});
  EXPECT_EQ(Words(TalcHWCapsManager::GetByName("Box")), "hd hd -");
  EXPECT_EQ(Words(TalcHWCapsManager::GetByName("HDBoard")), "hd hd -");
  // The hardware is another one now, and comes back without its option.
  TalcPathPrivate::capsState.conduits.clear();
  EXPECT_EQ(Words(FindBoxWith(kHas0, {})), "hd hd -");
  Attach({kBox, kHd});
  EXPECT_EQ(Words(FindBoxWith(kHas0, {})), "box - -");
}

// ---- Exceptions

TEST_F(CreateMyHWCapsFaultsTest, TakesABadCastForAFailedCommand) {
  Attach({kBox, kHd, kAvci});
  hardware_.Expect({{kAskType, kIsBox, ThrowCast}});
  EXPECT_EQ(Find().GetName(), "EMPTY");
  EXPECT_EQ(log(), kNobodyLine);

  ClearLog();
  hardware_.Expect({{kAskType, kIsBox}, {kAskCount, kHas3, ThrowCast}});
  EXPECT_EQ(Words(Find()), "box - -");
  EXPECT_EQ(log(), kCountLine + kNoCountLine);

  ClearLog();
  Attach({kBox, kHd, kAvci});
  hardware_.Expect(
      {{kAskType, kIsBox}, {kAskCount, kHas2}, {kAskInfo + "00", kIsHd, ThrowCast}, {kAskInfo + "01", kIsCodec}});
  EXPECT_EQ(Words(Find()), "box - avci");
  EXPECT_EQ(log(), kInfoLine + kNoInfoLine);
}

TEST_F(CreateMyHWCapsFaultsTest, LetsOtherExceptionsThrough) {
  Attach({kBox, kHd});
  hardware_.Expect({{kAskType, kIsBox, Throw}});
  EXPECT_THROW(CreateMyHWCaps(), std::runtime_error);
  EXPECT_TRUE(TalcPathPrivate::capsState.conduits.empty());
  EXPECT_EQ(log(), "");
  EXPECT_EQ(Words(FindBoxWith(kHas1, {kIsHd})), "hd hd -");
}

// Its type was told, so that it counts as met: its sub components are not asked for again.
TEST_F(CreateMyHWCapsFaultsTest, HasMetHardwareWhoseSubcomponentThrows) {
  Attach({kBox, kHd, kAvci});
  hardware_.Expect({{kAskType, kIsBox}, {kAskCount, kHas2}, {kAskInfo + "00", kIsHd}, {kAskInfo + "01", "", Throw}});
  EXPECT_THROW(CreateMyHWCaps(), std::runtime_error);
  hardware_.Expect({{kAskType, kIsBox}});
  EXPECT_EQ(Words(Find()), "hd hd -");
  EXPECT_EQ(log(), "");
}

TEST_F(CreateMyHWCapsFaultsTest, FindsTheHardwareAtTheNextUseWhenTheFirstOneThrows) {
  Attach({kBox});
  hardware_.Expect({{kAskType, "", Throw}, {kAskType, "", Throw}});
  EXPECT_THROW(TalcHWCapsManager::Get(), std::runtime_error);
  EXPECT_THROW(TalcHWCapsManager::Get().GetMyCapabilities(), std::runtime_error);
  hardware_.Expect({{kAskType, kIsBox}, {kAskCount, kHas0}});
  EXPECT_EQ(TalcHWCapsManager::Get().GetMyCapabilities().GetName(), "Box");
  hardware_.Expect({{kAskType, "", Throw}});
  EXPECT_THROW(TalcHWCapsManager::Get().FindMyCapabilities(), std::runtime_error);
  // What was found before stands.
  EXPECT_EQ(TalcHWCapsManager::Get().GetMyCapabilities().GetName(), "Box");
  EXPECT_EQ(log(), "");
}

}  // namespace
