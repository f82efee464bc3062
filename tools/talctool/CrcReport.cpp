#include "CrcReport.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "engine/IntegrityTrailer.h"
#include "support/Console.h"
#include "support/JsonText.h"

namespace {

namespace fs = std::filesystem;

/// Hands the file over as the library's scan of a directory does.
bool Process(TalcPathPrivate::TCDFileProcessor& processor, const fs::path& path) {
  // The log is to show the base name, and that is also the name by which the generator opens the file.
  if (path.has_parent_path()) fs::current_path(path.parent_path());
  const std::string name = path.filename().string();
  std::ifstream stream(name);
  return processor.Process(stream, name);
}

void Report(const std::string& path, bool isGood, const char* fault) {
  std::cout << JsonLine({{"file", Latin1Text(path)}, {"ok", isGood}});
  if (isGood) return;
  FinishOutput();
  throw std::runtime_error(path + fault);
}

}  // namespace

void AddCrc(const std::string& path) {
  TalcPathPrivate::GenCRCFileProcessor generator;
  Report(path, Process(generator, path), ": no trailer could be written");
}

void CheckCrc(const std::string& path) {
  TalcPathPrivate::CRCCheckProcessor checker;
  Report(path, Process(checker, path), ": no valid trailer");
}
