# Writes a source that holds files as named blocks of text, for the platform's TextBlocks.
#
#   cmake -DOUTPUT=FILE.cpp -DINPUTS=a.tcd,b.tcd -P EmbedText.cmake     constants of C++
#   cmake -DOUTPUT=FILE.rc -DINPUTS=a.tcd,b.tcd -P EmbedText.cmake      resources of a Windows program
#
# A block's name is its file's name without the ending, which tells the type. Blocks stand in the order of INPUTS.
set(type_of_.tcd RT_TCD_FILE)
set(type_of_.hwc RT_HWC_FILE)

string(REPLACE "," ";" inputs "${INPUTS}")
if(OUTPUT MATCHES "[.]rc$")
  set(rows "")
  foreach(input IN LISTS inputs)
    get_filename_component(name ${input} NAME_WLE)
    get_filename_component(ending ${input} LAST_EXT)
    string(APPEND rows "${name} ${type_of_${ending}} \"${input}\"\n")
  endforeach()
  file(WRITE ${OUTPUT} "${rows}")
  return()
endif()

set(arrays "")
set(rows "")
foreach(input IN LISTS inputs)
  get_filename_component(name ${input} NAME_WLE)
  get_filename_component(ending ${input} LAST_EXT)
  file(READ ${input} bytes HEX)
  string(REGEX REPLACE "(................................................................)" "\\1\n" bytes "${bytes}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
  string(APPEND arrays "constexpr unsigned char ${name}[] = {\n${bytes}};\n")
  string(APPEND rows
    "    {\"${type_of_${ending}}\", \"${name}\", {reinterpret_cast<const char*>(${name}), sizeof ${name}}},\n")
endforeach()
file(WRITE ${OUTPUT} "// Generated from the files of data/.
#include \"platform/EmbeddedBlocks.h\"

namespace platform {
namespace {

${arrays}
const EmbeddedBlock kBlocks[] = {
${rows}};

}  // namespace

std::span<const EmbeddedBlock> EmbeddedBlocks() {
  return kBlocks;
}

}  // namespace platform
")
