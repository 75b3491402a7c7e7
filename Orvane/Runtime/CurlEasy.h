// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// One of libcurl's transfer handles, set up once and used for request after request.
#pragma once

#include <Orvane/Runtime/CurlRequestManager.h>

#include <curl/curl.h>

#include <array>
#include <memory>
#include <string>

namespace orvane {

/// A transfer handle. What requests have in common is set when it is made.
class CurlEasy {
 public:
  /// `options` must outlive the handle.
  explicit CurlEasy(const TransportOptions& options);

  [[nodiscard]] CURL* get() const noexcept { return handle_.get(); }

  /// Sets an option. A failure is remembered: see `failure`.
  template <class Value>
  void set(CURLoption option, Value value) noexcept {
    if (failure_ == CURLE_OK) failure_ = curl_easy_setopt(handle_.get(), option, value);
  }

  /// The first failure of `set` since this was last asked; `CURLE_OK` for none.
  [[nodiscard]] CURLcode failure() noexcept;

  template <class Value>
  [[nodiscard]] Value info(CURLINFO what) const noexcept {
    Value value{};
    curl_easy_getinfo(handle_.get(), what, &value);
    return value;
  }

  /// Whether the next transfer goes past the proxy of the options and the environment.
  void bypassProxy(bool bypasses) noexcept;

  /// What libcurl said about the failure of the last transfer.
  [[nodiscard]] std::string errorText() const { return errorText_.data(); }
  void clearErrorText() noexcept { errorText_[0] = '\0'; }

 private:
  struct Cleanup {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
  };

  void setLimits(const TransportOptions& options) noexcept;
  void setTrust(const TransportOptions& options) noexcept;

  std::unique_ptr<CURL, Cleanup> handle_;
  const char* proxy_;
  bool bypassesProxy_ = false;
  CURLcode failure_ = CURLE_OK;
  std::array<char, CURL_ERROR_SIZE> errorText_{};
};

}  // namespace orvane
