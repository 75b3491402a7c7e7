// SPDX-License-Identifier: Apache-2.0
// What can go wrong with the file of a download.
#pragma once

#include <Orvane/Runtime/Export.h>

#include <cstdint>
#include <string>
#include <utility>

namespace orvane {

/// A download came to nothing on this side. What goes wrong on the way is a `TransportError`, or
/// `NetworkError::invalidStatusCode`.
class ORVANE_RUNTIME_EXPORT DownloadError {
 public:
  /// What kept the file from being written.
  enum class Kind : std::uint8_t {
    file,  ///< The file can't be created, written or renamed.
    busy,  ///< Another download to the same file is under way, in this process or another.
  };

  /// With what is known besides, in one line.
  explicit DownloadError(Kind kind, std::string message = {})
      : kind_(kind), message_(std::move(message)) {}

  /// What kept the file from being written.
  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  /// The kind and the details known, in one line, without the file's name.
  [[nodiscard]] std::string message() const;
  friend bool operator==(const DownloadError&, const DownloadError&) = default;

 private:
  Kind kind_;
  std::string message_;
};

}  // namespace orvane
