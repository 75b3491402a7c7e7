// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// One of libcurl's transfer handles.
#pragma once

#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/OpenSockets.h>

#include <curl/curl.h>

#include <array>
#include <memory>
#include <string>

namespace orvane {

/// A transfer handle, used for request after request. What requests have in common is set when it
/// is made, and again by `reset`.
class CurlEasy {
 public:
  /// `options` and `sockets` must outlive the handle.
  CurlEasy(const TransportOptions& options, OpenSockets& sockets);

  [[nodiscard]] CURL* get() const noexcept { return handle_.get(); }

  /// Makes the handle as good as new: libcurl counts in it what went wrong with former requests,
  /// and gives the next one up for that.
  void reset() noexcept;

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

  /// A header of the answer; empty where there is none.
  [[nodiscard]] std::string header(const char* name) const;

  /// Sends the next transfer past the proxy of the options and the environment.
  void bypassProxy() noexcept { set(CURLOPT_PROXY, ""); }

  /// True when libcurl has said something about a failure.
  [[nodiscard]] bool hasComplained() const noexcept { return errorText_[0] != '\0'; }
  /// What libcurl said about the failure of the last transfer.
  [[nodiscard]] std::string errorText() const { return errorText_.data(); }

 private:
  struct Cleanup {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
  };

  void setUp() noexcept;
  void setLimits() noexcept;
  void setProxy() noexcept;
  void setTrust() noexcept;
  void setIdentity() noexcept;
  void setSource(CURLoption file, const std::string& path, CURLoption blob,
                 const std::string& pem) noexcept;

  const TransportOptions& options_;
  OpenSockets& sockets_;
  const std::string pins_;
  std::unique_ptr<CURL, Cleanup> handle_;
  CURLcode failure_ = CURLE_OK;
  std::array<char, CURL_ERROR_SIZE> errorText_{};
};

}  // namespace orvane
