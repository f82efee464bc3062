// Every fault of a definition, with all that the log tells of it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DictionaryFixture.h"
#include "FormatProbe.h"

namespace {

using std::string_literals::operator""s;

const std::string kVideo = "Foo Talc CommandTypeMajor VIDEO CommandTypeMinor ";
const std::string kHead = kVideo + "1 Function 2 ";
const std::string kParameter = "DataName A DataType INT8 ";

const std::string kStartLine = "\nParsing Talc Command Definition File : test.tcd\n";
const std::string kFailLine = "\n\nERROR - Failed To Successfully parse Talc Command Definition file : test.tcd";

const std::string kMajorLine = "\n\nERROR Parsing Command Type Major for Talc Command Definition - Command Name: Foo";
const std::string kMinorLine = "\n\nERROR Parsing Command Type Minor for Talc Command Definition - Command Name: Foo";
const std::string kFunctionLine = "\n\nERROR Parsing Command Function for Talc Command Definition - Command Name: Foo";
const std::string kTypeBlockLine = "\n\nERROR Failed to read CommandType Block - Command Name: Foo";
const std::string kParameterLine =
    "\n\nERROR Parsing Command Parameter Data for Talc Command Definition - Command Name: Foo";
const std::string kMissingKind = " DEFINITION INVALID - MISSING TYPE KEYWORD [Meta|Talc|Diag]";

struct Fault {
  std::string label;
  /// The block, without its ";".
  std::string block;
  /// What the verbose flag adds behind the line that a definition was found.
  std::string verboseLines;
  /// What is always told, but for the file's line.
  std::string lines;
};

class TcdFaults : public DictionaryTest, public testing::WithParamInterface<Fault> {
 protected:
  static constexpr const char* kBefore = "Before Meta Start A Repeat B Stop C ;";
  static constexpr const char* kBehind = "; Behind Diag DiagOpcode 9 ;";

  static bool ParseFault() { return Parse(kBefore + GetParam().block + kBehind); }
};

TEST_P(TcdFaults, AreToldFromTheInnermostOutward) {
  EXPECT_FALSE(ParseFault());
  EXPECT_EQ(log(), GetParam().lines + kFailLine);
}

TEST_P(TcdFaults, AreToldMoreOfUnderTheVerboseFlag) {
  SetVerbose(true);
  EXPECT_FALSE(ParseFault());
  EXPECT_EQ(log(), kStartLine +
                       "\nFound Talc Command Definition...\tName: Before"
                       "\n\nBEGIN - Meta Command Format\nName: Before\nStart: A\nRepeat: B\nStop: C\nParams {\n       }"
                       "\nEND   - Meta Command Format"
                       "\nFound Talc Command Definition...\tName: Foo" +
                       GetParam().verboseLines + GetParam().lines + kFailLine);
}

TEST_P(TcdFaults, EndTheDictionaryButNotWhatWasDefined) {
  EXPECT_FALSE(ParseFault());
  ASSERT_EQ(TalcPathPrivate::DefinedCommands()->size(), 1u);
  EXPECT_NE(Find("Before"), nullptr);
  EXPECT_TRUE(TalcPathPrivate::CommandTypes()->empty());
  EXPECT_TRUE(TalcPathPrivate::DiagOpcodes()->empty());
}

/// A fault in one of the three codes of an ordinary command.
Fault CodeFault(const std::string& label, const std::string& block, const std::string& verbose,
                const std::string& line) {
  return {label, block, verbose, line + kTypeBlockLine};
}
/// A fault of a diagnostic or meta command's codes.
Fault TypeBlockFault(const std::string& label, const std::string& block, const std::string& verbose = "") {
  return {label, block, verbose, kTypeBlockLine};
}
Fault ParameterFault(const std::string& label, const std::string& rest, const std::string& verbose) {
  return {label, kHead + rest, verbose, kParameterLine};
}

const std::string kNoMajor = "\nError - did not find 'CommandTypeMajor' keyword";
const std::string kNoMinor = "\nError - did not find 'CommandTypeMinor' keyword";
const std::string kNoFunction = "\nError - did not find 'Function' keyword";
const std::string kNoOpcode = "\nError - did not find 'DiagOpcode' keyword";
const std::string kNoDataName = "\nError - did not find 'DataName' keyword";
const std::string kNoDataType = "\nError - did not find 'DataType' keyword";
const std::string kDuplicate = "\n\tERROR - duplicate data names for parameters in command - Foo";
const std::string kBehindBytes = "\n\tERROR - attempted to add an additional data parameter after a BYTES parameter";
const std::string kDuplicateSymbol = "\nError - Symbolic Constant duplicate name";

const std::vector<Fault> kTypeFaults = {
    CodeFault("NothingBehindTalc", "Foo Talc", kNoMajor, kMajorLine),
    CodeFault("NoMajorKeyword", "Foo Talc CommandTypeMinor 1", kNoMajor, kMajorLine),
    CodeFault("MajorKeywordInOtherCase", "Foo Talc commandtypemajor VIDEO", kNoMajor, kMajorLine),
    CodeFault("NoMajor", "Foo Talc CommandTypeMajor", "", kMajorLine),
    CodeFault("NoMajorButABlank", "Foo Talc CommandTypeMajor ", "", kMajorLine),
    CodeFault("UnknownMajor", "Foo Talc CommandTypeMajor RADIO CommandTypeMinor 1", "", kMajorLine),
    CodeFault("MajorInOtherCase", "Foo Talc CommandTypeMajor Video", "", kMajorLine),
    CodeFault("MajorAsNumber", "Foo Talc CommandTypeMajor 0", "", kMajorLine),
    CodeFault("NoMinorKeyword", "Foo Talc CommandTypeMajor VIDEO", kNoMinor, kMinorLine),
    CodeFault("FunctionBeforeMinor", "Foo Talc CommandTypeMajor VIDEO Function 1", kNoMinor, kMinorLine),
    CodeFault("NoMinor", kVideo, "", kMinorLine),
    CodeFault("MinorAsWord", kVideo + "abc Function 2", "", kMinorLine),
    CodeFault("NegativeMinor", kVideo + "-1 Function 2", "", kMinorLine),
    CodeFault("Minor64", kVideo + "64 Function 2", "", kMinorLine),
    CodeFault("MinorBeyond16Bits", kVideo + "99999 Function 2", "", kMinorLine),
    CodeFault("MinorOfOneTurnOf16Bits", kVideo + "65536 Function 2", "", kMinorLine),
    CodeFault("MinorOfManyDigits", kVideo + std::string(1000, '9') + " Function 2", "", kMinorLine),
    CodeFault("NoFunctionKeyword", kVideo + "1", kNoFunction, kFunctionLine),
    CodeFault("LettersBehindMinor", kVideo + "1x Function 2", kNoFunction, kFunctionLine),
    CodeFault("FractionalMinor", kVideo + "1.5 Function 2", kNoFunction, kFunctionLine),
    CodeFault("NoFunction", kVideo + "1 Function", "", kFunctionLine),
    CodeFault("FunctionAsWord", kVideo + "1 Function abc ", "", kFunctionLine),
    CodeFault("NegativeFunction", kVideo + "1 Function -1 ", "", kFunctionLine),
    CodeFault("Function128", kVideo + "1 Function 128 ", "", kFunctionLine),
    CodeFault("FunctionBeyond16Bits", kVideo + "1 Function 99999 ", "", kFunctionLine),

    TypeBlockFault("NothingBehindDiag", "Foo Diag", kNoOpcode),
    TypeBlockFault("NoOpcodeKeyword", "Foo Diag Function 1", kNoOpcode),
    TypeBlockFault("OpcodeKeywordInOtherCase", "Foo Diag diagopcode 1", kNoOpcode),
    TypeBlockFault("NoOpcode", "Foo Diag DiagOpcode"),
    TypeBlockFault("OpcodeAsWord", "Foo Diag DiagOpcode abc"),
    TypeBlockFault("NegativeOpcode", "Foo Diag DiagOpcode -1 "),
    TypeBlockFault("Opcode256", "Foo Diag DiagOpcode 256 "),
    TypeBlockFault("OpcodeBeyond16Bits", "Foo Diag DiagOpcode 99999 "),

    // A meta command's faults have no line of their own.
    TypeBlockFault("NothingBehindMeta", "Foo Meta"),
    TypeBlockFault("NoStartKeyword", "Foo Meta Begin A Repeat B Stop C"),
    TypeBlockFault("StartInOtherCase", "Foo Meta start A Repeat B Stop C"),
    TypeBlockFault("NoStartName", "Foo Meta Start "),
    TypeBlockFault("NoRepeatKeyword", "Foo Meta Start A Stop C"),
    TypeBlockFault("NoRepeatName", "Foo Meta Start A Repeat"),
    TypeBlockFault("NoStopKeyword", "Foo Meta Start A Repeat B End C"),
    TypeBlockFault("NoStop", "Foo Meta Start A Repeat B"),
    TypeBlockFault("NoStopName", "Foo Meta Start A Repeat B Stop\r\n"),
};
INSTANTIATE_TEST_SUITE_P(OfTheType, TcdFaults, testing::ValuesIn(kTypeFaults), probe::LabelOf<Fault>);

const std::vector<Fault> kParameterFaults = {
    ParameterFault("NoDataNameKeyword", "Name A DataType INT8 ", kNoDataName),
    ParameterFault("DataNameInOtherCase", "dataname A DataType INT8 ", kNoDataName),
    ParameterFault("SymbolInOtherCase", "symbol On 1 DataName ", kNoDataName),
    ParameterFault("WordsForAParameter", "one two three four ", kNoDataName),
    ParameterFault("MarkBeforeTheName", "RD DataName A DataType INT8 ", kNoDataName),
    ParameterFault("MarkTwice", "DataName A RD RD DataType INT8 ", kNoDataType),
    ParameterFault("MarkInOtherCase", "DataName A rd DataType INT8 ", kNoDataType),
    ParameterFault("NoDataTypeKeyword", "DataName A Type INT8 ", kNoDataType),
    ParameterFault("NoDataTypeKeywordBehindTheMark", "DataName A RD Type INT8 ", kNoDataType),
    ParameterFault("DataTypeInOtherCase", "DataName A datatype INT8 ", kNoDataType),
    ParameterFault("NoName", "DataName DataType INT8 " + kParameter, kNoDataType),
    ParameterFault("TypeInOtherCase", "DataName A DataType int8 ", "\n\tERROR - invalid data type 'int8' "),
    ParameterFault("UnknownType", "DataName A DataType INT128 ", "\n\tERROR - invalid data type 'INT128' "),
    ParameterFault("SymbolAsType", "DataName A DataType SYMBOL ", "\n\tERROR - invalid data type 'SYMBOL' "),
    ParameterFault("TypeWithAZeroByte", "DataName A DataType INT8\0 "s, "\n\tERROR - invalid data type 'INT8\0' "s),
    ParameterFault("TypeWithAHighByte", "DataName A DataType INT8\xA0 ", "\n\tERROR - invalid data type 'INT8\xA0' "),
    ParameterFault("DuplicateName", kParameter + kParameter, kDuplicate),
    ParameterFault("DuplicateNameOfOtherType", kParameter + "DataName A RD DataType INT64 ", kDuplicate),
    ParameterFault("FixedBehindBytes", "DataName A DataType BYTES DataName B DataType INT8 ", kBehindBytes),
    ParameterFault("BytesBehindBytes", "DataName A DataType BYTES DataName B DataType BYTES ", kBehindBytes),
    ParameterFault("BehindBytesAndASymbol", "DataName A DataType BYTES Symbol On 1 DataName B DataType INT8 ",
                   kBehindBytes),

    // The first of several faults is told.
    ParameterFault("KeywordsBeforeAll", "Name A Type x ", kNoDataName),
    ParameterFault("TypeKeywordBeforeTheName", kParameter + "DataName A Type x ", kNoDataType),
    ParameterFault("NameBeforeTheType", kParameter + "DataName A DataType x ", kDuplicate),
    ParameterFault("TypeBeforeTheOrder", "DataName A DataType BYTES DataName B DataType x ",
                   "\n\tERROR - invalid data type 'x' "),
    ParameterFault("NameBeforeTheOrder", "DataName A DataType BYTES DataName A DataType INT8 ", kDuplicate),

    ParameterFault("DuplicateSymbol", "Symbol On 1 Symbol On 2 ", kDuplicateSymbol),
    ParameterFault("DuplicateSymbolOfTheSameValue", "Symbol On 1 " + kParameter + "Symbol On 1 ", kDuplicateSymbol),
    ParameterFault("DuplicateSymbolThatTheEndTouches", "Symbol On 1 Symbol On 2", kDuplicateSymbol),
    ParameterFault("SymbolWithoutANumber", "Symbol On " + kParameter, ""),
    ParameterFault("SymbolWithAWord", "Symbol On abc " + kParameter, ""),
    ParameterFault("SymbolWithASignAlone", "Symbol On - 1 ", ""),
    ParameterFault("SymbolAtTheEnd", "Symbol On", ""),
    ParameterFault("SymbolAtTheEndWithABlank", "Symbol On ", ""),
    ParameterFault("SymbolWithoutAName", "Symbol", ""),
    ParameterFault("SymbolWithANumberForAName", "Symbol 5 ", ""),
    ParameterFault("SymbolAboveTheLargestNumber", "Symbol On 2147483648 ", ""),
    ParameterFault("SymbolBelowTheSmallestNumber", "Symbol On -2147483649 ", ""),
    ParameterFault("SymbolWithHexadecimalNumber", "Symbol On 0x10 Symbol Off 0 ", kNoDataName),
};
INSTANTIATE_TEST_SUITE_P(OfParameters, TcdFaults, testing::ValuesIn(kParameterFaults), probe::LabelOf<Fault>);

struct MissingKind {
  std::string label;
  std::string name;
  std::string rest;
};

class TcdMissingKind : public DictionaryTest, public testing::WithParamInterface<MissingKind> {};

TEST_P(TcdMissingKind, IsToldWithBothFlags) {
  const std::string text = GetParam().name + GetParam().rest + ";Behind Diag DiagOpcode 9 ;";
  const std::string lines = "\n\nERROR - Talc Command Definition : " + GetParam().name + kMissingKind + kFailLine;
  EXPECT_FALSE(Parse(text));
  EXPECT_EQ(log(), lines);
  ClearLog();
  SetVerbose(true);
  EXPECT_FALSE(Parse(text));
  EXPECT_EQ(log(), kStartLine + lines);
  EXPECT_TRUE(TalcPathPrivate::DefinedCommands()->empty());
}

const std::vector<MissingKind> kMissingKinds = {
    {"Nothing", "Foo", ""},
    {"ABlank", "Foo", " "},
    {"AnotherWord", "Foo", " Vid CommandTypeMajor VIDEO "},
    {"OtherCase", "Foo", " talc CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 "},
    {"KindInOneWord", "Foo", " TalcDiag "},
    {"NoName", "Talc", " CommandTypeMajor VIDEO CommandTypeMinor 1 Function 2 "},
    {"DocumentationInOtherCase", "Documentation", " Foo What it is for. "},
    {"CommentMarkBehind", "Foo", " # Talc "},
    {"AZeroByte", "\0"s, ""},
    {"HighBytes", "\xEF\xBB\xBF#", " comment "},
    {"NoSemicolonBeforeTheNext", "Foo", "\nBar Diag DiagOpcode 1 "},
};
INSTANTIATE_TEST_SUITE_P(Tcd, TcdMissingKind, testing::ValuesIn(kMissingKinds), probe::LabelOf<MissingKind>);

class TcdReaderFaultsTest : public DictionaryTest {};

TEST_F(TcdReaderFaultsTest, DefinesNoCommandOfTheReservedName) {
  EXPECT_TRUE(Parse("DOCUMENTATION Diag DiagOpcode 1 ;"));
  EXPECT_TRUE(TalcPathPrivate::DefinedCommands()->empty());
}

TEST_F(TcdReaderFaultsTest, NamesTheSource) {
  std::istringstream stream("nonsense ;");
  EXPECT_FALSE(TalcPathPrivate::ParseTcdStream(stream, "dir/other.tcd"));
  EXPECT_EQ(log(), "\n\nERROR - Talc Command Definition : nonsense" + kMissingKind +
                       "\n\nERROR - Failed To Successfully parse Talc Command Definition file : dir/other.tcd");
}

}  // namespace
