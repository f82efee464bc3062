#pragma once

#include "JsonLines.h"
#include "talcpath.h"

/// A command's direction and values as JSON. The direction is "send" or "request". Values are a triple each, in the
/// order of the command:
///
///     [["Board","SYMBOL","VPD_Hollen"],["Offset","UINT16",20],["Data","BYTES","00ff"]]
///
/// The type is a data type word, or SYMBOL. Integers of all sizes are numbers, bytes are hexadecimal text.

/// Throws BadInput when `question` has no "direction" of these two.
void SetDirection(TalcPath::TalcCommand& command, const Json& question);

/// Sets the values, in their order, by the command's own setters. Throws BadInput when `values` is no list of such
/// triples, or a number does not fit its type; the values before it are set then.
void SetValues(TalcPath::TalcCommand& command, const Json& values);

Json ValuesOf(const TalcPath::TalcCommand& command);
