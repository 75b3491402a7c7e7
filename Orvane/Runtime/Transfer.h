// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// One request from the moment it is handed over until its handler has been called or dropped.
#pragma once

#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/AnswerHead.h>
#include <Orvane/Runtime/ContentDecoder.h>
#include <Orvane/Runtime/CurlEasy.h>
#include <Orvane/Runtime/HeaderLines.h>
#include <Orvane/Runtime/HostLines.h>
#include <Orvane/Runtime/OpenSockets.h>
#include <Orvane/Runtime/OutgoingRequest.h>

#include <curl/curl.h>

#include <atomic>
#include <chrono>
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
  using Clock = std::chrono::steady_clock;

  /// @param end when the answer must be complete.
  Transfer(std::shared_ptr<TransferLoop> loop, OutgoingRequest request,
           Completion<std::string> then, Clock::time_point end = Clock::time_point::max());

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

  /// True when the transfer, which ended with `code`, is to be made once more over a new
  /// connection, for which the handle is ready then: its request was not sent, or may be sent
  /// again.
  [[nodiscard]] bool goesOutAgain(CURLcode code) noexcept;

  /// What came of the transfer, which ended with `code`; what ended it, where libcurl did not.
  [[nodiscard]] Result<std::string> outcome(CURLcode code, std::string details = {});

  /// The transfer as an observer sees it.
  [[nodiscard]] Exchange exchange(const Result<std::string>& outcome, bool withSecrets) const;

  /// Gives the handle back, and lets go of what was sent.
  [[nodiscard]] virtual std::unique_ptr<CurlEasy> release();

  /// What is sent; it may be changed until it is prepared.
  [[nodiscard]] OutgoingRequest& request() noexcept { return request_; }

  /// When a byte was last seen to move; absent before the request has a connection.
  [[nodiscard]] std::optional<Clock::time_point> lastMove() const noexcept { return lastMove_; }
  /// Bytes of memory that the answer takes.
  [[nodiscard]] std::size_t heldMemory() const noexcept { return held_; }

  // The loop's own notes.
  /// When it has to be complete.
  const Clock::time_point deadline;
  /// When the loop looks at the clock for it next; absent for never.
  std::optional<Clock::time_point> due;
  /// Its place among the transfers that are under way.
  std::size_t index = 0;
  /// Its host's line, and its place there while it waits.
  HostLine* hostLine = nullptr;
  HostLine::Waiting::iterator place;
  bool isWaiting = false;

 protected:
  /// The request has a connection, and goes out next. False ends the transfer: see `problem`.
  [[nodiscard]] virtual bool maySend(std::shared_ptr<OpenSocket> socket);

  /// The answer's status line and headers.
  [[nodiscard]] const AnswerHead& head() const noexcept { return head_; }

  /// Compressed bodies are decompressed before they are taken.
  [[nodiscard]] virtual bool decompresses() const noexcept { return true; }
  /// Takes the next bytes of a successful answer. False ends the transfer: see `problem`.
  [[nodiscard]] virtual bool take(const char* bytes, std::size_t count);
  /// Why `take` of a derived transfer has answered false; absent when it has not.
  [[nodiscard]] virtual std::optional<Error> problem() const { return std::nullopt; }
  /// What has been taken, the answer being complete.
  [[nodiscard]] virtual Result<std::string> taken();

 private:
  enum class State : std::uint8_t { pending, claimed, finished, cancelled };

  // What libcurl calls.
  static std::size_t receiveHead(char* bytes, std::size_t, std::size_t count, void* transfer);
  static std::size_t receive(char* bytes, std::size_t, std::size_t count, void* transfer);
  static int beforeSending(void* transfer, char* remoteAddress, char*, int remotePort,
                           int localPort);
  static int hasMoved(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent);
  static int hear(CURL*, curl_infotype kind, char* text, std::size_t size, void* transfer);

  void setVerb();
  void watchForFarewell() noexcept;
  [[nodiscard]] const curl_tlssessioninfo* session() const noexcept;
  void setCallbacks();
  void listen() noexcept;
  void note(std::string_view text) noexcept;
  [[nodiscard]] bool mayRepeat() const noexcept;
  [[nodiscard]] bool isConnectionWell() const noexcept;
  [[nodiscard]] bool isMultiplexed() const noexcept;
  [[nodiscard]] bool keepHead(std::string_view line);
  [[nodiscard]] bool keep(std::string_view bytes);
  [[nodiscard]] bool decode(std::string_view bytes);
  [[nodiscard]] bool reserve(std::size_t count);
  [[nodiscard]] bool fail(TransportError error);
  [[nodiscard]] bool takeReason(std::string_view bytes);
  [[nodiscard]] std::string refusalText() const;
  [[nodiscard]] Error refusal() const;
  [[nodiscard]] Error failureOf(CURLcode code, std::string details) const;

  const std::shared_ptr<TransferLoop> loop_;
  OutgoingRequest request_;
  Completion<std::string> then_;
  std::atomic<State> state_{State::pending};

  std::unique_ptr<CurlEasy> easy_;
  std::optional<HeaderLines> lines_;
  AnswerHead head_;
  std::unique_ptr<ContentDecoder> decoder_;
  std::string answer_;
  std::size_t received_ = 0;
  std::size_t held_ = 0;
  std::optional<TransportError> failure_;
  std::optional<Clock::time_point> lastMove_;
  bool needsFarewell_ = false;  // the end of the connection is that of the answer
  bool hasFarewell_ = false;
  curl_off_t sent_ = 0;
  int attempts_ = 0;
  std::shared_ptr<OpenSocket> socket_;  // of the last attempt's connection
  std::uint32_t stream_ = 0;            // and its number there (HTTP/2)
  bool isRefused_ = false;              // the server says that it has not acted on it
  bool isConnectionDead_ = false;       // and nothing was sent over it
};

}  // namespace orvane
