#pragma once

#include <stdexcept>

namespace simulator {

/// Thrown for a bench, a description or a file of theirs that cannot be read or written or does not hold what it
/// should. The text, of one line, names the file or the key, what was expected and what was found.
class BenchError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace simulator
