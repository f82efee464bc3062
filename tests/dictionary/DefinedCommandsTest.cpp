// The three tables: what comes in, what is unique, how they go.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"
#include "support/FailingAllocation.h"

namespace {

using TalcPathPrivate::CommandType;
using TalcPathPrivate::DefinedCommands;
using TalcPathPrivate::ErrorList;

class DefinedCommandsTest : public DictionaryTest {
 protected:
  template <typename Format>
  static std::unique_ptr<Format> Named(const std::string& name) {
    auto format = std::make_unique<Format>();
    format->SetName(name);
    return format;
  }
  static std::unique_ptr<probe::Talc> Talc(const std::string& name, std::int16_t function) {
    auto format = Named<probe::Talc>(name);
    format->commandType = {.major = CommandType::Major::AUDIO, .minor = 0, .function = function};
    return format;
  }
  static std::unique_ptr<probe::Diag> Diag(const std::string& name, std::int16_t opcode) {
    auto format = Named<probe::Diag>(name);
    format->diagOpcode = opcode;
    return format;
  }
  /// The table owns the format from then on.
  template <typename Format>
  static Format* Add(std::unique_ptr<Format> format) {
    EXPECT_TRUE(format->AddToDefinedCommands());
    return format.release();
  }
};

TEST_F(DefinedCommandsTest, ComeIntoBeingEmpty) {
  ASSERT_NE(DefinedCommands(), nullptr);
  EXPECT_TRUE(DefinedCommands()->empty());
  ASSERT_NE(TalcPathPrivate::CommandTypes(), nullptr);
  EXPECT_TRUE(TalcPathPrivate::CommandTypes()->empty());
  ASSERT_NE(TalcPathPrivate::DiagOpcodes(), nullptr);
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
  EXPECT_EQ(DefinedCommands(), DefinedCommands());
}

TEST_F(DefinedCommandsTest, AreNullWithoutMemoryAndComeLater) {
  {
    const test_support::FailingAllocation table(1);
    EXPECT_EQ(DefinedCommands(), nullptr);
  }
  {
    const test_support::FailingAllocation table(1);
    EXPECT_EQ(TalcPathPrivate::CommandTypes(), nullptr);
  }
  {
    const test_support::FailingAllocation table(1);
    EXPECT_EQ(TalcPathPrivate::DiagOpcodes(), nullptr);
  }
  EXPECT_NE(DefinedCommands(), nullptr);
  EXPECT_NE(TalcPathPrivate::CommandTypes(), nullptr);
  EXPECT_NE(TalcPathPrivate::DiagOpcodes(), nullptr);
}

TEST_F(DefinedCommandsTest, FindNothingBeforeTheyAreUsed) {
  EXPECT_EQ(Find("Foo"), nullptr);
  EXPECT_EQ(TalcPathPrivate::FindCommandType(CommandType()), nullptr);
  EXPECT_EQ(TalcPathPrivate::FindDiagOpcode(0), nullptr);
}

TEST_F(DefinedCommandsTest, TakeAnOrdinaryCommandWithItsType) {
  const auto* const foo = Add(Talc("Foo", 5));
  EXPECT_EQ(Find("Foo"), foo);
  ASSERT_EQ(TalcPathPrivate::CommandTypes()->size(), 1u);
  EXPECT_EQ(TalcPathPrivate::CommandTypes()->at(foo->commandType), "Foo");
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
}

TEST_F(DefinedCommandsTest, TakeADiagnosticCommandWithItsOpcode) {
  const auto* const bar = Add(Diag("Bar", 5));
  EXPECT_EQ(Find("Bar"), bar);
  ASSERT_EQ(TalcPathPrivate::DiagOpcodes()->size(), 1u);
  EXPECT_EQ(TalcPathPrivate::DiagOpcodes()->at(5), "Bar");
  EXPECT_TRUE(TalcPathPrivate::CommandTypes()->empty());
}

TEST_F(DefinedCommandsTest, TakeAMetaCommandByItsNameAlone) {
  const auto* const baz = Add(Named<TalcPathPrivate::MetaCommandFormat>("Baz"));
  EXPECT_EQ(Find("Baz"), baz);
  EXPECT_TRUE(TalcPathPrivate::CommandTypes()->empty());
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
}

TEST_F(DefinedCommandsTest, FindExactNamesInAnyOrder) {
  Add(Diag("a", 1));
  Add(Diag("A", 2));
  Add(Diag("AB", 3));
  for (const char* const name : {"AB", "a", "A", "A", "a"}) {
    ASSERT_NE(Find(name), nullptr) << name;
    EXPECT_EQ(Find(name)->GetName(), name);
  }
  EXPECT_EQ(Find("ab"), nullptr);
  EXPECT_EQ(Find("ABC"), nullptr);
  EXPECT_EQ(Find(""), nullptr);
}

TEST_F(DefinedCommandsTest, KeepTheirOrderByKey) {
  Add(Talc("Zeta", 1));
  Add(Talc("alpha", 0));
  Add(Diag("Beta", 200));
  Add(Diag("Gamma", 3));
  std::string names;
  for (const auto& [name, format] : *DefinedCommands())
    names += name + " ";
  EXPECT_EQ(names, "Beta Gamma Zeta alpha ");
  EXPECT_EQ(TalcPathPrivate::CommandTypes()->begin()->second, "alpha");
  EXPECT_EQ(TalcPathPrivate::DiagOpcodes()->begin()->second, "Gamma");
}

TEST_F(DefinedCommandsTest, SayThatANewCommandIsUnique) {
  SetVerbose(true);
  EXPECT_TRUE(Talc("Foo", 5)->IsUnique());
  EXPECT_TRUE(Diag("Foo", 5)->IsUnique());
  EXPECT_TRUE(Named<TalcPathPrivate::MetaCommandFormat>("Foo")->IsUnique());
  Add(Talc("Foo", 5));
  EXPECT_TRUE(Talc("Bar", 6)->IsUnique());
  EXPECT_TRUE(Diag("Bar", 5)->IsUnique());  // opcodes and functions are apart
  Add(Diag("Bar", 5));
  EXPECT_TRUE(Diag("Baz", 4)->IsUnique());
  EXPECT_TRUE(Diag("Baz", 6)->IsUnique());
  EXPECT_EQ(log(), "");
}

TEST_F(DefinedCommandsTest, TellOfATakenNameUnderTheVerboseFlag) {
  Add(Talc("Foo", 5));
  EXPECT_FALSE(Talc("Foo", 6)->IsUnique());
  EXPECT_FALSE(Diag("Foo", 5)->IsUnique());
  EXPECT_FALSE(Named<TalcPathPrivate::MetaCommandFormat>("Foo")->IsUnique());
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_FALSE(Named<TalcPathPrivate::MetaCommandFormat>("Foo")->IsUnique());
  EXPECT_EQ(log(), "\n\nERROR - Duplicate Talc Command Name found : Foo");
}

TEST_F(DefinedCommandsTest, TellOfATakenTypeUnderTheVerboseFlag) {
  Add(Talc("Foo", 5));
  EXPECT_FALSE(Talc("Bar", 5)->IsUnique());
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_FALSE(Talc("Bar", 5)->IsUnique());
  EXPECT_EQ(log(),
            "\n\nERROR - Duplicate Major Type, Minor Type, and Function code found!"
            "\n\n\t\t Existing Command Name: Foo");
}

TEST_F(DefinedCommandsTest, TellOfATakenOpcodeUnderTheVerboseFlag) {
  Add(Diag("Foo", 5));
  EXPECT_FALSE(Diag("Bar", 5)->IsUnique());
  EXPECT_EQ(log(), "");
  SetVerbose(true);
  EXPECT_FALSE(Diag("Bar", 5)->IsUnique());
  EXPECT_EQ(log(),
            "\n\nERROR - Duplicate Diag Opcode code found!"
            "\n\n\t\t Existing Command Name: Foo");
}

/// Tells where it died.
class Mortal : public probe::Talc {
 public:
  explicit Mortal(std::vector<std::string>& deaths) : deaths_(&deaths) {}
  ~Mortal() override { deaths_->push_back(name); }
  Mortal(const Mortal&) = delete;
  Mortal& operator=(const Mortal&) = delete;

 private:
  std::vector<std::string>* deaths_;
};

TEST_F(DefinedCommandsTest, DieInTheOrderOfTheirNames) {
  std::vector<std::string> deaths;
  std::int16_t function = 0;
  for (const char* const name : {"Zeta", "Beta", "alpha", "Alpha"}) {
    auto format = std::make_unique<Mortal>(deaths);
    format->name = name;
    format->commandType.function = function++;
    Add(std::move(format));
  }
  EXPECT_TRUE(deaths.empty());
  ErrorList errors;
  EXPECT_TRUE(TalcPathPrivate::DeleteDefinedCommands(errors));
  EXPECT_EQ(deaths, (std::vector<std::string>{"Alpha", "Beta", "Zeta", "alpha"}));
}

TEST_F(DefinedCommandsTest, LeaveEmptyTablesAndListsBehind) {
  Add(Talc("Foo", 5));
  Add(Diag("Bar", 5));
  ASSERT_NE(Find("Foo"), nullptr);
  ErrorList errors = {"earlier"};
  EXPECT_TRUE(TalcPathPrivate::DeleteDefinedCommands(errors));
  EXPECT_TRUE(errors.empty());
  errors = {"earlier"};
  EXPECT_TRUE(TalcPathPrivate::DeleteCommandTypeTable(errors));
  EXPECT_TRUE(errors.empty());
  errors = {"earlier"};
  EXPECT_TRUE(TalcPathPrivate::DeleteDiagOpcodeTable(errors));
  EXPECT_TRUE(errors.empty());
  EXPECT_EQ(Find("Foo"), nullptr);
  EXPECT_EQ(Find("Bar"), nullptr);
  EXPECT_TRUE(DefinedCommands()->empty());
  EXPECT_TRUE(TalcPathPrivate::CommandTypes()->empty());
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
}

TEST_F(DefinedCommandsTest, CanBeDeletedWhenTheyNeverWere) {
  for (int i = 0; i < 2; ++i) {
    ErrorList errors = {"earlier"};
    EXPECT_TRUE(TalcPathPrivate::DeleteDefinedCommands(errors));
    EXPECT_TRUE(errors.empty());
    errors = {"earlier"};
    EXPECT_TRUE(TalcPathPrivate::DeleteCommandTypeTable(errors));
    EXPECT_TRUE(errors.empty());
    errors = {"earlier"};
    EXPECT_TRUE(TalcPathPrivate::DeleteDiagOpcodeTable(errors));
    EXPECT_TRUE(errors.empty());
  }
}

TEST_F(DefinedCommandsTest, DieApartFromTheirCodes) {
  Add(Talc("Foo", 5));
  ErrorList errors;
  EXPECT_TRUE(TalcPathPrivate::DeleteDefinedCommands(errors));
  EXPECT_EQ(TalcPathPrivate::CommandTypes()->size(), 1u);
}

TEST_F(DefinedCommandsTest, ServeAgainAfterADeletion) {
  Add(Diag("Foo", 5));
  ErrorList errors;
  TalcPathPrivate::DeleteDefinedCommands(errors);
  TalcPathPrivate::DeleteDiagOpcodeTable(errors);
  EXPECT_TRUE(Diag("Foo", 5)->IsUnique());
  const auto* const again = Add(Diag("Foo", 5));
  EXPECT_EQ(Find("Foo"), again);
}

}  // namespace
