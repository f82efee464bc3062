#include <gtest/gtest.h>

#include <sstream>

#include "simulator/Bench.h"
#include "simulator/Faulty.h"
#include "simulator/Recording.h"

using platform::Handle;
using simulator::kBelmaraBoard;
using simulator::kDovuBoard;

namespace {

class RecordingTest : public testing::Test {
 protected:
  Handle Open(const simulator::Board& board) {
    return recording.devices().CreateFileA(std::string(board.devicePath).c_str(), 0xC0000000, 3, 3, 128);
  }
  bool Control(Handle device, std::uint32_t code, const std::uint8_t* in, std::uint32_t inLength,
               std::uint32_t outLength) {
    std::uint32_t returned = 0;
    return recording.devices().DeviceIoControl(device, code, in, inLength, record, outLength, returned, 0);
  }
  void Map(Handle device) {
    const std::uint8_t request[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x00, 0x10, 0x00};
    EXPECT_TRUE(Control(device, 0xC1762404, request, 12, 16));
  }
  platform::RegisterTrap& Registers(const simulator::Board& board) {
    return *recording.devices().TrapAt(board.windowAddress);
  }

  simulator::Bench bench{simulator::MakeBench({.orboQx = simulator::OrboQx::kModel4})};
  simulator::FaultPlan plan;
  simulator::Faulty faulty{bench.platform(), plan};
  std::ostringstream trace;
  simulator::Recording recording{faulty, trace};
  std::uint8_t record[96] = {};
};

TEST_F(RecordingTest, WritesALineForEachAccessAndControlCallInOrder) {
  const Handle belmara = Open(kBelmaraBoard);
  const Handle dovu = Open(kDovuBoard);
  Control(belmara, 0xC1762080, nullptr, 0, 96);
  Map(belmara);
  Map(dovu);
  Registers(kBelmaraBoard).Write(0x4008, 0x100000);
  Registers(kDovuBoard).Read(0x4000);
  Registers(kBelmaraBoard).Write(0x400C, 0xE8E8);
  Registers(kBelmaraBoard).Read(0x400C);
  EXPECT_EQ(trace.str(),
            "belmara C c1762080 00000000\n"
            "belmara C c1762404 00000000\n"
            "dovu C c1762404 00000000\n"
            "belmara W 04008 00100000\n"
            "dovu R 04000 00160000\n"
            "belmara W 0400c 0000e8e8\n"
            "belmara R 0400c 00800080\n");
}

TEST_F(RecordingTest, NamesTheOrboQx) {
  const Handle morvak = Open(simulator::kMorvakBoard);
  EXPECT_TRUE(Control(morvak, 0xAA010008, nullptr, 0, 8));
  EXPECT_FALSE(Control(morvak, 0xAA010038, nullptr, 0, 8));
  EXPECT_EQ(trace.str(),
            "morvak C aa010008 00000000\n"
            "morvak C aa010038 00000057\n");
}

TEST_F(RecordingTest, WritesTheErrorOfAFailedControlCall) {
  const Handle belmara = Open(kBelmaraBoard);
  EXPECT_FALSE(Control(belmara, 0xC1762404, nullptr, 0, 16));
  plan.Add(simulator::ParseFault("control-fails@2"));
  EXPECT_FALSE(Control(belmara, 0xC1762080, nullptr, 0, 96));
  EXPECT_EQ(trace.str(),
            "belmara C c1762404 00000057\n"
            "belmara C c1762080 0000001f\n");
}

TEST_F(RecordingTest, GivesCallsOnAnInvalidHandleToTheBoardThatWouldNotOpen) {
  plan.Add(simulator::ParseFault("open-fails"));
  EXPECT_FALSE(Control(Open(kDovuBoard), 0xC1762080, nullptr, 0, 96));
  EXPECT_EQ(trace.str(), "dovu C c1762080 00000006\n");
}

TEST_F(RecordingTest, HasNoLineForTheWriteOfAPowerCut) {
  Map(Open(kBelmaraBoard));
  plan.Add(simulator::ParseFault("power-cut@2"));
  Registers(kBelmaraBoard).Write(0x4008, 1);
  EXPECT_THROW(Registers(kBelmaraBoard).Write(0x4008, 2), simulator::PowerCut);
  EXPECT_EQ(trace.str(),
            "belmara C c1762404 00000000\n"
            "belmara W 04008 00000001\n");
}

TEST_F(RecordingTest, LeavesEverythingElseAlone) {
  EXPECT_EQ(&recording.clock(), &bench.clock());
  EXPECT_EQ(&recording.frontEnd(), &bench.frontEnd());
  EXPECT_EQ(&recording.files(), &bench.platform().files());
  EXPECT_EQ(&recording.textBlocks(), &bench.platform().textBlocks());
  EXPECT_EQ(recording.devices().TrapAt(0x1234), nullptr);
  platform::InterfaceData data{.size = 28};
  const Handle set = recording.devices().SetupDiGetClassDevsA(kDovuBoard.interfaceClass, 18);
  EXPECT_TRUE(recording.devices().SetupDiEnumDeviceInterfaces(set, kDovuBoard.interfaceClass, 0, data));
  platform::DeviceInfo info{.size = 28};
  EXPECT_TRUE(recording.devices().SetupDiEnumDeviceInfo(set, 0, info));
  const Handle key = recording.devices().SetupDiOpenDevRegKey(set, info, 1, 0, 1, 0x2001F);
  EXPECT_TRUE(recording.devices().RegCloseKey(key));
  EXPECT_TRUE(recording.devices().SetupDiDestroyDeviceInfoList(set));
  EXPECT_TRUE(recording.devices().CloseHandle(recording.devices().CreateEventA(true, false)));
  EXPECT_FALSE(recording.devices().RegCloseKey(key));
  EXPECT_EQ(recording.devices().GetLastError(), 6u);
  EXPECT_EQ(recording.devices().FormatMessageA(6), "The handle is invalid.\r\n");
  EXPECT_EQ(trace.str(), "");
}

TEST_F(RecordingTest, GivesTheSameTrapForTheSameWindow) {
  EXPECT_EQ(&Registers(kBelmaraBoard), &Registers(kBelmaraBoard));
  EXPECT_NE(&Registers(kBelmaraBoard), &Registers(kDovuBoard));
}

}  // namespace
