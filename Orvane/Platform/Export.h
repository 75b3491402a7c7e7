// SPDX-License-Identifier: Apache-2.0
// Marks what the library exports: everything else stays hidden, so that a shared build offers its
// public names only, and a static one nothing at all: whoever links it into a shared library of
// their own does not offer Orvane's names as well.
//
// Each library has a macro of its own, so that Orvane::Runtime, while it is built, exports what is
// its own and imports what is Orvane's.
#pragma once

#if defined(ORVANE_STATIC)
// Hidden as the whole library is compiled, and not by an attribute: GCC would warn about every
// class of a user's that has one of these as a member.
#define ORVANE_EXPORTED
#define ORVANE_IMPORTED
#elif defined(_WIN32)
#define ORVANE_EXPORTED __declspec(dllexport)
#define ORVANE_IMPORTED __declspec(dllimport)
#elif defined(__GNUC__)
#define ORVANE_EXPORTED [[gnu::visibility("default")]]
#define ORVANE_IMPORTED ORVANE_EXPORTED
#else
#define ORVANE_EXPORTED
#define ORVANE_IMPORTED
#endif

#if defined(ORVANE_BUILDING)
#define ORVANE_EXPORT ORVANE_EXPORTED
#else
#define ORVANE_EXPORT ORVANE_IMPORTED
#endif
