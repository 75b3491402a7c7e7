// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/TextPool.h>

#include <algorithm>

namespace orvane {
namespace {

constexpr std::size_t smallestBlock = 256;
constexpr std::size_t largestBlock = 4096;
// A longer text has an allocation of its own.
constexpr std::size_t longestInBlock = largestBlock / 8;

}  // namespace

SharedText TextPool::keep(std::string_view text) {
  if (text.size() > longestInBlock) return SharedText(text);
  if (blockSize_ - used_ < text.size()) {
    blockSize_ = std::clamp(2 * blockSize_, std::max(smallestBlock, text.size()), largestBlock);
    // Not `make_shared_for_overwrite`, which walks over every byte of an array all the same.
    block_ = std::make_unique_for_overwrite<char[]>(blockSize_);
    used_ = 0;
  }
  char* const place = block_.get() + used_;
  std::copy(text.begin(), text.end(), place);
  used_ += text.size();
  return {std::shared_ptr<const char>(block_, place), text.size()};
}

}  // namespace orvane
