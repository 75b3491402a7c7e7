// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/CurlDownloader.h>
#include <Orvane/Runtime/FileTransfer.h>
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/TransferLoop.h>

#include <utility>

namespace orvane {

Result<std::shared_ptr<CurlDownloader>> CurlDownloader::make(TransportOptions options) {
  options.totalTimeout = std::chrono::milliseconds::zero();
  auto loop = TransferLoop::make(std::move(options));
  if (!loop.value()) return *std::move(loop).error();
  return std::shared_ptr<CurlDownloader>(new CurlDownloader(*std::move(loop).value()));
}

CurlDownloader::CurlDownloader(std::shared_ptr<TransferLoop> loop) : loop_(std::move(loop)) {}

CurlDownloader::~CurlDownloader() { shutdown(); }

RequestHandle CurlDownloader::download(URL url, std::string path, DownloadProgressHandler progress,
                                       Completion<Unit> then) {
  OutgoingRequest request{Verb::get, std::move(url), {}, {}};
  if (auto error = check(request, loop_->options().allowsPlainHTTP)) {
    then(*std::move(error));
    return std::make_shared<EmptyRequest>();
  }
  auto transfer = std::make_shared<FileTransfer>(loop_, std::move(request), std::move(path),
                                                 std::move(progress), std::move(then));
  loop_->start(transfer);
  return transfer;
}

bool CurlDownloader::waitUntilIdle(std::chrono::milliseconds timeout) {
  return loop_->waitUntilIdle(timeout);
}

bool CurlDownloader::shutdown(std::chrono::milliseconds timeout) {
  return loop_->shutdown(timeout);
}

}  // namespace orvane
