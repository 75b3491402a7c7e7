// SPDX-License-Identifier: Apache-2.0
//
// The whole sandbox as one object: data folder, keys, certificates and the server over them.
#pragma once

#include "Backend.h"
#include "http/Listener.h"
#include "security/Certificates.h"

#include <filesystem>
#include <memory>
#include <string>

namespace orvane::sandbox {

struct SandboxOptions {
  BackendOptions backend;
  int port = 0;  // 0: a free one
  std::size_t threads = 64;
  bool compress = true;
  bool plainHttp = false;
  CertificateFlaw flaw = CertificateFlaw::none;
};

class Sandbox {
 public:
  /// Prepares the folder and starts to serve. Throws std::runtime_error when it can't.
  explicit Sandbox(SandboxOptions options);
  ~Sandbox();
  Sandbox(const Sandbox&) = delete;
  Sandbox& operator=(const Sandbox&) = delete;

  [[nodiscard]] int port() const { return listener_->port(); }
  [[nodiscard]] std::string baseUrl() const;
  [[nodiscard]] std::filesystem::path certificateAuthority() const;
  [[nodiscard]] const Backend& backend() const { return *backend_; }

  /// What a client needs to know, as the JSON text of the ready file.
  [[nodiscard]] std::string description() const;

 private:
  SandboxOptions options_;
  TlsContext tls_{nullptr, &SSL_CTX_free};
  std::unique_ptr<Backend> backend_;
  std::unique_ptr<Listener> listener_;
};

}  // namespace orvane::sandbox
