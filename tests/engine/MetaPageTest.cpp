// The worked example of a meta command on the page on packets.

#include <gtest/gtest.h>

#include "MetaFixture.h"
#include "support/PageBlock.h"

namespace {

using namespace engine_test;

/// The packets that the page shows: a line of ">" and byte pairs, then one of "<" for its reply.
std::vector<Event> EventsOnThePage() {
  std::vector<Event> events;
  for (const std::string& line : test_support::LinesOnThePage(PACKETS_PAGE, "transfer")) {
    const std::string text = line.substr(0, line.find('|'));
    const std::string packet = Hex(FromHex(text.substr(2, text.find_last_not_of(' ') - 1)));
    if (line.front() == '>')
      events.push_back({packet});
    else
      events.at(events.size() - 1).reply = packet;
  }
  return events;
}

class MetaPageTest : public EngineTest {};

TEST_F(MetaPageTest, ShowsARequest) {
  StartWith(test_support::TextOnThePage(PACKETS_PAGE, "tcd"));
  const std::vector<Event> events = EventsOnThePage();
  ASSERT_EQ(events.size(), 4u);
  TalcCommand command = Request("LampTable");
  EXPECT_TRUE(Carry(command, events));
  EXPECT_TRUE(command.IsSuccess());
  std::uint16_t lamps = 0;
  EXPECT_TRUE(command.GetUInt16("Lamps", &lamps));
  EXPECT_EQ(lamps, 5);
  EXPECT_EQ(BytesHex(command, "Levels"), "0A 14 1E 28 32");
}

}  // namespace
