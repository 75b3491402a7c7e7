// SPDX-License-Identifier: Apache-2.0
// The lookup of the current user's identifier, and the store that keeps it.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/Common/Stores.h>
#include <Orvane/Platform/Export.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Keeps user identifiers by identity. Any thread may use it.
class ORVANE_EXPORT UserIDStore {
 public:
  UserIDStore() = default;
  UserIDStore(const UserIDStore&) = delete;
  UserIDStore& operator=(const UserIDStore&) = delete;
  virtual ~UserIDStore();

  /// The identifier; absent when none is known or it has expired.
  [[nodiscard]] virtual std::optional<std::string> get(const Identity& identity) const = 0;
  /// Absent forgets the identifier.
  virtual void set(const Identity& identity, std::optional<std::string> userID) = 0;
};

/// A store whose entries expire as a `TimeMonitor` says.
class ORVANE_EXPORT TimeMonitoringUserIDStore final
    : public TimeMonitoringStore<Identity, std::string, UserIDStore> {
 public:
  using TimeMonitoringStore::TimeMonitoringStore;
  ~TimeMonitoringUserIDStore() override;

  /// The store of the process, made on first use with the `TimeMonitor` that the host has
  /// registered (none registered is a programming fault), and never destroyed.
  [[nodiscard]] static const std::shared_ptr<TimeMonitoringUserIDStore>& shared();
};

/// Finds out the current user's identifier.
class ORVANE_EXPORT UserIdentifier {
 public:
  UserIdentifier() = default;
  UserIdentifier(const UserIdentifier&) = delete;
  UserIdentifier& operator=(const UserIdentifier&) = delete;
  virtual ~UserIdentifier();

  /// Answers the identifier of the user that `headers` authenticate. Any thread may call; the
  /// handler runs on the main queue, once unless the request is cancelled.
  virtual RequestHandle userID(const Identity& identity, const URL& apiURL, const Headers& headers,
                               Completion<std::string> then) = 0;
};

/// Asks the backend, and keeps what it answers.
///
/// A known identifier is answered without a request. Of the backend's answer only the member
/// "userId" counts; the lookup fails with the request's own error, with
/// `NetworkError::invalidResponseData` for an object without a text under that key, and with
/// `NetworkError::unknown` for anything that is not a JSON object. A failure stores nothing.
/// Lookups at once for one identity each go to the backend; the last answer stays.
///
/// The handle is that of the request: it counts as finished, and can't be cancelled any more, when
/// the answer is on its way through the main queue; where no request is made, from the start.
class ORVANE_EXPORT CachedUserIdentifier final : public UserIdentifier {
 public:
  /// Neither of the two may be null.
  CachedUserIdentifier(std::shared_ptr<RequestManager> requestManager,
                       std::shared_ptr<UserIDStore> userIDStore)
      : requestManager_(std::move(requestManager)), userIDStore_(std::move(userIDStore)) {}

  RequestHandle userID(const Identity& identity, const URL& apiURL, const Headers& headers,
                       Completion<std::string> then) override;

 private:
  const std::shared_ptr<RequestManager> requestManager_;
  const std::shared_ptr<UserIDStore> userIDStore_;
};

}  // namespace orvane
