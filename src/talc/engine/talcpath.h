#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

#include "talccapsmanager.h"

// Behind the handles; of no concern to users.
namespace TalcPathPrivate {
class ByteCodeCompiler;
struct CommandContents;
}  // namespace TalcPathPrivate

/// TalcPath: Talc commands by name, as packets.
///
/// Talc is the packet protocol of a family of video and audio I/O hardware. Which commands there are, what data they
/// carry and how they are coded on the wire is defined in text dictionaries, which the library reads at every start.
/// A program names a command and its values; the library makes the packet, and reads the reply.
///
///     TalcPath::TalcPathInit();
///     TalcPath::TalcCommand command("VPDInfo");
///     command.SetRequestCommand();
///     command.SetSymbol("Board", "VPD_Hollen");
///     TalcPath::TalcByteCode packet;
///     TalcPath::TalcPathCompile(command, packet, nullptr, nullptr);   // 0B 0B 00 06 80 35 00 00 00 C8
///     ...                                                             // carry it to the hardware, take the reply
///     packet.Set(reply, replyLength);
///     if (TalcPath::TalcPathDecompile(command, packet, nullptr, false) && command.IsSuccess())
///       command.GetBytes("VPDInfo", text, sizeof text, &length);
///     TalcPath::TalcPathTerminate();
///
/// The library throws nothing of its own: calls answer with a bool, and where there is more to tell, with a status.
/// The exceptions that can pass through it are `bad_variant_cast`, where a value is of another kind than the one asked
/// for, and `std::bad_alloc`.
///
/// The library is for one thread at a time. Start and stop change what all commands are compiled with.
namespace TalcPath {

/// What became of a command. The numbers are fixed. The first five can also be the answer of the hardware; in a reply
/// packet they are the bytes 0, 1, 2, 240 and 255.
enum TalcPathStatus : std::int32_t {
  kTPSuccess = 0,
  kTPFail = 1,
  kTPNotSupported = 2,
  kTPTransmitFailure = 3,
  kTPTimeOut = 4,
  /// The dictionary has no command of that name.
  kTPCommandFormatNotFound = 5,
  /// Too much data for a packet, a `BYTES` value is missing, or a reply is too short to be one.
  kTPPacketSizeError = 6,
  /// The command's definition has no symbol of that name, or the parameter takes no symbols.
  kTPInvalidSymbolicConstant = 7,
  /// The definition's codes do not fit a packet header.
  kTPInvalidCommandHeader = 8,
  /// A reply that does not begin with the packet mark, or whose length cannot be.
  kTPInvalidTransportHeader = 9,
  /// A diagnostic reply that is too short to hold an opcode.
  kTPInvalidOpcode = 10,
  /// A value that the definition needs was not set.
  kTPCompileMissingParameterData = 11,
  /// A reply that ends before the definition's parameters do.
  kTPDecompileMissingParameterData = 12,
  kTPAttemptedToExecuteDiagCommand = 13,
};

/// The status' own name, such as "kTPTimeOut", or "BOGUS_TP_STATUS" for any other number. The text is constant.
const char* GetStatusName(TalcPathStatus status);

/// Thrown by a typed getter, or out of a compile, when a value is held as another kind than the one asked for.
class bad_variant_cast : public std::bad_cast {
 public:
  const char* what() const noexcept override { return "bad_variant_cast: failed conversion using variant_cast"; }
};

/// One command: the name of a definition, a direction, named values, and after a decompile or an execution a status.
///
/// A send carries values to the hardware. A request asks for values: it carries those that its definition marks as
/// required for a request, and the reply brings all the others, in place of what was set.
///
/// Any name and any kind of value can be set; whether they fit the definition is found out by the compile. Values keep
/// the order in which their names were first set. Kinds are exact: what was set as UINT8 is got as UINT8, or the
/// getter throws. Copies are deep. Out pointers that are null make a getter answer false.
///
/// Memory that runs out while a command is constructed leaves a command that holds nothing: its name is empty, setters
/// do nothing and getters find nothing.
class TalcCommand {
 public:
  /// A send without values, whose status is `kTPFail`: a command that never ran has not succeeded.
  TalcCommand();
  explicit TalcCommand(std::string_view name);
  TalcCommand(std::string_view name, std::uint32_t transportId);
  TalcCommand(const TalcCommand& other);
  TalcCommand(const TalcCommand& other, std::uint32_t transportId);
  TalcCommand& operator=(const TalcCommand& other);
  ~TalcCommand();

  void SetName(std::string_view name);
  const std::string& GetName() const;
  void SetSendCommand();
  void SetRequestCommand();
  bool IsSendCommand() const;
  bool IsRequestCommand() const;
  /// The transport that shall carry the command; 0, as at first, is the current one.
  void SetTransportId(std::uint32_t transportId);
  std::uint32_t GetTransportId() const;

  void SetStatus(TalcPathStatus status);
  TalcPathStatus GetStatus() const;
  const char* GetStatusName() const;
  bool IsSuccess() const;
  bool IsNotSuccess() const;
  bool IsFail() const;
  bool IsNotSupported() const;
  bool IsTransmitFailure() const;
  bool IsTimeOut() const;

  void SetInt8(std::string_view name, std::int8_t value);
  void SetUInt8(std::string_view name, std::uint8_t value);
  void SetInt16(std::string_view name, std::int16_t value);
  void SetUInt16(std::string_view name, std::uint16_t value);
  void SetInt32(std::string_view name, std::int32_t value);
  void SetUInt32(std::string_view name, std::uint32_t value);
  void SetInt64(std::string_view name, std::int64_t value);
  void SetUInt64(std::string_view name, std::uint64_t value);
  /// Stores a copy of `length` bytes; an empty value for a length of 0 or null `bytes`. An empty value counts as
  /// missing when a packet is written.
  void SetBytes(std::string_view name, const std::uint8_t* bytes, std::uint32_t length);
  /// Stores the name of one of the definition's symbols, which the compile turns into its number. Does nothing for an
  /// empty symbol and for one of 255 characters or more: a value that was there stays.
  void SetSymbol(std::string_view name, std::string_view symbol);

  /// Each answers false when there is no value of that name, and throws `bad_variant_cast` when it is of another kind.
  bool GetInt8(std::string_view name, std::int8_t* value) const;
  bool GetUInt8(std::string_view name, std::uint8_t* value) const;
  bool GetInt16(std::string_view name, std::int16_t* value) const;
  bool GetUInt16(std::string_view name, std::uint16_t* value) const;
  bool GetInt32(std::string_view name, std::int32_t* value) const;
  bool GetUInt32(std::string_view name, std::uint32_t* value) const;
  bool GetInt64(std::string_view name, std::int64_t* value) const;
  bool GetUInt64(std::string_view name, std::uint64_t* value) const;
  bool GetBytesLength(std::string_view name, std::uint32_t* length) const;
  /// Copies the value. `length`, which may be null, gets the value's length also when that exceeds `capacity`, which
  /// answers false and copies nothing.
  bool GetBytes(std::string_view name, std::uint8_t* destination, std::uint32_t capacity, std::uint32_t* length) const;
  /// Gives the value in place; it is good until the value changes. Answers false, and never throws, when there is no
  /// such value, when it is of another kind, and when it is empty.
  bool GetBytesPointer(std::string_view name, const std::uint8_t** bytes, std::uint32_t* length) const;

  /// True if a value of that name is held as a symbol. Nothing here turns a symbol into its number.
  bool IsSymbol(std::string_view name) const;
  bool IsParameterEqualToSymbolName(std::string_view name, std::string_view symbol) const;
  /// Fills `buffer` with zeros, then copies the symbol's name. Answers false when there is no symbol of that name or
  /// its text is longer than `capacity`. A text of exactly `capacity` characters has no terminator behind it.
  bool GetSymbol(std::string_view name, char* buffer, std::uint32_t capacity) const;

  bool HasParameter(std::string_view name) const;
  void ClearParameters();

  /// Writes the command for people, several lines, each behind its line feed. Afterwards the stream writes booleans as
  /// numbers. 64-bit values show as the addresses of their halves, symbols as "Unknown stored variant type - error.".
  std::ostream& Dump(std::ostream& stream) const;

 private:
  friend TalcPathPrivate::CommandContents* ContentsOf(const TalcCommand& command);

  std::unique_ptr<TalcPathPrivate::CommandContents> contents_;
};

/// Writes the command as one statement of the command log: a line feed, then "talc send Name A UINT8 1 B SYMBOL On .
/// ;", or "talc request Name . ;" without values. 64-bit values show as addresses and cannot be read back.
std::ostream& operator<<(std::ostream& stream, const TalcCommand& command);
/// Reads what follows the word "send" or "request" of a statement, up to and with the "."; the direction stays as it
/// is, and so does the " ;" behind. A 64-bit value is read as two numbers, its high and its low half. Nothing tells of
/// a number that could not be read but the stream's state.
std::istream& operator>>(std::istream& stream, TalcCommand& command);

/// The bytes of one packet, owned. A packet is at most 2048 bytes long when the library made it.
///
///     0   2  packet mark, 0B 0B
///     2   2  number of bytes behind this field, most significant byte first
///     4   2  command code; bit 0 of the second byte is 1 in a request
///     6   1  0
///     7   1  0 in a command, the status in a reply
///     8   n  values, most significant byte first, in the order of the definition, without gaps
class TalcByteCode {
 public:
  TalcByteCode() = default;
  TalcByteCode(const TalcByteCode&) = delete;
  TalcByteCode& operator=(const TalcByteCode&) = delete;

  void Clear();
  /// Takes a copy of `count` bytes. Answers false for no bytes, which changes nothing, and without memory, which
  /// leaves the packet empty.
  bool Set(const std::uint8_t* bytes, std::uint32_t count);

  /// Both answer false for a null out pointer and an empty packet. The buffer is good until the packet changes.
  bool GetPacketByteCodeBuffer(const std::uint8_t** buffer) const;
  bool GetPacketByteCodeBufferSize(std::uint32_t* size) const;
  /// In bytes; 0 when empty.
  std::uint32_t GetSize() const { return size_; }

  /// The status in a reply's header; `kTPFail` for what is no packet.
  TalcPathStatus GetStatus() const;
  /// The number of bytes behind the header as the packet's length field tells it, whatever is really there; -1 for
  /// fewer than 8 bytes or a length that cannot be, -2 without the packet mark.
  std::int32_t GetPayloadSize() const;
  /// Answers false when nothing is behind the header.
  bool GetPayloadPointer(const std::uint8_t** payload) const;
  bool HasPayload() const;

  /// Make this a reply without values, of that status.
  void SetResponseTimeOut();
  void SetResponseFail();
  void SetResponseSuccess();

 private:
  friend class TalcPathPrivate::ByteCodeCompiler;

  /// Makes room for `count` bytes, whose content is whatever it is, and empties the packet. Null without memory.
  std::uint8_t* Reserve(std::uint32_t count);
  void SetResponse(std::uint8_t status);

  std::unique_ptr<std::uint8_t[]> block_;
  std::uint32_t capacity_ = 0;
  std::uint32_t size_ = 0;
};

// ---- Transports ----

/// The road to hardware, which a program supplies. The operations stand in the order of their slots.
class TalcTransport {
 public:
  /// For the transport's own program; the library calls neither.
  virtual void Attached() {}
  virtual void Detached() {}
  /// Sends the packet, waits for the reply and stores it. `timeoutMillisec` 0 is the transport's own time-out. False
  /// when it did not work; a reply that says why may be left all the same, and is looked at. What is thrown here passes
  /// through the library, which holds no lock then.
  virtual bool Exchange(const char* commandName, const TalcByteCode& packet, TalcByteCode& reply,
                        std::uint32_t timeoutMillisec) = 0;
  /// Is called behind each command that succeeded.
  virtual void CommandCompleted(const TalcCommand& command) = 0;
  /// The library holds the lock of the current transport while it executes a command, also one for another transport.
  /// A meta command's packets are sent under the lock of the command, so that the same thread may take it twice.
  virtual void Lock() = 0;
  virtual void Unlock() = 0;
  /// The library destroys no transport.
  virtual ~TalcTransport() = default;
};

/// Holds a transport's lock while it lives; does nothing for null.
class StackBasedMutexCaller {
 public:
  explicit StackBasedMutexCaller(TalcTransport* transport);
  StackBasedMutexCaller(const StackBasedMutexCaller&) = delete;
  StackBasedMutexCaller& operator=(const StackBasedMutexCaller&) = delete;
  virtual ~StackBasedMutexCaller();

 private:
  TalcTransport* transport_;
};

/// Keeps the transport under the number that commands name it by, until it is unregistered or the library stops: so
/// long it must live. It becomes the current one in any case, also when the answer is false: for null, and for a number
/// that is taken.
bool TalcPathRegisterTransport(TalcTransport* transport, std::uint32_t id);
/// Forgets the transport of that number, and if `transport` is the current one, leaves none. False for null and before
/// the first registration; true for a number that nobody has.
bool TalcPathUnregisterTransport(TalcTransport* transport, std::uint32_t id);
/// Makes a transport the current one; null is none. Then asks the hardware behind it what it is, and puts the time-outs
/// of its capabilities in force, in place of all that were set. False, and nothing done, for a transport that is not
/// registered, unless none ever was.
bool TalcPathSelectTransport(TalcTransport* transport);
/// Null when there is none.
TalcTransport* TalcPathGetTransport();
/// Null for 0 and for a number that nobody has.
TalcTransport* TalcPathGetTransportById(std::uint32_t id);
std::uint32_t TalcPathGetTransportCount();
/// Counts from 1, in the order of the numbers. Null beyond the last; else `id`, which may be null, gets the number.
TalcTransport* TalcPathGetNthTransport(std::uint32_t n, std::uint32_t* id);

// ---- Execution ----

/// Takes a command to the hardware and back: compiles it, hands the packet to the command's transport, reads the reply.
/// True when that worked and the command succeeded; its status tells the rest. False, with the status as it was, when
/// there is no current transport or none of the command's number. A diagnostic command is refused with
/// `kTPAttemptedToExecuteDiagCommand`. A meta command's answer is true once its packets went through, whatever its
/// status is; as long as exchanges carry no name (see below), none does.
bool TalcPathExecute(TalcCommand& command);
/// Hands a packet to the current transport. `reply` may be null. True when it was sent and the reply says success.
/// Refuses, without a word to the transport, a packet that has no name.
bool TalcPathSendPacket(const char* commandName, const TalcByteCode& packet, TalcByteCode* reply,
                        std::uint32_t timeoutMillisec);

// ---- Observers of the execution ----
// Lists of objects that the library calls while it executes commands, until they are removed. They outlast a stop of
// the library. Adding answers false for null and for an object that is in the list already; removing, for one that is
// not. An observer may remove any observer, itself too, while it is called. Their operations stand in the order of the
// slots.

/// Sees each command once its packet is made, before anything is sent.
class TalcPreCompileObserver {
 public:
  virtual ~TalcPreCompileObserver() = default;
  /// Clearing `proceed` stops the command; it counts as a success then when `result` stands, as it does at first.
  virtual void BeforeSending(TalcCommand& command, bool& proceed, bool& result) = 0;
};
bool TalcPathAddPreCompileObserver(TalcPreCompileObserver* observer);
bool TalcPathRemovePreCompileObserver(TalcPreCompileObserver* observer);

/// Sees each packet before the transport does, in ascending order of keys, those of one key in the order in which they
/// were added.
class TalcExchangeObserver {
 public:
  virtual ~TalcExchangeObserver() = default;
  /// Clearing `proceed` keeps the packet from the transport and from the observers behind. The reply is read then as if
  /// it had come from the hardware, unless `handled` is cleared, too: then the command succeeds as it is.
  virtual void BeforeExchange(TalcCommand& command, const TalcByteCode& packet, TalcByteCode& reply, bool& proceed,
                              bool& handled, TalcTransport& transport) = 0;
  /// For the observer's own program; the library does not call it.
  virtual void Detached() {}
  /// Is asked for when an observer is added.
  virtual int GetKey() const = 0;
};
bool TalcPathAddExchangeObserver(TalcExchangeObserver* observer);
bool TalcPathRemoveExchangeObserver(TalcExchangeObserver* observer);

/// Sees each command that succeeded.
class TalcCompletionObserver {
 public:
  virtual ~TalcCompletionObserver() = default;
  virtual void AfterCompletion(TalcCommand& command) = 0;
};
bool TalcPathAddCompletionObserver(TalcCompletionObserver* observer);
bool TalcPathRemoveCompletionObserver(TalcCompletionObserver* observer);

// ---- Start and stop ----

/// Reads the dictionaries: those embedded in the program or, when there are none, the files "*.tcd" of the working
/// directory and of the directory set below. Further calls only count. False when a dictionary is faulty, when there
/// is no command at all, or after a stop that failed; the log tells the reason. What was read before a failure stays,
/// so that another try meets it as duplicates: a program whose start failed should stop.
bool TalcPathInit();
/// Undoes one `TalcPathInit`; the last one forgets all dictionaries and closes the command log. True without a start.
bool TalcPathTerminate();
/// A further directory for dictionaries, to be set before the start. True unless the text is null or empty.
bool TalcPathSetDirectory(const char* directory);
/// Writes an integrity trailer, a checksum, behind each dictionary file "*.tcd" of the working directory and of a
/// further one, which may be null. A file that has a trailer gets another one behind it. Switches the verbose lines on,
/// for good. False when a file could not be opened or written, which ends its directory's turn; the log names the
/// directory.
bool TalcPathGenerateCRCs(const char* directory);

// ---- Log ----

/// Switches the verbose lines on, for good, and the trace lines, which tell of each step of each packet, as given. The
/// first argument has no meaning. Always true.
bool TalcPathSetLogFlags(std::uint8_t unused, bool trace);
/// Where the log goes: standard output unless told, and again with null. The stream must outlive its use here. Each
/// line begins with its line feed.
void TalcPathSetLogStream(std::ostream* stream);
/// Opens a file, in place of an open one, that takes each executed command behind a time stamp in milliseconds:
/// "@time 12345 ;" and the statement. False when the file cannot be written.
bool TalcPathOpenCommandLog(const char* path);
/// Always true.
bool TalcPathCloseCommandLog();

// ---- Packets ----

/// Makes the packet of a command. `overrideTimeoutMillisec` and `status` may be null; they are set to 0 first, then to
/// the definition's time-out (0: the transport's own) and to the reason of a failure. Symbols become numbers, also in
/// the command. On a failure the packet is empty. Throws `bad_variant_cast` when a value is of another kind than its
/// parameter. Refuses, with a log line, before the start and for meta commands.
bool TalcPathCompile(TalcCommand& command, TalcByteCode& byteCode, std::uint32_t* overrideTimeoutMillisec,
                     TalcPathStatus* status);
/// Reads a reply. True when it could be read: what became of the command is the command's own status, and only a
/// successful request gets values, which replace those that it had. False when the reply could not be read: the
/// command's status is `kTPFail`, and `status`, which may be null, tells why. With `tolerant` the reply of a send is
/// read like that of a request, and values that are missing are no failure. Refuses like the compile.
bool TalcPathDecompile(TalcCommand& command, const TalcByteCode& byteCode, TalcPathStatus* status, bool tolerant);

// ---- Questions about definitions ----
// Each looks the command's name up; one that is not defined answers false or 0.

/// A meta command stands for a series of packets and has none of its own.
bool IsMetaCommandFormat(const TalcCommand& command);
/// A diagnostic command has a packet of another form, with a header of 36 bytes.
bool IsDiagCommandFormat(const TalcCommand& command);
/// In milliseconds; 0 is the transport's default.
std::uint32_t GetOverrideTimeoutMillisec(const TalcCommand& command);
bool SetOverrideTimeoutMillisec(const char* commandName, std::uint32_t milliseconds);
/// Where the parameter's value lies in the packet, in bytes from the packet's first; -1 when there is no such parameter
/// and for one whose length is that of its value. For a command of variable length the values that are there decide,
/// and one that is missing makes the answer false.
bool GetParameterOffset(const TalcCommand& command, const char* parameterName, std::int32_t* offset);
/// Fills `buffer` with zeros, then copies the parameter's type word. The size must be 8 or more, and above the word's
/// length plus 1.
bool LookupParameterType(const char* commandName, const char* parameterName, std::uint32_t bufferSize, char* buffer);
/// The number of one of the definition's symbols.
bool GetSymbolValue(const TalcCommand& command, const char* symbol, std::int32_t* value);
bool GetSymbolValue(const char* commandName, const char* symbol, std::int32_t* value);

// ---- Questions about values ----

/// The value of an integer parameter, sign-extended where its type has a sign; of a symbol its number. False for
/// `BYTES` and for a value that the command does not have. Throws `bad_variant_cast` for one of another kind than its
/// type.
bool ExtractDataParameterAsInt64(const TalcCommand& command, const char* parameterName, std::int64_t* value);
/// Whether the parameter's value is that symbol: by name for a symbol, else by number, in the parameter's own width.
bool IsParameterEqualToSymbol(const TalcCommand& command, const char* parameterName, const char* symbol);
/// Stores -1, 0 or 1. Numbers are compared with their sign, those of `UINT64` too.
bool CompareParameters(const TalcCommand& left, const char* leftName, const TalcCommand& right, const char* rightName,
                       std::int32_t* order);
/// True when both can be compared and are equal.
bool AreParametersEqual(const TalcCommand& left, const char* leftName, const TalcCommand& right, const char* rightName);

}  // namespace TalcPath
