#include "ClientProcess.h"

#include <system_error>

namespace benchdriver {
namespace {

constexpr DWORD kAccess =
    PROCESS_QUERY_INFORMATION | PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE | PROCESS_CREATE_THREAD;
constexpr DWORD kLoadMilliseconds = 10'000;

void* Pointer(std::uint64_t address) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(address));
}

std::uint64_t Address(const void* pointer) {
  return reinterpret_cast<std::uintptr_t>(pointer);
}

}  // namespace

ClientProcess::ClientProcess(std::uint32_t id) : id_(id), process_(OpenProcess(kAccess, FALSE, id)) {
  if (process_ == nullptr)
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "OpenProcess");
}

ClientProcess::~ClientProcess() {
  CloseHandle(process_);
}

bool ClientProcess::Read(std::uint64_t address, std::span<std::uint8_t> bytes) const {
  SIZE_T done = 0;
  return ReadProcessMemory(process_, Pointer(address), bytes.data(), bytes.size(), &done) != FALSE &&
         done == bytes.size();
}

bool ClientProcess::Write(std::uint64_t address, std::span<const std::uint8_t> bytes) const {
  SIZE_T done = 0;
  return WriteProcessMemory(process_, Pointer(address), bytes.data(), bytes.size(), &done) != FALSE &&
         done == bytes.size();
}

std::uint64_t ClientProcess::ReserveAddresses(std::size_t sizeBytes) const {
  return Address(VirtualAllocEx(process_, nullptr, sizeBytes, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS));
}

void ClientProcess::ReleaseAddresses(std::uint64_t address) const {
  VirtualFreeEx(process_, Pointer(address), 0, MEM_RELEASE);
}

bool ClientProcess::LoadLibraryInto(const std::filesystem::path& library) const {
  const std::wstring path = library.wstring();
  const std::size_t sizeBytes = (path.size() + 1) * sizeof(wchar_t);
  void* const copy = VirtualAllocEx(process_, nullptr, sizeBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  if (copy == nullptr) return false;

  // The system's libraries are at the same addresses in every process.
  DWORD loaded = 0;
  const bool isWritten = Write(Address(copy), {reinterpret_cast<const std::uint8_t*>(path.c_str()), sizeBytes});
  const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(&LoadLibraryW));
  const HANDLE thread = isWritten ? CreateRemoteThread(process_, nullptr, 0, load, copy, 0, nullptr) : nullptr;
  const bool hasEnded = thread != nullptr && WaitForSingleObject(thread, kLoadMilliseconds) == WAIT_OBJECT_0;
  if (hasEnded) GetExitCodeThread(thread, &loaded);
  if (thread != nullptr) CloseHandle(thread);
  // A thread that did not end may still read the path.
  if (thread == nullptr || hasEnded) VirtualFreeEx(process_, copy, 0, MEM_RELEASE);
  return loaded != 0;
}

}  // namespace benchdriver
