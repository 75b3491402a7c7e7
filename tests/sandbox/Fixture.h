// SPDX-License-Identifier: Apache-2.0
//
// A sandbox in a folder of its own, and a client that talks to it over TLS.
#pragma once

#include "Sandbox.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox::test {

using nlohmann::json;

inline constexpr std::string_view fixedNow = "2025-06-18T12:00:00Z";  // a Wednesday

struct Answer {
  int status = 0;
  httplib::Headers headers;
  std::string body;

  [[nodiscard]] json parsed() const { return json::parse(body); }
  [[nodiscard]] std::string header(const std::string& name) const;
};

class SandboxTest : public testing::Test {
 protected:
  explicit SandboxTest(SandboxOptions options = {}) { start(std::move(options)); }

  /// Starts the sandbox on the test's folder, a second time as well.
  void start(SandboxOptions options = {});

  /// Requests below the API root as the current user: "PUT namedDrivers/1201".
  Answer send(const std::string& request, std::string body = "",
              const std::string& contentType = "", httplib::Headers headers = {});
  /// Requests from the server's root as nobody: "GET /inspector/app.js".
  Answer ask(const std::string& request, httplib::Headers headers = {}, std::string body = "");
  Answer get(const std::string& path, httplib::Headers headers = {});
  Answer post(const std::string& path, std::string body = "", const std::string& contentType = "");
  Answer postForm(const std::string& path, const httplib::MultipartFormDataItems& items);
  Answer admin(const std::string& path, const json& body);
  json adminRead(const std::string& path);

  /// Sends requests without a body: each must be refused with the status, and be told why.
  void refuses(int status, const std::vector<std::string>& requests);

  /// The body of a GET that must succeed.
  json read(const std::string& path);

  void actAs(std::string_view userId) { token_ = "sandbox-token-" + std::string{userId}; }
  void useToken(std::string token) { token_ = std::move(token); }

  [[nodiscard]] Sandbox& sandbox() { return *sandbox_; }
  [[nodiscard]] httplib::SSLClient client() const;
  [[nodiscard]] const TemporaryFolder& folder() const { return folder_; }

 private:
  [[nodiscard]] httplib::Headers authorized(httplib::Headers headers) const;

  TemporaryFolder folder_;
  std::unique_ptr<Sandbox> sandbox_;
  std::unique_ptr<httplib::SSLClient> client_;
  std::string token_ = "sandbox-token-1001";
};

}  // namespace orvane::sandbox::test
