// The packets of the program's own commands: those of an installation written out, and all of them there and back.

#include <gtest/gtest.h>

#include <type_traits>

#include "dictionary/CommandContents.h"
#include "EngineFixture.h"

namespace {

using namespace engine_test;
using TalcPathPrivate::CommandFormat;
using TalcPathPrivate::FindExactly;
using TalcPathPrivate::ParameterFormat;
using TalcPathPrivate::SetValue;

class EmbeddedCommandsTest : public EngineTest {
 protected:
  void SetUp() override { StartWithEmbedded(); }
};

TEST_F(EmbeddedCommandsTest, CommandsWithoutValues) {
  const struct {
    const char* name;
    const char* send;
  } cases[] = {
      {"AbortDownload", "0B 0B 00 04 80 04 00 00"},   {"ProgramFPGA", "0B 0B 00 04 80 0A 00 00"},
      {"ProgramFirmware", "0B 0B 00 04 80 10 00 00"}, {"ProgramCPLD", "0B 0B 00 04 80 16 00 00"},
      {"SoftwareReset", "0B 0B 00 04 80 F6 00 00"},   {"RunDiagnostic", "0B 0B 00 04 C0 00 00 00"},
  };
  for (const auto& test : cases) {
    TalcCommand command(test.name);
    EXPECT_EQ(CompiledHex(command), test.send) << test.name;
  }
}

TEST_F(EmbeddedCommandsTest, RequestsWithoutValues) {
  const struct {
    const char* name;
    const char* request;
  } cases[] = {
      {"HWConfigFB", "0B 0B 00 04 80 03 00 00"},
      {"HardwareTypeID", "0B 0B 00 04 80 21 00 00"},
      {"HardwareSubcompCount", "0B 0B 00 04 80 39 00 00"},
      {"DownloadStatus", "0B 0B 00 04 80 19 00 00"},
      // Nothing of it is required for a request, so that there it carries nothing. It is meant.
      {"CPLDDownload", "0B 0B 00 04 80 15 00 00"},
  };
  for (const auto& test : cases) {
    TalcCommand command = Request(test.name);
    EXPECT_EQ(CompiledHex(command), test.request) << test.name;
  }
}

TEST_F(EmbeddedCommandsTest, VpdInfo) {
  TalcCommand request = Request("VPDInfo");
  request.SetSymbol("Board", "VPD_Hollen");
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 35 00 00 00 C8");
  TalcCommand send("VPDInfo");
  send.SetSymbol("Board", "VPD_Nuvash");
  send.SetUInt16("VPDSize", 4);
  SetBytes(send, "VPDInfo", FromHex("90 01 00 78"));
  EXPECT_EQ(CompiledHex(send), "0B 0B 00 0C 80 34 00 00 00 64 00 04 90 01 00 78");
}

TEST_F(EmbeddedCommandsTest, GetStringPartRev) {
  TalcCommand request = Request("GetStringPartRev");
  request.SetSymbol("PartID", "KasmirERF");
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 55 00 00 00 09");
  request.SetUInt16("PartID", 0x1234);
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 06 80 55 00 00 12 34");
  TalcCommand send("GetStringPartRev");
  send.SetSymbol("PartID", "MorvakPower");
  SetBytes(send, "Version", {'2', '.', '2', '5'});
  EXPECT_EQ(CompiledHex(send), "0B 0B 00 0A 80 54 00 00 00 0A 32 2E 32 35");
}

TEST_F(EmbeddedCommandsTest, HardwareSubcompInfo) {
  TalcCommand request = Request("HardwareSubcompInfo");
  request.SetUInt8("NthSubcomponent", 7);
  EXPECT_EQ(CompiledHex(request), "0B 0B 00 05 80 3B 00 00 07");
}

TEST_F(EmbeddedCommandsTest, StartFpgaDownload) {
  TalcCommand command("StartFPGADownload");
  command.SetSymbol("TheFPGA", "kCodecFPGA_ID");
  command.SetSymbol("FileType", "kBoBF_Rbi");
  command.SetUInt32("DownloadSize", 0x00012345);
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 0A 80 06 00 00 02 03 00 01 23 45");
  command.SetRequestCommand();
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 06 80 07 00 00 02 03");
}

TEST_F(EmbeddedCommandsTest, StartFirmwareDownload) {
  TalcCommand command("StartFirmwareDownload");
  command.SetSymbol("FileType", "kBoB_Rbi");
  command.SetSymbol("Region", "kOstrel_ID");
  command.SetUInt32("DownloadSize", 0xFFFFFFFF);
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 0A 80 0C 00 00 03 05 FF FF FF FF");
}

TEST_F(EmbeddedCommandsTest, StartCpldDownload) {
  TalcCommand command("StartCPLDDownload");
  command.SetSymbol("TheCPLD", "VulmenCPLD_ID");
  command.SetSymbol("FileType", "kBoBC_Bin");
  command.SetUInt32("DownloadSize", 1);
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 0A 80 12 00 00 04 02 00 00 00 01");
}

TEST_F(EmbeddedCommandsTest, PiecesOfADownload) {
  TalcCommand fpga("FPGADownload");
  fpga.SetUInt16("Length", 4);
  SetBytes(fpga, "TheDLData", FromHex("DE AD BE EF"));
  EXPECT_EQ(CompiledHex(fpga), "0B 0B 00 0A 80 08 00 00 00 04 DE AD BE EF");
  fpga.SetRequestCommand();
  EXPECT_EQ(CompiledHex(fpga), "0B 0B 00 06 80 09 00 00 00 04");

  TalcCommand cpld("CPLDDownload");
  cpld.SetUInt16("Length", 2);
  SetBytes(cpld, "TheDLData", FromHex("CA FE"));
  EXPECT_EQ(CompiledHex(cpld), "0B 0B 00 08 80 14 00 00 00 02 CA FE");

  TalcCommand firmware("FirmwareDownload");
  firmware.SetUInt32("Address", 0x00100000);
  firmware.SetUInt16("Length", 3);
  SetBytes(firmware, "TheDLData", FromHex("01 02 03"));
  EXPECT_EQ(CompiledHex(firmware), "0B 0B 00 0D 80 0E 00 00 00 10 00 00 00 03 01 02 03");
}

TEST_F(EmbeddedCommandsTest, TheLargestPieceOfADownload) {
  TalcCommand command("FPGADownload");
  command.SetUInt16("Length", 1970);
  SetBytes(command, "TheDLData", Bytes(1970, 0xA5));
  EXPECT_EQ(CompiledHex(command), Hex(FromHex("0B 0B 07 B8 80 08 00 00 07 B2") + Bytes(1970, 0xA5)));
}

TEST_F(EmbeddedCommandsTest, DiagnosticCarriesItsDataBothWays) {
  TalcCommand command("Diagnostic");
  command.SetUInt16("Length", 3);
  SetBytes(command, "DiagData", FromHex("6F 72 62"));
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 09 C0 02 00 00 00 03 6F 72 62");
  command.SetRequestCommand();
  EXPECT_EQ(CompiledHex(command), "0B 0B 00 09 C0 03 00 00 00 03 6F 72 62");
}

TEST_F(EmbeddedCommandsTest, TheAnswerToHwConfigFb) {
  TalcCommand request = Request("HWConfigFB");
  EXPECT_EQ(Decompile(request, "0B 0B 00 16 80 03 00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 32 2E 32 35 20 61"), kRead);
  const char* const names[] = {"SparkwellMajorRev", "SparkwellMinorRev", "DolmbrinMajorRev",   "DolmbrinMinorRev",
                               "TarnvaldMajorRev",  "TarnvaldMinorRev",  "RavenshaleMajorRev", "RavenshaleMinorRev",
                               "TanbrookMajorRev",  "TanbrookMinorRev",  "SalvikMajorRev",     "SalvikMinorRev"};
  for (std::uint8_t i = 0; i < std::size(names); ++i) {
    std::uint8_t value = 0;
    EXPECT_TRUE(request.GetUInt8(names[i], &value)) << names[i];
    EXPECT_EQ(value, i + 1) << names[i];
  }
  EXPECT_EQ(BytesHex(request, "FirmwareRev"), "32 2E 32 35 20 61");
}

TEST_F(EmbeddedCommandsTest, TheAnswerToHardwareSubcompInfo) {
  TalcCommand request = Request("HardwareSubcompInfo");
  EXPECT_EQ(Decompile(request, "0B 0B 00 0D 80 3B 00 00 07 00 C8 80 00 00 01 41 42"), kRead);
  std::uint8_t nth = 0;
  std::uint16_t board = 0;
  std::uint32_t status = 0;
  EXPECT_TRUE(request.GetUInt8("NthSubcomponent", &nth) && request.GetUInt16("VPDInfoBoardID", &board) &&
              request.GetUInt32("Status", &status));
  EXPECT_EQ(nth, 7);
  EXPECT_EQ(board, 200);
  EXPECT_EQ(status, 0x80000001u);
  EXPECT_EQ(BytesHex(request, "TypeID"), "41 42");
}

/// The value of a parameter on the wire: bytes that differ from one parameter to the next, with the top bits set and
/// unset in turn.
Bytes WireValue(const ParameterFormat& parameter, std::size_t index) {
  const std::int32_t wireSize = parameter.dataType.WireSize();
  Bytes value(wireSize > 0 ? static_cast<std::size_t>(wireSize) : 6);
  for (std::size_t i = 0; i < value.size(); ++i)
    value[i] = static_cast<std::uint8_t>((index % 2 == 0 ? 0x91 : 0x13) + 29 * index + 7 * i);
  return value;
}

template <typename T>
T NumberOf(const Bytes& value) {
  std::uint64_t bits = 0;
  for (const std::uint8_t byte : value)
    bits = bits << 8 | byte;
  return static_cast<T>(bits);
}

void SetParameter(TalcCommand& command, const ParameterFormat& parameter, const Bytes& value) {
  const bool isInteger = parameter.dataType.WithInteger(
      [&]<typename T>(std::type_identity<T>) {
        SetValue(command, parameter.name, NumberOf<T>(value));
        return true;
      },
      false);
  if (!isInteger) SetBytes(command, parameter.name, value);
}

/// True when the command holds exactly that value, of the parameter's own kind.
bool Holds(const TalcCommand& command, const ParameterFormat& parameter, const Bytes& value) {
  if (parameter.dataType.IsBytes()) return BytesHex(command, parameter.name) == Hex(value);
  return parameter.dataType.WithInteger(
      [&]<typename T>(std::type_identity<T>) {
        const T* const held = FindExactly<T>(command, parameter.name);
        return held != nullptr && *held == NumberOf<T>(value);
      },
      false);
}

/// A command with all its values, and the same values as bytes.
struct Filled {
  TalcCommand command;
  Bytes sent;
  Bytes requested;
};

Filled Fill(const std::string& name, const CommandFormat& format) {
  Filled filled{TalcCommand(name), {}, {}};
  bool isRequired = true;
  for (std::size_t i = 0; i < format.GetNumParameters(); ++i) {
    const ParameterFormat& parameter = format.Parameters().at(i);
    const Bytes value = WireValue(parameter, i);
    SetParameter(filled.command, parameter, value);
    isRequired = isRequired && parameter.isRequiredForRequestData;
    filled.sent = filled.sent + value;
    if (isRequired) filled.requested = filled.requested + value;
  }
  return filled;
}

Bytes ValuesOf(const std::string& packetHex, const CommandFormat& format) {
  const Bytes packet = FromHex(packetHex);
  const long headerBytes = format.IsDiagCommandFormat() ? 36 : 8;
  return {packet.begin() + headerBytes, packet.end()};
}

/// How many parameters of the definition the command holds with the value that was set; no other may be there.
std::size_t CountHeld(const TalcCommand& command, const CommandFormat& format) {
  std::size_t held = 0;
  for (std::size_t i = 0; i < format.GetNumParameters(); ++i) {
    const ParameterFormat& parameter = format.Parameters().at(i);
    if (!command.HasParameter(parameter.name)) continue;
    EXPECT_TRUE(Holds(command, parameter, WireValue(parameter, i))) << format.GetName() << " " << parameter.name;
    ++held;
  }
  return held;
}

TEST_F(EmbeddedCommandsTest, EveryCommandComesBackAsItWasSent) {
  std::size_t commands = 0;
  std::size_t parameters = 0;
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    Filled filled = Fill(name, *format);
    const std::string packet = CompiledHex(filled.command);
    EXPECT_EQ(Hex(ValuesOf(packet, *format)), Hex(filled.sent)) << name;
    for (const bool isRequest : {false, true}) {
      // A packet that was sent has the form of a whole answer. A send's is only read when asked for.
      TalcCommand answer(name);
      if (isRequest) answer.SetRequestCommand();
      EXPECT_EQ(Decompile(answer, packet, !isRequest), kRead) << name;
      EXPECT_EQ(answer.GetStatus(), TalcPath::kTPSuccess) << name;
      EXPECT_EQ(CountHeld(answer, *format), format->GetNumParameters()) << name;
      // And what came back makes the same packet again.
      answer.SetSendCommand();
      EXPECT_EQ(CompiledHex(answer), packet) << name;
    }
    ++commands;
    parameters += format->GetNumParameters();
  }
  EXPECT_EQ(commands, 163u);
  EXPECT_EQ(parameters, 356u);
}

TEST_F(EmbeddedCommandsTest, EveryRequestCarriesWhatItMustAndNoMore) {
  std::size_t commands = 0;
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    Filled filled = Fill(name, *format);
    filled.command.SetRequestCommand();
    const std::string packet = CompiledHex(filled.command);
    EXPECT_EQ(Hex(ValuesOf(packet, *format)), Hex(filled.requested)) << name;

    std::size_t required = 0;
    for (const ParameterFormat& parameter : format->Parameters())
      required += parameter.isRequiredForRequestData ? 1 : 0;
    // Read back, it holds the required ones, and an empty value where only that of a BYTES parameter is missing.
    TalcCommand echo = Request(name);
    EXPECT_EQ(Decompile(echo, packet, true), kRead) << name;
    std::size_t held = 0;
    for (std::size_t i = 0; i < format->GetNumParameters(); ++i) {
      const ParameterFormat& parameter = format->Parameters().at(i);
      if (!parameter.isRequiredForRequestData) {
        EXPECT_TRUE(!echo.HasParameter(parameter.name) || BytesHex(echo, parameter.name).empty()) << name;
        continue;
      }
      EXPECT_TRUE(Holds(echo, parameter, WireValue(parameter, i))) << name << " " << parameter.name;
      ++held;
    }
    EXPECT_EQ(held, required) << name;
    ++commands;
  }
  EXPECT_EQ(commands, 163u);
}

TEST_F(EmbeddedCommandsTest, TheCodesOfARequestDifferFromThoseOfASendInOneBit) {
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    if (format->IsDiagCommandFormat()) continue;
    Filled filled = Fill(name, *format);
    const Bytes send = FromHex(CompiledHex(filled.command));
    filled.command.SetRequestCommand();
    const Bytes request = FromHex(CompiledHex(filled.command));
    EXPECT_EQ(send[4], request[4]) << name;
    EXPECT_EQ(send[5] & 1, 0) << name;
    EXPECT_EQ(send[5] | 1, request[5]) << name;
    EXPECT_EQ(send[6] | send[7] | request[6] | request[7], 0) << name;
    EXPECT_EQ(send[2] << 8 | send[3], static_cast<int>(send.size()) - 4) << name;
    EXPECT_EQ(request[2] << 8 | request[3], static_cast<int>(request.size()) - 4) << name;
  }
}

TEST_F(EmbeddedCommandsTest, EverySymbolBecomesItsNumber) {
  std::size_t symbols = 0;
  for (const auto& [name, format] : *TalcPathPrivate::DefinedCommands()) {
    for (std::size_t i = 0; i < format->GetNumSymbols(); ++i, ++symbols) {
      std::string symbol;
      std::int32_t value = 0;
      ASSERT_TRUE(format->GetSymbolByIndex(static_cast<std::ptrdiff_t>(i), symbol, value));
      Filled filled = Fill(name, *format);
      const ParameterFormat& parameter = format->Parameters().at(0);
      ASSERT_FALSE(parameter.dataType.IsBytes()) << name;
      filled.command.SetSymbol(parameter.name, symbol);
      CompiledHex(filled.command);
      const bool isNumber = parameter.dataType.WithInteger(
          [&]<typename T>(std::type_identity<T>) {
            const T* const held = FindExactly<T>(filled.command, parameter.name);
            return held != nullptr && *held == static_cast<T>(value);
          },
          false);
      EXPECT_TRUE(isNumber) << name << " " << symbol;
    }
  }
  EXPECT_EQ(symbols, 955u);
}

}  // namespace
