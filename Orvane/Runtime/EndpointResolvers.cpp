// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/ConfiguredURL.h>
#include <Orvane/Runtime/EndpointResolvers.h>

#include <utility>

namespace orvane {
std::string UnknownAPIKey::message() const { return "no backend is known for the API key"; }

FunctionEndpointResolver::FunctionEndpointResolver(Function function)
    : function_(std::move(function)) {
  precondition(static_cast<bool>(function_), "an endpoint function is empty");
}

RequestHandle FunctionEndpointResolver::resolveOrvaneURL(const std::string& apiKey,
                                                         Completion<URL> then) {
  then(function_(apiKey));
  return std::make_shared<EmptyRequest>();
}

EndpointSource EndpointSource::fixed(const std::string& baseURL) {
  Result<URL> url = configuredURL("baseURL", baseURL);
  if (!url.value()) return EndpointSource(Made(*std::move(url).error()));
  return EndpointSource(
      [url = *std::move(url).value()](const std::string&) -> Result<URL> { return url; });
}

EndpointSource EndpointSource::mapped(const std::map<std::string, std::string>& byAPIKey) {
  std::map<std::string, URL> urls;
  for (const auto& [apiKey, baseURL] : byAPIKey) {
    Result<URL> url = configuredURL("baseURL", baseURL);
    if (!url.value()) return EndpointSource(Made(*std::move(url).error()));
    urls.emplace(apiKey, *std::move(url).value());
  }
  return EndpointSource([urls = std::move(urls)](const std::string& apiKey) -> Result<URL> {
    const auto found = urls.find(apiKey);
    if (found == urls.end()) return UnknownAPIKey{};
    return found->second;
  });
}

Result<std::shared_ptr<EndpointResolver>> EndpointSource::resolver() const {
  if (resolver_.error() || resolver_.value().value_or(nullptr)) return resolver_;
  return ConfigurationError("baseURL is missing");
}

}  // namespace orvane
