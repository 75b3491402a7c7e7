// SPDX-License-Identifier: Apache-2.0
// Name lookups that take as long as a test wants.
#pragma once

#include <cstddef>
#include <string>

namespace orvane {

/// While it lives, looking up "stuck.test" takes: every lookup of the process goes through it,
/// those of other names to the system. Its end lets all of them go, as names that are not known,
/// and waits until they have gone.
class StuckNameLookups {
 public:
  StuckNameLookups();
  ~StuckNameLookups();
  StuckNameLookups(const StuckNameLookups&) = delete;
  StuckNameLookups& operator=(const StuckNameLookups&) = delete;

  /// Waits until so many lookups have begun.
  void waitFor(std::size_t count) const;

  static constexpr const char* host = "stuck.test";
};

}  // namespace orvane
