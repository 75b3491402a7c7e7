// SPDX-License-Identifier: Apache-2.0
//
// Copies of all data, by name, to go back to.
#pragma once

#include "store/Database.h"

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace orvane::sandbox {

/// A name is up to 64 letters, digits, dots, dashes and underlines of ASCII, no dot in front: a 400
/// is thrown for any other. Any thread may use it.
class Snapshots {
 public:
  explicit Snapshots(std::filesystem::path folder) : folder_(std::move(folder)) {}

  /// Replaces a former one of that name.
  void save(const std::string& name, const DatabaseConnection& data);
  /// Throws a 404 where there is none of that name.
  void restore(const std::string& name, DatabaseConnection& data);
  void remove(const std::string& name);
  /// In the order of their names.
  [[nodiscard]] std::vector<std::string> names();

 private:
  [[nodiscard]] std::filesystem::path existing(const std::string& name) const;
  [[nodiscard]] std::filesystem::path file(const std::string& name) const;

  const std::filesystem::path folder_;
  std::mutex mutex_;
};

}  // namespace orvane::sandbox
