#include "engine/MetaCommandByteCodeProcessor.h"

#include <algorithm>
#include <utility>

#include "dictionary/CommandContents.h"
#include "dictionary/DefinedCommands.h"
#include "dictionary/Log.h"
#include "dictionary/PacketLayout.h"
#include "engine/ByteCodeCompiler.h"

using TalcPath::TalcByteCode;
using TalcPath::TalcCommand;

namespace TalcPathPrivate {
namespace {

constexpr const char* kTotalSize = "TotalSize";
constexpr const char* kData = "Data";

constexpr const char* kStartCompilation = "StartCommand packet compilation failed";
constexpr const char* kRepeatCompilation = "RepeatCommand packet compilation failed";
constexpr const char* kStopCompilation = "StopCommand packet compilation failed";

bool Fail(const char* reason) {
  LogTrace("\nMetaCommand ERROR - ", reason);
  return false;
}

bool SendWithoutName(const TalcByteCode& packet, TalcByteCode& reply) {
  return TalcPath::TalcPathSendPacket(nullptr, packet, &reply, 0);
}

}  // namespace

MetaCommandByteCodeProcessor::MetaCommandByteCodeProcessor(TalcCommand& command)
    : MetaCommandByteCodeProcessor(command, SendWithoutName) {}

MetaCommandByteCodeProcessor::MetaCommandByteCodeProcessor(TalcCommand& command, Exchange exchange)
    : command_(command), isRequest_(IsRequest(command)), exchange_(std::move(exchange)) {
  CommandFormat* const format = FindDefinedCommand(command.GetName());
  if (format == nullptr) {
    LogVerbose("\nConstructing ByteCode Compiler - Command format not found - Command : ", command.GetName());
    return;
  }
  if (!format->IsMetaCommandFormat()) return;
  format_ = static_cast<MetaCommandFormat*>(format);
  LogTrace("\n\nConstructing MetaCommandByteCodeProcessor Compiler - Command : ", command.GetName(), "\n");
}

bool MetaCommandByteCodeProcessor::Compile() {
  if (format_ == nullptr) return false;
  start_.SetName(format_->GetStartCommand());
  repeat_.SetName(format_->GetRepeatCommand());
  stop_.SetName(format_->GetStopCommand());
  if (!isRequest_) return CompileSend();
  for (TalcCommand* const each : {&start_, &repeat_, &stop_})
    each->SetRequestCommand();
  start_.ClearParameters();
  // The word is that of the Repeat, for the Start of a request. It is meant.
  return CompilePacket(start_, kRepeatCompilation);
}

/// Behind the packets that there are.
bool MetaCommandByteCodeProcessor::CompilePacket(TalcCommand& command, const char* failure) {
  pairs_.push_back(std::make_unique<Pair>());
  return ByteCodeCompiler(command, pairs_.back()->packet, nullptr, nullptr).Compile() || Fail(failure);
}

bool MetaCommandByteCodeProcessor::CompileSend() {
  start_.ClearParameters();
  // The total is 0 when a value is missing, which the Repeat packets find out.
  start_.SetUInt32(kTotalSize, ComputePayloadSize(command_, format_));
  if (!CompilePacket(start_, kStartCompilation)) return false;
  if (!CompileRepeats()) return Fail("Repeat packet compilation failed");
  stop_.ClearParameters();
  return CompilePacket(stop_, kStopCompilation);
}

bool MetaCommandByteCodeProcessor::CompileRepeats() {
  if (format_->Parameters().empty()) return true;
  used_ = 0;
  for (const ParameterFormat& parameter : format_->Parameters()) {
    if (parameter.size < 1) return Fail("RepeatCommand data param size error");
    const auto size = static_cast<std::size_t>(parameter.size);
    if (size > Space().size()) {
      if (!CompileCut(parameter, size)) return Fail(kRepeatCompilation);
      continue;
    }
    if (!parameter.WriteData(Space(), command_)) return Fail(kRepeatCompilation);
    used_ += size;
  }
  // Also an empty block, behind a value whose cut has just ended with a full one; and a packet without data cannot be
  // made, so that such a transfer fails. The word is that of the Stop. Both are meant.
  return Flush() || Fail(kStopCompilation);
}

/// A value that is longer than the space that is left.
bool MetaCommandByteCodeProcessor::CompileCut(const ParameterFormat& parameter, std::size_t size) {
  std::vector<std::uint8_t> value(size);
  if (!parameter.WriteData(value, command_)) return false;
  for (std::span<const std::uint8_t> rest = value; !rest.empty();) {
    const std::size_t count = std::min(rest.size(), Space().size());
    std::ranges::copy(rest.first(count), Space().begin());
    used_ += count;
    rest = rest.subspan(count);
    if (Space().empty() && !Flush()) return false;
  }
  return true;
}

bool MetaCommandByteCodeProcessor::Flush() {
  repeat_.ClearParameters();
  repeat_.SetBytes(kData, block_.data(), static_cast<std::uint32_t>(used_));
  used_ = 0;
  pairs_.push_back(std::make_unique<Pair>());
  return ByteCodeCompiler(repeat_, pairs_.back()->packet, nullptr, nullptr).Compile();
}

bool MetaCommandByteCodeProcessor::Execute() {
  if (pairs_.empty()) return false;
  return isRequest_ ? ExecuteRequest() : ExecuteSend();
}

bool MetaCommandByteCodeProcessor::ReadReply(TalcCommand& command, const Pair& pair) {
  return TalcPath::TalcPathDecompile(command, pair.reply, nullptr, false) && command.IsSuccess();
}

bool MetaCommandByteCodeProcessor::ExecuteSend() {
  for (const auto& pair : pairs_) {
    if (!exchange_(pair->packet, pair->reply)) return false;
    TalcCommand& command = pair == pairs_.front() ? start_ : pair == pairs_.back() ? stop_ : repeat_;
    if (!ReadReply(command, *pair)) return false;
  }
  return true;
}

bool MetaCommandByteCodeProcessor::ExecuteRequest() {
  result_.ClearParameters();
  result_.SetStatus(TalcPath::kTPFail);
  Pair& start = *pairs_.front();
  if (!exchange_(start.packet, start.reply)) return Fail("StartCommand packet execution failed");
  if (!ReadReply(start_, start)) return false;
  const auto* const total = variant_cast<std::uint32_t>(FindValue(start_, kTotalSize));
  if (total == nullptr) return Fail("StartCommand packet could not get total data size");
  if (!PullData(*total)) return false;
  stop_.ClearParameters();
  if (!CompilePacket(stop_, kStopCompilation)) return false;
  Pair& stop = *pairs_.back();
  if (!exchange_(stop.packet, stop.reply)) return Fail("StopCommand packet execution failed");
  return ReadReply(stop_, stop) && ExtractData(*total);
}

/// Takes Repeat replies until the total is there, or the hardware has no more.
bool MetaCommandByteCodeProcessor::PullData(std::uint32_t total) {
  constexpr const char* kFailed = "RepeatCommand packet execution failed";
  std::int64_t received = 0;
  while (true) {
    repeat_.ClearParameters();
    pairs_.push_back(std::make_unique<Pair>());
    Pair& pair = *pairs_.back();
    if (!ByteCodeCompiler(repeat_, pair.packet, nullptr, nullptr).Compile()) return false;
    if (!exchange_(pair.packet, pair.reply)) return Fail(kFailed);
    const std::int32_t payload = pair.reply.GetPayloadSize();
    received += payload;
    if (received >= total || pair.reply.GetSize() <= kTalcHeaderBytes) return true;
    // A reply that brings nothing on would be asked for without end.
    if (payload < 1) return Fail(kFailed);
  }
}

bool MetaCommandByteCodeProcessor::ExtractData(std::uint32_t total) {
  std::vector<std::uint8_t> data;
  if (total == 0 || !GatherData(total, data)) return false;
  if (format_->Parameters().empty()) return true;
  result_ = command_;
  std::span<const std::uint8_t> rest = data;
  for (const ParameterFormat& parameter : format_->Parameters()) {
    if (rest.empty()) break;
    if (!parameter.IsValidDataType()) return Fail("DataRequest parameter extraction - param size error");
    const std::uint32_t taken = parameter.ReadParameterData(rest, result_);
    if (taken == 0) return false;
    rest = rest.subspan(taken);
  }
  result_.SetStatus(TalcPath::kTPSuccess);
  return true;
}

/// Lays the data of the Repeat replies, which stand between those of Start and Stop, end to end.
bool MetaCommandByteCodeProcessor::GatherData(std::uint32_t total, std::vector<std::uint8_t>& data) {
  for (std::size_t n = 1; n + 1 < pairs_.size() && data.size() < total; ++n) {
    const TalcByteCode& reply = pairs_[n]->reply;
    if (!ReadReply(repeat_, *pairs_[n])) return false;
    const std::uint8_t* payload = nullptr;
    const std::int32_t size = reply.GetPayloadSize();
    if (size < 1 || !reply.GetPayloadPointer(&payload)) return false;
    // More than what is left of the total, or more than there is.
    const auto count = static_cast<std::uint32_t>(size);
    if (count > total - data.size() || count > reply.GetSize() - kTalcHeaderBytes) return false;
    data.insert(data.end(), payload, payload + count);
  }
  return true;
}

void MetaCommandByteCodeProcessor::MergeStatuses(TalcCommand& command) const {
  const auto isAny = [this](TalcPath::TalcPathStatus status) {
    return start_.GetStatus() == status || repeat_.GetStatus() == status || stop_.GetStatus() == status;
  };
  if (start_.IsSuccess() && repeat_.IsSuccess() && stop_.IsSuccess()) {
    if (isRequest_)
      command = result_;
    else
      command.SetStatus(TalcPath::kTPSuccess);
    return;
  }
  for (const TalcPath::TalcPathStatus status :
       {TalcPath::kTPNotSupported, TalcPath::kTPTransmitFailure, TalcPath::kTPTimeOut}) {
    if (isAny(status)) return command.SetStatus(status);
  }
  command.SetStatus(TalcPath::kTPFail);
}

}  // namespace TalcPathPrivate
