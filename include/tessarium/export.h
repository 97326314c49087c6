// Marks what the shared library exports; with hidden default visibility, everything else stays
// private to it.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define TESSARIUM_API __attribute__((visibility("default")))
#else
#define TESSARIUM_API
#endif
