// SPDX-License-Identifier: Apache-2.0
// What a host supplies so that the backend can be found, and called in the name of a person.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>

#include <optional>
#include <string>

namespace orvane {

/// Tells where the backend of a programme is.
class ORVANE_EXPORT EndpointResolver {
 public:
  EndpointResolver() = default;
  EndpointResolver(const EndpointResolver&) = delete;
  EndpointResolver& operator=(const EndpointResolver&) = delete;
  virtual ~EndpointResolver();

  /// Answers the backend's base URL, with scheme and host, for an `Identity::apiKey`. Any thread
  /// may call. The handler is to be called once, on a thread of the implementation's choice, also
  /// inside the call; answers after the first are dropped.
  virtual RequestHandle resolveOrvaneURL(const std::string& apiKey, Completion<URL> then) = 0;
};

/// Makes the tokens with which a person's calls are authenticated.
class ORVANE_EXPORT TokenResolver {
 public:
  TokenResolver() = default;
  TokenResolver(const TokenResolver&) = delete;
  TokenResolver& operator=(const TokenResolver&) = delete;
  virtual ~TokenResolver();

  /// Answers a bearer token (RFC 6750) for `identity`.
  /// @param offset seconds to add to the local clock when the token's times are computed; absent as
  ///   long as the clock has not been found wrong.
  /// Any thread may call. The handler is to be called once, on a thread of the implementation's
  /// choice, also inside the call; answers after the first are dropped.
  virtual RequestHandle resolve(const Identity& identity, std::optional<double> offset,
                                Completion<std::string> resultHandler) = 0;
};

/// Names this device.
class ORVANE_EXPORT DeviceIdentifier {
 public:
  DeviceIdentifier() = default;
  DeviceIdentifier(const DeviceIdentifier&) = delete;
  DeviceIdentifier& operator=(const DeviceIdentifier&) = delete;
  virtual ~DeviceIdentifier();

  /// The device's identifier, the same for the life of the installation. Any thread.
  [[nodiscard]] virtual std::string current() const = 0;
};

}  // namespace orvane
