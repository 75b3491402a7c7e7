// SPDX-License-Identifier: Apache-2.0
// How the library's values read in a failed test.
#pragma once

#include <Orvane/Platform/Error.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>

#include <gtest/gtest.h>

#include <ostream>

namespace orvane {

inline void PrintTo(const Error& error, std::ostream* out) { *out << error.message(); }
inline void PrintTo(const URL& url, std::ostream* out) { *out << url.absoluteString(); }
inline void PrintTo(const Unit&, std::ostream* out) { *out << "()"; }

template <class T>
void PrintTo(const Result<T>& result, std::ostream* out) {
  if (result.value()) *out << "success: " << testing::PrintToString(*result.value());
  if (result.error()) *out << "failure: " << result.error()->message();
  if (!result.value() && !result.error()) *out << "failure without an error";
}

}  // namespace orvane
