# A library of headers alone that is installed for this machine, for a build for another one. The machine's folder of
# headers itself cannot be used, since it holds its C library's headers too.

# header_library(TARGET HEADER): the interface library TARGET gives the folder that HEADER (folder/file) stands in.
function(header_library target header)
  if(TARGET ${target})
    return()
  endif()
  get_filename_component(folder ${header} DIRECTORY)
  find_path(${folder}_headers ${header} PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ${folder}_headers)
    message(FATAL_ERROR "${header} is not installed")
  endif()
  set(door ${CMAKE_BINARY_DIR}/doors/${folder})
  file(MAKE_DIRECTORY ${door})
  file(CREATE_LINK ${${folder}_headers}/${folder} ${door}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} INTERFACE ${door})
endfunction()
