#include "WyvrelHelper.h"

#include <exception>

#include "errorException.h"
#include "talcpath.h"

namespace {

/// The helpers alive.
int talcUsers = 0;

}  // namespace

WyvrelHelperRep::WyvrelHelperRep(OpenMode mode) : openMode(mode), exceptionsAtStart_(std::uncaught_exceptions()) {
  if (talcUsers++ != 0) return;
  if (!TalcPath::TalcPathInit()) {
    --talcUsers;
    throw errorException("TalcPath Failed to initialize.");
  }
}

WyvrelHelperRep::~WyvrelHelperRep() noexcept(false) {
  if (talcUsers-- != 1) return;
  if (!TalcPath::TalcPathTerminate() && std::uncaught_exceptions() == exceptionsAtStart_)
    throw errorException("TalcPath Failed to terminate.");
}

void WyvrelHelperRep::GetBoardVPD(const char*, std::uint8_t (&)[kBoardVpdBytes]) {
  throw errorException("GetBoardVPD not implemented in this helper");
}

C28FxJ3A* WyvrelHelperRep::GetC28FxJ3A(const char*) {
  // The words stand as they are told to users since ever, "from" included.
  throw errorException("GetC28FxJ3A from not implemented in this helper");
}

platform::RegisterWindow WyvrelHelperRep::GetKarvelProgramAddr(const char*) {
  throw errorException("GetKarvelProgramAddr not implemented in this helper");
}

platform::RegisterWindow WyvrelHelperRep::GetKarvelVersion(const char*) {
  throw errorException("GetKarvelVersion not implemented in this helper");
}
