#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "simulator/Bench.h"
#include "simulator/Faulty.h"

using platform::Handle;
using platform::kInvalidHandle;
using simulator::Bench;
using simulator::Fault;
using simulator::kBelmaraBoard;
using simulator::kDovuBoard;

namespace {

/// A client of both cards' drivers, that tells how far it came.
class FaultyTest : public testing::Test {
 protected:
  void Add(const char* fault) { plan.Add(simulator::ParseFault(fault)); }
  simulator::FaultyDevices& Devices() { return faulty.devices(); }
  platform::Handle ClassSet(const simulator::Board& board) {
    return Devices().SetupDiGetClassDevsA(board.interfaceClass, 18);
  }
  bool Enumerate(const simulator::Board& board, platform::InterfaceData& data) {
    set = ClassSet(board);
    data.size = 28;
    return Devices().SetupDiEnumDeviceInterfaces(set, board.interfaceClass, 0, data);
  }
  Handle Open(const simulator::Board& board) {
    return Devices().CreateFileA(std::string(board.devicePath).c_str(), 0xC0000000, 3, 3, 128);
  }
  bool MemoryMap(Handle device) {
    return Devices().DeviceIoControl(device, 0xC1762080, nullptr, 0, record, 96, returned, 0);
  }
  bool MapRegisters(Handle device) {
    const std::uint8_t request[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x00, 0x10, 0x00};
    return Devices().DeviceIoControl(device, 0xC1762404, request, 12, record, 16, returned, 0);
  }
  std::uint64_t RecordField(std::size_t offset) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i)
      value |= std::uint64_t{record[offset + i]} << (i * 8);
    return value;
  }
  platform::RegisterTrap& Registers(const simulator::Board& board = kBelmaraBoard) {
    return *Devices().TrapAt(board.windowAddress);
  }

  Bench bench{simulator::MakeBench({.orboQx = simulator::OrboQx::kModel4})};
  simulator::FaultPlan plan;
  simulator::Faulty faulty{bench.platform(), plan};
  Handle set = 0;
  std::uint8_t record[96] = {};
  std::uint32_t returned = 99999;
};

TEST_F(FaultyTest, ChangesNothingWithoutFaults) {
  platform::InterfaceData data;
  EXPECT_TRUE(Enumerate(kBelmaraBoard, data));
  std::uint32_t required = 0;
  EXPECT_FALSE(Devices().SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, &required));
  EXPECT_EQ(Devices().GetLastError(), 122u);
  const Handle device = Open(kBelmaraBoard);
  EXPECT_NE(device, kInvalidHandle);
  EXPECT_TRUE(MemoryMap(device));
  EXPECT_EQ(returned, 96u);
  EXPECT_TRUE(MapRegisters(device));
  EXPECT_EQ(returned, 16u);
  EXPECT_EQ(RecordField(0), kBelmaraBoard.windowAddress);
  EXPECT_NE(RecordField(8) & 0xFFFFFFFF, 0u);
  EXPECT_EQ(Registers().Read(0x04000), 0x00160000u);
  Registers().Write(0x04008, 5);
  EXPECT_EQ(bench.card(kBelmaraBoard)->state().flashAddressRegister, 5u);
  EXPECT_TRUE(Devices().CloseHandle(device));
}

TEST_F(FaultyTest, DeviceMissing) {
  Add("device-missing@2");
  platform::InterfaceData data;
  EXPECT_TRUE(Enumerate(kBelmaraBoard, data));
  EXPECT_FALSE(Enumerate(kDovuBoard, data));
  EXPECT_EQ(Devices().GetLastError(), 259u);
  EXPECT_TRUE(Enumerate(kDovuBoard, data));
}

TEST_F(FaultyTest, ClassSetFails) {
  Add("class-set-fails@1");
  EXPECT_EQ(ClassSet(kBelmaraBoard), kInvalidHandle);
  EXPECT_EQ(Devices().GetLastError(), 31u);
  EXPECT_NE(ClassSet(kBelmaraBoard), kInvalidHandle);
}

TEST_F(FaultyTest, InterfaceDetailFailsWhereThereIsABuffer) {
  Add("interface-detail-fails@1");
  platform::InterfaceData data;
  ASSERT_TRUE(Enumerate(kBelmaraBoard, data));
  std::uint32_t required = 0;
  EXPECT_FALSE(Devices().SetupDiGetDeviceInterfaceDetailA(set, data, nullptr, 0, &required));
  EXPECT_NE(required, 0u) << "the question for the size is no such event";
  alignas(4) char room[200] = {};
  auto* const detail = reinterpret_cast<platform::InterfaceDetail*>(room);
  detail->size = 5;
  EXPECT_FALSE(Devices().SetupDiGetDeviceInterfaceDetailA(set, data, detail, required, nullptr));
  EXPECT_EQ(Devices().GetLastError(), 31u);
  EXPECT_TRUE(Devices().SetupDiGetDeviceInterfaceDetailA(set, data, detail, required, nullptr));
}

TEST_F(FaultyTest, OpenFails) {
  Add("open-fails");
  EXPECT_EQ(Open(kBelmaraBoard), kInvalidHandle);
  EXPECT_EQ(Open(kDovuBoard), kInvalidHandle);
  EXPECT_EQ(Devices().GetLastError(), 31u);
}

TEST_F(FaultyTest, ControlFailsForAnyCode) {
  Add("control-fails@2");
  const Handle device = Open(kBelmaraBoard);
  EXPECT_TRUE(MemoryMap(device));
  returned = 99999;
  EXPECT_FALSE(MapRegisters(device));
  EXPECT_EQ(Devices().GetLastError(), 31u);
  EXPECT_EQ(returned, 99999u);
  EXPECT_TRUE(MapRegisters(device));
}

TEST_F(FaultyTest, MemoryMapFails) {
  Add("memory-map-fails");
  const Handle device = Open(kBelmaraBoard);
  EXPECT_TRUE(MapRegisters(device));
  EXPECT_FALSE(MemoryMap(device));
  EXPECT_EQ(Devices().GetLastError(), 31u);
}

TEST_F(FaultyTest, MemoryMapShort) {
  Add("memory-map-short@1");
  const Handle device = Open(kBelmaraBoard);
  EXPECT_TRUE(MemoryMap(device));
  EXPECT_EQ(returned, 95u);
  EXPECT_TRUE(MemoryMap(device));
  EXPECT_EQ(returned, 96u);
}

TEST_F(FaultyTest, MapRegistersFails) {
  Add("map-registers-fails@1");
  const Handle device = Open(kBelmaraBoard);
  EXPECT_TRUE(MemoryMap(device));
  EXPECT_FALSE(MapRegisters(device));
  EXPECT_TRUE(MapRegisters(device));
}

TEST_F(FaultyTest, MapRegistersShort) {
  Add("map-registers-short");
  const Handle device = Open(kBelmaraBoard);
  EXPECT_TRUE(MapRegisters(device));
  EXPECT_EQ(returned, 15u);
}

TEST_F(FaultyTest, MapRefused) {
  Add("map-refused");
  EXPECT_TRUE(MapRegisters(Open(kBelmaraBoard)));
  EXPECT_EQ(returned, 16u);
  EXPECT_EQ(RecordField(0), 0u);
  EXPECT_NE(RecordField(8), 0u);
}

TEST_F(FaultyTest, MapRefusedSecond) {
  Add("map-refused-second");
  EXPECT_TRUE(MapRegisters(Open(kBelmaraBoard)));
  EXPECT_EQ(returned, 16u);
  EXPECT_EQ(RecordField(0), kBelmaraBoard.windowAddress);
  EXPECT_EQ(RecordField(8), 0u);
}

/// A client of the Orbo QX's driver.
class FaultyUnitTest : public FaultyTest {
 protected:
  bool Call(std::uint32_t code, std::uint32_t inLength, std::uint32_t outLength) {
    returned = 99999;
    return Devices().DeviceIoControl(device, code, in, inLength, record, outLength, returned, 0);
  }
  bool Model() { return Call(0xAA010008, 0, 8); }
  bool Slot() { return Call(0xAA010054, 4, 8); }
  /// An exchange of nothing for nothing, which is over at once.
  bool Talc() { return Call(0xAA010038, 28, 8); }
  bool Vpd() {
    for (int i = 0; i < 8; ++i)
      in[i] = static_cast<std::uint8_t>(reinterpret_cast<std::uintptr_t>(area) >> (i * 8));
    in[13] = 0x20;
    return Call(0xAA010044, 16, 4);
  }
  void FailsOnTheSecond(const std::function<bool()>& call) {
    EXPECT_TRUE(call());
    EXPECT_FALSE(call());
    EXPECT_EQ(Devices().GetLastError(), 31u);
    EXPECT_EQ(returned, 99999u);
    EXPECT_TRUE(call());
  }

  Handle device = Open(simulator::kMorvakBoard);
  std::uint8_t in[28] = {};
  std::uint8_t area[8192] = {};
};

TEST_F(FaultyUnitTest, ChangesNothingWithoutFaults) {
  EXPECT_TRUE(Model());
  EXPECT_EQ(returned, 8u);
  EXPECT_TRUE(Slot());
  EXPECT_TRUE(Talc());
  EXPECT_EQ(returned, 8u);
  EXPECT_TRUE(Vpd());
  EXPECT_EQ(returned, 4u);
}

TEST_F(FaultyUnitTest, TalcFails) {
  Add("talc-fails@2");
  FailsOnTheSecond([&] { return Talc(); });
}

TEST_F(FaultyUnitTest, TalcShort) {
  Add("talc-short@2");
  EXPECT_TRUE(Talc());
  EXPECT_EQ(returned, 8u);
  EXPECT_TRUE(Talc());
  EXPECT_EQ(returned, 7u);
}

TEST_F(FaultyUnitTest, ModelFails) {
  Add("model-fails@2");
  FailsOnTheSecond([&] { return Model(); });
}

TEST_F(FaultyUnitTest, SlotFails) {
  Add("slot-fails@2");
  FailsOnTheSecond([&] { return Slot(); });
}

TEST_F(FaultyUnitTest, VpdFails) {
  Add("vpd-fails@2");
  FailsOnTheSecond([&] { return Vpd(); });
}

TEST_F(FaultyUnitTest, PowerCutCountsTalcCallsToo) {
  Add("power-cut@3");
  Registers().Write(0x04008, 1);
  EXPECT_TRUE(Talc());
  EXPECT_TRUE(Model()) << "writes nothing";
  EXPECT_THROW(Talc(), simulator::PowerCut);
  EXPECT_FALSE(Talc());
  EXPECT_TRUE(Devices().IsDead());
}

TEST_F(FaultyTest, ReadLost) {
  Add("read-lost@2");
  const std::int64_t before = bench.clock().NowNanoseconds();
  EXPECT_EQ(Registers().Read(0x04000), 0x00160000u);
  EXPECT_EQ(Registers().Read(0x04000), 0xFFFFFFFFu);
  EXPECT_EQ(bench.clock().NowNanoseconds() - before, 250) << "the board saw one read";
  EXPECT_EQ(Registers().Read(0x04000), 0x00160000u);
}

TEST_F(FaultyTest, WriteLostCountsTheWritesOfAllBoards) {
  Add("write-lost@3");
  Registers(kBelmaraBoard).Write(0x04008, 1);
  Registers(kDovuBoard).Write(0x04008, 2);
  Registers(kBelmaraBoard).Write(0x04008, 3);
  EXPECT_EQ(bench.card(kBelmaraBoard)->state().flashAddressRegister, 1u);
  Registers(kDovuBoard).Write(0x04008, 4);
  EXPECT_EQ(bench.card(kDovuBoard)->state().flashAddressRegister, 4u);
}

TEST_F(FaultyTest, PowerCutEndsTheRunBeforeTheWrite) {
  Add("power-cut@2");
  Registers().Write(0x04008, 1);
  try {
    Registers().Write(0x04008, 2);
    FAIL() << "the second write took place";
  } catch (const simulator::PowerCut& cut) {
    EXPECT_EQ(cut.write, 2u);
  }
  EXPECT_EQ(bench.card(kBelmaraBoard)->state().flashAddressRegister, 1u);
}

TEST_F(FaultyTest, IsDeadAfterAPowerCut) {
  Add("power-cut@1");
  const Handle device = Open(kBelmaraBoard);
  EXPECT_FALSE(Devices().IsDead());
  EXPECT_THROW(Registers().Write(0x04008, 1), simulator::PowerCut);
  EXPECT_TRUE(Devices().IsDead());
  EXPECT_EQ(Registers().Read(0x04000), 0xFFFFFFFFu);
  EXPECT_NO_THROW(Registers().Write(0x04008, 1)) << "destructors that write must come through";
  EXPECT_EQ(bench.card(kBelmaraBoard)->state().flashAddressRegister, 0u);
  EXPECT_FALSE(MemoryMap(device));
  EXPECT_EQ(Open(kBelmaraBoard), kInvalidHandle);
  EXPECT_EQ(ClassSet(kBelmaraBoard), kInvalidHandle);
  platform::InterfaceData data;
  EXPECT_FALSE(Enumerate(kBelmaraBoard, data));
  EXPECT_TRUE(Devices().CloseHandle(device)) << "handles are the computer's";
}

// What the inner devices fail has its own error, whatever failed on demand before.
TEST_F(FaultyTest, ReportsTheErrorOfTheLastFailedCall) {
  Add("open-fails@1");
  Open(kBelmaraBoard);
  EXPECT_EQ(Devices().GetLastError(), 31u);
  const Handle device = Open(kBelmaraBoard);
  EXPECT_EQ(Devices().GetLastError(), 31u) << "a success changes nothing";
  EXPECT_TRUE(Devices().CloseHandle(device));
  EXPECT_FALSE(Devices().CloseHandle(device));
  EXPECT_EQ(Devices().GetLastError(), 6u);
}

}  // namespace
