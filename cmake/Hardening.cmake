# The run-time checks that distributions build their own programs with: the application reads what servers, pages and disk
# images send. Sanitizers bring checks of their own, and the platform's compiler on macOS has these as its defaults.
if(NOT LUMORA_SANITIZE AND NOT APPLE)
  add_compile_options(-fstack-protector-strong -fstack-clash-protection
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
  add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()
