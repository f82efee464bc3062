#pragma once

class Dictionary;

/// Reads statements of the command log, a line of JSON on standard input for each, and tells on std::cout what was read
/// and how it is written:
///
///     {"direction":"send","statement":"VPDInfo Board UINT16 200 . ;"}
///     {"name":"VPDInfo","text":"\ntalc send VPDInfo Board UINT16 200 . ;","values":[["Board","UINT16",200]]}
///
/// The addresses that stand for a 64-bit value are different in each run; the text shows each of them as "<ptr>".
void StatementLines(const Dictionary& dictionary);
