#include "WindowServer.h"

#include <filesystem>
#include <system_error>

namespace benchdriver {
namespace {

/// A program that does something else for a while is looked at once a millisecond.
constexpr unsigned kYields = 200;
constexpr DWORD kRestMilliseconds = 1;

void Rest(unsigned idleRounds) {
  if (idleRounds < kSpins)
    YieldProcessor();
  else if (idleRounds < kSpins + kYields)
    SwitchToThread();
  else
    Sleep(kRestMilliseconds);
}

/// The library beside this driver.
std::filesystem::path WindowLibrary() {
  HMODULE self = nullptr;
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  GetModuleHandleExW(kFlags, reinterpret_cast<const wchar_t*>(&Rest), &self);
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(self, path, MAX_PATH);
  return std::filesystem::path(path).replace_filename(L"benchwindow.dll");
}

std::system_error LastError(const char* what) {
  return {static_cast<int>(GetLastError()), std::system_category(), what};
}

}  // namespace

WindowServer::WindowServer(const ClientProcess& client) : client_(client) {
  const std::wstring name = MailboxName(client.id());
  mapping_ = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(WindowMailbox), name.c_str());
  if (mapping_ == nullptr) throw LastError("CreateFileMapping");
  mailbox_ = static_cast<WindowMailbox*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(WindowMailbox)));
  if (mailbox_ == nullptr) {
    const std::system_error error = LastError("MapViewOfFile");
    CloseHandle(mapping_);
    throw error;
  }
  // A program that opens a board again has the mapping still, with the counts where they were.
  mailbox_->driverProcess = GetCurrentProcessId();
  mailbox_->done.store(mailbox_->asked.load());
  thread_ = std::thread([this] { Serve(); });
}

WindowServer::~WindowServer() {
  isEnding_ = true;
  thread_.join();
  const std::uint32_t count = mailbox_->windowCount.exchange(0);
  for (std::uint32_t i = 0; i < count; ++i)
    client_.ReleaseAddresses(mailbox_->windows[i].address);
  UnmapViewOfFile(mailbox_);
  CloseHandle(mapping_);
}

std::uint64_t WindowServer::Add(platform::RegisterTrap& trap, std::uint32_t sizeBytes) {
  const std::uint32_t count = mailbox_->windowCount;
  if (count == WindowMailbox::kMostWindows) return 0;
  const std::uint64_t address = client_.ReserveAddresses(sizeBytes);
  if (address == 0) return 0;
  traps_[count] = &trap;
  mailbox_->windows[count] = {address, sizeBytes};
  mailbox_->windowCount.store(count + 1, std::memory_order_release);
  // Loading it a second time does nothing.
  if (client_.LoadLibraryInto(WindowLibrary())) return address;
  mailbox_->windowCount.store(count);
  client_.ReleaseAddresses(address);
  return 0;
}

void WindowServer::Drain() {
  const std::uint32_t asked = mailbox_->asked.load(std::memory_order_acquire);
  while (asked - mailbox_->done.load(std::memory_order_acquire) - 1 < WindowMailbox::kRingAccesses)
    SwitchToThread();
}

void WindowServer::Serve() {
  unsigned idleRounds = 0;
  for (;;) {
    const std::uint32_t done = mailbox_->done.load(std::memory_order_relaxed);
    const std::uint32_t waiting = mailbox_->asked.load(std::memory_order_acquire) - done;
    if (waiting == 0) {
      if (isEnding_) return;
      Rest(idleRounds);
      ++idleRounds;
      continue;
    }
    idleRounds = 0;
    // The program's memory is not to be believed.
    const bool isRight = waiting <= WindowMailbox::kRingAccesses;
    if (isRight) Do(mailbox_->accesses[done % WindowMailbox::kRingAccesses]);
    mailbox_->done.store(isRight ? done + 1 : done + waiting, std::memory_order_release);
  }
}

void WindowServer::Do(const WindowMailbox::Access& access) {
  const std::uint32_t window = access.window;
  const std::uint32_t offset = access.offset;
  if (window >= mailbox_->windowCount || offset >= mailbox_->windows[window].sizeBytes) return;
  if (access.isWrite != 0)
    traps_[window]->Write(offset, access.written);
  else
    mailbox_->read = traps_[window]->Read(offset);
}

}  // namespace benchdriver
