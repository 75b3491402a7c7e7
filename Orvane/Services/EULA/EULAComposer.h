// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request that accepts the programme's terms.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <optional>
#include <string>

namespace orvane {

/// Accepts the terms in the current user's name.
class EULAComposer final : public URLComposer {
 public:
  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<Result<RequestBody>> body() const override;
};

}  // namespace orvane
