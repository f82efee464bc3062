#pragma once

#include <talcpath.h>

#include <cstdint>
#include <mutex>

/// The road to a box that is a process of its own: packets go to its standard input, replies come from its standard
/// output. The packet's length field tells where each ends, so nothing else is sent.
class PipedTransport final : public TalcPath::TalcTransport {
 public:
  /// Starts the program; `IsOpen` tells whether that worked.
  explicit PipedTransport(const char* program);
  PipedTransport(const PipedTransport&) = delete;
  PipedTransport& operator=(const PipedTransport&) = delete;
  /// Closes the pipes, which ends the process, and waits for its end.
  ~PipedTransport() override;

  bool IsOpen() const { return process_ > 0; }

  bool Exchange(const char* commandName, const TalcPath::TalcByteCode& packet, TalcPath::TalcByteCode& reply,
                std::uint32_t timeoutMillisec) override;
  void CommandCompleted(const TalcPath::TalcCommand&) override {}
  void Lock() override { mutex_.lock(); }
  void Unlock() override { mutex_.unlock(); }

 private:
  /// One that the same thread can take twice, as an exchange within an execution may.
  std::recursive_mutex mutex_;
  int toBox_ = -1;
  int fromBox_ = -1;
  int process_ = -1;
};
