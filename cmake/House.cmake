# The house: one static library a room. A room can include its own headers and those of the rooms it uses, and no
# others, because the include path of a room holds links to just these. So an include that climbs fails to build.

# house_room(NAME [SOURCES file...] [HEADERS file...] [USES room...] [BARE])
#
# Makes the library NAME of the current source folder. Its headers are included as "<folder>/<file>", <folder> being
# the current folder's name; BARE leaves these out. HEADERS are included by their bare name.
function(house_room name)
  cmake_parse_arguments(ROOM "BARE" "" "SOURCES;HEADERS;USES" ${ARGN})
  get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set(door ${CMAKE_BINARY_DIR}/doors/${name})
  file(MAKE_DIRECTORY ${door})
  if(NOT ROOM_BARE)
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${door}/${folder} SYMBOLIC)
  endif()
  foreach(header IN LISTS ROOM_HEADERS)
    get_filename_component(file ${header} NAME)
    get_filename_component(path ${header} ABSOLUTE)
    file(CREATE_LINK ${path} ${door}/${file} SYMBOLIC)
  endforeach()
  if(ROOM_SOURCES)
    add_library(${name} STATIC ${ROOM_SOURCES})
    set(scope PUBLIC)
    target_link_libraries(${name} PRIVATE compiler_settings)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${door})
  target_link_libraries(${name} ${scope} ${ROOM_USES})
endfunction()
