#pragma once

#include <functional>
#include <string>

#include "errorException.h"

/// Does something that is to fail, and returns where its `errorException` comes from and what it says:
///
///     EXPECT_EQ(FailureOf([&] { helper.Open(); }), "DeviceDiscovery.cpp: can't fetch board memory map");
///
/// Other exceptions pass.
inline std::string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const errorException& error) {
    return std::string(error.file) + ": " + error.what();
  }
  return "no failure";
}
