// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/DownloadError.h>

namespace orvane {

std::string DownloadError::message() const {
  const std::string text = kind_ == Kind::file ? "the file can't be written"
                                               : "another download to the same file is under way";
  return message_.empty() ? text : text + ": " + message_;
}

}  // namespace orvane
