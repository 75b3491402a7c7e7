// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/URLComposer.h>

namespace orvane {

std::optional<URL> URLComposer::url(const OrvaneDetails& details) const {
  const std::optional<URL> resource = details.apiURL.appendingPathComponent(path(details.userID));
  if (!resource) return std::nullopt;
  return resource->settingQuery(query());
}

QueryItems& QueryItems::add(std::string_view item) {
  if (text_) {
    *text_ += '&';
  } else {
    text_.emplace();
  }
  *text_ += item;
  return *this;
}

QueryItems& QueryItems::add(std::string_view name, std::string_view value) {
  add(name);
  *text_ += '=';
  *text_ += value;
  return *this;
}

QueryItems& QueryItems::add(std::string_view name, std::int64_t value) {
  return add(name, std::to_string(value));
}

Headers standardJSONHeaders() {
  return {{"X-Requested-With", "XMLHttpRequest"}, {"Content-Type", "application/json"}};
}

}  // namespace orvane
