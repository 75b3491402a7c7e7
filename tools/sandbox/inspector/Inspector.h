// SPDX-License-Identifier: Apache-2.0
//
// The inspector: a page that shows in a browser what the sandbox does, and lets it do other things.
#pragma once

#include "Backend.h"
#include "http/Message.h"
#include "inspector/Feed.h"
#include "inspector/Sessions.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

class Inspector {
 public:
  /// @param hosts names and addresses by which clients know the sandbox, besides the loopback's.
  Inspector(Backend& backend, std::vector<std::string> hosts);

  /// Whether the request is for the page; it is no request to the backend then.
  [[nodiscard]] static bool claims(const Request& request);
  /// Never throws: what is wrong with the request is in the reply.
  [[nodiscard]] Reply answer(const Request& request);

 private:
  [[nodiscard]] Reply answerOrThrow(const Request& request);
  [[nodiscard]] Reply answerRoot(const Request& request);
  [[nodiscard]] Reply enter(std::string_view code);
  [[nodiscard]] Reply answerApi(const Request& request, std::string_view path);
  void checkHost(const Request& request) const;
  void checkChange(const Request& request, const Sessions::Session& session) const;
  [[nodiscard]] std::string cookieName() const;
  [[nodiscard]] bool isSecure() const;
  [[nodiscard]] std::optional<Sessions::Session> sessionOf(const Request& request) const;

  Backend& backend_;
  const std::vector<std::string> hosts_;
  Feed feed_;
};

}  // namespace orvane::sandbox
