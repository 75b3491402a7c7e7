// SPDX-License-Identifier: Apache-2.0
//
// Bearer tokens: JSON Web Tokens signed with HMAC-SHA256 (RFC 7515, RFC 7519), which clients make
// themselves from the shared key.
#pragma once

#include "Time.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::sandbox {

class SigningKey {
 public:
  /// Reads the key from the file, 64 hexadecimal digits; makes the file when there is none.
  explicit SigningKey(const std::filesystem::path& file);

  [[nodiscard]] const std::string& hex() const { return hex_; }
  [[nodiscard]] std::string sign(const std::map<std::string, std::string>& texts,
                                 const std::map<std::string, std::int64_t>& numbers) const;

  /// The token's subject. Throws a 401 when the token is not well formed, not signed with this key,
  /// issued in the future or too long ago, or expired; clocks may differ by `leewaySeconds`.
  [[nodiscard]] std::string verify(std::string_view token, Milliseconds now) const;

  static constexpr std::int64_t leewaySeconds = 60;
  static constexpr std::int64_t longestAgeSeconds = 180;

 private:
  [[nodiscard]] std::string signature(std::string_view text) const;

  std::string hex_;
  std::string bytes_;
};

[[nodiscard]] std::string randomHex(std::size_t bytes);
/// RFC 4648, section 5, without padding.
[[nodiscard]] std::string base64url(std::string_view bytes);
[[nodiscard]] std::optional<std::string> decodeBase64url(std::string_view text);
[[nodiscard]] std::string randomBase64url(std::size_t bytes);
[[nodiscard]] bool equalInConstantTime(std::string_view left, std::string_view right);

}  // namespace orvane::sandbox
