#pragma once

#include <functional>

/// Where the VME player's texts for the user go.
using VmePrint = std::function<void(const char* text)>;

/// Standard output, flushed: the texts are signs of life.
void PrintToConsole(const char* text);
