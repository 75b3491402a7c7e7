// SPDX-License-Identifier: Apache-2.0
//
// orvane-sandbox: a local backend over HTTPS with believable data.
#include "Sandbox.h"
#include "data/People.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>

namespace {

using namespace orvane::sandbox;

struct Flags {
  std::string data = "orvane-sandbox-data";
  std::string now;
  std::string readyFile;
  std::string flaw = "none";
  std::vector<std::string> misbehaviours;
  bool verbose = false;
  SandboxOptions options;
};

constexpr std::int64_t staleDays = 7;

constexpr const char* footer = R"(
Tokens: a JSON Web Token signed with HS256 and the key whose 64 hexadecimal digits stand in
DIR/signing.key, with the claims "sub" (a user's external reference id), "iat" and "exp". For
development the fixed token sandbox-token-<userId> is accepted as well, for example
  curl --cacert DIR/ca.pem -H 'Authorization: Bearer sandbox-token-1001' URL/kavra/api/sdk/identity

Misbehaviour: a JSON object with any of "status", "delayMs", "cutAfterBytes", "drop", "date",
"body" (garbage, empty, notUtf8, huge, gzipBomb, wrongType, null, emptyObject, deep, html,
truncated) and, to narrow it, "times", "method" and "path" (an extended regular expression).)";

void declare(CLI::App& app, Flags& flags) {
  app.footer(footer);
  app.add_option("--data", flags.data, "Folder for data, keys and certificates; made when missing")
      ->type_name("DIR")
      ->capture_default_str();
  app.add_option("--port", flags.options.port, "Port on 127.0.0.1; 0 takes a free one")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  app.add_option("--ready-file", flags.readyFile,
                 "Written as soon as requests are answered: JSON with URL, keys and identities")
      ->type_name("FILE");
  app.add_option(
         "--now", flags.now,
         "Lay the data around this time (yyyy-MM-dd or yyyy-MM-ddThh:mm:ssZ) and keep it as "
         "today; the default is the clock's time")
      ->type_name("TIME");
  app.add_option("--weeks", flags.options.backend.weeks, "Weeks of trips to lay")
      ->check(CLI::Range(1, 104))
      ->capture_default_str();
  app.add_flag("--fresh", flags.options.backend.fresh, "Lay the data anew, forgetting all changes");
  app.add_option("--skew", flags.options.backend.skewSeconds,
                 "Seconds that the server's clock runs ahead")
      ->type_name("SECONDS");
  app.add_flag("--plain-http", flags.options.plainHttp, "Serve without TLS");
  app.add_option("--certificate", flags.flaw, "Flaw of the server certificate")
      ->check(CLI::IsMember({"none", "expired", "wrong-host"}))
      ->capture_default_str();
  app.add_flag_callback(
      "--expired-certificate", [&flags] { flags.flaw = "expired"; },
      "Short for --certificate expired");
  app.add_flag_callback(
      "--wrong-host", [&flags] { flags.flaw = "wrong-host"; },
      "Short for --certificate wrong-host");
  app.add_option("--misbehave", flags.misbehaviours, "Spoil answers; see below. May be repeated")
      ->type_name("JSON");
  app.add_option("--threads", flags.options.threads, "Connections served at the same time")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  app.add_flag("!--no-compression", flags.options.compress, "Never send gzip");
  app.add_flag("--verbose", flags.verbose, "One line per request on standard error");
}

SandboxOptions optionsFrom(const Flags& flags) {
  static const std::map<std::string, CertificateFlaw> flaws{
      {"none", CertificateFlaw::none},
      {"expired", CertificateFlaw::expired},
      {"wrong-host", CertificateFlaw::wrongHost}};
  SandboxOptions options = flags.options;
  options.flaw = flaws.at(flags.flaw);
  options.backend.folder = flags.data;
  options.backend.verbose = flags.verbose;
  if (!flags.now.empty()) {
    options.backend.now = parseTimestamp(flags.now);
    if (!options.backend.now) throw std::runtime_error("--now: not a time: " + flags.now);
  }
  for (const std::string& text : flags.misbehaviours) {
    options.backend.faults.push_back(Fault::fromJson(nlohmann::json::parse(text, nullptr, false)));
  }
  return options;
}

/// Whoever waits for the file finds either nothing or all of it.
void writeAtomically(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::path temporary = file;
  temporary += ".part";
  std::ofstream stream{temporary};
  using std::filesystem::perms;
  permissions(temporary, perms::owner_read | perms::owner_write);
  stream << text << '\n';
  stream.close();
  if (!stream) throw std::runtime_error("can't write " + temporary.string());
  rename(temporary, file);
}

void printWelcome(const Sandbox& sandbox, const SandboxOptions& options) {
  std::cout << "orvane-sandbox is listening.\n\n"
            << "  API root   " << sandbox.baseUrl() << "/kavra/api/sdk\n";
  if (!options.plainHttp)
    std::cout << "  CA file    " << sandbox.certificateAuthority().string() << '\n';
  std::cout << "  API key    " << sampleApiKey << "\n\n"
            << "  user  external reference  who\n";
  for (const Person& person : people()) {
    if (!person.isSample) continue;
    std::cout << "  " << person.userId << "  " << std::left << std::setw(18)
              << person.externalReferenceId << "  " << person.firstName << ' ' << person.lastName
              << ": " << person.note << '\n';
  }
  std::cout << "\n  token of a user: sandbox-token-<user>\n";
  const auto days = (sandbox.backend().now() - sandbox.backend().laidAround()) / millisPerDay;
  if (days > staleDays) {
    std::cout << "  The trips end " << days << " days ago; --fresh brings them up to date.\n";
  }
  std::cout << std::endl;
}

int run(const Flags& flags) {
  // Blocked before any thread starts, so that only sigwait() below sees them.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);

  const SandboxOptions options = optionsFrom(flags);
  const Sandbox sandbox{options};
  if (!flags.readyFile.empty()) writeAtomically(flags.readyFile, sandbox.description());
  printWelcome(sandbox, options);
  int signal = 0;
  sigwait(&signals, &signal);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"A local backend for Orvane: HTTPS on the loopback interface, data in one folder."};
  Flags flags;
  declare(app, flags);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 1;
  }
  try {
    return run(flags);
  } catch (const std::exception& exception) {
    std::cerr << "orvane-sandbox: " << exception.what() << '\n';
    return 1;
  }
}
