// SPDX-License-Identifier: Apache-2.0
#include "Fixture.h"

#include "Admin.h"

namespace orvane::sandbox::test {

namespace {

constexpr const char* root = "/kavra/api/sdk/";

Answer answerFrom(const httplib::Result& result) {
  if (!result) throw std::runtime_error("no answer: " + to_string(result.error()));
  return {result->status, result->headers, result->body};
}

}  // namespace

std::string Answer::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found != headers.end() ? found->second : "";
}

void SandboxTest::start(SandboxOptions options) {
  client_.reset();
  sandbox_.reset();
  options.backend.folder = folder_.path();
  if (!options.backend.now) options.backend.now = parseTimestamp(fixedNow);
  options.backend.weeks = 2;
  options.threads = 4;
  sandbox_ = std::make_unique<Sandbox>(std::move(options));
  client_ = std::make_unique<httplib::SSLClient>("127.0.0.1", sandbox_->port());
  client_->set_ca_cert_path(sandbox_->certificateAuthority().string());
  client_->enable_server_certificate_verification(true);
  client_->set_read_timeout(std::chrono::minutes{1});  // a reset lays all data anew
  client_->set_keep_alive(true);
  client_->set_tcp_nodelay(true);
  client_->set_url_encode(false);
}

httplib::SSLClient SandboxTest::client() const {
  return httplib::SSLClient{"127.0.0.1", sandbox_->port()};
}

httplib::Headers SandboxTest::authorized(httplib::Headers headers) const {
  if (!token_.empty()) headers.emplace("Authorization", "Bearer " + token_);
  return headers;
}

Answer SandboxTest::send(const std::string& request, std::string body,
                         const std::string& contentType, httplib::Headers headers) {
  const std::size_t path = request.find(' ') + 1;
  headers = authorized(std::move(headers));
  if (!contentType.empty()) headers.emplace("Content-Type", contentType);
  return ask(request.substr(0, path) + root + request.substr(path), std::move(headers),
             std::move(body));
}

Answer SandboxTest::ask(const std::string& request, httplib::Headers headers, std::string body) {
  const std::size_t blank = request.find(' ');
  httplib::Request sent;
  sent.method = request.substr(0, blank);
  sent.path = request.substr(blank + 1);
  sent.headers = std::move(headers);
  sent.body = std::move(body);
  return answerFrom(client_->send(sent));
}

Answer SandboxTest::get(const std::string& path, httplib::Headers headers) {
  return send("GET " + path, "", "", std::move(headers));
}

Answer SandboxTest::post(const std::string& path, std::string body,
                         const std::string& contentType) {
  return send("POST " + path, std::move(body), contentType);
}

Answer SandboxTest::postForm(const std::string& path,
                             const httplib::MultipartFormDataItems& items) {
  return answerFrom(client_->Post(root + path, authorized({}), items));
}

void SandboxTest::refuses(int status, const std::vector<std::string>& requests) {
  for (const std::string& request : requests) {
    const Answer answer = send(request);
    EXPECT_EQ(answer.status, status) << request;
    EXPECT_TRUE(answer.parsed()["message"].is_string()) << request;
  }
}

Answer SandboxTest::admin(const std::string& path, const json& body) {
  return answerFrom(client_->Post("/admin/" + path,
                                  {{adminKeyHeader, sandbox_->backend().adminKey()}}, body.dump(),
                                  "application/json"));
}

json SandboxTest::adminRead(const std::string& path) {
  return answerFrom(
             client_->Get("/admin/" + path, {{adminKeyHeader, sandbox_->backend().adminKey()}}))
      .parsed();
}

json SandboxTest::read(const std::string& path) {
  const Answer answer = get(path);
  if (answer.status != 200) {
    throw std::runtime_error(path + ": " + std::to_string(answer.status) + " " + answer.body);
  }
  return answer.parsed();
}

}  // namespace orvane::sandbox::test
