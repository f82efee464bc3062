#include "simulator/SystemErrors.h"

namespace simulator {
namespace {

struct ErrorText {
  std::uint32_t code;
  const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {kErrorSuccess, "The operation completed successfully.\r\n"},
    {kErrorInvalidFunction, "Incorrect function.\r\n"},
    {kErrorFileNotFound, "The system cannot find the file specified.\r\n"},
    {kErrorInvalidHandle, "The handle is invalid.\r\n"},
    {kErrorGeneralFailure, "A device attached to the system is not functioning.\r\n"},
    {kErrorInvalidParameter, "The parameter is incorrect.\r\n"},
    {kErrorInsufficientBuffer, "The data area passed to a system call is too small.\r\n"},
    {kErrorNoMoreItems, "No more data is available.\r\n"},
    {kErrorNoAccess, "Invalid access to memory location.\r\n"},
    {kErrorInvalidFlags, "Invalid flags.\r\n"},
    {kErrorInvalidUserBuffer, "The supplied user buffer is not valid for the requested operation.\r\n"},
};

}  // namespace

std::string SystemErrorText(std::uint32_t code) {
  for (const ErrorText& entry : kErrorTexts)
    if (entry.code == code) return entry.text;
  return {};
}

}  // namespace simulator
