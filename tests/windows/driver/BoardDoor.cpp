#include "BoardDoor.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "AttachedBench.h"
#include "BoardIds.h"
#include "CallerBuffer.h"
#include "simulator/LittleEndian.h"
#include "simulator/SystemErrors.h"

struct OpenBoard {
  platform::Handle handle;
  std::shared_ptr<benchdriver::Client> client;
};

namespace benchdriver {
namespace {

/// A field of a control call's request that holds the address of a buffer of the caller's, and the one with its size.
struct BufferField {
  std::uint32_t code;
  std::size_t recordBytes;
  std::size_t addressAt;
  std::size_t sizeAt;
};

constexpr BufferField kBufferFields[] = {
    {simulator::MorvakUnit::kTransactTalc, 28, 0, 16},
    {simulator::MorvakUnit::kTransactTalc, 28, 8, 20},
    {simulator::MorvakUnit::kReadVpd, 16, 0, 12},
};

/// All that the driver knows. Never destroyed: the system ends the driver's process.
struct Driver {
  std::unique_ptr<AttachedBench> bench;
  std::map<std::uint32_t, std::weak_ptr<Client>> clients;
  std::size_t openBoards = 0;
  const HANDLE idle = CreateEventW(nullptr, TRUE, TRUE, kIdleEventName);
};

Driver& TheDriver() {
  static auto* const driver = new Driver;
  return *driver;
}

/// Nothing that is thrown may leave the driver.
template <typename Work>
std::uint32_t Guarded(Work work) {
  try {
    return work();
  } catch (const std::exception& error) {
    OutputDebugStringA(("fwbench: " + std::string(error.what()) + "\n").c_str());
  } catch (...) {
  }
  return simulator::kErrorGeneralFailure;
}

/// The bench of the present configuration. While boards are open it stays the one that they belong to.
AttachedBench& PresentBench(Driver& driver) {
  if (driver.openBoards > 0) return *driver.bench;
  Configuration configuration = LoadConfiguration();
  if (driver.bench == nullptr || driver.bench->attachment() != configuration.attachment)
    driver.bench = std::make_unique<AttachedBench>(std::move(configuration));
  return *driver.bench;
}

std::shared_ptr<Client> ClientOf(Driver& driver, std::uint32_t processId) {
  std::erase_if(driver.clients, [](const auto& entry) { return entry.second.expired(); });
  std::shared_ptr<Client> client = driver.clients[processId].lock();
  if (client == nullptr) driver.clients[processId] = client = std::make_shared<Client>(processId);
  return client;
}

void SaveIfUnused(Driver& driver) {
  if (driver.openBoards == 0) driver.bench->Save();
}

void TellWhetherIdle(const Driver& driver) {
  driver.openBoards == 0 ? SetEvent(driver.idle) : ResetEvent(driver.idle);
}

std::uint32_t Control(OpenBoard& board, std::uint32_t code, std::span<std::uint8_t> request,
                      std::span<std::uint8_t> answer, std::uint32_t& returned) {
  board.client->DrainWindows();
  std::vector<CallerBuffer> buffers;
  for (const BufferField& field : kBufferFields) {
    if (field.code != code || field.recordBytes != request.size()) continue;
    const std::uint32_t sizeBytes = simulator::Get32(&request[field.sizeAt]);
    if (sizeBytes > CallerBuffer::kMostBytes) return simulator::kErrorInvalidParameter;
    CallerBuffer& buffer =
        buffers.emplace_back(board.client->process(), simulator::Get64(&request[field.addressAt]), sizeBytes);
    if (!buffer.Fetch()) return simulator::kErrorNoAccess;
    simulator::Put64(&request[field.addressAt], buffer.LocalAddress());
  }
  const std::uint32_t error = TheDriver().bench->Control(board.handle, *board.client, code, request, answer, returned);
  if (error != simulator::kErrorSuccess) return error;
  const bool isPutBack = std::ranges::all_of(buffers, [](CallerBuffer& buffer) { return buffer.PutBack(); });
  return isPutBack ? simulator::kErrorSuccess : simulator::kErrorNoAccess;
}

}  // namespace
}  // namespace benchdriver

using benchdriver::Guarded;
using benchdriver::TheDriver;

std::uint32_t BoardOpen(std::uint32_t board, std::uint32_t processId, OpenBoard** opened) {
  benchdriver::Driver& driver = TheDriver();
  const std::uint32_t result = Guarded([&] {
    benchdriver::AttachedBench& bench = PresentBench(driver);
    auto open = std::make_unique<OpenBoard>(OpenBoard{0, ClientOf(driver, processId)});
    const std::uint32_t error = bench.Open(board, open->handle);
    if (error != simulator::kErrorSuccess) {
      SaveIfUnused(driver);
      return error;
    }
    ++driver.openBoards;
    *opened = open.release();
    return error;
  });
  TellWhetherIdle(driver);
  return result;
}

std::uint32_t BoardControl(OpenBoard* opened, std::uint32_t code, void* buffer, std::uint32_t inBytes,
                           std::uint32_t outBytes, std::uint32_t* returned) {
  return Guarded([&] {
    const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
    std::vector<std::uint8_t> request(bytes, bytes + inBytes);
    std::vector<std::uint8_t> answer(outBytes);
    const std::uint32_t error = benchdriver::Control(*opened, code, request, answer, *returned);
    if (error == simulator::kErrorSuccess)
      std::copy_n(answer.begin(), std::min<std::size_t>(*returned, outBytes), static_cast<std::uint8_t*>(buffer));
    return error;
  });
}

void BoardClose(OpenBoard* opened) {
  benchdriver::Driver& driver = TheDriver();
  Guarded([&] {
    const std::unique_ptr<OpenBoard> open(opened);
    driver.bench->Close(open->handle);
    // With its last board a client's windows go, and nobody is in them any more.
    open->client.reset();
    --driver.openBoards;
    SaveIfUnused(driver);
    return simulator::kErrorSuccess;
  });
  TellWhetherIdle(driver);
}

int BoardOfHardwareId(const std::uint16_t* hardwareIds) {
  return benchdriver::BoardOfHardwareId(std::u16string_view(reinterpret_cast<const char16_t*>(hardwareIds)));
}

const void* BoardInterfaceClass(int board) {
  return &simulator::kBoards[board]->interfaceClass;
}
