#pragma once

#include <string>
#include <string_view>

/// Assembles a text of JTAG steps into a VME file. docs/vme.md has the language and the bytes.
///
///     container KRVL 0017 "S:demo;M:01.02"
///     mem 32
///     sir 8 tdi E0
///     endvme
namespace vme_script {

/// The file: an RBI container, KRVL at version 0 without text unless the script says otherwise, around the byte code.
///
/// Checks each statement by itself: its words, the range of its numbers, and that its data have the size it tells, in a
/// form that gives just these data when they are played. Whether the steps make sense one behind the other is up to the
/// script. Throws ScriptError (VmeTokens.h) at the first thing that is wrong.
std::string AssembleVme(std::string_view script);

}  // namespace vme_script
