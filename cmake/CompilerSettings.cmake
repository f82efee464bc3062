# What every target of the tree is compiled with.
add_library(compiler_settings INTERFACE)
target_compile_options(compiler_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  # Messages and debug information name files from the top of the tree, wherever it was built.
  -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler sees overlapping copies in "text" + std::string that are none.
  target_compile_options(compiler_settings INTERFACE -Wno-restrict)
endif()

option(FWDEPLOY_WERROR "Treat warnings as errors" ON)
if(FWDEPLOY_WERROR)
  target_compile_options(compiler_settings INTERFACE -Werror)
endif()
if(FWDEPLOY_SANITIZE)
  target_compile_options(compiler_settings INTERFACE
    -fsanitize=${FWDEPLOY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(compiler_settings INTERFACE -fsanitize=${FWDEPLOY_SANITIZE})
endif()
if(FWDEPLOY_COVERAGE)
  target_compile_options(compiler_settings INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(compiler_settings INTERFACE --coverage)
endif()
