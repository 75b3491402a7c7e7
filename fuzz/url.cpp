// SPDX-License-Identifier: Apache-2.0
// Any bytes as a path component and as a query: where they are UTF-8 there is a URL, and it is one
// that can be read again.
#include <Orvane/Platform/Text.h>
#include <Orvane/Platform/URL.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static const auto root = orvane::URL::parse("https://backend.example/kavra/api/sdk");

  const auto resource = root->appendingPathComponent(text);
  if (resource.has_value() != orvane::isUTF8(text)) std::abort();
  if (!resource) return 0;
  const auto url = resource->settingQuery(text);
  if (!url || orvane::URL::parse(url->absoluteString()) != url) std::abort();
  if (url->host() != root->host() || !url->path().starts_with(root->path() + '/')) std::abort();
  if (url->settingQuery(std::nullopt) != resource) std::abort();

  // What a backend may send as a URL.
  if (const auto any = orvane::URL::parse(text)) {
    if (!any->appendingPathComponent("identity")) std::abort();
  }
  return 0;
}
