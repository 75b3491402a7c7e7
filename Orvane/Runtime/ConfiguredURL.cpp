// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/ConfiguredURL.h>
#include <Orvane/Runtime/OutgoingRequest.h>

#include <optional>
#include <utility>

namespace orvane {

Result<URL> configuredURL(std::string_view option, const std::string& text) {
  const auto problem = [option](std::string_view what) {
    return ConfigurationError(concatenated({option, what}));
  };
  std::optional<URL> url = URL::parse(text);
  if (!url || url->host().empty()) return problem(" is no URL with a host");
  if (url->scheme() != "https" && url->scheme() != "http") return problem(" must be https");
  if (url->query()) return problem(" must not have a query");
  OutgoingRequest request{Verb::get, *url, {}, {}};
  if (check(request, true)) {
    return problem(" has a port that does not exist, or a user or password");
  }
  return *std::move(url);
}

}  // namespace orvane
