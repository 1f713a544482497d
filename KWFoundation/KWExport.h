#pragma once

// Symbols are hidden by default; KW_EXPORT names what the libraries give to their users.
#if defined(__GNUC__)
#define KW_EXPORT __attribute__((visibility("default")))
#else
#define KW_EXPORT
#endif
