// SPDX-License-Identifier: Apache-2.0
// A folder of a test's own.
#pragma once

#include <filesystem>
#include <string>

namespace orvane {

/// Made when it is built, removed with everything in it when its scope ends.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// The path of something in it.
  [[nodiscard]] std::string operator/(const std::string& name) const {
    return (path_ / name).string();
  }

 private:
  std::filesystem::path path_;
};

/// The bytes of a file; empty when there is none.
[[nodiscard]] std::string contentsOf(const std::string& path);
void writeFile(const std::string& path, const std::string& contents);

}  // namespace orvane
