#include "simulator/BoxFifo.h"

#include <algorithm>

#include "simulator/HexText.h"

namespace simulator {
namespace {

/// An answer with the VPD of a board, to a request that nobody remembers.
constexpr std::uint32_t kStaleReplies[] = {
    0x0B0B0049, 0x80350000, 0x00000041, 0x903D0050, 0x4E083130, 0x30313733, 0x31325A42,
    0x01325A43, 0x0131534E, 0x08424230, 0x30303431, 0x37454303, 0x4330344D, 0x4E054245,
    0x4E43485A, 0x41013546, 0x4E035245, 0x56525604, 0x00000000, 0x78000000,
};

}  // namespace

std::uint32_t BoxFifo::Read(std::uint32_t offset, std::int64_t nowNanoseconds, VeltraBox* box, FaultPlan* faults) {
  CatchUp(nowNanoseconds, box, faults);
  MissWriteBack();
  switch (offset) {
    case kStatus:
      statusRead_ = Status();
      return *statusRead_;
    case kReply:
      if (readyReplies_ != 0) return replies_.front().word;
      Refuse("read of an empty reply FIFO");
      break;
    default:
      Refuse("read of register " + Hex(offset, 5));
      break;
  }
  return 0xFFFFFFFF;
}

void BoxFifo::Write(std::uint32_t offset, std::uint32_t value, std::int64_t nowNanoseconds, VeltraBox* box,
                    FaultPlan* faults) {
  CatchUp(nowNanoseconds, box, faults);
  if (offset == kStatus) return WriteStatus(value);
  MissWriteBack();
  switch (offset) {
    case kReply:
      return Pop(value);
    case kCommandData:
      return Latch(value);
    case kCommandControl:
      return Put(value, nowNanoseconds, faults);
    default:
      return Refuse("write of " + Hex(value, 8) + " to register " + Hex(offset, 5));
  }
}

std::uint32_t BoxFifo::Status() const {
  std::uint32_t status = 0;
  if (saysFull_ || commands_.size() == kCommandWords)
    status |= kCommandFull;
  else if (commands_.size() + kRunWords <= kCommandWords)
    status |= kCommandRoom;
  if (readyReplies_ == 0) status |= kReplyEmpty;
  if (readyReplies_ >= kRunWords) status |= kReplyRun;
  return status;
}

void BoxFifo::WriteStatus(std::uint32_t value) {
  if (!statusRead_)
    Refuse("write of " + Hex(value, 8) + " to the status without a read");
  else if (*statusRead_ != value)
    Refuse("status " + Hex(*statusRead_, 8) + " written back as " + Hex(value, 8));
  statusRead_.reset();
}

void BoxFifo::MissWriteBack() {
  if (!statusRead_) return;
  Refuse("status " + Hex(*statusRead_, 8) + " not written back");
  statusRead_.reset();
}

void BoxFifo::Pop(std::uint32_t value) {
  if (value != 0) return Refuse("write of " + Hex(value, 8) + " to the reply FIFO");
  if (readyReplies_ == 0) return Refuse("pop of an empty reply FIFO");
  replies_.pop_front();
  --readyReplies_;
}

void BoxFifo::Latch(std::uint32_t word) {
  if (latchedWord_) Refuse("command word " + Hex(*latchedWord_, 8) + " without its control word");
  latchedWord_ = word;
}

void BoxFifo::Put(std::uint32_t control, std::int64_t nowNanoseconds, FaultPlan* faults) {
  if (!latchedWord_) return Refuse("control word " + Hex(control, 8) + " without a command word");
  const std::uint32_t word = *latchedWord_;
  latchedWord_.reset();
  if (control != kFirstWord && control != kLaterWord) return Refuse("unknown control word " + Hex(control, 8));
  if (commands_.size() == kCommandWords) return Refuse("command word " + Hex(word, 8) + " into a full FIFO");
  const std::int64_t takenBefore = commands_.empty() ? nowNanoseconds : commands_.back().takenNanoseconds;
  commands_.push_back({takenBefore + kWordNanoseconds, word, control == kFirstWord});
  dueNanoseconds_ = std::min(dueNanoseconds_, commands_.front().takenNanoseconds);
  if (Strikes(faults, Fault::kCommandFifoFull)) saysFull_ = true;
}

void BoxFifo::MoveWords(std::int64_t nowNanoseconds, VeltraBox* box, FaultPlan* faults) {
  while (true) {
    const std::int64_t commandAt = commands_.empty() ? VeltraBox::kNever : commands_.front().takenNanoseconds;
    const std::int64_t answerAt = box == nullptr ? VeltraBox::kNever : box->NextAnswerNanoseconds();
    dueNanoseconds_ = std::min(commandAt, answerAt);
    if (dueNanoseconds_ > nowNanoseconds || dueNanoseconds_ == VeltraBox::kNever) break;
    if (answerAt <= commandAt) {
      Receive(answerAt, box->TakeAnswer());
      continue;
    }
    const CommandWord command = commands_.front();
    commands_.pop_front();
    if (box != nullptr) box->Take(command.word, command.isFirst, command.takenNanoseconds, faults);
  }
  while (readyReplies_ < replies_.size() && replies_[readyReplies_].thereNanoseconds <= nowNanoseconds)
    ++readyReplies_;
  if (readyReplies_ < replies_.size())
    dueNanoseconds_ = std::min(dueNanoseconds_, replies_[readyReplies_].thereNanoseconds);
}

void BoxFifo::Receive(std::int64_t startNanoseconds, std::span<const std::uint32_t> words) {
  nextReplyNanoseconds_ = std::max(nextReplyNanoseconds_, startNanoseconds);
  for (const std::uint32_t word : words) {
    if (replies_.size() == kReplyWords) return Refuse("an answer into a full reply FIFO");
    replies_.push_back({nextReplyNanoseconds_, word});
    nextReplyNanoseconds_ += kWordNanoseconds;
  }
}

void BoxFifo::PowerLoss() {
  ProtocolErrors kept = std::move(errors_);
  *this = BoxFifo();
  errors_ = std::move(kept);
}

void BoxFifo::Settle(VeltraBox* box) {
  MoveWords(VeltraBox::kNever, box, nullptr);
  MissWriteBack();
  if (latchedWord_) Refuse("command word " + Hex(*latchedWord_, 8) + " without its control word");
  const std::vector<std::uint32_t> replies = Replies();
  PowerLoss();
  SetReplies(replies);
}

void BoxFifo::AddStaleReplies() {
  for (const std::uint32_t word : kStaleReplies)
    if (replies_.size() < kReplyWords) replies_.push_back({0, word});
  dueNanoseconds_ = 0;
}

std::vector<std::uint32_t> BoxFifo::Replies() const {
  std::vector<std::uint32_t> words;
  for (const ReplyWord& reply : replies_)
    words.push_back(reply.word);
  return words;
}

void BoxFifo::SetReplies(std::span<const std::uint32_t> words) {
  replies_.clear();
  for (const std::uint32_t word : words)
    replies_.push_back({0, word});
  readyReplies_ = replies_.size();
}

void BoxFifo::Refuse(std::string text) {
  errors_.Add("fifo: " + std::move(text));
}

}  // namespace simulator
