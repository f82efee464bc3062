#pragma once

#include <stdexcept>
#include <string>

#include "platform/Platform.h"

/// A platform that is put together from a test's own doubles, one service at a time.
///
///     test_support::PlatformDouble system;
///     system.Use(devices);
///     system.Use(clock);
///     platform::ScopedPlatform scope(system);
///
/// The services must outlive it. Asking for one that was not put in throws std::logic_error; but the embedded texts are
/// the program's own until others are put in, and so are files and environment, since every helper reads them.
namespace test_support {

class PlatformDouble final : public platform::Platform {
 public:
  void Use(platform::Devices& service) { devices_ = &service; }
  void Use(platform::Clock& service) { clock_ = &service; }
  void Use(platform::FrontEnd& service) { frontEnd_ = &service; }
  void Use(platform::TextBlocks& service) { textBlocks_ = &service; }
  void Use(platform::Files& service) { files_ = &service; }

  platform::Devices& devices() override { return Given(devices_, "devices"); }
  platform::Clock& clock() override { return Given(clock_, "clock"); }
  platform::FrontEnd& frontEnd() override { return Given(frontEnd_, "front end"); }
  platform::TextBlocks& textBlocks() override { return *textBlocks_; }
  platform::Files& files() override { return *files_; }

 private:
  template <typename Service>
  static Service& Given(Service* service, const char* name) {
    if (service == nullptr) throw std::logic_error(std::string("the test's platform has no ") + name);
    return *service;
  }

  platform::Devices* devices_ = nullptr;
  platform::Clock* clock_ = nullptr;
  platform::FrontEnd* frontEnd_ = nullptr;
  platform::TextBlocks* textBlocks_ = &platform::Native().textBlocks();
  platform::Files* files_ = &platform::Native().files();
};

}  // namespace test_support
