// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/ContentRange.h>

#include <charconv>

namespace orvane {
namespace {

std::optional<std::int64_t> takeNumber(std::string_view& text) {
  std::int64_t number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failure != std::errc() || number < 0) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

bool takeText(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

}  // namespace

std::optional<ContentRange> contentRange(std::string_view text) {
  if (!takeText(text, "bytes ")) return std::nullopt;
  const auto first = takeNumber(text);
  if (!first || !takeText(text, "-")) return std::nullopt;
  if (!takeNumber(text) || !takeText(text, "/")) return std::nullopt;
  const auto total = takeNumber(text);
  if (!total || !text.empty()) return std::nullopt;
  return ContentRange{*first, *total};
}

}  // namespace orvane
