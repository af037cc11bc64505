# Carried by every target of this project (link lumora_warnings), never by the libraries it uses.
add_library(lumora_warnings INTERFACE)
target_compile_options(lumora_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wold-style-cast -Wimplicit-fallthrough -Wformat=2)
if(LUMORA_WERROR)
  target_compile_options(lumora_warnings INTERFACE -Werror)
endif()
