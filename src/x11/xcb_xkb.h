#pragma once

// <xcb/xkb.h> is a C header with a member that is a keyword of C++.
#define explicit explicitComponents  // NOLINT(clang-diagnostic-keyword-macro)
#include <xcb/xkb.h>
#undef explicit
