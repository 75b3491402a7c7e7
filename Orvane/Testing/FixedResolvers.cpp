// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/FixedResolvers.h>

namespace orvane {

OrvaneDetails exampleDetails() {
  return {*URL::parse("https://backend.example/kavra/api/sdk"),
          {{"Authorization", "Bearer token"}},
          "42"};
}

FixedOrvaneDetailsResolver::FixedOrvaneDetailsResolver(Answer answer) : Script(std::move(answer)) {}
FixedOrvaneDetailsResolver::~FixedOrvaneDetailsResolver() = default;

RequestHandle FixedOrvaneDetailsResolver::resolve(const Identity& identity,
                                                  Completion<OrvaneDetails> then) {
  return ask(identity, std::move(then));
}

FixedTokenResolver::FixedTokenResolver(Answer answer) : Script(std::move(answer)) {}
FixedTokenResolver::~FixedTokenResolver() = default;

RequestHandle FixedTokenResolver::resolve(const Identity& identity, std::optional<double> offset,
                                          Completion<std::string> resultHandler) {
  return ask({identity, offset}, std::move(resultHandler));
}

FixedEndpointResolver::FixedEndpointResolver(Answer answer) : Script(std::move(answer)) {}
FixedEndpointResolver::~FixedEndpointResolver() = default;

RequestHandle FixedEndpointResolver::resolveOrvaneURL(const std::string& apiKey,
                                                      Completion<URL> then) {
  return ask(apiKey, std::move(then));
}

FixedDeviceIdentifier::FixedDeviceIdentifier(std::string identifier)
    : identifier_(std::move(identifier)) {}
FixedDeviceIdentifier::~FixedDeviceIdentifier() = default;

}  // namespace orvane
