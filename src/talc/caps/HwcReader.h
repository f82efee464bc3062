#pragma once

#include <iosfwd>
#include <string_view>

/// Reads the capabilities language: statements up to a ";", words parted by white space, the first of which says what
/// it is. "#" begins a comment, which a ";" ends, too.
///
///     HardwareType Trelvane ;
///     Property MaxVideoLineNumberPAL INTEGER 310 ;
///     ConditionBlockBegin ;
///     ConditionKeyname VideoInputBrightness ;
///     Condition VideoIOControl InputOrOutput SYMBOL VIOCtrl_Input ;
///     ConditionBlockEnd ;
///     CommandValues VideoIOControl Value Range 0 255 ;
///
/// A number touching its ";" is refused, and a symbol of a list touching it is lost, as files have always been written
/// for. The dictionary must have been read before: conditions and symbols are looked up in it.
namespace TalcPathPrivate {

class TalcHWCaps;

/// Reads a text to its end or its first faulty statement, into `caps`, which is new. False for a faulty one, which the
/// log tells of with the name of the file alone, and for a text that names its hardware twice. True also when a
/// statement without words or one that is too long ends the reading early.
bool ReadHwc(TalcHWCaps& caps, std::istream& stream, std::string_view fileName);

}  // namespace TalcPathPrivate
