// SPDX-License-Identifier: Apache-2.0
//
// Tokens and e-mail addresses in texts, and what stands for them where nobody shall read them.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace orvane::sandbox {

class StandIns {
 public:
  /// The same stand-in for the same secret: user1@example.invalid (RFC 2606), token-1.
  StandIns() = default;
  /// The same stand-in for all of them, to compare texts by the rest.
  [[nodiscard]] static StandIns uniform();

  /// The text with a stand-in for each e-mail address (plain, percent-encoded or escaped as in
  /// JSON), JSON Web Token and development token.
  [[nodiscard]] std::string in(std::string_view text);
  /// The query, in which the values of parameters that are called codes or tokens go as well.
  [[nodiscard]] std::string inQuery(std::string_view query);
  /// For a text that is a token as a whole.
  [[nodiscard]] std::string forToken(std::string_view token);

 private:
  [[nodiscard]] std::string forAddress(std::string_view name, std::string_view domain,
                                       std::string_view at);

  bool isUniform_ = false;
  std::map<std::string, std::size_t> tokens_;
  std::map<std::string, std::size_t> addresses_;
};

}  // namespace orvane::sandbox
