#include "FwDeploy.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "board/CreateWyvrelHelper.h"
#include "board/VmePlayer.h"
#include "container/RbiContainer.h"
#include "download/BoxDownloadHelpers.h"
#include "download/DownloadDriver.h"
#include "download/ZerinHelper.h"
#include "errorException.h"
#include "installer/PartDiscovery.h"
#include "parts/Notification.h"

namespace {

/// A run without arguments shows what there is and touches nothing.
constexpr const char* kDefaultArguments[] = {"FwDeploy", "-version"};

struct FlagOption {
  const char* word;
  std::uint8_t Installer::*flag;
  std::uint8_t value;
};

constexpr FlagOption kFlagOptions[] = {
    {"-fussy", &Installer::fussy, 1},
    {"-nofussy", &Installer::fussy, 0},
    {"-update", &Installer::update, 1},
    {"-noupdate", &Installer::update, 0},
    {"-pause", &Installer::pause, 1},
    {"-nopause", &Installer::pause, 0},
    {"-progress", &Installer::progress, 1},
    {"-noprogress", &Installer::progress, 0},
    {"-forcetolmarn", &Installer::forceTolmarn, 1},
    {"-noforcetolmarn", &Installer::forceTolmarn, 0},
};

constexpr std::int64_t kHostFlashEstimateMicroseconds = 30'000'000;

enum class Road { kBoxFpga, kBoxFirmware, kBoxCpld, kMorvakFpga, kMorvakFirmware, kMorvakCpld };

/// How a part is programmed that takes its file by download commands.
struct Download {
  const char* partId;
  Road road;
  /// The hardware's number of the device; the second one serves parts with a "2" in their name. Firmware has none.
  std::uint8_t number;
  std::uint8_t secondNumber;
  /// How long the part takes to burn, by experience. The percentages are counted against it, and nothing else.
  std::int64_t estimateMicroseconds;
};

constexpr Download kDownloads[] = {
    {"PLGR", Road::kBoxFpga, 0, 0, 20'000'000},     {"TLM_", Road::kBoxFpga, 1, 1, 15'000'000},
    {"BROX", Road::kBoxFirmware, 0, 0, 13'000'000}, {"ULMN", Road::kBoxCpld, 2, 2, 180'000'000},
    {"TULM", Road::kBoxCpld, 3, 3, 180'000'000},    {"VULM", Road::kBoxCpld, 4, 4, 180'000'000},
    {"XNDR", Road::kMorvakFpga, 0, 0, 127'000'000}, {"YRVL", Road::kMorvakFpga, 0, 0, 127'000'000},
    {"YRVX", Road::kMorvakFpga, 0, 0, 127'000'000}, {"QNDL", Road::kMorvakFpga, 0, 0, 127'000'000},
    {"ENCD", Road::kMorvakFpga, 1, 2, 315'000'000}, {"ENSC", Road::kMorvakFpga, 1, 2, 315'000'000},
    {"ENVC", Road::kMorvakFpga, 3, 4, 47'000'000},  {"PICO", Road::kMorvakFirmware, 0, 0, 21'000'000},
    {"SPCR", Road::kMorvakFpga, 1, 1, 21'000'000},  {"TSKP", Road::kMorvakCpld, 0, 0, 17'000'000},
    {"VQPW", Road::kMorvakCpld, 1, 1, 10'540'000},  {"VQPX", Road::kMorvakCpld, 1, 1, 10'540'000},
    {"JQPX", Road::kMorvakCpld, 1, 1, 10'540'000},  {"JQPY", Road::kMorvakCpld, 1, 1, 10'540'000},
    {"JQPW", Road::kMorvakCpld, 1, 1, 10'540'000},
};

bool CanBeOpened(const char* fileName) {
  std::FILE* file = std::fopen(fileName, "rb");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

/// The decoration of a version: nothing for a text that only fills the column, else the text behind a dash.
void BuildSuffix(const char* text, char (&suffix)[sizeof PartLocation::suffix]) {
  suffix[0] = '\0';
  if (text == nullptr || text[std::strspn(text, "0 .")] == '\0') return;
  std::snprintf(suffix, sizeof suffix, "-%s", text);
}

/// Plays the file on the CPLD of a host card, whose port is a register of the card. There is no download to drive here:
/// the player tells its own progress.
void ProgramKarvel(const PartDescription& part, VeltraSpecificHelper& veltra) {
  const std::string karvel = part.name[0] == 'd' ? "Dovu Karvel" : "Belmara Karvel";
  VmePlayer& player = TheVmePlayer();
  player.port.Connect(veltra.GetKarvelProgramAddr(part.name));
  PrintToConsole(("Programming " + karvel + "\n\r").c_str());
  // A passed USERCODE, which is 1, counts as an error like any other code but 0.
  const std::int8_t code = player.PlayVmeFile(part.fileName);
  if (code != 0) throw errorException(karvel + " Programming Error... Error Code: " + std::to_string(code));
}

void TellRestart(std::int32_t result) {
  // A test of values and not of bits, and meant to be: front ends expect 0 and 0 for the results 5, 6 and 7.
  const bool cpu = result == 2 || result == 3 || result == 4;
  const bool box = result == 1 || result == 3 || result == 4;
  NotifyRestart(cpu ? 1 : 0, box ? 1 : 0);
}

void PrintClosingWords(std::int32_t result) {
  if (result < 0) {
    std::fputs("An error has occurred. Installation may not be complete.\n", stdout);
    return;
  }
  if ((result & 3) == 3)
    std::fputs("To complete installation, power cycle your CPU and your Veltra Kore.\n", stdout);
  else if ((result & 1) != 0)
    std::fputs("To complete installation, power cycle your Veltra Kore.\n", stdout);
  else if ((result & 2) != 0)
    std::fputs("To complete installation, power cycle your CPU.\n", stdout);
  if ((result & 4) != 0)
    std::fputs("To complete installation, power cycle your CPU (and therefore also your Orbo QX).\n", stdout);
}

}  // namespace

Installer::~Installer() {
  while (locationCount_ > 0)
    locations_[static_cast<std::size_t>(--locationCount_)].reset();
  while (descriptionCount_ > 0)
    descriptions_[static_cast<std::size_t>(--descriptionCount_)].reset();
}

void Installer::AddPartDescriptions() {
  for (const PartRow& row : kPartRows)
    AddPartDescription(row);
}

void Installer::AddPartDescription(const PartRow& row) {
  if (static_cast<std::size_t>(descriptionCount_) >= kCapacity) throw errorException("Too many part descriptions");
  std::unique_ptr<PartDescription> part(new (std::nothrow) PartDescription{row.name, row.id, row.minMajor, row.minMinor,
                                                                           row.maxMajor, row.maxMinor, row.fileName});
  if (!part) throw errorException("Out of memory constructing PartDescription");
  descriptions_[static_cast<std::size_t>(descriptionCount_++)] = std::move(part);
}

bool Installer::RegisterPartLocation(const char* name, const char* id, std::int32_t major, std::int32_t minor,
                                     std::uint32_t current, const char* suffixText, std::uint32_t expected) {
  bool added = false;
  for (const auto& part : Descriptions()) {
    if (std::strcmp(part->name, name) != 0 || std::strcmp(part->id, id) != 0 || !IsRevisionInRange(*part, major, minor))
      continue;
    AddPartLocation(*part, major, minor, current, suffixText, expected);
    added = true;
  }
  return added;
}

void Installer::AddPartLocation(PartDescription& part, std::int32_t major, std::int32_t minor, std::uint32_t current,
                                const char* suffixText, std::uint32_t expected) {
  if (static_cast<std::size_t>(locationCount_) >= kCapacity) throw errorException("Too many parts locations");
  std::unique_ptr<PartLocation> location(new (std::nothrow) PartLocation{&part, major, minor, current, {}, expected});
  if (!location) throw errorException("Out of memory constructing PartLocation");
  BuildSuffix(suffixText, location->suffix);
  locations_[static_cast<std::size_t>(locationCount_++)] = std::move(location);
}

int Installer::ParseOption(int count, const char* const* args) {
  const std::string_view word = args[0];
  for (const FlagOption& option : kFlagOptions) {
    if (word != option.word) continue;
    this->*option.flag = option.value;
    return 1;
  }
  const bool firstToName = hardwareNamed == 0;
  if (word == "-version") {
    version = 1;
    ShowEachNameOnce();
  } else if (word == "-noversion") {
    version = 0;
    for (const auto& part : Descriptions())
      if (part->load == 0) part->show = 0;
  } else if (word == "-veltra") {
    useVeltra = hardwareNamed = 1;
  } else if (word == "-noveltra") {
    // The first word about hardware implies the other side; later ones only take away.
    useVeltra = 0;
    if (firstToName) useOrboQx = 1;
    hardwareNamed = 1;
  } else if (word == "-orboqx") {
    useOrboQx = hardwareNamed = 1;
  } else if (word == "-noorboqx") {
    useOrboQx = 0;
    if (firstToName) useVeltra = 1;
    hardwareNamed = 1;
  } else if (word == "-all") {
    SelectAll();
  } else if (word == "-help") {
    PrintUsage();
  } else if (const int taken = ParsePartOption(count, args); taken > 0) {
    return taken;
  } else if (word.starts_with('-')) {
    throw errorException("Bad command line qualifier, try -help");
  } else {
    SelectFile(args[0]);
  }
  return 1;
}

void Installer::ShowEachNameOnce() {
  const auto parts = Descriptions();
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto isNamesake = [&](const auto& earlier) { return std::strcmp(earlier->name, parts[i]->name) == 0; };
    parts[i]->show = std::none_of(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(i), isNamesake);
  }
}

void Installer::SelectAll() {
  bool any = false;
  for (const auto& part : Descriptions()) {
    if (!CanBeOpened(part->fileName)) continue;
    part->show = part->load = 1;
    any = true;
  }
  if (!any) throw errorException("No .RBI files found.");
}

/// "-<name>" with or without a file, and "-no<name>". Returns how many arguments it took, 0 for none of these words.
int Installer::ParsePartOption(int count, const char* const* args) {
  const auto parts = Descriptions();
  for (std::size_t first = 0; first < parts.size(); ++first) {
    const std::string name = parts[first]->name;
    const bool select = "-" + name == args[0];
    if (!select && "-no" + name != args[0]) continue;

    const char* file = select && count > 1 && args[1][0] != '-' ? args[1] : nullptr;
    // All rows of that name, which all stand from this one on.
    for (const auto& part : parts.subspan(first)) {
      if (name != part->name) continue;
      part->show = part->load = select ? 1 : 0;
      if (file != nullptr) part->fileName = file;
    }
    return file != nullptr ? 2 : 1;
  }
  return 0;
}

void Installer::SelectFile(const char* fileName) {
  char partId[5];
  std::uint32_t fileVersion = 0;
  if (!ReadRbiHeader(fileName, partId, fileVersion)) throw errorException("Bad command line parameter, try -help");
  bool any = false;
  for (const auto& part : Descriptions()) {
    if (std::strcmp(part->id, partId) != 0) continue;
    part->fileName = fileName;
    part->show = part->load = 1;
    // Who names a file wants that file, whatever version it has; also for all else on this command line.
    fussy = 0;
    any = true;
  }
  if (!any) throw errorException("Cannot load the part associated with that file.");
}

void Installer::PrintUsage() const {
  // The hardware options, -all and -forcetolmarn are left out on purpose: they are for those who know.
  std::fputs(
      "FwDeploy\n\t-version -noversion\n\t-pause -nopause\n\t-fussy -nofussy\n"
      "\t-progress -noprogress -update -noupdate\n",
      stdout);
  const char* last = "";
  for (const auto& part : Descriptions()) {
    if (std::strcmp(part->name, last) == 0) continue;
    last = part->name;
    std::printf("\t-%s -no%s\n", last, last);
  }
}

void Installer::PrintVersionTable() const {
  std::fputs("   Part Name   Board Fn Rev   Current Flash   Expected Flash\n", stdout);
  std::fputs("   ---------   ------------   -------------   --------------\n", stdout);
  for (std::int32_t i = 0; i < locationCount_; ++i) {
    // Location i is shown if description i is: not its own row. The two orders differ, so that one row's option hides
    // another part's line; people have scripts that count on it.
    if (i >= descriptionCount_ || description(i).show == 0) continue;
    const PartLocation& found = location(i);
    if (found.expected != 0) NotifyVersion(found.part->name, found.current, found.expected);
    std::printf("%12.12s      %02" PRIx32 ".%02" PRIx32 "           %04" PRIx32 "%-10.10s ", found.part->name,
                static_cast<std::uint32_t>(found.major), static_cast<std::uint32_t>(found.minor), found.current,
                found.suffix);
    if (found.expected != 0)
      std::printf("%04" PRIx32 "\n", found.expected);
    else
      std::fputs("N/A\n", stdout);
  }
}

std::uint32_t Installer::InstallParts(VeltraSpecificHelper* veltra, WyvrelHelper* morvak) {
  std::uint32_t mask = 0;
  for (std::int32_t i = 0; i < locationCount_; ++i) {
    const PartLocation& found = location(i);
    if (!IsToBeProgrammed(found)) continue;
    if (progress != 0) std::printf("%s\n", found.part->name);
    mask |= ProgramPart(found, veltra, morvak);
  }
  if (update == 0) return mask;
  for (std::int32_t i = 0; i < locationCount_; ++i) {
    const PartLocation& found = location(i);
    if (found.part->load == 0) continue;
    char partId[5];
    std::uint32_t fileVersion = 0;
    ReadRbiHeader(found.part->fileName, partId, fileVersion);
    // The file's version: the hardware runs the new one only after its power cycle.
    std::printf("Replaced %s version %" PRIx32 " with new version %" PRIx32 "\n", found.part->name, found.current,
                fileVersion);
  }
  return mask;
}

/// The rules. Clears the part's load flag where they say no, and throws where its file must not be used.
bool Installer::IsToBeProgrammed(const PartLocation& found) {
  PartDescription& part = *found.part;
  if (part.load == 0) return false;

  char partId[5];
  std::uint32_t fileVersion = 0;
  ReadRbiHeader(part.fileName, partId, fileVersion);  // what cannot be read has the id "NONE"
  if (std::strcmp(partId, part.id) != 0) {
    part.load = 0;
    throw errorException("Required RBI file is missing or not usable");
  }
  if (fussy != 0) {
    if (found.expected == 0) {
      part.load = 0;
      return false;
    }
    if (fileVersion != found.expected) {
      part.load = 0;
      throw errorException("RBI file is not the correct version for this installer");
    }
    if (fileVersion == found.current) {
      part.load = 0;
      std::printf("%s does not need to be loaded\n", part.name);
      return false;
    }
  }
  if (update != 0) {
    if (fileVersion == found.current) {
      std::printf("%s is already at version %" PRIx32 "\n", part.name, fileVersion);
      part.load = 0;
      return false;
    }
    std::printf("Replacing %s version %" PRIx32 " with new version %" PRIx32 "\n", part.name, found.current,
                fileVersion);
  }
  return true;
}

/// Runs the download algorithm of the part. Returns what has to be power-cycled then.
std::uint32_t Installer::ProgramPart(const PartLocation& found, VeltraSpecificHelper* veltra, WyvrelHelper* morvak) {
  const std::string_view name = found.part->name;
  for (const Download& line : kDownloads) {
    if (std::strcmp(found.part->id, line.partId) != 0) continue;
    const std::uint8_t number = name.find('2') == std::string_view::npos ? line.number : line.secondNumber;
    const auto download = [&](DownloadHelper&& helper) {
      DownloadDriver(progress != 0, found, line.estimateMicroseconds, helper);
    };
    switch (line.road) {
      case Road::kBoxFpga:
        download(BobFPGAHelper(*veltra, number));
        return kPowerCycleBox;
      case Road::kBoxFirmware:
        download(BobFirmwareHelper(*veltra));
        return kPowerCycleBox;
      case Road::kBoxCpld:
        download(BobCPLDHelper(*veltra, number));
        return kPowerCycleBox;
      case Road::kMorvakFpga:
        download(MorvakFPGAHelper(*morvak, number));
        return kPowerCycleCpuAndOrboQx;
      case Road::kMorvakFirmware:
        download(MorvakFirmwareHelper(*morvak));
        return kPowerCycleCpuAndOrboQx;
      case Road::kMorvakCpld:
        download(MorvakCPLDHelper(*morvak, number));
        return kPowerCycleCpuAndOrboQx;
    }
  }
  if (name == "belmara" || name == "dovu") {
    ZerinHelper helper(veltra->GetC28FxJ3A(found.part->name), kImageAreaWord);
    DownloadDriver(progress != 0, found, kHostFlashEstimateMicroseconds, helper);
    return kPowerCycleCpu;
  }
  if (std::strcmp(found.part->id, "KRVL") == 0) {
    ProgramKarvel(*found.part, *veltra);
    return kPowerCycleCpu;
  }
  throw errorException("No download algorithm for selected part");
}

int FwDeployMain(int argc, const char* const* argv) {
  std::int32_t result = 0;
  Installer installer;
  std::unique_ptr<WyvrelHelper> veltra;
  std::unique_ptr<WyvrelHelper> morvak;
  try {
    installer.AddPartDescriptions();
    if (argc < 2) {
      argc = 2;
      argv = kDefaultArguments;
    }
    for (int at = 1; at < argc;)
      at += installer.ParseOption(argc - at, argv + at);
    if (installer.hardwareNamed == 0) installer.useVeltra = installer.useOrboQx = 1;

    if (installer.useVeltra != 0) veltra = CreateWyvrelHelper(OpenMode::kHostCards);
    auto* const hostCards = dynamic_cast<VeltraSpecificHelper*>(veltra.get());
    if (installer.useOrboQx != 0) morvak = CreateWyvrelHelper(OpenMode::kMorvak);
    // The text ends in a newline of its own, so that the failure line breaks in two.
    if (hostCards == nullptr && morvak == nullptr)
      throw errorException("Could access neither Veltra nor Orbo QX hardware\n");

    if (hostCards != nullptr) DiscoverVeltraParts(installer, *hostCards);
    if (morvak != nullptr) DiscoverMorvakParts(installer, *morvak);
    if (installer.version != 0) installer.PrintVersionTable();
    result = static_cast<std::int32_t>(installer.InstallParts(hostCards, morvak.get()));
  } catch (const errorException& failure) {
    std::fflush(stdout);
    std::fprintf(stderr, "FwDeploy failed: %s File: %s Line: %" PRId32 "\n", failure.what(), failure.file,
                 failure.line);
    result = -1;
  }
  veltra.reset();
  morvak.reset();
  TellRestart(result);
  if (installer.pause != 0) {
    PrintClosingWords(result);
    std::fputs("Press 'Enter' to exit.\n", stdout);
    std::fflush(stdout);
    std::getchar();
  }
  return result;
}
