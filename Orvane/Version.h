// SPDX-License-Identifier: Apache-2.0
// Which version of the library this is. Versions are those of Semantic Versioning 2.0.0;
// docs/compatibility.md says what each part promises.
#pragma once

#include <Orvane/Platform/Export.h>

#include <string_view>

/// @name The version of these headers, for the preprocessor
/// `#if ORVANE_VERSION >= ORVANE_MAKE_VERSION(0, 2, 0)`
/// @{
#define ORVANE_VERSION_MAJOR 0
#define ORVANE_VERSION_MINOR 1
#define ORVANE_VERSION_PATCH 0
/// A number that grows with the version; minor and patch are below a thousand.
#define ORVANE_MAKE_VERSION(major_, minor_, patch_) ((major_)*1000000 + (minor_)*1000 + (patch_))
#define ORVANE_VERSION \
  ORVANE_MAKE_VERSION(ORVANE_VERSION_MAJOR, ORVANE_VERSION_MINOR, ORVANE_VERSION_PATCH)
/// @}

namespace orvane {

/// `ORVANE_VERSION` of the headers that this file was compiled with.
inline constexpr int headerVersion = ORVANE_VERSION;

/// `ORVANE_VERSION` of the library that runs: with shared libraries it may be a later one than that
/// of the headers. Any thread.
[[nodiscard]] ORVANE_EXPORT int libraryVersion() noexcept;

/// The same for people: "0.1.0".
[[nodiscard]] ORVANE_EXPORT std::string_view libraryVersionText() noexcept;

}  // namespace orvane
