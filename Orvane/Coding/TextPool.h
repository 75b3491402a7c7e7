// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
#pragma once

#include <Orvane/Platform/SharedText.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace orvane {

/// Copies the short texts of a document into common allocations. Whoever keeps one of them keeps
/// its allocation, which is therefore small.
class TextPool {
 public:
  [[nodiscard]] SharedText keep(std::string_view text);

 private:
  std::shared_ptr<char[]> block_;
  std::size_t blockSize_ = 0;
  std::size_t used_ = 0;
};

}  // namespace orvane
