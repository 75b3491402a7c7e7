// SPDX-License-Identifier: Apache-2.0
//
// Who may see the inspector's page: a code opens a session once, and sessions end with the process.
#pragma once

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::sandbox {

/// Any thread may use it. Texts are compared in constant time.
class Sessions {
 public:
  struct Session {
    std::string id;     // of the cookie
    std::string token;  // which changes must carry (a defence against cross-site requests)
  };

  /// A code for one browser: 24 random bytes in the URL's alphabet of base 64 (RFC 4648, section
  /// 5).
  [[nodiscard]] std::string newCode();
  /// A new session for a code, which is used up; nothing for any other text.
  [[nodiscard]] std::optional<Session> redeem(std::string_view code);
  [[nodiscard]] std::optional<Session> find(std::string_view id) const;

 private:
  static constexpr std::size_t most = 64;  // codes and sessions; the oldest go first

  mutable std::mutex mutex_;
  std::deque<std::string> codes_;
  std::deque<Session> sessions_;
};

}  // namespace orvane::sandbox
