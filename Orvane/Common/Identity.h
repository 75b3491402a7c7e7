// SPDX-License-Identifier: Apache-2.0
// Who calls the backend.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Hash.h>

#include <cstddef>
#include <optional>
#include <string>

namespace orvane {

/// The calling application and the person who is signed in.
struct Identity {
  /// Names the application's programme; tells which backend to use.
  std::string apiKey;
  /// The person's identifier in the host's own system, where there is one.
  std::optional<std::string> externalReferenceID{};

  [[nodiscard]] HashValue hashValue() const { return hashOf(apiKey, externalReferenceID); }
  friend bool operator==(const Identity&, const Identity&) = default;
};

/// By the bytes of the key, then by those of the identifier; none comes first.
[[nodiscard]] ORVANE_EXPORT bool operator<(const Identity& left, const Identity& right) noexcept;

}  // namespace orvane
