#include "WyvrelHelper.h"

#include "errorException.h"

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
