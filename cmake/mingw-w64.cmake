set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Libraries of headers alone are the same on both systems.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# What a test runs with, in the prefix that the environment names.
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)

# The programs need nothing but the system's own libraries.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
