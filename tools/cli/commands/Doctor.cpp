// SPDX-License-Identifier: Apache-2.0
// orvane doctor: the whole way from the settings to an answer, to see where it ends.
#include "Commands.h"
#include "ServerProbe.h"
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Services/User/UserService.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace orvane::cli {
namespace {

enum class State : std::uint8_t { ok, warning, failed, skipped };

struct Check {
  State state;
  std::string name;
  std::string finding;
  std::string hint{};
  ExitCode code = ExitCode::success;
};

constexpr const char* correction = "Correct that; orvane config list shows what is in force.";

std::string headerOf(const Exchange& exchange, std::string_view name) {
  for (const auto& [header, value] : exchange.responseHeaders) {
    if (sameChoice(header, name)) return value;
  }
  return {};
}

constexpr const char* serverChecks[] = {"name lookup",      "connection",
                                        "encryption",       "certificate chain",
                                        "certificate name", "certificate dates"};
constexpr const char* answerChecks[] = {"answer", "clock", "token", "identity", "one read"};

// What ends the examination itself instead of being one of its findings.
bool endsAll(const Failure& failure) {
  return failure.code() == ExitCode::cancelled || failure.code() == ExitCode::output;
}

// The checks in their order. What needs one that failed is skipped.
class Examination {
 public:
  using Tell = std::function<void(const Check&)>;

  /// `tell` is given each check as soon as it is made.
  Examination(Session& session, Tell tell)
      : session_(session), settings_(session.settings()), tell_(std::move(tell)) {}

  std::vector<Check> run() {
    if (settings_.lackSandbox()) {
      lackSandbox();
      return std::move(checks_);
    }
    settings();
    baseURL();
    try {
      server();
      answer();
    } catch (const Failure& failure) {
      if (endsAll(failure)) throw;
      fail("settings", failure.code(), failure.what(), correction);
    }
    return std::move(checks_);
  }

 private:
  void add(Check check) {
    checks_.push_back(std::move(check));
    tell_(checks_.back());
  }
  void well(std::string name, std::string finding) {
    add({State::ok, std::move(name), std::move(finding)});
  }
  void fail(std::string name, ExitCode code, std::string finding, std::string hint) {
    isBlocked_ = true;
    add({State::failed, std::move(name), std::move(finding), std::move(hint), code});
  }
  void skip(std::string name, std::string why = "something before it failed") {
    add({State::skipped, std::move(name), std::move(why)});
  }
  // True where there is no use in going on.
  bool skipped(const char* name) {
    if (isBlocked_) skip(name);
    return isBlocked_;
  }
  void note(std::string name, ExitCode code, const Finding& finding, std::string hint) {
    if (finding.isWell) return well(std::move(name), finding.words);
    fail(std::move(name), code, finding.words, std::move(hint));
  }

  // Whoever asks for the sandbox is not told about the backend that the environment names.
  void lackSandbox() {
    fail("sandbox", ExitCode::configuration, settings_.faults(),
         "Start one, and leave it running.");
    skip("base URL");
    for (const char* name : serverChecks) skip(name);
    for (const char* name : answerChecks) skip(name);
  }

  void settings() {
    for (const SettingRow& row : settingRows()) {
      if (settings_.source(row.setting) <= Settings::Source::builtIn) continue;
      if (row.setting == Setting::caFile && isCAFileBad()) continue;
      const std::string value = row.isSecret ? "…" : settings_.text(row.setting).value_or("");
      well("setting " + std::string(row.name),
           value + " (from " + settings_.origin(row.setting) + ")");
    }
    try {
      session_.checkUser();
      settings_.check();
    } catch (const Failure& failure) {
      fail("settings", failure.code(), failure.what(), correction);
    }
  }

  bool isCAFileBad() {
    try {
      session_.checkCAFile();
    } catch (const Failure& failure) {
      hasAuthorities_ = false;
      fail("setting ca-file", failure.code(),
           std::string(failure.what()) + " (from " + settings_.origin(Setting::caFile) + ")",
           "Name a file with certificates in PEM; a sandbox keeps ca.pem in its data folder.");
    }
    return !hasAuthorities_;
  }

  void baseURL() {
    const auto& url = settings_.text(Setting::baseURL);
    if (!url) {
      return fail("base URL", ExitCode::configuration, "not set",
                  "Give --base-url, set ORVANE_BASE_URL, or use --sandbox, --profile or orvane "
                  "config set base-url URL.");
    }
    address_ = addressIn(*url);
    if (!address_) {
      return fail("base URL", ExitCode::configuration, *url + " is no URL of a backend",
                  "It begins with https:// and a host: https://telematics.example.");
    }
    if (!address_->isEncrypted && !address_->isLoopback()) {
      return fail("base URL", ExitCode::configuration, *url + " is not encrypted",
                  "Use https; http is for this machine only.");
    }
    const std::size_t root = url->find(apiRoot);
    if (root != std::string::npos) {
      return fail(
          "base URL", ExitCode::configuration, *url + " holds the API root",
          "Leave " + std::string(apiRoot) + " out, it is added: " + url->substr(0, root) + ".");
    }
    well("base URL", *url);
  }

  void server() {
    constexpr auto& names = serverChecks;
    const auto rest = [this](std::size_t first, const std::string& why) {
      for (std::size_t index = first; index < std::size(serverChecks); ++index) {
        skip(serverChecks[index], why);
      }
    };
    if (!address_) return rest(0, "there is no address");
    for (const char* proxy : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
      const char* named = std::getenv(proxy);
      if (named == nullptr || *named == '\0' || address_->isLoopback()) continue;
      return rest(0, std::string("there is a proxy between: ") + proxy + " is set");
    }
    ServerProbe probe(*address_, std::min(session_.timeout(), std::chrono::milliseconds(10'000)));
    const Finding lookup = session_.uncancelled([&] { return probe.lookUp(); });
    note(names[0], ExitCode::nameLookup, lookup,
         "Is the name right? Is this machine on the network?");
    if (!lookup.isWell) return rest(1, "there is no address");
    const Finding connection = session_.uncancelled([&] { return probe.connect(); });
    note(names[1], ExitCode::connection, connection,
         "Is the backend running, and is this its port? A sandbox says its port when it starts; "
         "orvane --sandbox finds it.");
    if (!connection.isWell) return rest(2, "there is no connection");
    if (!address_->isEncrypted) return rest(2, "http is not encrypted");
    if (!hasAuthorities_) return rest(2, "the file of authorities can't be used");
    const auto& caFile = settings_.text(Setting::caFile);
    const CertificateFindings shown =
        session_.uncancelled([&] { return probe.certificate(caFile.value_or("")); });
    note(names[2], ExitCode::tls, shown.handshake,
         "Does that port speak TLS? A sandbox with --plain-http wants http:// in the base URL.");
    if (!shown.handshake.isWell) return rest(3, "there is no certificate");
    note(names[3], ExitCode::tls, shown.chain,
         caFile ? "Its authority is not in " + *caFile + ": name its file with --ca-file."
                : "Name the file of its authority with --ca-file; a sandbox keeps ca.pem in its "
                  "data folder.");
    note(names[4], ExitCode::tls, shown.name, "Use one of these names in the base URL.");
    note(names[5], ExitCode::tls, shown.dates,
         "Its owner has to renew it, unless this machine's clock is wrong.");
  }

  // What the library makes of it, and what came over the wire meanwhile.
  void answer() {
    const bool isUseless = isBlocked_;
    if (isUseless) {
      for (const char* name : answerChecks) skip(name);
      return;
    }
    session_.connect();
    std::string user;
    std::optional<Failure> failure;
    try {
      user = session_.userID();
    } catch (const Failure& thrown) {
      if (endsAll(thrown)) throw;
      failure = thrown;
    }
    const std::vector<Exchange> exchanges = session_.log().exchanges();
    const Exchange lookup = exchanges.empty() ? Exchange{} : exchanges.back();
    kindOfAnswer(lookup, failure);
    if (!exchanges.empty()) clock(exchanges.front());
    token(lookup, failure);
    if (skipped("identity")) return skip("one read");
    well("identity", "user " + user);
    read();
  }

  void kindOfAnswer(const Exchange& exchange, const std::optional<Failure>& failure) {
    if (!exchange.statusCode) {
      return fail(
          "answer", failure ? failure->code() : ExitCode::internal,
          failure ? failure->what() : "there is none",
          address_->isEncrypted ? "Try again with --verbose." : "Does the port want https://?");
    }
    const std::string type = headerOf(exchange, "Content-Type");
    const std::string status = std::to_string(*exchange.statusCode);
    const std::size_t first = exchange.responseBody.find_first_not_of(" \t\r\n");
    const bool isPage = type.find("html") != std::string::npos ||
                        (first != std::string::npos && exchange.responseBody[first] == '<');
    if (isPage) {
      return fail("answer", ExitCode::invalidData, "a page (" + status + ", " + type + "), no JSON",
                  "Something else answers: the sign-in page of a network, a proxy, or a web site "
                  "at the backend's address.");
    }
    if (*exchange.statusCode >= 500) {
      return fail("answer", ExitCode::serverError, failure ? failure->what() : status,
                  "The backend has a fault of its own: try again later, or tell its operator.");
    }
    if (*exchange.statusCode == 404) {
      return fail("answer", ExitCode::notFound, failure ? failure->what() : status,
                  "There is no API below this base URL: is its path right?");
    }
    well("answer", status + ", " + decimal(exchange.duration.count() * 1000.0, 0) + " ms");
  }

  void clock(const Exchange& exchange) {
    constexpr double tolerated = 60;  // seconds
    const auto theirs = secondsOfDate(headerOf(exchange, "Date"));
    if (!theirs) return skip("clock", "the answer does not tell the time");
    const double ahead = static_cast<double>(*theirs) - secondsSince1970(DeviceClock::now());
    const std::string size = durationOf(std::abs(ahead));
    if (std::abs(ahead) < tolerated) return well("clock", "within " + durationOf(tolerated));
    add({State::warning, "clock", "the backend's is " + size + (ahead > 0 ? " ahead" : " behind"),
         "Set this machine's clock, if it is the wrong one. Signed tokens are corrected by the "
         "difference; others may be refused."});
  }

  void token(const Exchange& lookup, const std::optional<Failure>& failure) {
    if (skipped("token")) return;
    if (!failure) return well("token", "accepted");
    const bool isRefused = lookup.statusCode && *lookup.statusCode == 401;
    fail("token", failure->code(), failure->what(),
         isRefused
             ? "Is it one of this backend's, and has it not expired? A sandbox takes "
               "sandbox-token-1001, and tokens signed with the signing.key of its data folder."
             : "Look at the exchange with --verbose=bodies.");
  }

  void read() {
    try {
      const User user = session_.call(UserService(session_.identity()).fetch());
      well("one read", "user " + user.id.value_or("without an id") + " is " +
                           user.displayName.value_or("without a name"));
    } catch (const Failure& failure) {
      if (endsAll(failure)) throw;
      fail("one read", failure.code(), failure.what(),
           "Look at the exchange with --verbose=bodies.");
    }
  }

  Session& session_;
  const Settings& settings_;
  Tell tell_;
  std::vector<Check> checks_;
  std::optional<ServerAddress> address_;
  bool hasAuthorities_ = true;
  bool isBlocked_ = false;
};

std::string wordOf(State state) {
  constexpr const char* words[] = {"ok", "warning", "failed", "skipped"};
  return words[static_cast<std::size_t>(state)];
}

struct Examine {
  static constexpr std::string_view name = "doctor";
  static constexpr std::string_view summary = "Find out why the backend does not answer";
  static constexpr Example examples[] = {
      {"doctor", "settings, network, certificate, clock, token: a line each, and what to do"},
      {"doctor --json | jq -r '.checks[] | .state + \" \" + .check'", "for a script"},
  };

  void run(Session& session) const {
    session.keepBodies();
    Output& output = session.output();
    // A check may take its time: people see each when it is made, programs all at once.
    const auto tell = [&](const Check& check) {
      if (output.style().isJSON()) return;
      print(check, output);
      session.finish();
    };
    const std::vector<Check> checks = Examination(session, tell).run();
    if (output.style().isJSON()) output.json(jsonOf(checks));
    const auto failed = std::ranges::find(checks, State::failed, &Check::state);
    if (failed == checks.end()) return;
    session.finish();
    throw Failure(failed->code, failed->name + " failed");
  }

 private:
  static void print(const Check& check, Output& output) {
    const OutputStyle& style = output.style();
    if (!style.isTable()) {
      return output.line(wordOf(check.state) + "\t" + check.name + "\t" + visible(check.finding) +
                         "\t" + check.hint);
    }
    constexpr std::size_t indent = 9;
    std::string line = wordOf(check.state);
    line.append(indent - line.size(), ' ');
    const std::string words = check.name + ": " + visible(check.finding);
    output.line(line + wrapped(words, style.columns, indent, indent));
    if (check.hint.empty()) return;
    output.line(std::string(indent, ' ') +
                wrapped("-> " + check.hint, style.columns, indent, indent + 3));
  }

  static std::string jsonOf(const std::vector<Check>& checks) {
    std::string list;
    for (const Check& check : checks) {
      list += std::string(list.empty() ? "" : ",") + "{\"check\":" + jsonText(check.name) +
              ",\"state\":" + jsonText(wordOf(check.state)) +
              ",\"finding\":" + jsonText(check.finding) +
              (check.hint.empty() ? "" : ",\"hint\":" + jsonText(check.hint)) + "}";
    }
    const auto isFailed = [](const Check& check) { return check.state == State::failed; };
    const char* isWell = std::ranges::any_of(checks, isFailed) ? "false" : "true";
    return std::string("{\"ok\":") + isWell + ",\"checks\":[" + list + "]}";
  }
};

}  // namespace

Resource doctorCommand() { return Resource::only<Examine>(); }

}  // namespace orvane::cli
