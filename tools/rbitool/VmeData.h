#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The pieces of a VME file's byte code that are more than a byte: numbers, and the forms in which a compressed file
/// holds a block of data. docs/vme.md draws them.
///
///     const Form form{FormKind::zeros};
///     EncodeBlock(form, "\x12\0\0\0"s);  // 01 12 00 02
namespace vme_script {

/// Appends a number in groups of 7 bits, the lowest first. The top bit of a byte says that another follows.
void AppendNumber(std::string& bytes, std::uint16_t number);

enum class FormKind {
  plain,    ///< the bytes as they are
  zeros,    ///< runs of 00
  ones,     ///< runs of FF
  bitmap,   ///< a bit a byte tells the one that is left out
  nibbles,  ///< a pattern of half bytes that comes again and again
};

struct Form {
  FormKind kind;
  std::uint8_t parameter = 0;  ///< of bitmap the byte that is left out; of nibbles the pattern's length, 3 to 254
};

/// The byte in front of a block that tells its form.
std::uint8_t KindByte(const Form& form);

/// A block as it stands in the file, kind byte and all. `data` are the block's bytes, 8192 at most, in a form that can
/// tell them.
std::string EncodeBlock(const Form& form, std::string_view data);

/// A byte of the data that a form can't tell.
struct Misfit {
  std::size_t index;
  std::uint8_t expected;  ///< what comes out instead
};

/// The first byte that would come out of the form other than it is. Only nibbles have any: they repeat, and the half
/// bytes behind the last whole pattern are 0.
std::optional<Misfit> FindMisfit(const Form& form, std::string_view data);

}  // namespace vme_script
