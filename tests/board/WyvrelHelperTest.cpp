#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "errorException.h"
#include "support/ScriptedTransport.h"

namespace {

/// A transport that has nothing of its own, and that is not to be asked for anything.
class BareHelper : public ScriptedTransport {
 public:
  using ScriptedTransport::ScriptedTransport;
  using WyvrelHelperRep::openMode;
};

TEST(WyvrelHelper, SaysWhatATransportDoesNotHave) {
  struct Case {
    std::string message;
    std::function<void(BareHelper&)> operation;
  };
  const std::vector<Case> cases = {
      {"GetBoardVPD not implemented in this helper",
       [](BareHelper& helper) {
         std::uint8_t buffer[kBoardVpdBytes];
         helper.GetBoardVPD("belmara", buffer);
       }},
      // The words stand so, "from" included.
      {"GetC28FxJ3A from not implemented in this helper", [](BareHelper& helper) { helper.GetC28FxJ3A("belmara"); }},
      {"GetKarvelProgramAddr not implemented in this helper",
       [](BareHelper& helper) { helper.GetKarvelProgramAddr("belmara"); }},
      {"GetKarvelVersion not implemented in this helper",
       [](BareHelper& helper) { helper.GetKarvelVersion("belmara"); }},
  };
  std::vector<std::int32_t> lines;
  for (const Case& each : cases) {
    SCOPED_TRACE(each.message);
    BareHelper helper(OpenMode::kHostCards);
    try {
      each.operation(helper);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const errorException& error) {
      EXPECT_EQ(error.what(), each.message);
      EXPECT_STREQ(error.file, "WyvrelHelper.cpp");
      lines.push_back(error.line);
    }
  }
  // Each has a place of its own.
  ASSERT_EQ(lines.size(), 4u);
  for (std::size_t i = 1; i < lines.size(); ++i)
    EXPECT_GT(lines[i], lines[i - 1]);
}

TEST(WyvrelHelper, KnowsNoBoardAtFirst) {
  const BareHelper helper(OpenMode::kHostCards);
  EXPECT_EQ(static_cast<int>(helper.boardKind), 8);
}

TEST(WyvrelHelper, KeepsTheModeThatItWasMadeWith) {
  for (const int mode : {0, 1, 2, 3, 4})
    EXPECT_EQ(static_cast<int>(BareHelper(OpenMode{mode}).openMode), mode);
}

TEST(WyvrelHelper, NumbersItsBoardKinds) {
  EXPECT_EQ(static_cast<int>(BoardKind::kBothHostCards), 0);
  EXPECT_EQ(static_cast<int>(BoardKind::kBelmaraOnly), 1);
  EXPECT_EQ(static_cast<int>(BoardKind::kDovuOnly), 2);
  EXPECT_EQ(static_cast<int>(BoardKind::kMorvakModel4), 5);
  EXPECT_EQ(static_cast<int>(BoardKind::kMorvakModel5), 7);
}

}  // namespace
