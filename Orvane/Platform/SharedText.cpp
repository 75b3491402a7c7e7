// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/SharedText.h>

#include <algorithm>
#include <memory>

namespace orvane {

SharedText::SharedText(std::string_view text) : size_(text.size()) {
  auto data = std::make_unique_for_overwrite<char[]>(text.size());
  std::copy(text.begin(), text.end(), data.get());
  data_ = std::shared_ptr<const char>(data.release(), std::default_delete<const char[]>());
}

}  // namespace orvane
