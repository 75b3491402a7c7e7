// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>

#include <cstdio>
#include <cstdlib>

namespace orvane {

void fatal(std::string_view message, std::string_view source, std::uint_least32_t line) noexcept {
  std::fprintf(stderr, "Fatal error: %.*s: file %.*s, line %lu\n", static_cast<int>(message.size()),
               message.data(), static_cast<int>(source.size()), source.data(),
               static_cast<unsigned long>(line));
  std::fflush(stderr);
  std::abort();
}

}  // namespace orvane
