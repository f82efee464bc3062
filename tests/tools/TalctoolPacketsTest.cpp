// The packets that talctool makes and reads, by hand.

#include "TalctoolFixture.h"

namespace {

using testing::HasSubstr;

/// The header of the diagnostic command Probe: its magic text, 15 zeros, opcode 200; then counts and values follow.
constexpr char kProbeHeader[] =
    "6f72626f5f646961676e6f7374696373"
    "000000000000000000000000000000"
    "c8";

class TalctoolPackets : public Talctool {
 protected:
  std::string Compiled(const std::string& question) const { return OfSmall("compile", question); }
  std::string Decompiled(const std::string& question) const { return OfSmall("decompile", question); }
};

struct Exchange {
  std::string question, answer;
};

TEST_F(TalctoolPackets, CompilesSendsAndRequests) {
  for (const Exchange& exchange : {
           Exchange{R"({"name":"Ping","direction":"send","values":[]})", "0b0b000400000000"},
           Exchange{R"({"name":"Ping","direction":"request","values":[]})", "0b0b000400010000"},
           Exchange{R"({"name":"Gain","direction":"send","values":[["Channel","UINT8",1],["Level","INT16",-2]]})",
                    "0b0b0007430a000001fffe"},
           Exchange{R"({"name":"Gain","direction":"request","values":[["Channel","UINT8",255]]})",
                    "0b0b0005430b0000ff"},
           Exchange{R"({"name":"Blob","direction":"send","values":[["Data","BYTES","00fF"],["Kind","INT8",-1]]})",
                    "0b0b0007fffe0000ff00ff"},
           Exchange{R"({"name":"Blob","direction":"request","values":[["Kind","INT8",127]]})", "0b0b0005ffff00007f"},
           Exchange{R"({"name":"Probe","direction":"send","values":[["Wide","UINT64",18446744073709551614]]})",
                    std::string(kProbeHeader) + "00080000fffffffffffffffe"},
           Exchange{R"({"name":"Probe","direction":"request","values":[]})", std::string(kProbeHeader) + "00000000"},
       })
    EXPECT_EQ(Compiled(exchange.question), R"({"ok":true,"packet":")" + exchange.answer + "\"}\n") << exchange.question;
}

TEST_F(TalctoolPackets, CompilesSymbolsAsTheirNumbers) {
  const auto gain = [](const std::string& symbol) {
    return R"({"name":"Gain","direction":"send","values":[["Channel","UINT8",0],["Level","SYMBOL",")" + symbol +
           "\"]]}";
  };
  EXPECT_EQ(Compiled(gain("Loud")), "{\"ok\":true,\"packet\":\"0b0b0007430a000000012c\"}\n");
  EXPECT_EQ(Compiled(gain("Quiet")), "{\"ok\":true,\"packet\":\"0b0b0007430a000000fed4\"}\n");
  EXPECT_EQ(Compiled(gain("loud")), "{\"ok\":false,\"status\":\"kTPInvalidSymbolicConstant\"}\n");
}

TEST_F(TalctoolPackets, NamesTheReasonWhyThereIsNoPacket) {
  const std::string longest(2 * 2039, '0');
  const auto blob = [](const std::string& bytes) {
    return R"({"name":"Blob","direction":"send","values":[["Kind","INT8",0],["Data","BYTES",")" + bytes + "\"]]}";
  };
  EXPECT_THAT(Compiled(blob(longest)), testing::StartsWith(R"({"ok":true,"packet":"0b0b07fcfffe000000)"));
  for (const Exchange& exchange : {
           Exchange{R"({"name":"Pong","direction":"send","values":[]})", "kTPCommandFormatNotFound"},
           Exchange{R"({"name":"","direction":"send","values":[]})", "kTPCommandFormatNotFound"},
           Exchange{R"({"name":"Ping\u0000","direction":"send","values":[]})", "kTPCommandFormatNotFound"},
           Exchange{R"({"name":"Gain","direction":"request","values":[]})", "kTPCompileMissingParameterData"},
           Exchange{R"({"name":"Blob","direction":"send","values":[["Kind","INT8",0]]})", "kTPPacketSizeError"},
           Exchange{blob(longest + "00"), "kTPPacketSizeError"},
           Exchange{blob(""), "kTPCompileMissingParameterData"},
       })
    EXPECT_EQ(Compiled(exchange.question), R"({"ok":false,"status":")" + exchange.answer + "\"}\n");
}

TEST_F(TalctoolPackets, HasNoStatusWhereMetaCommandsAreRefused) {
  const auto compiled =
      Run({"compile", "--tcd", "small.tcd"}, R"({"name":"Load","direction":"send","values":[["Target","UINT8",1]]})");
  EXPECT_EQ(compiled.exitCode, 0);
  EXPECT_EQ(compiled.standardOutput, "{\"ok\":false,\"status\":null}\n");
  EXPECT_THAT(compiled.standardError, HasSubstr("Attempted to Compile a MetaCommand"));

  const auto decompiled =
      Run({"decompile", "--tcd", "small.tcd"}, R"({"name":"Load","direction":"send","reply":"0b0b000400000000"})");
  EXPECT_EQ(decompiled.exitCode, 0);
  EXPECT_EQ(decompiled.standardOutput, R"({"error":"kTPSuccess","ok":false,"status":"kTPFail","values":[]})"
                                       "\n");
  EXPECT_THAT(decompiled.standardError, HasSubstr("Attempted to Decompile a MetaCommand"));
}

TEST_F(TalctoolPackets, AnswersWithTheExceptionOfAValueOfAnotherKind) {
  EXPECT_EQ(Compiled(R"({"name":"Gain","direction":"send","values":[["Channel","UINT8",1],["Level","UINT16",2]]})"
                     "\n"
                     R"({"name":"Ping","direction":"send","values":[["Level","UINT16",2]]})"),
            R"({"exception":"bad_variant_cast: failed conversion using variant_cast","ok":false})"
            "\n"
            R"({"ok":true,"packet":"0b0b000400000000"})"
            "\n");
}

TEST_F(TalctoolPackets, DecompilesTheReplyOfARequestInPlaceOfTheFirstValues) {
  EXPECT_EQ(Decompiled(R"({"name":"Gain","direction":"request","reply":"0B0b0007430b000002Fffe",)"
                       R"("values":[["Level","INT16",7],["Other","UINT8",1]]})"),
            R"({"error":"kTPSuccess","ok":true,"status":"kTPSuccess",)"
            R"("values":[["Channel","UINT8",2],["Level","INT16",-2]]})"
            "\n");
  EXPECT_EQ(Decompiled(R"({"name":"Blob","direction":"request","reply":"0b0b0007ffff0000800aff"})"),
            R"({"error":"kTPSuccess","ok":true,"status":"kTPSuccess",)"
            R"("values":[["Kind","INT8",-128],["Data","BYTES","0aff"]]})"
            "\n");
  EXPECT_EQ(
      Decompiled(R"({"name":"Blob","direction":"request","reply":"0b0b0005ffff000080"})"),
      R"({"error":"kTPSuccess","ok":true,"status":"kTPSuccess","values":[["Kind","INT8",-128],["Data","BYTES",""]]})"
      "\n");
  EXPECT_EQ(
      Decompiled(R"({"name":"Probe","direction":"request","reply":")" + std::string(kProbeHeader) +
                 "00080000ffffffffffffffff\"}"),
      R"({"error":"kTPSuccess","ok":true,"status":"kTPSuccess","values":[["Wide","UINT64",18446744073709551615]]})"
      "\n");
}

TEST_F(TalctoolPackets, KeepsTheFirstValuesWhereTheReplyBringsNone) {
  const auto answer = [this](const std::string& direction, const std::string& reply) {
    return Decompiled(R"({"name":"Gain","direction":")" + direction + R"(","reply":")" + reply +
                      R"(","values":[["Level","SYMBOL","Loud"]]})");
  };
  const auto expected = [](const std::string& error, const std::string& isOk, const std::string& status) {
    return R"({"error":")" + error + R"(","ok":)" + isOk + R"(,"status":")" + status +
           R"(","values":[["Level","SYMBOL","Loud"]]})"
           "\n";
  };
  // The reply of a send has no values, whatever stands there; nor has one of another status.
  EXPECT_EQ(answer("send", "0b0b0007430a000002fffe"), expected("kTPSuccess", "true", "kTPSuccess"));
  EXPECT_EQ(answer("request", "0b0b0007430b000102fffe"), expected("kTPSuccess", "true", "kTPFail"));
  EXPECT_EQ(answer("request", "0b0b0007430b000202fffe"), expected("kTPSuccess", "true", "kTPNotSupported"));
  EXPECT_EQ(answer("request", "0b0b0004430b00f0"), expected("kTPSuccess", "true", "kTPTransmitFailure"));
  EXPECT_EQ(answer("send", "0b0b0004430a00ff"), expected("kTPSuccess", "true", "kTPTimeOut"));
  EXPECT_EQ(answer("request", ""), expected("kTPPacketSizeError", "false", "kTPFail"));
  EXPECT_EQ(answer("request", "0b0b0004430b00"), expected("kTPPacketSizeError", "false", "kTPFail"));
  EXPECT_EQ(answer("request", "0b0c0007430b000002fffe"), expected("kTPInvalidTransportHeader", "false", "kTPFail"));
}

TEST_F(TalctoolPackets, NamesTheReasonWhyAReplyCannotBeRead) {
  EXPECT_EQ(Decompiled(R"({"name":"Gain","direction":"request","reply":"0b0b0006430b000002ff"})"),
            R"({"error":"kTPDecompileMissingParameterData","ok":false,"status":"kTPFail",)"
            R"("values":[["Channel","UINT8",2]]})"
            "\n");
  EXPECT_EQ(Decompiled(R"({"name":"Pong","direction":"request","reply":"0b0b000400010000","values":[]})"),
            R"({"error":"kTPCommandFormatNotFound","ok":false,"status":"kTPFail","values":[]})"
            "\n");
  EXPECT_EQ(Decompiled(R"({"name":"Probe","direction":"request","reply":"0b0b000400010000"})"),
            R"({"error":"kTPInvalidOpcode","ok":false,"status":"kTPFail","values":[]})"
            "\n");
}

}  // namespace
