// Marks what the shared library exports; with hidden default visibility, everything else stays
// private to it.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define TESSARIUM_API __attribute__((visibility("default")))
// Everything a public header declares between these two is exported, its templates' explicit
// instantiations included.
#define TESSARIUM_EXPORT_BEGIN _Pragma("GCC visibility push(default)")
#define TESSARIUM_EXPORT_END _Pragma("GCC visibility pop")
#else
#define TESSARIUM_API
#define TESSARIUM_EXPORT_BEGIN
#define TESSARIUM_EXPORT_END
#endif
