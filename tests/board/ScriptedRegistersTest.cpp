#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "support/ScriptedRegisters.h"

namespace {

using test_support::R;
using test_support::ScriptedRegisters;
using test_support::W;

// Other tests lean on this double; these see that it fails when it should.

template <typename Call>
void Swallow(Call call) {
  try {
    call();
  } catch (const std::logic_error&) {
  }
}

TEST(ScriptedRegisters, AnswersReadsInOrder) {
  ScriptedRegisters registers;
  registers.Expect({W(0, 1), R(4, 7)});
  registers.Expect({R(4, 8)}, 2);
  registers.Window().Write(0, 1);
  EXPECT_EQ(registers.Window().Read(4), 7u);
  EXPECT_EQ(registers.Window().Read(4), 8u);
  EXPECT_EQ(registers.Window().From(4).Read(0), 8u);
  registers.ExpectDone();
}

TEST(ScriptedRegisters, FailOnAnAccessThatIsExtra) {
  ScriptedRegisters registers;
  EXPECT_NONFATAL_FAILURE(Swallow([&] { registers.Read(4); }), "register access 0 is R(0x4), expected none");
}

TEST(ScriptedRegisters, FailOnAnAccessThatIsMissing) {
  EXPECT_NONFATAL_FAILURE(
      {
        ScriptedRegisters registers;
        registers.Expect({W(0, 1), R(4, 7)});
        registers.Write(0, 1);
      },
      "1 register accesses were not made, the first of them R(0x4) (number 1)");
}

TEST(ScriptedRegisters, FailOnAnotherKindOffsetOrValue) {
  ScriptedRegisters registers;
  registers.Expect({W(4, 1)});
  EXPECT_NONFATAL_FAILURE(Swallow([&] { registers.Read(4); }), "is R(0x4), expected W(0x4, 0x1)");
  registers.Expect({W(4, 1)});
  EXPECT_NONFATAL_FAILURE(Swallow([&] { registers.Write(0, 1); }), "is W(0, 0x1), expected W(0x4, 0x1)");
  registers.Expect({W(4, 1)});
  EXPECT_NONFATAL_FAILURE(Swallow([&] { registers.Write(4, 2); }), "is W(0x4, 0x2), expected W(0x4, 0x1)");
  registers.Expect({R(4, 1)});
  EXPECT_NONFATAL_FAILURE(Swallow([&] { registers.Read(0); }), "is R(0), expected R(0x4)");
}

}  // namespace
