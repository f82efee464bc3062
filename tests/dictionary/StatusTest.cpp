#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "dictionary/Status.h"
#include "talcpath.h"

namespace {

using TalcPath::TalcCommand;
using TalcPath::TalcPathStatus;

TEST(StatusTest, HasFourteenNamesWithFixedNumbers) {
  struct Row {
    TalcPathStatus status;
    std::int32_t number;
    const char* name;
  };
  constexpr Row kRows[] = {
      {TalcPath::kTPSuccess, 0, "kTPSuccess"},
      {TalcPath::kTPFail, 1, "kTPFail"},
      {TalcPath::kTPNotSupported, 2, "kTPNotSupported"},
      {TalcPath::kTPTransmitFailure, 3, "kTPTransmitFailure"},
      {TalcPath::kTPTimeOut, 4, "kTPTimeOut"},
      {TalcPath::kTPCommandFormatNotFound, 5, "kTPCommandFormatNotFound"},
      {TalcPath::kTPPacketSizeError, 6, "kTPPacketSizeError"},
      {TalcPath::kTPInvalidSymbolicConstant, 7, "kTPInvalidSymbolicConstant"},
      {TalcPath::kTPInvalidCommandHeader, 8, "kTPInvalidCommandHeader"},
      {TalcPath::kTPInvalidTransportHeader, 9, "kTPInvalidTransportHeader"},
      {TalcPath::kTPInvalidOpcode, 10, "kTPInvalidOpcode"},
      {TalcPath::kTPCompileMissingParameterData, 11, "kTPCompileMissingParameterData"},
      {TalcPath::kTPDecompileMissingParameterData, 12, "kTPDecompileMissingParameterData"},
      {TalcPath::kTPAttemptedToExecuteDiagCommand, 13, "kTPAttemptedToExecuteDiagCommand"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(static_cast<std::int32_t>(row.status), row.number) << row.name;
    EXPECT_STREQ(TalcPath::GetStatusName(row.status), row.name);
    EXPECT_STREQ(TalcPathPrivate::StatusNameOr(row.status, "other"), row.name);
    TalcCommand command;
    command.SetStatus(row.status);
    EXPECT_EQ(command.GetStatus(), row.status);
    EXPECT_STREQ(command.GetStatusName(), row.name);
  }
}

TEST(StatusTest, AnyOtherNumberIsBogus) {
  using Limits = std::numeric_limits<std::int32_t>;
  for (const std::int32_t number : {14, 15, 240, 255, 256, -1, -14, Limits::max(), Limits::min()}) {
    const auto status = static_cast<TalcPathStatus>(number);
    EXPECT_STREQ(TalcPath::GetStatusName(status), "BOGUS_TP_STATUS") << number;
    EXPECT_STREQ(TalcPathPrivate::StatusNameOr(status, "other"), "other") << number;
    TalcCommand command;
    command.SetStatus(status);
    EXPECT_EQ(static_cast<std::int32_t>(command.GetStatus()), number);
    EXPECT_STREQ(command.GetStatusName(), "BOGUS_TP_STATUS") << number;
  }
}

TEST(StatusTest, IsAskedForByItsOwnQuestion) {
  for (std::int32_t number = -1; number <= 14; ++number) {
    TalcCommand command;
    command.SetStatus(static_cast<TalcPathStatus>(number));
    EXPECT_EQ(command.IsSuccess(), number == 0) << number;
    EXPECT_EQ(command.IsNotSuccess(), number != 0) << number;
    EXPECT_EQ(command.IsFail(), number == 1) << number;
    EXPECT_EQ(command.IsNotSupported(), number == 2) << number;
    EXPECT_EQ(command.IsTransmitFailure(), number == 3) << number;
    EXPECT_EQ(command.IsTimeOut(), number == 4) << number;
  }
}

}  // namespace
