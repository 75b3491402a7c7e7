// SPDX-License-Identifier: Apache-2.0
#include "Session.h"

#include <Orvane/Common/Logger.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/Loggers.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>
#include <Orvane/Services/User/UserService.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace orvane::cli {
namespace {

// What the device's clock is made to lack. A source is a plain function, so this stands alone.
std::atomic<double> clockOffset{0};

Date shiftedNow() {
  return std::chrono::system_clock::now() + Seconds(clockOffset.load(std::memory_order_relaxed));
}

// An error in the log is one of a call, too, and that ends the program with a line of its own.
std::shared_ptr<Logger> loggerFor(bool isVerbose) {
  if (isVerbose) return std::make_shared<StandardErrorLogger>(Logger::Level::information);
  return std::make_shared<FunctionLogger>([](const Logger::Entry& entry) {
    if (entry.level != Logger::Level::warning) return;
    std::fprintf(stderr, "orvane: %s\n", visible(entry.message).c_str());
  });
}

// The Runtime speaks of its options; here they are flags.
std::string inFlags(std::string message) {
  constexpr std::pair<std::string_view, Setting> options[] = {
      {"baseURL", Setting::baseURL},
      {"caFile", Setting::caFile},
      {"firmwareHost", Setting::firmwareHost}};
  for (const auto& [option, setting] : options) {
    if (!message.starts_with(option)) continue;
    return flagOf(settingRows()[static_cast<std::size_t>(setting)]) + message.substr(option.size());
  }
  return message;
}

Failure refusalOf(const Error& error) {
  return {failureOf(error).code(), inFlags(error.message())};
}

std::string signingKey(const std::string& path) {
  std::ifstream file(path);
  std::string digits;
  if (!(file >> digits)) {
    throw Failure(ExitCode::configuration, "the signing key can't be read from " + path + ": " +
                                               (file.eof() ? "it is empty" : std::strerror(errno)));
  }
  auto bytes = bytesFromHexadecimal(digits);
  if (!bytes) {
    throw Failure(ExitCode::configuration,
                  "the signing key in " + path + " is not written in hexadecimal digits");
  }
  return *std::move(bytes);
}

}  // namespace

Session::Session(Settings settings, OutputStyle style, ExchangeLog::Shown shown)
    : settings_(std::move(settings)),
      output_(stdout, style),
      log_(std::make_shared<ExchangeLog>(shown)),
      keepsBodies_(style.isJSON() || style.isRaw() || shown == ExchangeLog::Shown::bodies) {
  Logger::setShared(loggerFor(shown != ExchangeLog::Shown::nothing));
}

Session::~Session() {
  if (runtime_) runtime_->shutdown();
}

Identity Session::identity() const {
  return {settings_.text(Setting::apiKey).value_or(""), settings_.text(Setting::user)};
}

void Session::checkUser() const {
  const bool isNamed = settings_.source(Setting::user) == Settings::Source::flag;
  const Settings::Source ofToken = settings_.source(Setting::token);
  const bool isIdle = isNamed && settings_.text(Setting::token) &&
                      ofToken != Settings::Source::flag && !signsTokens();
  if (!isIdle) return;
  throw Failure(ExitCode::usage, "--user has no effect with a token (" +
                                     settings_.origin(Setting::token) +
                                     "): it takes a key to sign one with, --signing-key-file");
}

void Session::checkCAFile() const {
  TransportOptions options;
  options.caFile = settings_.text(Setting::caFile).value_or("");
  const auto made = CurlRequestManager::make(std::move(options));
  if (!made) throw refusalOf(made.errorOr(NetworkError::unknown));
}

void Session::describeDevice() const {
  settings_.check();
  DeviceSettings device;
  device.locale = settings_.text(Setting::locale).value_or("");
  device.timeZone = settings_.text(Setting::timeZone).value_or("");
  device.documentsDirectory = settings_.text(Setting::documentsFolder).value_or("");
  const Result<Unit> outcome = DeviceSettings::set(std::move(device));
  if (outcome) return;
  throw settings_.refusal(Setting::timeZone, "the device does not know");
}

void Session::connect() {
  describeDevice();
  if (const auto offset = settings_.number(Setting::clockOffset)) {
    clockOffset = *offset;
    DeviceClock::setSource(shiftedNow);
  }
  RuntimeOptions options;
  options.baseURL = settings_.required(Setting::baseURL);
  options.tokens = tokens();
  options.transport = transport();
  options.deviceIdentifierFile = settings_.text(Setting::deviceFile).value_or("");
  install(std::move(options));
}

void Session::connectForDownloads() {
  describeDevice();
  RuntimeOptions options;
  options.firmwareHost = settings_.required(Setting::firmwareHost);
  options.transport = transport();
  const auto longest = std::chrono::ceil<std::chrono::seconds>(timeout());
  options.transport.idleTimeout = longest;
  options.transport.connectTimeout = std::min(options.transport.connectTimeout, timeout());
  // Nobody asks for these, but there is no Runtime without.
  options.baseURL = [](const std::string&) -> Result<URL> { return UnknownAPIKey{}; };
  options.tokens = [](const Identity&, std::optional<double>, Completion<std::string> then) {
    then(TokenError(TokenError::Kind::signedOut));
  };
  install(std::move(options));
}

void Session::install(RuntimeOptions options) {
  Result<Runtime> installed = Runtime::install(std::move(options));
  if (installed) {
    runtime_ = *std::move(installed);
    return;
  }
  throw refusalOf(installed.errorOr(NetworkError::unknown));
}

std::string Session::userID() {
  const Operation<OrvaneDetails> lookup(
      [this,
       resolver = UserService(identity()).orvaneDetailsResolver()](Completion<OrvaneDetails> then) {
        return resolver->resolve(identity(), std::move(then));
      });
  return call(lookup).userID;
}

void Session::fail(const Error& error) {
  if (output_.style().isRaw()) {
    output_.raw(log_->lastAnswer());
    finish();
  }
  throw failureOf(error, log_->lastRequest());
}

bool Session::await(const RequestHandle& request, TimeLimit limit) {
  interrupt_.watch(request);
  bool isInTime = true;
  if (limit) {
    isInTime = MainQueue::main().runUntil(request, *limit);
  } else {
    MainQueue::main().runUntil(request);
  }
  if (!isInTime) request->cancel();
  interrupt_.release();
  return isInTime;
}

Failure Session::timeIsUp() const {
  const std::string request = log_->lastRequest();
  return {ExitCode::timeOut, "no answer within " + decimal(*settings_.number(Setting::timeout), 3) +
                                 " s" + (request.empty() ? "" : " [" + request + "]")};
}

TransportOptions Session::transport() const {
  TransportOptions transport;
  transport.caFile = settings_.text(Setting::caFile).value_or("");
  transport.totalTimeout = timeout();
  // A silent backend has all of that, too: none of its own.
  transport.idleTimeout = {};
  transport.userAgent = "orvane/" ORVANE_CLI_VERSION;
  transport.observer = [log = log_](const Exchange& exchange) { log->note(exchange); };
  transport.observerSeesSecrets = keepsBodies_;
  return transport;
}

// Of a token and a key, the one given closer to the command counts; the key for somebody whom the
// command line names without a token of theirs.
bool Session::signsTokens() const {
  using enum Settings::Source;
  if (!settings_.text(Setting::signingKeyFile)) return false;
  const Settings::Source ofToken = settings_.source(Setting::token);
  const bool isNamed = settings_.source(Setting::user) == flag && ofToken != flag;
  return isNamed || settings_.source(Setting::signingKeyFile) > ofToken;
}

TokenSource Session::tokens() const {
  checkUser();
  const auto& token = settings_.text(Setting::token);
  const auto& keyFile = settings_.text(Setting::signingKeyFile);
  if (token && !signsTokens()) return *token;
  if (keyFile) return SelfSignedTokenResolver::make({.key = signingKey(*keyFile)});
  throw Failure(ExitCode::configuration,
                "there is no token: give --token or --signing-key-file, set ORVANE_TOKEN or "
                "ORVANE_SIGNING_KEY_FILE, or use orvane config set; orvane --sandbox has one");
}

}  // namespace orvane::cli
