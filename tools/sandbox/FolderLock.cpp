// SPDX-License-Identifier: Apache-2.0
#include "FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace orvane::sandbox {

FolderLock::FolderLock(const std::filesystem::path& folder)
    : file_(::open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
  if (file_ >= 0 && ::flock(file_, LOCK_EX | LOCK_NB) == 0) return;
  const std::error_code error{errno, std::generic_category()};
  if (file_ >= 0) ::close(file_);
  if (error == std::errc::operation_would_block) {
    throw std::runtime_error("another orvane-sandbox runs on the data in " + folder.string() +
                             "; its ready.json says where, and --data takes another folder");
  }
  throw std::system_error(error, "can't lock " + folder.string());
}

FolderLock::~FolderLock() { ::close(file_); }

}  // namespace orvane::sandbox
