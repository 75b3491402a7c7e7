// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Container.h>
#include <Orvane/Common/FirmwareHost.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Stores.h>
#include <Orvane/Core/Resolvers.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/ConfiguredURL.h>
#include <Orvane/Runtime/CurlDownloader.h>
#include <Orvane/Runtime/DefaultDeviceIdentifier.h>
#include <Orvane/Runtime/FileDeviceIdentifier.h>
#include <Orvane/Runtime/IntervalTimeMonitor.h>
#include <Orvane/Runtime/MainQueueThread.h>
#include <Orvane/Runtime/Runtime.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace orvane {
namespace {

using Clock = std::chrono::steady_clock;

// How long to wait for answers before the main queue is looked at again.
constexpr std::chrono::milliseconds longestLook{50};

std::chrono::milliseconds timeUntil(Clock::time_point end) {
  return std::max(std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()),
                  std::chrono::milliseconds::zero());
}

// What is registered. All of it lasts until something else is registered.
struct Parts {
  std::shared_ptr<CurlRequestManager> requestManager;
  std::shared_ptr<CurlDownloader> downloader;
  std::shared_ptr<EndpointResolver> endpointResolver;
  std::shared_ptr<TokenResolver> tokenResolver;
  std::shared_ptr<TimeOffsetStore> offsetStore;
  std::shared_ptr<TimeMonitor> timeMonitor;
  std::shared_ptr<UserIDStore> userIDStore;
  std::shared_ptr<DeviceIdentifier> deviceIdentifier;
  std::shared_ptr<FirmwareHost> firmwareHost;  // null leaves what is registered
};

std::shared_ptr<DeviceIdentifier> deviceIdentifier(const RuntimeOptions& options) {
  if (!options.deviceIdentifierFile.empty()) {
    return std::make_shared<FileDeviceIdentifier>(options.deviceIdentifierFile);
  }
  return std::make_shared<DefaultDeviceIdentifier>(DeviceSettings::current()->documentsDirectory);
}

Result<std::shared_ptr<FirmwareHost>> firmwareHost(const RuntimeOptions& options) {
  if (options.firmwareHost.empty()) return std::shared_ptr<FirmwareHost>();
  const auto url = configuredURL("firmwareHost", options.firmwareHost);
  if (!url.value()) return *url.error();
  return std::make_shared<FirmwareHost>(FirmwareHost{options.firmwareHost});
}

Result<Parts> makeParts(RuntimeOptions& options) {
  auto endpointResolver = options.baseURL.resolver();
  if (!endpointResolver.value()) return *endpointResolver.error();
  auto tokenResolver = options.tokens.resolver();
  if (!tokenResolver.value()) return *tokenResolver.error();
  auto host = firmwareHost(options);
  if (!host.value()) return *host.error();
  auto downloader = CurlDownloader::make(options.transport);
  if (!downloader.value()) return *downloader.error();
  auto requestManager = CurlRequestManager::make(std::move(options.transport));
  if (!requestManager.value()) return *requestManager.error();
  auto timeMonitor = std::make_shared<IntervalTimeMonitor>(options.userIDLifetime);
  auto userIDStore = std::make_shared<TimeMonitoringUserIDStore>(timeMonitor);
  return Parts{*std::move(requestManager).value(),
               *std::move(downloader).value(),
               *std::move(endpointResolver).value(),
               *std::move(tokenResolver).value(),
               std::make_shared<MemoryTimeOffsetStore>(),
               std::move(timeMonitor),
               std::move(userIDStore),
               deviceIdentifier(options),
               *std::move(host).value()};
}

void registerParts(const Parts& parts, const std::optional<RetryPolicy>& retry) {
  Container& container = *Container::common();
  std::shared_ptr<RequestManager> requestManager = parts.requestManager;
  if (retry) requestManager = std::make_shared<RetryingRequestManager>(requestManager, *retry);
  container.register_<RequestManager>(std::move(requestManager));
  container.register_<Downloader>(parts.downloader);
  container.register_<EndpointResolver>(parts.endpointResolver);
  container.register_<TokenResolver>(parts.tokenResolver);
  container.register_<TimeOffsetStore>(parts.offsetStore);
  container.register_<TimeMonitor>(parts.timeMonitor);
  container.register_<DeviceIdentifier>(parts.deviceIdentifier);
  if (parts.firmwareHost) container.register_<FirmwareHost>(parts.firmwareHost);
  // With a store of this installation's instead of the one that the process shares: the same person
  // has another identifier at another backend, and calls to a former one may still store theirs.
  container.register_<OrvaneDetailsResolver>(
      [store = parts.userIDStore](Container& asked, const Container::Arguments&) {
        auto users = std::make_shared<CachedUserIdentifier>(asked.inject<RequestManager>(), store);
        return std::make_shared<TokenOffsettingOrvaneDetailsResolver>(
            ResolverCollaborators{asked.inject<TokenResolver>(), asked.inject<EndpointResolver>(),
                                  std::move(users), asked.inject<TimeOffsetStore>()});
      });
}

}  // namespace

struct Runtime::State {
  Parts parts;
  std::optional<MainQueueThread> mainQueueThread;
};

Result<Runtime> Runtime::install(RuntimeOptions options) {
  if (options.logger) Logger::setShared(options.logger);
  const auto failed = [](Error error) {
    log.e("Orvane's Runtime can't be installed: " + error.message());
    return error;
  };
  Result<Parts> parts = makeParts(options);
  if (!parts.value()) return failed(*parts.error());
  auto state = std::make_shared<State>();
  state->parts = *std::move(parts).value();
  if (!options.drainsMainQueue) MainQueueThread::disown();
  if (options.drainsMainQueue && !state->mainQueueThread.emplace().start()) {
    return failed(ConfigurationError("drainsMainQueue: no thread can be started"));
  }
  registerParts(state->parts, options.retry);
  return Runtime(std::move(state));
}

Runtime::Runtime(std::shared_ptr<State> state) : state_(std::move(state)) {}

void Runtime::signOut(const Identity& identity) const {
  const Parts& parts = state_->parts;
  parts.userIDStore->set(identity, std::nullopt);
  // Where a resolver of the host's own, made of what the system registers, keeps it.
  TimeMonitoringUserIDStore::shared()->set(identity, std::nullopt);
  parts.offsetStore->set(identity, std::nullopt);
  if (auto* keeping = dynamic_cast<KeepingTokenResolver*>(parts.tokenResolver.get())) {
    keeping->forget(identity);
  }
}

bool Runtime::shutdown(std::chrono::milliseconds timeout) const {
  const Clock::time_point end = deadlineAfter(timeout);
  bool isDown = state_->parts.requestManager->shutdown(timeout);
  isDown = state_->parts.downloader->shutdown(timeUntil(end)) && isDown;
  if (state_->mainQueueThread) isDown = state_->mainQueueThread->stop(timeUntil(end)) && isDown;
  return isDown;
}

bool Runtime::finish(std::chrono::milliseconds patience, std::chrono::milliseconds timeout) const {
  const Clock::time_point end = deadlineAfter(patience);
  const auto isIdle = [this](Clock::time_point until) {
    return state_->parts.requestManager->waitUntilIdle(timeUntil(until)) &&
           state_->parts.downloader->waitUntilIdle(timeUntil(until));
  };
  // What the main queue holds may start requests, and their answers add to what it holds.
  MainQueue& queue = MainQueue::main();
  bool isDone = false;
  while (!isDone && Clock::now() < end) {
    const bool isSettled = queue.settle(timeUntil(end));
    if (!isIdle(std::min(end, deadlineAfter(longestLook)))) continue;
    if (!isSettled) break;  // nobody can run what the queue holds
    isDone = queue.settle(timeUntil(end)) && isIdle(Clock::now());
  }
  return shutdown(timeout) && isDone;
}

}  // namespace orvane
