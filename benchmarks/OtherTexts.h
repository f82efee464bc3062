#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "talcpath.h"

using Texts = std::vector<std::string>;

/// The native platform with other dictionaries and capabilities embedded.
class OtherTexts final : public platform::Platform, private platform::TextBlocks {
 public:
  OtherTexts(Texts dictionaries, Texts capabilities)
      : dictionaries_(std::move(dictionaries)), capabilities_(std::move(capabilities)) {}

  platform::Devices& devices() override { return platform::Native().devices(); }
  platform::Clock& clock() override { return platform::Native().clock(); }
  platform::FrontEnd& frontEnd() override { return platform::Native().frontEnd(); }
  platform::TextBlocks& textBlocks() override { return *this; }
  platform::Files& files() override { return platform::Native().files(); }

 private:
  const Texts& Of(std::string_view type) const { return type == "RT_TCD_FILE" ? dictionaries_ : capabilities_; }

  std::vector<std::string> List(std::string_view type) override {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < Of(type).size(); ++i)
      names.push_back(std::to_string(i));
    return names;
  }
  std::optional<std::string_view> Bytes(std::string_view type, std::string_view name) override {
    return Of(type)[std::stoul(std::string(name))];
  }

  Texts dictionaries_;
  Texts capabilities_;
};

inline Texts EmbeddedTexts(const char* type) {
  Texts texts;
  platform::TextBlocks& embedded = platform::Native().textBlocks();
  for (const std::string& name : embedded.List(type))
    texts.emplace_back(*embedded.Bytes(type, name));
  return texts;
}
inline Texts EmbeddedDictionaries() {
  return EmbeddedTexts("RT_TCD_FILE");
}

/// Runs `use` while the library is stopped.
template <typename Use>
void WhileStopped(Use use) {
  if (!TalcPath::TalcPathTerminate()) std::abort();
  use();
  if (!TalcPath::TalcPathInit()) std::abort();
}
