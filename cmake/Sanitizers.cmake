if(LUMORA_SANITIZE)
  add_compile_options(-fsanitize=${LUMORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${LUMORA_SANITIZE})
  # GCC 12 sees false "may be used uninitialized" and "restrict" findings through sanitizer instrumentation.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized -Wno-restrict)
  endif()
endif()
