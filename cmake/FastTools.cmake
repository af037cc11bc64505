# ccache makes the second build of a tree nearly free; without it everything still works.
find_program(LUMORA_CCACHE ccache)
if(LUMORA_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${LUMORA_CCACHE}")
  set(CMAKE_OBJCXX_COMPILER_LAUNCHER "${LUMORA_CCACHE}")
endif()
