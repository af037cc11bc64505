# embed_files(OUTPUT file.cpp FILES a b c): turns files into one C++ source that defines
# datacentre::embeddedPageFile(name), so that the program needs nothing beside itself at run time.
# Run as a script (-P) it is the generator itself; the build calls it that way whenever a file changes.
if(CMAKE_SCRIPT_MODE_FILE)
  set(source "// Generated from the page's files.\n#include \"server/embedded_page_files.h\"\n\n#include <array>\n\n")
  string(APPEND source "namespace datacentre {\n\nnamespace {\n\n")
  set(cases "")
  set(number 0)
  string(REPLACE "|" ";" files "${FILES}")
  foreach(file IN LISTS files)
    get_filename_component(name "${file}" NAME)
    file(READ "${file}" hex HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
    string(APPEND source "constexpr auto kFile${number} = std::to_array<char>({${bytes}});\n")
    string(APPEND cases
      "    if (name == \"${name}\")\n        return std::string_view(kFile${number}.data(), kFile${number}.size());\n")
    math(EXPR number "${number} + 1")
  endforeach()
  string(APPEND source "\n} // namespace\n\nstd::optional<std::string_view> embeddedPageFile(std::string_view name) {\n")
  string(APPEND source "${cases}    return std::nullopt;\n}\n\n} // namespace datacentre\n")
  file(WRITE "${OUTPUT}" "${source}")
  return()
endif()

set(EMBED_FILES_SCRIPT ${CMAKE_CURRENT_LIST_FILE})

function(embed_files)
  cmake_parse_arguments(arg "" "OUTPUT" "FILES" ${ARGN})
  list(TRANSFORM arg_FILES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  list(JOIN arg_FILES "|" joined)
  add_custom_command(
    OUTPUT ${arg_OUTPUT}
    COMMAND ${CMAKE_COMMAND} "-DOUTPUT=${arg_OUTPUT}" "-DFILES=${joined}" -P ${EMBED_FILES_SCRIPT}
    DEPENDS ${arg_FILES} ${EMBED_FILES_SCRIPT}
    COMMENT "Embedding the join page"
    VERBATIM)
endfunction()
