#include "dictionary/Status.h"

#include <array>

namespace TalcPathPrivate {
namespace {

/// In the order of their numbers.
constexpr std::array kNames{
    "kTPSuccess",
    "kTPFail",
    "kTPNotSupported",
    "kTPTransmitFailure",
    "kTPTimeOut",
    "kTPCommandFormatNotFound",
    "kTPPacketSizeError",
    "kTPInvalidSymbolicConstant",
    "kTPInvalidCommandHeader",
    "kTPInvalidTransportHeader",
    "kTPInvalidOpcode",
    "kTPCompileMissingParameterData",
    "kTPDecompileMissingParameterData",
    "kTPAttemptedToExecuteDiagCommand",
};

}  // namespace

const char* StatusNameOr(TalcPath::TalcPathStatus status, const char* unknown) {
  const auto number = static_cast<std::uint32_t>(status);
  return number < kNames.size() ? kNames[number] : unknown;
}

}  // namespace TalcPathPrivate

const char* TalcPath::GetStatusName(TalcPathStatus status) {
  return TalcPathPrivate::StatusNameOr(status, "BOGUS_TP_STATUS");
}
