#pragma once

#include <algorithm>
#include <istream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "engine/DictionaryFiles.h"

namespace engine_test {

/// Keeps the texts that it is handed, and refuses the one that a test names.
class RecordingProcessor final : public TalcPathPrivate::TCDFileProcessor {
 public:
  const char* TaskName() const override { return "Recording"; }
  bool Process(std::istream& stream, std::string_view name) override {
    names.emplace_back(name);
    isReadWrite = dynamic_cast<std::iostream*>(&stream) != nullptr;
    isOpen.push_back(stream.good());
    texts.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    return name != refused;
  }

  std::string refused;
  std::vector<std::string> names;
  std::vector<std::string> texts;
  std::vector<bool> isOpen;
  bool isReadWrite = false;
};

}  // namespace engine_test
