#include <gtest/gtest.h>

#include <cstdint>

#include "platform/RegisterWindow.h"
#include "support/ScriptedRegisters.h"

namespace {

using platform::RegisterWindow;
using test_support::R;
using test_support::ScriptedRegisters;
using test_support::W;

std::uint64_t AddressOf(const std::uint32_t* memory) {
  return reinterpret_cast<std::uintptr_t>(memory);
}

TEST(RegisterWindow, ReadsAndWritesMemoryInWords) {
  std::uint32_t memory[4] = {0x11111111, 0x22222222, 0x33333333, 0x44444444};
  const RegisterWindow window(AddressOf(memory));
  EXPECT_EQ(window.Read(0), 0x11111111u);
  EXPECT_EQ(window.Read(12), 0x44444444u);
  window.Write(4, 0xA0B0C0D0);
  EXPECT_EQ(memory[0], 0x11111111u);
  EXPECT_EQ(memory[1], 0xA0B0C0D0u);
  EXPECT_EQ(memory[2], 0x33333333u);
}

TEST(RegisterWindow, GivesEachAccessToItsTrapAndLeavesTheAddressAlone) {
  ScriptedRegisters registers;
  registers.Expect({R(0, 5), W(0x80384, 0x80000020), R(0, 6)});
  const RegisterWindow window(1, &registers);
  EXPECT_EQ(window.Read(0), 5u);
  window.Write(0x80384, 0x80000020);
  EXPECT_EQ(window.Read(0), 6u);
}

TEST(RegisterWindow, CountsFromALaterRegister) {
  std::uint32_t memory[4] = {1, 2, 3, 4};
  const RegisterWindow window(AddressOf(memory));
  const RegisterWindow part = window.From(4);
  EXPECT_EQ(part.Read(0), 2u);
  EXPECT_EQ(part.From(4).Read(4), 4u);
  part.Write(8, 40);
  EXPECT_EQ(memory[3], 40u);
  EXPECT_EQ(window.Read(0), 1u);
}

TEST(RegisterWindow, TellsItsTrapTheOffsetInTheWholeWindow) {
  ScriptedRegisters registers;
  registers.Expect({W(0x400C, 0x70), R(0x4010, 9)});
  const RegisterWindow flash = RegisterWindow(0x1000, &registers).From(0x4008);
  flash.Write(4, 0x70);
  EXPECT_EQ(flash.From(4).Read(4), 9u);
}

TEST(RegisterWindow, IsEmptyUntilItIsGivenAnAddress) {
  ScriptedRegisters registers;
  EXPECT_FALSE(RegisterWindow());
  EXPECT_FALSE(RegisterWindow(0));
  EXPECT_TRUE(RegisterWindow(0x1000));
  EXPECT_TRUE(RegisterWindow(0x1000, &registers));
  EXPECT_TRUE(RegisterWindow(0x1000, &registers).From(8));
}

TEST(RegisterWindow, HasNoPartWhileItIsEmpty) {
  EXPECT_FALSE(RegisterWindow().From(0x4008));
  EXPECT_EQ(RegisterWindow().From(0x4008), RegisterWindow());
}

TEST(RegisterWindow, IsEqualToTheSameRegisters) {
  ScriptedRegisters registers;
  ScriptedRegisters others;
  const RegisterWindow window(0x1000, &registers);
  EXPECT_EQ(window, RegisterWindow(0x1000, &registers));
  EXPECT_EQ(window.From(8), RegisterWindow(0x1000, &registers).From(4).From(4));
  EXPECT_EQ(RegisterWindow(), RegisterWindow());
  EXPECT_NE(window, window.From(8));
  EXPECT_NE(window, RegisterWindow(0x1000, &others));
  EXPECT_NE(window, RegisterWindow(0x1000));
  EXPECT_NE(window, RegisterWindow(0x2000, &registers));
  EXPECT_NE(window, RegisterWindow());
}

}  // namespace
