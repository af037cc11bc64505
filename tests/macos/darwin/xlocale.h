// macOS's per-locale functions, as far as libc++'s own streams call them. The platform's own; no source uses them.
#pragma once

#include <locale.h>
#include <stdlib.h>
#include <wchar.h>

#include <__support/xlocale/__strtonum_fallback.h>

#ifdef __cplusplus
extern "C" {
#endif
int snprintf_l(char* buffer, size_t size, locale_t locale, const char* format, ...);
int asprintf_l(char** result, locale_t locale, const char* format, ...);
int sscanf_l(const char* text, locale_t locale, const char* format, ...);
#ifdef __cplusplus
}
#endif
