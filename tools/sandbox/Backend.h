// SPDX-License-Identifier: Apache-2.0
//
// What all resources share: the data, the clock, the keys and the question who is asking.
#pragma once

#include "Client.h"
#include "Misbehaviour.h"
#include "RequestLog.h"
#include "Router.h"
#include "Snapshots.h"
#include "Time.h"
#include "data/Trips.h"
#include "inspector/Sessions.h"
#include "recording/Recording.h"
#include "recording/Replay.h"
#include "security/Tokens.h"
#include "store/Database.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

struct BackendOptions {
  std::filesystem::path folder;
  std::optional<Milliseconds> now;  // what the data is laid around; absent: the clock's time
  std::int64_t skewSeconds = 0;
  int weeks = 8;       // of trips
  bool fresh = false;  // lay the data anew even when there is some
  std::vector<Fault> faults;
  std::size_t bytesPerSecond = 0;           // of every answer; 0: at once
  std::vector<std::string> allowedOrigins;  // of pages that may read answers; "*" is all of them
  bool verbose = false;                     // a line per request on standard error
  LayingProgress progress;                  // while the data is laid
  std::function<Address()> address;         // how clients reach it, once it listens
  bool records = false;                     // requests and answers, from the start
  bool recordsSecrets = false;              // without stand-ins for tokens and e-mail addresses
  std::shared_ptr<Replay> replay;           // answers in the place of the resources
};

/// What the inspector's page is told of beside requests.
enum class Happening { cleared, faults, clock, reset, restored, changed, recording };

class Backend {
 public:
  /// Opens the data in the folder, or lays it on the first start. Throws std::runtime_error when
  /// there is data that was laid around another time than the one asked for.
  explicit Backend(BackendOptions options);

  /// Answers every request, whatever it asks.
  [[nodiscard]] Reply answer(const Request& request);

  /// The user id of the bearer token's subject. Throws a 401; an `open` resource may also be asked
  /// without a token, and then the id is empty.
  [[nodiscard]] std::string authenticate(DatabaseConnection& database, const Request& request,
                                         bool open) const;

  /// Who is told of what happens from now on, on the thread that brings it about; must not wait. To
  /// be set before the first request.
  void setWitness(std::function<void(Happening)> witness) { witness_ = std::move(witness); }
  void tell(Happening happening) const {
    if (witness_) witness_(happening);
  }

  /// Lays the data anew, forgets misbehaviour and requests, and sets the clock back.
  void reset();
  /// Puts the data of a snapshot in place of the present one. Throws a 404 where there is none.
  void restore(const std::string& snapshot);

  /// The time for whatever is relative to today: what the data was laid around when that was asked
  /// for, and otherwise the server clock's.
  [[nodiscard]] Milliseconds now() const {
    const Milliseconds today = today_;
    return today == clockTime ? clock_.now() : today;
  }

  /// Moves today to that day, at the present time of day; absent: back to where it was at first.
  void moveToday(std::optional<Day> day);

  /// The time that the data was laid around.
  [[nodiscard]] Milliseconds laidAround() const { return laidAround_; }

  [[nodiscard]] Database& database() { return database_; }
  [[nodiscard]] ServerClock& clock() { return clock_; }
  [[nodiscard]] const SigningKey& signingKey() const { return signingKey_; }
  [[nodiscard]] Misbehaviours& misbehaviours() { return misbehaviours_; }
  [[nodiscard]] RequestLog& requests() { return requests_; }
  [[nodiscard]] Snapshots& snapshots() { return snapshots_; }
  [[nodiscard]] const std::string& adminKey() const { return adminKey_; }
  [[nodiscard]] const std::filesystem::path& folder() const { return options_.folder; }
  [[nodiscard]] Address address() const {
    return options_.address ? options_.address() : Address{};
  }
  [[nodiscard]] Sessions& inspectorSessions() { return inspectorSessions_; }
  [[nodiscard]] Recording& recording() { return recording_; }

 private:
  [[nodiscard]] Reply answerFaulty(const Request& request, Trace& trace);
  [[nodiscard]] Reply route(const Request& request, Trace& trace);
  [[nodiscard]] Reply answerPage(const Request& request, Trace& trace);
  [[nodiscard]] Reply answerFromReplay(const Request& request);
  [[nodiscard]] std::string whoAsks(const Request& request);
  void layDataIfNeeded();
  bool readLaid(DatabaseConnection& database);
  void lay(DatabaseConnection& database);

  BackendOptions options_;
  ServerClock clock_;
  SigningKey signingKey_;
  std::string adminKey_;
  Database database_;
  Misbehaviours misbehaviours_;
  RequestLog requests_;
  Snapshots snapshots_;
  Router router_;
  Sessions inspectorSessions_;
  Recording recording_;
  std::function<void(Happening)> witness_;
  std::atomic<Milliseconds> laidAround_ = 0;
  static constexpr Milliseconds clockTime = std::numeric_limits<Milliseconds>::min();
  std::atomic<Milliseconds> today_;       // what `now()` answers; `clockTime`: the server clock's
  std::atomic<Milliseconds> firstToday_;  // the same before anybody moved it
};

inline constexpr std::string_view apiRoot = "/kavra/api/sdk/";
inline constexpr std::string_view developmentToken = "sandbox-token-";

/// The key that the sample identities carry.
inline constexpr const char* sampleApiKey = "sandbox-api-key";

}  // namespace orvane::sandbox
