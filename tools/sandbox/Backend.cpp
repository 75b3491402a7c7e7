// SPDX-License-Identifier: Apache-2.0
#include "Backend.h"

#include "Admin.h"
#include "data/Seed.h"
#include "resources/Firmware.h"
#include "resources/Resources.h"
#include "store/Changes.h"
#include "store/Schema.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>

namespace orvane::sandbox {

namespace {

constexpr std::string_view bearer = "Bearer ";

Problem unauthorized(const std::string& message) {
  return {401, "unauthorized", message, {{"WWW-Authenticate", "Bearer"}}};
}

}  // namespace

Backend::Backend(BackendOptions options)
    : options_(std::move(options)),
      clock_(options_.skewSeconds),
      signingKey_(options_.folder / "signing.key"),
      adminKey_(randomHex(16)),
      database_(options_.folder / "sandbox.sqlite"),
      misbehaviours_(options_.faults),
      snapshots_(options_.folder / "snapshots"),
      today_(options_.now.value_or(clockTime)),
      firstToday_(today_.load()) {
  makeFirmware(folder());
  layDataIfNeeded();
  options_.progress = nullptr;  // of the start: nobody looks on later
  addResources(router_);
  if (options_.records) recording_.start(options_.recordsSecrets);
}

void Backend::layDataIfNeeded() {
  const auto lease = database_.lease();
  const bool created = createSchema(*lease);
  if (created || options_.fresh) return lay(*lease);
  if (!readLaid(*lease)) return lay(*lease);
  if (options_.now && options_.now != today_) {
    throw std::runtime_error("the data in " + folder().string() +
                             " was laid around another time (" + httpDate(laidAround_) +
                             "); --fresh lays it anew");
  }
}

/// What the data was laid around, and whether that is today for it; false where there is none.
bool Backend::readLaid(DatabaseConnection& database) {
  Rows laid = database.query("SELECT around_ms, is_today FROM laid");
  if (!laid.next()) return false;
  laidAround_ = laid.integer(0);
  firstToday_ = laid.boolean(1) ? laidAround_.load() : clockTime;
  today_ = firstToday_.load();
  return true;
}

void Backend::lay(DatabaseConnection& database) {
  const Milliseconds around = now();
  Transaction transaction{database};
  forgetChanges(database);
  clearTables(database);
  layData(database, around, options_.weeks, options_.progress);
  database.execute("INSERT INTO laid VALUES (?, ?)", around, today_ != clockTime);
  watchChanges(database);
  transaction.commit();
  laidAround_ = around;
}

void Backend::reset() {
  clock_.setSkew(options_.skewSeconds);  // first: the data is laid around the clock's time
  today_ = firstToday_.load();
  lay(*database_.lease());
  misbehaviours_.reset();
  requests_.clear();
  for (const auto each :
       {Happening::cleared, Happening::faults, Happening::clock, Happening::reset}) {
    tell(each);
  }
}

void Backend::restore(const std::string& snapshot) {
  const auto lease = database_.lease();
  snapshots_.restore(snapshot, *lease);
  readLaid(*lease);
  tell(Happening::clock);
  tell(Happening::restored);
}

void Backend::moveToday(std::optional<Day> day) {
  const Milliseconds timeOfDay = now() - startOf(dayOf(now()));
  today_ = day ? startOf(*day) + timeOfDay : firstToday_.load();
}

std::string Backend::authenticate(DatabaseConnection& database, const Request& request,
                                  bool open) const {
  const auto header = request.header("Authorization");
  if (!header && open) return {};
  if (!header) throw unauthorized("a bearer token is missing");
  if (!header->starts_with(bearer)) throw unauthorized("the credentials are not a bearer token");
  const std::string_view token = header->substr(bearer.size());

  const bool development = token.starts_with(developmentToken);
  Rows rows = development
                  ? database.query("SELECT user_id FROM users WHERE user_id = ?",
                                   token.substr(developmentToken.size()))
                  : database.query("SELECT user_id FROM users WHERE external_reference_id = ?",
                                   signingKey_.verify(token, clock_.now()));
  if (!rows.next()) throw unauthorized("nobody here is the token's subject");
  return std::string{rows.text(0)};
}

Reply Backend::answerFromReplay(const Request& request) {
  Replay::Answer answer = options_.replay->answer(request);
  misbehaviours_.delay(answer.delay);
  return std::move(answer.reply);
}

Reply Backend::route(const Request& request, Trace& trace) {
  if (options_.replay) {
    trace.user = whoAsks(request);
    return answerFromReplay(request);
  }
  const std::string_view path = request.path;
  if (path.starts_with(apiRoot)) {
    Reply reply = router_.dispatch(*this, request, path.substr(apiRoot.size()), trace.user);
    trace.changedData = request.method != "GET" && request.method != "HEAD";
    return reply;
  }
  if (path.starts_with(downloads)) return answerDownload(folder(), request);
  throw notFound("the API root is " + std::string{apiRoot});
}

/// For a request whose resource is not asked.
std::string Backend::whoAsks(const Request& request) {
  try {
    return authenticate(*database_.lease(), request, true);
  } catch (const Problem&) {
    return {};
  }
}

Reply Backend::answer(const Request& request) {
  if (request.path.starts_with(adminRoot)) return answerAdmin(*this, request);

  const Milliseconds time = ServerClock::machineTime();
  const auto start = std::chrono::steady_clock::now();
  Trace trace;
  Reply reply = answerPage(request, trace);
  if (reply.bytesPerSecond == 0) reply.bytesPerSecond = options_.bytesPerSecond;
  const RequestLog::Duration duration = std::chrono::steady_clock::now() - start;
  requests_.add(request, reply, trace, time, duration);
  if (recording_.add(request, reply, duration)) tell(Happening::recording);
  if (trace.changedData) tell(Happening::changed);
  if (options_.verbose) {
    // Query values are personal: e-mail addresses, codes, push tokens.
    std::fprintf(stderr, "%s %s%s %d %zu bytes %.2f ms%s%s\n", request.method.c_str(),
                 request.path.c_str(), request.query.empty() ? "" : "?…", reply.status,
                 reply.body.size(), duration.count(), reply.reason.empty() ? "" : ": ",
                 reply.reason.c_str());
  }
  return reply;
}

/// Lets pages of allowed origins read answers, and ask beforehand whether they may (the CORS
/// protocol of the Fetch standard).
Reply Backend::answerPage(const Request& request, Trace& trace) {
  const auto origin = request.header("Origin");
  const auto& allowed = options_.allowedOrigins;
  const bool isAllowed = origin && std::ranges::any_of(allowed, [&](const std::string& each) {
                           return each == "*" || each == *origin;
                         });
  if (!isAllowed) return answerFaulty(request, trace);
  const auto wanted = request.header("Access-Control-Request-Method");
  const bool isQuestion = request.method == "OPTIONS" && wanted;
  Reply reply = isQuestion ? jsonReply("", 204) : answerFaulty(request, trace);
  reply.headers.emplace_back("Access-Control-Allow-Origin", *origin);
  reply.headers.emplace_back("Vary", "Origin");
  if (!isQuestion) {
    reply.headers.emplace_back("Access-Control-Expose-Headers", "Date, Retry-After");
    return reply;
  }
  reply.headers.emplace_back("Access-Control-Allow-Methods", *wanted);
  if (const auto headers = request.header("Access-Control-Request-Headers")) {
    reply.headers.emplace_back("Access-Control-Allow-Headers", *headers);
  }
  reply.headers.emplace_back("Access-Control-Max-Age", "600");
  return reply;
}

Reply Backend::answerFaulty(const Request& request, Trace& trace) {
  const auto fault = misbehaviours_.next(request.method, request.path);
  if (fault) {
    trace.fault = fault->text();
    if (fault->times > 0) tell(Happening::faults);
    misbehaviours_.delay(fault->delay);
  }
  Reply reply;
  try {
    if (!fault || fault->keepsAnswer()) {
      reply = route(request, trace);
    } else {
      trace.user = whoAsks(request);
    }
  } catch (const Problem& problem) {
    reply = problem.reply();
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "orvane-sandbox: %s %s: %s\n", request.method.c_str(),
                 request.path.c_str(), exception.what());
    reply = errorReply(500, "internal", "the sandbox failed; its standard error says why");
  }
  return fault ? fault->spoil(std::move(reply)) : reply;
}

}  // namespace orvane::sandbox
