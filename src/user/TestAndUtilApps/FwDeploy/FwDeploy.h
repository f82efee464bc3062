#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "parts/PartTable.h"
#include "WyvrelHelper.h"

/// The whole program: options, discovery, version table, install loop, closing words. Returns the exit code: the mask
/// of `Installer::InstallParts`, or -1 after a failure that it has told on standard error.
int FwDeployMain(int argc, const char* const* argv);

/// The options of a run, the parts that can be installed, and the parts that were found.
///
///     Installer installer;
///     installer.AddPartDescriptions();
///     for (int at = 1; at < argc;) at += installer.ParseOption(argc - at, argv + at);
///     DiscoverVeltraParts(installer, *helper);
///     installer.PrintVersionTable();
///     std::uint32_t mask = installer.InstallParts(helper, nullptr);
///
/// Failures are thrown as `errorException`.
class Installer {
 public:
  /// How many descriptions, and how many locations, there can be.
  static constexpr std::size_t kCapacity = 100;

  /// Bits of the result of `InstallParts`: what the user has to power-cycle.
  enum : std::uint32_t { kPowerCycleBox = 1, kPowerCycleCpu = 2, kPowerCycleCpuAndOrboQx = 4 };

  Installer() = default;
  ~Installer();
  Installer(const Installer&) = delete;
  Installer& operator=(const Installer&) = delete;

  /// Takes the first of `count` arguments, and the second where it belongs to it. Returns how many it took, 1 or 2.
  /// Throws for an unknown option, for `-all` with no file, and for a file that is of no use.
  int ParseOption(int count, const char* const* args);

  /// Adds the 28 rows of the part table.
  void AddPartDescriptions();
  void AddPartDescription(const PartRow& row);
  /// Adds a location for every row of this name and id whose revision range holds major.minor. Returns whether there
  /// was one. `suffixText` may be null; one of nothing but "0", " " and "." is dropped, and 30 characters are kept.
  bool RegisterPartLocation(const char* name, const char* id, std::int32_t major, std::int32_t minor,
                            std::uint32_t current, const char* suffixText, std::uint32_t expected);

  /// Prints one line for each location that is shown, and tells a front end.
  void PrintVersionTable() const;
  /// Programs the locations that are selected and that the rules allow, in order of discovery. Either helper may be
  /// null: a location only exists where its helper does.
  std::uint32_t InstallParts(VeltraSpecificHelper* veltra, WyvrelHelper* morvak);

  std::int32_t descriptionCount() const { return descriptionCount_; }
  const PartDescription& description(std::int32_t index) const {
    return *descriptions_[static_cast<std::size_t>(index)];
  }
  std::int32_t locationCount() const { return locationCount_; }
  const PartLocation& location(std::int32_t index) const { return *locations_[static_cast<std::size_t>(index)]; }

  std::uint8_t version = 0;        ///< print the version table before installing
  std::uint8_t pause = 1;          ///< print the closing words and wait for Enter
  std::uint8_t progress = 1;       ///< print part names and percentages, and tell a front end
  std::uint8_t fussy = 1;          ///< install exactly the version that this program was built for
  std::uint8_t update = 0;         ///< install whatever differs
  std::uint8_t forceTolmarn = 0;   ///< add the `tolmarn` part without asking the box
  std::uint8_t hardwareNamed = 0;  ///< the user chose the hardware by hand
  std::uint8_t useVeltra = 0;
  std::uint8_t useOrboQx = 0;

 private:
  void AddPartLocation(PartDescription& part, std::int32_t major, std::int32_t minor, std::uint32_t current,
                       const char* suffixText, std::uint32_t expected);
  std::span<const std::unique_ptr<PartDescription>> Descriptions() const {
    return std::span(descriptions_).first(static_cast<std::size_t>(descriptionCount_));
  }
  void ShowEachNameOnce();
  void SelectAll();
  void SelectFile(const char* fileName);
  int ParsePartOption(int count, const char* const* args);
  void PrintUsage() const;
  bool IsToBeProgrammed(const PartLocation& location);
  std::uint32_t ProgramPart(const PartLocation& location, VeltraSpecificHelper* veltra, WyvrelHelper* morvak);

  std::array<std::unique_ptr<PartDescription>, kCapacity> descriptions_;
  std::int32_t descriptionCount_ = 0;
  std::array<std::unique_ptr<PartLocation>, kCapacity> locations_;
  std::int32_t locationCount_ = 0;
};
