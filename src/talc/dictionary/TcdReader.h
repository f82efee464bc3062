#pragma once

#include <iosfwd>
#include <string_view>

/// Reads the dictionary language: blocks up to a ";", words parted by white space.
///
///     Name Talc CommandTypeMajor SYSTEM CommandTypeMinor 0 Function 26
///     DataName Board RD DataType UINT16
///     Symbol VPD_Hollen 200
///     ;
///
/// A block whose first word begins with "#" is a comment, one that begins with "DOCUMENTATION" tells people what a
/// command is for; both are passed over. docs/talc-dictionary.md has the whole language.
namespace TalcPathPrivate {

class TokenStream;

/// The longest text between two ";", in characters. A longer one ends the reading, as the end of the text does.
inline constexpr int kLongestBlock = 8190;

/// Reads a dictionary to its end or its first faulty definition, and adds its commands to the tables. False for a
/// faulty definition; the log names the fault, the command and the source, and the commands before it stay defined.
/// True also when a block without words or a block that is too long ends the reading early.
bool ParseTcdStream(std::istream& stream, std::string_view sourceName);

/// Reads one block that is no comment, behind its first word.
bool ParseDefinition(TokenStream& stream, std::string_view firstWord, std::string_view sourceName);

}  // namespace TalcPathPrivate
