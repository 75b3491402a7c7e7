// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/SharedText.h>

#include <algorithm>

namespace orvane {

SharedText::SharedText(std::string_view text) : size_(text.size()) {
  const auto data = std::make_shared_for_overwrite<char[]>(text.size());
  std::copy(text.begin(), text.end(), data.get());
  data_ = std::shared_ptr<const char>(data, data.get());
}

}  // namespace orvane
