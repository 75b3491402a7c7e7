// SPDX-License-Identifier: Apache-2.0
// The downloader of the Runtime, on libcurl.
#pragma once

#include <Orvane/Common/Downloader.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/Export.h>

#include <chrono>
#include <memory>
#include <string>

namespace orvane {

class TransferLoop;

/// Downloads over HTTP/2 or HTTP/1.1, under the same rules as `CurlRequestManager` sends requests,
/// but without headers of the application's: no token leaves with a download.
///
/// A thread of its own does the work and calls the handlers, so that a slow disk holds up no
/// request; it starts with the first download. While a download is under way its bytes are in
/// "<path>.part"; a cut or cancelled one leaves them there, with "<path>.part.from" to tell where
/// they come from, where the server names the state of the file (a strong "ETag", or a
/// "Last-Modified" that lies back a minute). The next download goes on from there, or starts anew
/// when the server has another file by then. An answer that ends early fails, and so does
/// one that does not tell where the file ends. What can't be written is a `DownloadError`; so is a
/// second download to a file that is still being downloaded to, by this process or another.
///
/// `TransportOptions::totalTimeout` and `maximumAnswerSize` do not apply: a download may take as
/// long as bytes keep coming.
class ORVANE_RUNTIME_EXPORT CurlDownloader final : public Downloader {
 public:
  /// A downloader, or the `ConfigurationError` that tells which option can't work. Starts no
  /// thread.
  [[nodiscard]] static Result<std::shared_ptr<CurlDownloader>> make(TransportOptions options = {});
  /// As `shutdown()`.
  ~CurlDownloader() override;

  RequestHandle download(URL url, std::string path, DownloadProgressHandler progress,
                         Completion<Unit> then) override;

  /// As `CurlRequestManager::waitUntilIdle`, for downloads.
  [[nodiscard]] bool waitUntilIdle(std::chrono::milliseconds timeout);

  /// Ends the downloads and the thread, as `CurlRequestManager::shutdown` does.
  bool shutdown(std::chrono::milliseconds timeout = std::chrono::seconds(5));

 private:
  explicit CurlDownloader(std::shared_ptr<TransferLoop> loop);

  const std::shared_ptr<TransferLoop> loop_;
};

}  // namespace orvane
