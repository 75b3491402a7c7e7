// SPDX-License-Identifier: Apache-2.0
//
// The whole sandbox as one object: data folder, keys, certificates and the server over them.
#pragma once

#include "Backend.h"
#include "FolderLock.h"
#include "http/Listener.h"
#include "inspector/Inspector.h"
#include "security/Certificates.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace orvane::sandbox {

struct SandboxOptions {
  BackendOptions backend;
  std::string host = "127.0.0.1";  // the address to listen on
  std::vector<std::string> names;  // further names and addresses that clients know it by
  int port = 0;                    // 0: a free one
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
  /// With the first of the names, where there is one.
  [[nodiscard]] std::string baseUrl() const;
  [[nodiscard]] std::filesystem::path certificateAuthority() const;
  [[nodiscard]] Address address() const;
  [[nodiscard]] const Backend& backend() const { return *backend_; }
  [[nodiscard]] Backend& backend() { return *backend_; }
  /// A link that opens the inspector's page in one browser; another one each time.
  [[nodiscard]] std::string newInspectorLink() const;
  /// Ends the service; requests under way are finished.
  void stop();
  /// The token of the first person, for development.
  [[nodiscard]] static std::string sampleToken();

  /// What a client needs to know, as the JSON text of the ready file.
  [[nodiscard]] std::string description() const;

 private:
  SandboxOptions options_;
  FolderLock lock_;
  TlsContext tls_{nullptr, &SSL_CTX_free};
  std::unique_ptr<Backend> backend_;
  std::unique_ptr<Inspector> inspector_;
  std::unique_ptr<Listener> listener_;
  std::string inspectorUrl_;  // of the ready file
};

}  // namespace orvane::sandbox
