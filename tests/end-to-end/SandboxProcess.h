// SPDX-License-Identifier: Apache-2.0
// A local backend in a process of its own.
#pragma once

#include "Process.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/Runtime/CurlRequestManager.h>

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace orvane::test {

/// Listens on a free port of the loopback interface, with fresh data, as long as it lives.
class SandboxProcess {
 public:
  /// Starts it, with a week of trips unless the arguments say how many, and waits until it answers.
  explicit SandboxProcess(const std::vector<std::string>& arguments = {});
  ~SandboxProcess();
  SandboxProcess(const SandboxProcess&) = delete;
  SandboxProcess& operator=(const SandboxProcess&) = delete;

  [[nodiscard]] std::string baseURL() const { return text("baseURL"); }
  [[nodiscard]] std::string caFile() const { return text("certificateAuthority"); }
  [[nodiscard]] std::string signingKeyFile() const { return text("signingKeyFile"); }
  /// In hexadecimal digits.
  [[nodiscard]] std::string signingKey() const { return text("signingKey"); }
  [[nodiscard]] std::string apiKey() const { return text("apiKey"); }
  /// The first person's: Anna's, user 1001. Accepted whatever the clocks say.
  [[nodiscard]] std::string developmentToken() const;
  [[nodiscard]] pid_t processID() const noexcept { return process_->id(); }
  [[nodiscard]] const TemporaryFolder& folder() const noexcept { return folder_; }

  /// Makes it spoil answers: see its --help.
  void misbehave(const nlohmann::json& how);
  /// Ends all misbehaviour and forgets which requests have come.
  void behave();

  /// A request as it arrived.
  struct Arrival {
    std::string request;  ///< "GET identity"
    int status = 0;
    friend bool operator==(const Arrival&, const Arrival&) = default;
  };
  /// What has come since it started or was last told to behave, without the path's API root.
  [[nodiscard]] std::vector<Arrival> arrivals();
  /// The last of them with its query: "GET users/1001?expand=role".
  [[nodiscard]] std::string lastRequest();

 private:
  [[nodiscard]] std::string text(const char* member) const;
  std::string admin(Verb verb, const std::string& path, std::string body = {});

  TemporaryFolder folder_;
  std::unique_ptr<Process> process_;
  nlohmann::json description_;
  std::shared_ptr<CurlRequestManager> transport_;
};

void PrintTo(const SandboxProcess::Arrival& arrival, std::ostream* out);

}  // namespace orvane::test
