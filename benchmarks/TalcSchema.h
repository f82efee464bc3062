#pragma once

#include <string>

/// The commands that the started library has defined, as a schema text of protobuf: a message a command, a field a
/// parameter, and the symbols as values of an enumeration inside the message.
std::string MakeSchemaText();
