#include "board/CreateWyvrelHelper.h"

#include "board/MorvakHelper.h"
#include "board/VeltraHelper.h"

std::unique_ptr<WyvrelHelper> CreateWyvrelHelper(OpenMode mode) {
  std::unique_ptr<WyvrelHelperRep> helper;
  switch (mode) {
    case OpenMode::kMorvakElseBothHostCards:
    case OpenMode::kMorvakElseBelmara:
      helper = std::make_unique<MorvakHelper>(OpenMode::kMorvak);
      // What opened is the result as it is: a second `Open` would open the device again.
      if (helper->Open()) return helper;
      helper = std::make_unique<VeltraHelper>(mode);
      break;
    case OpenMode::kHostCards:
    case OpenMode::kBelmaraAlone:
      helper = std::make_unique<VeltraHelper>(mode);
      break;
    case OpenMode::kMorvak:
    default:
      helper = std::make_unique<MorvakHelper>(OpenMode::kMorvak);
      break;
  }
  if (!helper->Open()) return nullptr;
  return helper;
}
