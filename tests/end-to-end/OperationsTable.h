// SPDX-License-Identifier: Apache-2.0
// What docs/operations.md and the headers of the services say that there is.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace orvane::test {

/// A row of the tables in docs/operations.md.
struct OperationRow {
  std::vector<std::string> services;
  std::vector<std::string> operations;  ///< "fetch", or "fetch (one)" where there are several.
  std::string verb;                     ///< Empty where nothing is sent.
  std::vector<std::string> paths;       ///< With words in braces.
  std::vector<std::string> commands;    ///< With arguments: "trips show ID", "user show [ID]".

  /// "UserService.fetch": every service with every operation.
  [[nodiscard]] std::vector<std::string> names() const;
  /// True when one of `paths` with something in the place of every word in braces is `path`.
  [[nodiscard]] bool isAt(const std::string& path) const;
};

[[nodiscard]] std::vector<OperationRow> documentedOperations();

/// "UserService.fetch" for everything in the headers of the services that answers an operation or a
/// handle.
[[nodiscard]] std::set<std::string> declaredOperations();

/// `name` without what stands behind its blank: the operation without its variant.
[[nodiscard]] std::string withoutVariant(const std::string& name);

}  // namespace orvane::test
