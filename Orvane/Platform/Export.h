// SPDX-License-Identifier: Apache-2.0
// Marks what the library exports: everything else stays hidden, so that a shared build offers its
// public names only.
#pragma once

#if defined(_WIN32) && !defined(ORVANE_STATIC)
#if defined(ORVANE_BUILDING)
#define ORVANE_EXPORT __declspec(dllexport)
#else
#define ORVANE_EXPORT __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ORVANE_EXPORT [[gnu::visibility("default")]]
#else
#define ORVANE_EXPORT
#endif
