#pragma once

class Dictionary;

/// Prints the dictionary on std::cout as a header for C and C++: for each command that has a packet an enumeration of
/// its codes, one of its symbols, and a struct of its values.
///
///     enum VPDInfoCommandCodes
///     {
///         kBoB_SetVPDInfo = 52,
///         kBoB_GetVPDInfo = 53
///     };
///
/// It compiles when the names of the dictionary are names in C and no two commands have a symbol of the same name.
/// Throws std::runtime_error when a definition cannot be written.
void WriteHeader(const Dictionary& dictionary);
