# Carried by every target of this project (link lumora_warnings), never by the libraries it uses.
add_library(lumora_warnings INTERFACE)
set(LUMORA_WARNINGS
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wold-style-cast -Wimplicit-fallthrough -Wformat=2)
target_compile_options(lumora_warnings INTERFACE ${LUMORA_WARNINGS})
if(LUMORA_WERROR)
  target_compile_options(lumora_warnings INTERFACE -Werror)
endif()

# GCC 12 sees impossible lengths where it inlines std::string's operators into optimised code (fixed in GCC 13).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(lumora_warnings INTERFACE -Wno-array-bounds -Wno-restrict
    $<$<NOT:$<CONFIG:Debug>>:-Wno-stringop-overflow>)
endif()
