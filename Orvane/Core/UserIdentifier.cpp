// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Container+Network.h>
#include <Orvane/Core/Once.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Platform/JSON.h>

namespace orvane {
namespace {

// The identifier in an answer of the "identity" resource.
Result<std::string> userIDIn(Result<std::string> response) {
  if (response.value()) {
    const json::Document document(*response.value());
    json::Object object;
    if (document.isValid() && document.root().get(object) == simdjson::SUCCESS) {
      Result<std::string> userID = NetworkError::invalidResponseData;
      for (const auto& member : object) {
        if (member.key != "userId") continue;
        std::string_view text;
        userID = member.value.get(text) == simdjson::SUCCESS
                     ? Result<std::string>(std::string(text))
                     : Result<std::string>(NetworkError::invalidResponseData);
      }
      return userID;
    }
  }
  return response.errorOr(NetworkError::unknown);
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
    Result<std::string> userID = userIDIn(std::move(response));
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
