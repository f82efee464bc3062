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
bool Process(TalcPathPrivate::TCDFileProcessor& processor, const std::string& path) {
  // The log is to show the base name, and that is also the name by which the generator opens the file.
  const fs::path folder = fs::path(path).parent_path();
  if (!folder.empty()) fs::current_path(folder);
  const char* const separators = fs::path::preferred_separator == '/' ? "/" : "/\\:";
  const std::string name = path.substr(path.find_last_of(separators) + 1);
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
