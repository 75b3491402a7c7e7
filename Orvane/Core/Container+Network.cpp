// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Container+Network.h>

namespace orvane {
namespace {

using Arguments = Container::Arguments;

Container& makeNetworkContainer() {
  // Never destroyed: services may still be built while the process ends.
  auto& container = *new Container(Container::common());
  container.register_<UserIDStore>([] { return TimeMonitoringUserIDStore::shared(); });
  container.register_<UnauthenticatedOrvaneDetailResolverProtocol>(
      [](Container& asked, const Arguments&) {
        return std::make_shared<UnauthenticatedOrvaneDetailResolver>(injectCollaborators(asked));
      });
  container.register_<UserIdentifier>([](Container& asked, const Arguments&) {
    auto requestManager = injectOrStop<RequestManager>(asked);
    return std::make_shared<CachedUserIdentifier>(std::move(requestManager),
                                                  injectOrStop<UserIDStore>(asked));
  });
  return container;
}

}  // namespace

Container& networkContainer() {
  static Container& container = makeNetworkContainer();
  return container;
}

ResolverCollaborators injectCollaborators(Container& container) {
  // Members of a braced list are evaluated in order.
  return {injectOrStop<TokenResolver>(container), injectOrStop<EndpointResolver>(container),
          injectOrStop<UserIdentifier>(container), injectOrStop<TimeOffsetStore>(container)};
}

}  // namespace orvane
