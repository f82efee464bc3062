#pragma once

class Dictionary;

/// Print every command of the dictionary on std::cout, in the library's own texts and with nothing between them.

/// In the dictionary language: what is printed is a dictionary of the same commands.
void WriteDefinitions(const Dictionary& dictionary);
/// For people, with the places of the values in the packet.
void DumpDefinitions(const Dictionary& dictionary);
