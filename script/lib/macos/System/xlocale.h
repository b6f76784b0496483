// Functions of macOS that take a locale; its C++ library is written with them.
#pragma once

#include <ctype.h>
#include <locale.h>
#include <stddef.h>
#include <stdlib.h>
#include <wchar.h>

// Here they are functions; macros of this system's would look into its own record of a locale.
#undef isdigit_l
#undef isxdigit_l

extern "C" {
struct lconv* localeconv_l(locale_t locale);
int asprintf_l(char** text, locale_t locale, const char* format, ...);
int snprintf_l(char* text, size_t size, locale_t locale, const char* format, ...);
int sscanf_l(const char* text, locale_t locale, const char* format, ...);
float strtof_l(const char* text, char** end, locale_t locale);
double strtod_l(const char* text, char** end, locale_t locale);
long double strtold_l(const char* text, char** end, locale_t locale);
long long strtoll_l(const char* text, char** end, int base, locale_t locale);
unsigned long long strtoull_l(const char* text, char** end, int base, locale_t locale);
}
