// SPDX-License-Identifier: Apache-2.0
// Errors and the container tell types apart at run time. Whoever includes what needs it is told so,
// instead of wherever the compiler stumbles.
#pragma once

#if !defined(__cpp_rtti) && !defined(_CPPRTTI)
#error "Orvane needs run-time type information: compile without -fno-rtti (MSVC: with /GR)"
#endif

#include <typeinfo>  // IWYU pragma: export
