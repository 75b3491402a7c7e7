// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Version.h>

#define ORVANE_TEXT_OF(number) #number
#define ORVANE_VERSION_TEXT(major_, minor_, patch_) \
  ORVANE_TEXT_OF(major_) "." ORVANE_TEXT_OF(minor_) "." ORVANE_TEXT_OF(patch_)

namespace orvane {

int libraryVersion() noexcept { return ORVANE_VERSION; }

std::string_view libraryVersionText() noexcept {
  return ORVANE_VERSION_TEXT(ORVANE_VERSION_MAJOR, ORVANE_VERSION_MINOR, ORVANE_VERSION_PATCH);
}

}  // namespace orvane
