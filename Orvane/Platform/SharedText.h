// SPDX-License-Identifier: Apache-2.0
// A text that does not change and that its copies share.
#pragma once

#include <Orvane/Platform/Export.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace orvane {

/// A text whose copies all refer to one place in memory. Several texts may live in one allocation,
/// which goes when the last of them does. Copies may be used on different threads.
class ORVANE_EXPORT SharedText {
 public:
  /// The empty text.
  SharedText() noexcept = default;
  /// A copy of `text`.
  explicit SharedText(std::string_view text);
  /// The text of `size` bytes at `data`, which somebody else has written.
  SharedText(std::shared_ptr<const char> data, std::size_t size) noexcept
      : data_(std::move(data)), size_(size) {}
  SharedText(const SharedText&) = default;
  /// Leaves the empty text behind.
  SharedText(SharedText&& other) noexcept
      : data_(std::move(other.data_)), size_(std::exchange(other.size_, 0)) {}
  SharedText& operator=(const SharedText&) = default;
  SharedText& operator=(SharedText&& other) noexcept {
    data_ = std::move(other.data_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  ~SharedText() = default;

  /// Valid as long as this text, or a copy of it, is there.
  [[nodiscard]] std::string_view view() const noexcept { return {data_.get(), size_}; }

  /// True for equal texts, wherever they are.
  friend bool operator==(const SharedText& left, const SharedText& right) noexcept {
    return left.view() == right.view();
  }

 private:
  std::shared_ptr<const char> data_;
  std::size_t size_ = 0;
};

}  // namespace orvane
