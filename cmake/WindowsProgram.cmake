# windows_program(TARGET DESCRIPTION): gives a program of this tree what the system shows and asks of it: version
# information and a manifest. Other systems have neither.
function(windows_program target description)
  if(NOT WIN32)
    return()
  endif()
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/windows/Program.rc.in ${resources} @ONLY)
  set_source_files_properties(${resources} PROPERTIES
    OBJECT_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/windows/program.manifest)
  target_sources(${target} PRIVATE ${resources})
endfunction()
