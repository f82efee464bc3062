// benchdriver: puts the boards of a bench folder into the system as devices, with a driver that serves them.

#include <windows.h>

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "Configuration.h"
#include "Service.h"
#include "simulator/BenchFolder.h"
#include "simulator/Boards.h"
#include "simulator/Faults.h"
#include "TestDevices.h"

namespace {

using benchdriver::Presence;

constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr std::size_t kBoardCount = std::size(simulator::kBoards);
constexpr DWORD kPatienceMilliseconds = 10'000;

struct Options {
  benchdriver::Configuration configuration;
  std::vector<std::string> unlinked;
};

/// The system makes and removes devices in its own time.
void WaitUntil(bool isWanted, std::size_t board) {
  const ULONGLONG start = GetTickCount64();
  while (benchdriver::IsFound(board) != isWanted) {
    if (GetTickCount64() - start > kPatienceMilliseconds)
      throw std::runtime_error(std::string(simulator::kBoards[board]->name) +
                               (isWanted ? ": the device does not appear" : ": the device does not go away"));
    Sleep(1);
  }
}

/// A driver that does not run uses nothing.
void Settle() {
  const HANDLE idle = OpenEventW(SYNCHRONIZE, FALSE, benchdriver::kIdleEventName);
  if (idle == nullptr) return;
  const DWORD result = WaitForSingleObject(idle, kPatienceMilliseconds);
  CloseHandle(idle);
  if (result != WAIT_OBJECT_0) throw std::runtime_error("a program still has boards open");
}

void Detach() {
  Settle();
  for (std::size_t board = 0; board < kBoardCount; ++board)
    benchdriver::RemoveDevice(board);
  benchdriver::ReenumerateIfRunning();
  for (std::size_t board = 0; board < kBoardCount; ++board)
    WaitUntil(false, board);
}

Presence PresenceOf(const simulator::Board& board, const simulator::BenchState& bench, const Options& options) {
  if (std::ranges::find(options.unlinked, board.name) != options.unlinked.end()) return Presence::kUnlinked;
  bool isThere = &board == &simulator::kMorvakBoard && bench.unit.has_value();
  for (std::size_t card = 0; card < std::size(simulator::kHostCards); ++card)
    if (&board == simulator::kHostCards[card]) isThere = bench.cards[card].has_value();
  return isThere ? Presence::kServed : Presence::kAbsent;
}

std::string CheckFault(const std::string& text) {
  try {
    simulator::ParseFault(text);
    return "";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

std::filesystem::path DriverBesideThisProgram() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return std::filesystem::path(path).replace_filename(L"benchdriver.sys");
}

void Attach(Options options) {
  benchdriver::Configuration& configuration = options.configuration;
  configuration.bench = std::filesystem::absolute(configuration.bench);
  if (!configuration.trace.empty()) configuration.trace = std::filesystem::absolute(configuration.trace);
  const simulator::BenchState bench = simulator::LoadBench(configuration.bench);

  Detach();
  configuration.attachment = benchdriver::LoadConfiguration().attachment + 1;
  benchdriver::InstallService(DriverBesideThisProgram());
  benchdriver::SaveConfiguration(configuration);
  Presence presence[kBoardCount];
  for (std::size_t board = 0; board < kBoardCount; ++board) {
    presence[board] = PresenceOf(*simulator::kBoards[board], bench, options);
    benchdriver::MakeDevice(board, presence[board]);
  }
  benchdriver::StartOrReenumerate();
  for (std::size_t board = 0; board < kBoardCount; ++board)
    WaitUntil(presence[board] != Presence::kAbsent, board);
}

int Run(int count, char** words) {
  CLI::App app("Puts the boards of a bench folder into the system as devices", "benchdriver");
  app.require_subcommand(1);
  Options options;
  CLI::App* const attach = app.add_subcommand("attach", "Make devices of a bench's boards, in place of those before");
  attach->add_option("DIR", options.configuration.bench, "The bench's folder")->required();
  attach->add_option("--fault", options.configuration.faults, "NAME or NAME@N, as fwbench run takes them")
      ->allow_extra_args(false)
      ->check(CheckFault);
  attach->add_option("--unlinked", options.unlinked, "A board that is found and will not open")
      ->allow_extra_args(false)
      ->check(CLI::IsMember({"belmara", "dovu", "morvak"}));
  attach->add_option("--trace", options.configuration.trace,
                     "Write each register access and control call to this file");
  attach->add_option("--speed", options.configuration.speed, "How many times as fast as real time the boards are (100)")
      ->check(CLI::Range(1u, benchdriver::kFastestSpeed));
  CLI::App* const detach = app.add_subcommand("detach", "Remove the devices");
  CLI::App* const settle =
      app.add_subcommand("settle", "Wait until no program has a board open and the bench is saved");
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsage;
  }
  if (attach->parsed()) Attach(options);
  if (detach->parsed()) Detach();
  if (settle->parsed()) Settle();
  return 0;
}

}  // namespace

int main(int count, char** words) {
  try {
    return Run(count, words);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "benchdriver: %s\n", error.what());
    return kFailed;
  }
}
