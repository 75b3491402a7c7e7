// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// One request from the moment it is handed over until its handler has been called or dropped.
#pragma once

#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/CurlEasy.h>
#include <Orvane/Runtime/OutgoingRequest.h>

#include <curl/curl.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

class TransferLoop;

/// A request on its way, and its handle. Who calls or drops the handler is decided by one atomic
/// transition, from pending to claimed or cancelled; everything else belongs to the loop's thread.
/// The answer becomes a text, unless it is derived for another purpose.
class Transfer : public Request, public std::enable_shared_from_this<Transfer> {
 public:
  Transfer(std::shared_ptr<TransferLoop> loop, OutgoingRequest request,
           Completion<std::string> then)
      : loop_(std::move(loop)), request_(std::move(request)), then_(std::move(then)) {}

  bool cancel() override;
  [[nodiscard]] bool isFinished() const noexcept override;

  /// Calls the handler, unless the request has been cancelled.
  void complete(Result<std::string> outcome);

  [[nodiscard]] bool isPending() const noexcept {
    return state_.load(std::memory_order_acquire) == State::pending;
  }

  /// Writes the headers in libcurl's form. For the thread that makes the request, so that the
  /// loop's has less to do; the headers can't be changed afterwards.
  void writeHeaderLines();

  /// Takes a handle and tells it what to send, or answers why that can't be.
  [[nodiscard]] virtual std::optional<Error> prepare(std::unique_ptr<CurlEasy> easy);

  /// The handle, while it has one.
  [[nodiscard]] CurlEasy* easy() const noexcept { return easy_.get(); }

  /// What came of the transfer, which ended with `code`.
  [[nodiscard]] Result<std::string> outcome(CURLcode code);

  /// The transfer as an observer sees it.
  [[nodiscard]] Exchange exchange(const Result<std::string>& outcome, bool withSecrets) const;

  /// Gives the handle back, and lets go of what was sent.
  [[nodiscard]] virtual std::unique_ptr<CurlEasy> release();

  /// Its place among the loop's transfers.
  std::size_t index = 0;

 protected:
  /// What is sent; it may be changed until it is prepared.
  [[nodiscard]] OutgoingRequest& request() noexcept { return request_; }

  /// Takes the next bytes of a successful answer. False ends the transfer: see `problem`.
  [[nodiscard]] virtual bool take(const char* bytes, std::size_t count);
  /// Why `take` has answered false; absent when it has not.
  [[nodiscard]] virtual std::optional<Error> problem() const;
  /// What has been taken, the answer being complete.
  [[nodiscard]] virtual Result<std::string> taken();

 private:
  enum class State : std::uint8_t { pending, claimed, finished, cancelled };

  struct FreeList {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
  };
  using HeaderLines = std::unique_ptr<curl_slist, FreeList>;

  static std::size_t receive(char* bytes, std::size_t, std::size_t count, void* transfer) noexcept;

  void setVerb();
  [[nodiscard]] bool keep(const char* bytes, std::size_t count);
  void reserve(std::size_t count);

  const std::shared_ptr<TransferLoop> loop_;
  OutgoingRequest request_;
  Completion<std::string> then_;
  std::atomic<State> state_{State::pending};

  std::unique_ptr<CurlEasy> easy_;
  HeaderLines lines_;
  std::string answer_;
  std::size_t received_ = 0;
  bool isRefused_ = false;
  bool isTooLarge_ = false;
};

}  // namespace orvane
