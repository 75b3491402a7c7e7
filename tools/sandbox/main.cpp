// SPDX-License-Identifier: Apache-2.0
//
// orvane-sandbox: a local backend over HTTPS with believable data.
#include "HelpFormatter.h"
#include "Program.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <map>

namespace {

using namespace orvane::sandbox;

struct Flags {
  std::string data = "orvane-sandbox-data";
  std::string now;
  std::string readyFile;
  bool exec = false;
  std::vector<std::string> command;
  std::string flaw = "none";
  std::vector<std::string> misbehaviours;
  bool verbose = false;
  std::string recording;
  std::string replay;
  bool replayTiming = false;
  SandboxOptions options;
};

const CLI::Validator isHostName{
    [](const std::string& text) {
      constexpr const char* letters =
          "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-:";
      const bool isRight = !text.empty() && text.find_first_not_of(letters) == std::string::npos;
      return isRight ? std::string{} : "not the name of a host: " + text;
    },
    ""};

constexpr const char* footer = R"(
Tokens: a JSON Web Token signed with HS256 and the key whose 64 hexadecimal
digits stand in DIR/signing.key, with the claims "sub" (a user's external
reference id), "iat" and "exp". For development the fixed token
sandbox-token-<userId> is accepted as well.

In one line, the settings for orvane and the examples in the environment:
  orvane-sandbox --exec -- orvane trips list

Misbehaviour: a JSON object with any of "status", "delayMs", "bytesPerSecond",
"cutAfterBytes", "drop", "date" and "body" (garbage, empty, notUtf8, huge,
gzipBomb, wrongType, null, emptyObject, deep, html, truncated), and, to narrow
it, "times", "method" and "path" (an extended regular expression).)";

void declare(CLI::App& app, Flags& flags) {
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "Print this text");
  app.set_version_flag("--version", "orvane-sandbox " ORVANE_SANDBOX_VERSION, "Print the version");
  app.footer(footer);
  app.add_option("--data", flags.data, "Folder for data, keys and certificates; made when missing")
      ->type_name("DIR")
      ->capture_default_str();
  app.add_option("--port", flags.options.port, "Port to listen on; 0 takes a free one")
      ->type_name("PORT")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  app.add_option("--host", flags.options.host,
                 "Address to listen on; 0.0.0.0 lets other machines in. Keys and tokens of the "
                 "sandbox are no secrets: not for an open network")
      ->type_name("ADDRESS")
      ->capture_default_str();
  app.add_option("--name", flags.options.names,
                 "Name or address by which clients know it, for the certificate; the first stands "
                 "in the base URL. May be repeated")
      ->type_name("NAME")
      ->check(isHostName)
      ->allow_extra_args(false);
  app.add_option("--ready-file", flags.readyFile,
                 "Like DIR/ready.json, written as soon as requests are answered: JSON with URL, "
                 "keys and identities. Goes when the sandbox stops")
      ->type_name("FILE");
  app.add_flag("--exec", flags.exec,
               "Run the command after \"--\" with the settings in its environment, and end with "
               "its exit code. Data of its own, gone afterwards, unless --data is given");
  app.add_option("COMMAND", flags.command, "For --exec: program and arguments, after \"--\"");
  app.add_option(
         "--now", flags.now,
         "Lay the data around this time (yyyy-MM-dd or yyyy-MM-ddThh:mm:ssZ) and keep it as "
         "today; the default is the clock's time")
      ->type_name("TIME");
  app.add_option("--weeks", flags.options.backend.weeks, "Weeks of trips to lay, 104 at most")
      ->type_name("NUMBER")
      ->check(CLI::Range(1, 104))
      ->capture_default_str();
  app.add_flag("--fresh", flags.options.backend.fresh, "Lay the data anew, forgetting all changes");
  app.add_option("--skew", flags.options.backend.skewSeconds,
                 "Seconds that the server's clock runs ahead")
      ->type_name("SECONDS");
  app.add_flag("--plain-http", flags.options.plainHttp, "Serve without TLS");
  app.add_option("--certificate", flags.flaw,
                 "Flaw of the server certificate: none, expired or wrong-host")
      ->type_name("FLAW")
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
  app.add_option("--threads", flags.options.threads,
                 "Requests answered at the same time, 1024 at most")
      ->type_name("NUMBER")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  app.add_option("--slow", flags.options.backend.bytesPerSecond, "Send answers no faster than that")
      ->type_name("BYTES/S")
      ->check(CLI::PositiveNumber);
  app.add_option("--allow-origin", flags.options.backend.allowedOrigins,
                 "Origin whose pages may read answers in a browser (CORS); \"*\" for all. May be "
                 "repeated")
      ->type_name("ORIGIN")
      ->allow_extra_args(false);
  CLI::Option* record =
      app.add_option("--record", flags.recording,
                     "Record requests and answers, and write them to this file in the end. "
                     "Stand-ins take the place of tokens and e-mail addresses")
          ->type_name("FILE");
  app.add_flag("--record-secrets", flags.options.backend.recordsSecrets,
               "Leave tokens and e-mail addresses in the recording as they are")
      ->needs(record);
  CLI::Option* replay =
      app.add_option("--replay", flags.replay,
                     "Answer from a recording, by method, path and query; any token is taken")
          ->type_name("FILE");
  app.add_flag("--replay-timing", flags.replayTiming,
               "Let those answers take as long as they took when they were recorded")
      ->needs(replay);
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
  if (!flags.replay.empty()) {
    options.backend.replay = std::make_shared<Replay>(flags.replay, flags.replayTiming);
  }
  for (const std::string& text : flags.misbehaviours) {
    try {
      const auto fault = nlohmann::json::parse(text, nullptr, false);
      options.backend.faults.push_back(Fault::fromJson(fault));
    } catch (const Problem& problem) {
      throw std::runtime_error(std::string{"--misbehave: "} + problem.what());
    }
  }
  return options;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"A local backend for Orvane: HTTPS on the loopback interface, data in one folder."};
  Flags flags;
  declare(app, flags);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::cerr << "orvane-sandbox: " << error.what()
              << (flags.exec ? "; put \"--\" before the command" : "; see --help") << '\n';
    return 1;
  }
  try {
    if (flags.exec != !flags.command.empty()) {
      throw std::runtime_error(flags.exec ? "--exec: the command is missing; it follows \"--\""
                                          : "unexpected: " + flags.command.front());
    }
    return run({.sandbox = optionsFrom(flags),
                .readyFile = flags.readyFile,
                .command = flags.command,
                .keepsData = !flags.exec || app.count("--data") > 0,
                .recording = flags.recording});
  } catch (const Interrupted& interrupted) {
    return interrupted.exitCode();
  } catch (const std::exception& exception) {
    std::cerr << "orvane-sandbox: " << exception.what() << '\n';
    return 1;
  }
}
