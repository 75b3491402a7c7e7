// SPDX-License-Identifier: Apache-2.0
//
// One sandbox to a data folder.
#pragma once

#include <filesystem>

namespace orvane::sandbox {

/// Holds the folder until it is destroyed, or the process ends however it ends.
class FolderLock {
 public:
  /// Throws std::runtime_error when another process, or another lock of this one, holds it.
  explicit FolderLock(const std::filesystem::path& folder);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int file_;
};

}  // namespace orvane::sandbox
