// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Which of the compiler's sanitizers watches.
#pragma once

namespace orvane {

#if defined(__has_feature)
inline constexpr bool hasAddressSanitizer = __has_feature(address_sanitizer);
inline constexpr bool hasThreadSanitizer = __has_feature(thread_sanitizer);
#else
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool hasAddressSanitizer = true;
#else
inline constexpr bool hasAddressSanitizer = false;
#endif
#ifdef __SANITIZE_THREAD__
inline constexpr bool hasThreadSanitizer = true;
#else
inline constexpr bool hasThreadSanitizer = false;
#endif
#endif

}  // namespace orvane
