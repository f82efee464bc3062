#include "simulator/Faults.h"

#include <charconv>
#include <stdexcept>

namespace simulator {
namespace {

constexpr FaultEntry kFaults[] = {
    {Fault::kDeviceMissing, "device-missing", "enumerations of a device interface", "the device is not there", false},
    {Fault::kClassSetFails, "class-set-fails", "requests for a set of devices", "the set is invalid", false},
    {Fault::kInterfaceDetailFails, "interface-detail-fails", "requests for a device's path", "the request fails",
     false},
    {Fault::kOpenFails, "open-fails", "openings of a device", "the opening fails", false},
    {Fault::kControlFails, "control-fails", "control calls", "the call fails", false},
    {Fault::kMemoryMapFails, "memory-map-fails", "memory map calls", "the call fails", false},
    {Fault::kMemoryMapShort, "memory-map-short", "memory map calls", "the call returns one byte less", false},
    {Fault::kMapRegistersFails, "map-registers-fails", "register mapping calls", "the call fails", false},
    {Fault::kMapRegistersShort, "map-registers-short", "register mapping calls", "the call returns one byte less",
     false},
    {Fault::kMapRefused, "map-refused", "register mapping calls", "the address comes back as zero", false},
    {Fault::kMapRefusedSecond, "map-refused-second", "register mapping calls", "the second value comes back as zero",
     false},
    {Fault::kReadLost, "read-lost", "register reads", "the read gives all ones, and the board does not see it", false},
    {Fault::kWriteLost, "write-lost", "register writes", "the write does not arrive", false},
    {Fault::kEraseFails, "erase-fails", "flash block erases", "the erase ends with its error bit, the block all zeros",
     false},
    {Fault::kEraseStuck, "erase-stuck", "flash block erases", "the chip never becomes ready again", false},
    {Fault::kBufferBusy, "buffer-busy", "requests for the flash's write buffer",
     "the buffer stays taken, however often the request is repeated", false},
    {Fault::kProgramFails, "program-fails", "flash programs",
     "the program ends with its error bit, half of its words done", false},
    {Fault::kProgramStuck, "program-stuck", "flash programs", "the chip never becomes ready again", false},
    {Fault::kKarvelUnplugged, "karvel-unplugged", "accesses of a JTAG port",
     "the Karvel is not there for the rest of the run, and TDO reads 1", false},
    {Fault::kKarvelTdoLow, "karvel-tdo-low", "reads of a JTAG port", "TDO reads 0 for the rest of the run", false},
    {Fault::kKarvelEraseFails, "karvel-erase-fails", "Karvel erases", "nothing is erased", false},
    {Fault::kKarvelRowFails, "karvel-row-fails", "Karvel row programs", "the row stays erased", false},
    {Fault::kBoxSilent, "box-silent", "commands that reach the box", "the command is lost and not answered", false},
    {Fault::kBoxOff, "box-off", "commands that reach the box",
     "the box is switched off, and stays off for the rest of the run", false},
    {Fault::kBoxLate, "box-late", "answers of the box", "the answer comes 1.2 s later", false},
    {Fault::kBoxReplyCut, "box-reply-cut", "words of the box's answers behind the first",
     "the answer stops before the word", false},
    {Fault::kBoxNoHeader, "box-no-header", "answers of the box", "the first word lacks its mark", false},
    {Fault::kBoxLengthLow, "box-length-low", "answers of the box", "the header announces 3 bytes", false},
    {Fault::kBoxLengthHigh, "box-length-high", "answers of the box", "the header announces 2049 bytes", false},
    {Fault::kBoxValuesMissing, "box-values-missing", "answers of box and Orbo QX to requests",
     "the answer ends behind its status", false},
    {Fault::kBoxStatusFail, "box-status-fail", "commands that reach box or Orbo QX",
     "the command is refused with status 1", false},
    {Fault::kBoxStatusNotSupported, "box-status-not-supported", "commands that reach box or Orbo QX",
     "the command is refused with status 2", false},
    {Fault::kBoxStatusTransmit, "box-status-transmit", "commands that reach box or Orbo QX",
     "the command is refused with status 240", false},
    {Fault::kBoxStatusTimeOut, "box-status-time-out", "commands that reach box or Orbo QX",
     "the command is refused with status 255", false},
    {Fault::kBoxStatusUnknown, "box-status-unknown", "commands that reach box or Orbo QX",
     "the command is refused with status 7", false},
    {Fault::kTransferRefused, "transfer-refused", "data commands of box and Orbo QX",
     "the command is refused with status 1, and the transfer dropped", false},
    {Fault::kProgramAnswerWrong, "program-answer-wrong", "program commands of box and Orbo QX",
     "another command's answer comes at once, and nothing is programmed", false},
    {Fault::kCommandFifoFull, "command-fifo-full", "words put into the command FIFO",
     "from this word on the FIFO says that it is full, for the rest of the run", false},
    {Fault::kStaleReplies, "stale-replies", "mappings of the first card's registers",
     "the reply FIFO then holds an old answer of 20 words", false},
    {Fault::kTalcFails, "talc-fails", "Talc calls", "the call fails", false},
    {Fault::kTalcShort, "talc-short", "Talc calls", "the call returns one byte less", false},
    {Fault::kTalcTimeOut, "talc-time-out", "Talc calls", "the command is lost, and the wait runs out", false},
    {Fault::kTalcUnwritten, "talc-unwritten", "Talc calls", "the answer is lost, and nothing is written", false},
    {Fault::kTalcBadHeader, "talc-bad-header", "Talc calls", "the answer lacks its mark", false},
    {Fault::kModelFails, "model-fails", "model calls", "the call fails", false},
    {Fault::kSlotsInvalid, "slots-invalid", "model calls", "the answer says three codec slots", false},
    {Fault::kSlotFails, "slot-fails", "codec slot calls", "the call fails", false},
    {Fault::kVpdFails, "vpd-fails", "VPD calls", "the call fails", false},
    {Fault::kBoardVpdDamaged, "board-vpd-damaged", "VPD calls", "the first resource runs past the end", false},
    {Fault::kPartUnknown, "part-unknown", "version texts that the Orbo QX tells", "the text is UNKNOWN", false},
    {Fault::kPowerCut, "power-cut", "register writes and Talc calls",
     "the run ends before it, as by a pulled plug; needs its @N", true},
};

static_assert(std::size(kFaults) == static_cast<std::size_t>(Fault::kPowerCut) + 1, "one row for each fault");

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

const FaultEntry& FindFault(std::string_view name) {
  for (const FaultEntry& entry : kFaults)
    if (entry.name == name) return entry;
  throw std::invalid_argument("there is no fault " + Quoted(name) + "; \"fwbench faults\" lists them");
}

}  // namespace

std::span<const FaultEntry> FaultTable() {
  return kFaults;
}

FaultRequest ParseFault(std::string_view text) {
  const std::size_t at = text.find('@');
  const FaultEntry& entry = FindFault(text.substr(0, at));
  if (at == std::string_view::npos) {
    if (entry.needsNumber)
      throw std::invalid_argument("the fault " + std::string(entry.name) +
                                  " needs a number: " + std::string(entry.name) + "@N");
    return {entry.fault, std::nullopt};
  }
  const std::string_view digits = text.substr(at + 1);
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || number == 0)
    throw std::invalid_argument("the fault " + Quoted(text) + " needs a decimal number from 1 on behind its @");
  return {entry.fault, number};
}

bool FaultPlan::Strikes(Fault fault) {
  const std::uint64_t event = ++counts_[static_cast<std::size_t>(fault)];
  bool struck = false;
  for (const FaultRequest& request : requests_)
    if (request.fault == fault && (!request.number || *request.number == event)) struck = true;
  return struck;
}

}  // namespace simulator
