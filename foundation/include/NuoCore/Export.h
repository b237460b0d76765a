#pragma once

// Marks a class or function as part of the public interface of the shared library. Everything
// without the mark is hidden. A static build needs no mark and defines NUO_STATIC.
#if defined(NUO_STATIC)
#define NUO_API
#else
#define NUO_API __attribute__((visibility("default")))
#endif
