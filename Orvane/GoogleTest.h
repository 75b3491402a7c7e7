// SPDX-License-Identifier: Apache-2.0
// Points in time in the messages of GoogleTest. Records, outcomes, errors and URLs print themselves
// in every framework; a `Date` is a type of the standard library, for which GoogleTest looks
// nowhere else. To be included in place of gtest/gtest.h in every file of a test program: where
// some have it and others don't, the linker chooses one way for all. Not part of Orvane/Orvane.h or
// Orvane/Testing.h: whoever includes this has GoogleTest.
#pragma once

#include <Orvane/Platform/Date.h>

#include <gtest/gtest.h>

#include <ostream>

/// Prints "2024-05-13T07:30:00Z" in place of the date's bytes, and so for what holds one.
template <>
class testing::internal::UniversalPrinter<orvane::Date> {
 public:
  static void Print(const orvane::Date& date, std::ostream* out) {
    *out << orvane::rfc3339Text(date);
  }
};
