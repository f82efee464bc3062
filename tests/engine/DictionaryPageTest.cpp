#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "dictionary/DefinedCommands.h"
#include "EngineFixture.h"
#include "support/PageBlock.h"

// The page about dictionaries shows one; it defines what the page says.

namespace {

using engine_test::CompiledHex;
using TalcPathPrivate::FindDefinedCommand;

class DictionaryPageTest : public engine_test::EngineTest {};

TEST_F(DictionaryPageTest, DefinesThreeCommands) {
  StartWith(test_support::TextOnThePage(DICTIONARY_PAGE, "tcd"));
  std::vector<std::string> names;
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands())
    names.push_back(name);
  EXPECT_THAT(names, testing::ElementsAre("DiagLampTest", "LampControl", "LampTable"));
  EXPECT_TRUE(FindDefinedCommand("DiagLampTest")->IsDiagCommandFormat());
  EXPECT_TRUE(FindDefinedCommand("LampTable")->IsMetaCommandFormat());
}

TEST_F(DictionaryPageTest, CarriesTheMarkedValueInARequestAndAllInASend) {
  StartWith(test_support::TextOnThePage(DICTIONARY_PAGE, "tcd"));
  TalcPath::TalcCommand command("LampControl");
  command.SetSymbol("Lamp", "Lamp_OnAir");
  command.SetSymbol("Brightness", "Lamp_Full");
  command.SetBytes("Label", reinterpret_cast<const std::uint8_t*>("on air"), 6);
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 0D 80 78 00 00 01 03 E8 6F 6E 20 61 69 72");
  command.SetRequestCommand();
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 05 80 79 00 00 01");
}

TEST_F(DictionaryPageTest, ShowsStatementsThatCanBeRead) {
  std::istringstream statement("LampControl Lamp UINT8 1 Brightness UINT16 1000 Label BYTES 6 on air . ;");
  TalcPath::TalcCommand command;
  statement >> command;
  std::uint8_t label[6] = {};
  EXPECT_TRUE(command.GetBytes("Label", label, sizeof label, nullptr));
  EXPECT_EQ(std::string(label, label + 6), "on air");
}

}  // namespace
