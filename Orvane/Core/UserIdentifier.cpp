// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Core/Container+Network.h>
#include <Orvane/Core/Once.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Platform/JSON.h>
#include <Orvane/Platform/Text.h>

namespace orvane {
namespace {

// An answer without an identifier, and what is wrong with it.
Error unreadable(const NetworkError& error, std::string finding) {
  return Error(error).with({.finding = std::move(finding)});
}

// The identifier in the object that answers the "identity" resource.
Result<std::string> userIDIn(const json::Object& object) {
  Result<std::string> userID = unreadable(NetworkError::invalidResponseData, "userId is missing");
  for (const auto& member : object) {
    if (member.key != "userId") continue;
    std::string_view text;
    if (member.value.get(text) == simdjson::SUCCESS) {
      userID = std::string(text);
    } else {
      userID = unreadable(
          NetworkError::invalidResponseData,
          concatenated({"userId: a text was expected, found ", json::describe(member.value)}));
    }
  }
  return userID;
}

// The identifier in an answer of the "identity" resource.
Result<std::string> userIDIn(Result<std::string> response) {
  if (!response) return response.errorOr(NetworkError::unknown);
  const json::Document document(*response);
  if (!document.isValid()) {
    DecodingError error;
    error.description = document.failure();
    return unreadable(NetworkError::unknown, findingIn(error, *response));
  }
  json::Object object;
  if (document.root().get(object) == simdjson::SUCCESS) return userIDIn(object);
  return unreadable(NetworkError::unknown, concatenated({"an object was expected, found ",
                                                         json::describe(document.root())}));
}

// The outcome of the request, telling on failure what was asked for.
Result<std::string> explained(Result<std::string> userID) {
  if (userID || !userID.error()) return userID;
  return userID.error()->with({.operation = "GET identity"});
}

}  // namespace

UserIDStore::~UserIDStore() = default;
UserIdentifier::~UserIdentifier() = default;
TimeMonitoringUserIDStore::~TimeMonitoringUserIDStore() = default;

const std::shared_ptr<TimeMonitoringUserIDStore>& TimeMonitoringUserIDStore::shared() {
  static const auto& store = *new std::shared_ptr<TimeMonitoringUserIDStore>(
      std::make_shared<TimeMonitoringUserIDStore>(injectOrStop<TimeMonitor>(networkContainer())));
  return store;
}

RequestHandle CachedUserIdentifier::userID(const Identity& identity, const URL& apiURL,
                                           const Headers& headers, Completion<std::string> then) {
  if (std::optional<std::string> known = userIDStore_->get(identity)) {
    MainQueue::main().async(
        [then = std::move(then), known = *std::move(known)]() mutable { then(std::move(known)); });
    return std::make_shared<EmptyRequest>();
  }
  auto keep = [store = userIDStore_, identity = Identity(identity),
               then = std::move(then)](Result<std::string> response) mutable {
    Result<std::string> userID = explained(userIDIn(std::move(response)));
    if (userID.value()) store->set(identity, *userID.value());
    MainQueue::main().async([then = std::move(then), userID = std::move(userID)]() mutable {
      then(std::move(userID));
    });
  };
  // A text of plain letters can always be appended.
  return requestManager_->get(*apiURL.appendingPathComponent("identity"), headers,
                              once(std::move(keep)));
}

}  // namespace orvane
