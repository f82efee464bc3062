#pragma once

#include <string>

/// What every tool does on its console in the same way: exit codes, complaints, and an output that is whole or an
/// error.

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kBadUsage = 2;

/// Says on standard error, in one line whatever the text holds, why `program` stops. Gives `exitCode`.
int Complain(const char* program, std::string text, int exitCode);

/// Sees to it that all of std::cout has left the program. Throws std::runtime_error when it could not.
void FinishOutput();
