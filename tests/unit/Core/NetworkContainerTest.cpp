// SPDX-License-Identifier: Apache-2.0
// What is registered by itself, and what happens when the host has registered nothing.
#include "tests/support/Outcome.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Core/Container+Network.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/User/UserService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <cstdlib>
#include <functional>
#include <latch>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using NetworkContainerDeathTest = DeathTest;
using Resolution = ScopedFoundation::Resolution;

TEST(NetworkContainerTest, sharesTheStoreAndMakesTheRestAnew) {
  const ScopedFoundation foundation;
  Container& container = networkContainer();
  EXPECT_EQ(&container, &networkContainer());
  EXPECT_EQ(container.inject<UserIDStore>(), container.inject<UserIDStore>());
  EXPECT_EQ(container.inject<UserIDStore>(), TimeMonitoringUserIDStore::shared());
  EXPECT_NE(container.inject<UserIdentifier>(), container.inject<UserIdentifier>());
  using Unauthenticated = UnauthenticatedOrvaneDetailResolverProtocol;
  EXPECT_NE(container.inject<Unauthenticated>(), container.inject<Unauthenticated>());
  EXPECT_EQ(Container::common()->find<UserIDStore>(), nullptr);

  const UserService users({"key", {}});
  EXPECT_EQ(users.requestManager(), foundation.requestManager);
  EXPECT_EQ(users.orvaneDetailsResolver(), foundation.detailsResolver);
}

TEST(NetworkContainerTest, twoServicesLookUpTheirUserOnce) {
  const ScopedFoundation foundation(Resolution::real);
  foundation.requestManager->answer("{}");
  foundation.requestManager->answerPath("/identity", {R"({"userId":"42"})"});
  const Identity identity = freshIdentity();
  const auto lookups = [&] {
    const Outcome<User> outcome;
    EXPECT_TRUE(finishes(UserService(identity).fetch({}, {}, outcome.handler())));
    EXPECT_TRUE(outcome.result());
    EXPECT_EQ(foundation.requestManager->questions().back().url.path(), "/kavra/api/sdk/users/42");
    std::size_t count = 0;
    for (const auto& request : foundation.requestManager->questions()) {
      count += request.url.path().ends_with("/identity") ? 1U : 0U;
    }
    return count;
  };
  EXPECT_EQ(lookups(), 1U);
  EXPECT_EQ(lookups(), 1U);
  foundation.timeMonitor->expireAll();
  EXPECT_EQ(lookups(), 2U);
}

TEST_F(NetworkContainerDeathTest, aMissingRegistrationStopsTheProcess) {
  Container& common = *Container::common();
  const auto nothing = common.registrations();
  const ScopedFoundation host(Resolution::real);
  const std::map<std::string, std::function<void()>> registering = {
      {"RequestManager", [&] { common.register_<RequestManager>(host.requestManager); }},
      {"OrvaneDetailsResolver",
       [&] { common.register_<OrvaneDetailsResolver>(host.detailsResolver); }},
      {"TokenResolver", [&] { common.register_<TokenResolver>(host.tokenResolver); }},
      {"EndpointResolver", [&] { common.register_<EndpointResolver>(host.endpointResolver); }},
      {"TimeOffsetStore", [&] { common.register_<TimeOffsetStore>(host.offsetStore); }},
      {"TimeMonitor", [&] { common.register_<TimeMonitor>(host.timeMonitor); }},
  };
  const auto makeService = [] { (void)UserService({"key", {}}); };
  const auto makeUnauthenticated = [] {
    (void)networkContainer().inject<UnauthenticatedOrvaneDetailResolverProtocol>();
  };
  const auto makeAuthenticated = [] {
    (void)TokenOffsettingOrvaneDetailsResolver::make(networkContainer());
  };
  const auto makeOfTheCommonOne = [] {
    (void)TokenOffsettingOrvaneDetailsResolver::make(*Container::common());
  };
  struct Row {
    std::string missing;
    std::function<void()> use;
  };
  const Row rows[] = {{"RequestManager", makeService},
                      {"OrvaneDetailsResolver", makeService},
                      {"TokenResolver", makeUnauthenticated},
                      {"EndpointResolver", makeUnauthenticated},
                      {"RequestManager", makeUnauthenticated},
                      {"TimeMonitor", makeUnauthenticated},
                      {"TimeOffsetStore", makeUnauthenticated},
                      {"TimeOffsetStore", makeAuthenticated},
                      {"UserIdentifier", makeOfTheCommonOne},
                      {"TimeMonitor", [] { (void)TimeMonitoringUserIDStore::shared(); }}};
  for (const Row& row : rows) {
    const auto stop = [&] {
      common.restore(nothing);
      for (const auto& [name, registerIt] : registering) {
        if (name != row.missing) registerIt();
      }
      row.use();
    };
    EXPECT_DEATH(stop(), "Fatal error: nothing is registered for orvane::" + row.missing +
                             ": file Container\\+Network, line 30");
  }
}

TEST_F(NetworkContainerDeathTest, aFactoryThatFailsStopsTheProcess) {
  const ScopedFoundation foundation;
  using Factory = std::function<std::shared_ptr<RequestManager>()>;
  const std::pair<Factory, std::string> rows[] = {
      {[]() -> std::shared_ptr<RequestManager> { throw std::runtime_error("no transport"); },
       "no transport"},
      {[]() -> std::shared_ptr<RequestManager> { throw 7; }, "a factory has failed"},
      {[] { return nullptr; }, "nothing is registered for orvane::RequestManager"},
  };
  for (const auto& [factory, message] : rows) {
    Container::common()->register_<RequestManager>(factory);
    EXPECT_DEATH((void)UserService({"key", {}}),
                 "Fatal error: " + message + ": file Container\\+Network, line 30");
  }
}

// In a process of its own, so that its threads are the first to ask.
TEST_F(NetworkContainerDeathTest, manyThreadsBuildItOnce) {
  const auto build = [] {
    const ScopedFoundation foundation(Resolution::real);
    constexpr int count = 8;
    std::latch start(count);
    std::vector<std::shared_ptr<UserIDStore>> stores(count);
    std::vector<std::thread> threads;
    for (auto& store : stores) {
      threads.emplace_back([&] {
        start.arrive_and_wait();
        (void)UserService({"key", {}});
        store = networkContainer().inject<UserIDStore>();
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& store : stores) {
      if (!store || store != stores.front()) std::_Exit(1);
    }
    std::exit(0);
  };
  EXPECT_EXIT(build(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace orvane
