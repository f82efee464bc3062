#pragma once

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

/// A script as words, and what is said about a word that does not fit. Line ends are blanks; "#" begins a comment.
///
///     Tokens tokens("mem 64  # bits\nstate idle");
///     if (tokens.TakeWord("mem")) bits = tokens.Number(0, 65535);
namespace vme_script {

struct Token {
  enum class Kind {
    word,
    text,  ///< stands in double quotes, which are not part of it
    mark,  ///< one of ( ) *
    end,
  };
  Kind kind;
  std::string_view text;
  std::size_t offset;  ///< of its first character, a quote included, from the start of the script
};

/// A script that is wrong. `what` is the message with line and column in front, both counted from 1, columns in bytes.
class ScriptError : public std::runtime_error {
 public:
  ScriptError(std::string_view script, std::size_t offset, const std::string& message);

  /// Three lines for the user: name, line, column and message; the line of the script; a caret under the place.
  /// Characters that are not printable ASCII show as "?".
  std::string Report(std::string_view scriptName) const;

 private:
  std::string shownLine_;
  std::size_t column_;
};

/// The words of a script, front to back. Everything fails with a ScriptError. The script must outlive it.
class Tokens {
 public:
  explicit Tokens(std::string_view script);

  const Token& Peek() const { return next_; }
  Token Take();
  /// The next token if it is a word, else nothing.
  std::string_view PeekWord() const { return next_.kind == Token::Kind::word ? next_.text : std::string_view(); }
  bool IsWord(std::string_view word) const { return PeekWord() == word; }
  /// Takes the next token if it is this word or mark.
  bool TakeWord(std::string_view word);
  bool TakeMark(std::string_view mark);
  /// Takes a decimal number, or one of hexadecimal digits behind 0x, with a "-" in front of either. Fails outside of
  /// `low` to `high`; a word that is no number may be meant as one of `words`.
  int Number(int low, int high, std::span<const std::string_view> words = {});
  /// Takes bytes as long as they come: pairs of hexadecimal digits, with or without blanks between the pairs, each
  /// group once or as often as the number behind a "*" says. Fails for half a byte, and for more than 65536 bytes.
  std::string Bytes();

  [[noreturn]] void Fail(const Token& at, const std::string& message) const;
  /// Fails at the next token: it is not `what`, but may be meant as one of `words`.
  [[noreturn]] void FailExpected(const std::string& what, std::span<const std::string_view> words = {}) const;

 private:
  Token Read();

  const std::string_view script_;
  std::size_t at_ = 0;
  Token next_;
};

}  // namespace vme_script
