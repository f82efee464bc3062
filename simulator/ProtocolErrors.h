#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

/// What a simulated part refused: a text for each of the first hundred refusals, and the count of all.
class ProtocolErrors {
 public:
  static constexpr std::size_t kKeptTexts = 100;

  ProtocolErrors() = default;
  /// Restores a list. Texts beyond the hundredth are dropped; `total` is raised to the number of texts if it is lower.
  ProtocolErrors(std::vector<std::string> texts, std::uint64_t total) : texts_(std::move(texts)), total_(total) {
    if (total_ < texts_.size()) total_ = texts_.size();
    if (texts_.size() > kKeptTexts) texts_.resize(kKeptTexts);
  }

  void Add(std::string text) {
    ++total_;
    if (texts_.size() < kKeptTexts) texts_.push_back(std::move(text));
  }

  const std::vector<std::string>& texts() const { return texts_; }
  std::uint64_t total() const { return total_; }

  friend bool operator==(const ProtocolErrors&, const ProtocolErrors&) = default;

 private:
  std::vector<std::string> texts_;
  std::uint64_t total_ = 0;
};

}  // namespace simulator
