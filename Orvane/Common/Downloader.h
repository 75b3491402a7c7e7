// SPDX-License-Identifier: Apache-2.0
// Downloads to files: supplied by the host, for what is too large for a `RequestManager`.
#pragma once

#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

/// How far a download has come.
struct ORVANE_EXPORT DownloadProgress {
  /// Bytes of the file that are there, those of an earlier attempt included.
  std::int64_t received = 0;
  /// Bytes of the whole file; absent where the server does not tell.
  std::optional<std::int64_t> total{};

  friend bool operator==(const DownloadProgress&, const DownloadProgress&) = default;
};

/// Receives the progress of a download, one call at a time, `received` never falling.
using DownloadProgressHandler = UniqueFunction<void(const DownloadProgress&)>;

/// Fetches a URL into a file. Implementations:
///
/// - write to a temporary file in the target's folder, which must exist, and rename it to the
///   target's name when it is complete: under that name there is at any time the former file or the
///   whole new one, never a part;
/// - replace a file that is there under that name;
/// - keep what a cut or cancelled transfer has brought, and go on from there the next time where
///   the server supports ranges (RFC 9110, section 14) and still has the same file;
/// - call both handlers on a thread of their choice: `progress` now and then, `then` once and last,
///   neither of them after `cancel()` of the returned request has answered true, but for a call of
///   `progress` that is just under way;
/// - fail with `NetworkError::invalidStatusCode` when the server refuses, else with an error of
///   their own type.
///
/// A null `progress` is allowed. Any thread may call.
class ORVANE_EXPORT Downloader {
 public:
  Downloader() = default;
  Downloader(const Downloader&) = delete;
  Downloader& operator=(const Downloader&) = delete;
  virtual ~Downloader();

  /// @param path where the file is to stand, in the file system's own form.
  virtual RequestHandle download(URL url, std::string path, DownloadProgressHandler progress,
                                 Completion<Unit> then) = 0;
};

}  // namespace orvane
