// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Platform/Recycled.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/Transfer.h>
#include <Orvane/Runtime/TransferLoop.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace orvane {

Result<std::shared_ptr<CurlRequestManager>> CurlRequestManager::make(TransportOptions options) {
  auto loop = TransferLoop::make(std::move(options));
  if (!loop.value()) return *std::move(loop).error();
  return std::shared_ptr<CurlRequestManager>(new CurlRequestManager(*std::move(loop).value()));
}

CurlRequestManager::CurlRequestManager(std::shared_ptr<TransferLoop> loop)
    : loop_(std::move(loop)) {}

CurlRequestManager::~CurlRequestManager() { shutdown(); }

RequestHandle CurlRequestManager::send(Verb verb, URL url, std::string body, Headers headers,
                                       Completion<std::string> then) {
  return send(verb, std::move(url), std::move(body), std::move(headers),
              Transfer::Clock::time_point::max(), std::move(then));
}

RequestHandle CurlRequestManager::send(Verb verb, URL url, std::string body, Headers headers,
                                       std::chrono::steady_clock::time_point deadline,
                                       Completion<std::string> then) {
  OutgoingRequest request{verb, std::move(url), std::move(body), std::move(headers)};
  if (auto error = check(request, loop_->options().allowsPlainHTTP)) {
    then(*std::move(error));
    return std::make_shared<EmptyRequest>();
  }
  const auto limit = loop_->options().totalTimeout;
  if (limit.count() > 0) deadline = std::min(deadline, deadlineAfter(limit));
  auto transfer = makeRecycled<Transfer>(loop_, std::move(request), std::move(then), deadline);
  transfer->writeHeaderLines();
  loop_->start(transfer);
  return transfer;
}

bool CurlRequestManager::waitUntilIdle(std::chrono::milliseconds timeout) {
  return loop_->waitUntilIdle(timeout);
}

bool CurlRequestManager::shutdown(std::chrono::milliseconds timeout) {
  return loop_->shutdown(timeout);
}

}  // namespace orvane
