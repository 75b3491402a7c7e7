// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Container.h>
#include <Orvane/Common/Stores.h>
#include <Orvane/Core/Resolvers.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Runtime/FileDeviceIdentifier.h>
#include <Orvane/Runtime/IntervalTimeMonitor.h>
#include <Orvane/Runtime/MainQueueThread.h>
#include <Orvane/Runtime/Runtime.h>

#include <optional>
#include <utility>

namespace orvane {
namespace {

using Clock = std::chrono::steady_clock;

// What is registered. All of it lasts until something else is registered.
struct Parts {
  std::shared_ptr<CurlRequestManager> requestManager;
  std::shared_ptr<EndpointResolver> endpointResolver;
  std::shared_ptr<TokenResolver> tokenResolver;
  std::shared_ptr<TimeOffsetStore> offsetStore;
  std::shared_ptr<TimeMonitor> timeMonitor;
  std::shared_ptr<DeviceIdentifier> deviceIdentifier;
};

std::string deviceIdentifierFile(const RuntimeOptions& options) {
  if (!options.deviceIdentifierFile.empty()) return options.deviceIdentifierFile;
  const std::string& documents = DeviceSettings::current()->documentsDirectory;
  return documents.empty() ? std::string() : documents + "/orvane-device-id";
}

Result<Parts> makeParts(RuntimeOptions& options) {
  auto endpointResolver = options.baseURL.resolver();
  if (!endpointResolver.value()) return *endpointResolver.error();
  auto tokenResolver = options.tokens.resolver();
  if (!tokenResolver.value()) return *tokenResolver.error();
  auto requestManager = CurlRequestManager::make(std::move(options.transport));
  if (!requestManager.value()) return *requestManager.error();
  return Parts{*std::move(requestManager).value(),
               *std::move(endpointResolver).value(),
               *std::move(tokenResolver).value(),
               std::make_shared<MemoryTimeOffsetStore>(),
               std::make_shared<IntervalTimeMonitor>(options.userIDLifetime),
               std::make_shared<FileDeviceIdentifier>(deviceIdentifierFile(options))};
}

void registerParts(const Parts& parts) {
  Container& container = *Container::common();
  container.register_<RequestManager>(std::shared_ptr<RequestManager>(parts.requestManager));
  container.register_<EndpointResolver>(parts.endpointResolver);
  container.register_<TokenResolver>(parts.tokenResolver);
  container.register_<TimeOffsetStore>(parts.offsetStore);
  container.register_<TimeMonitor>(parts.timeMonitor);
  container.register_<DeviceIdentifier>(parts.deviceIdentifier);
  // From the container that is asked: the system's own, which knows the shared store of user
  // identifiers.
  container.register_<OrvaneDetailsResolver>([](Container& asked, const Container::Arguments&) {
    return TokenOffsettingOrvaneDetailsResolver::make(asked);
  });
}

}  // namespace

struct Runtime::State {
  Parts parts;
  std::optional<MainQueueThread> mainQueueThread;
};

Result<Runtime> Runtime::install(RuntimeOptions options) {
  if (options.logger) Logger::setShared(options.logger);
  Result<Parts> parts = makeParts(options);
  if (!parts.value()) {
    log.e("Orvane's Runtime can't be installed: " + parts.error()->message());
    return *std::move(parts).error();
  }
  auto state = std::make_shared<State>();
  state->parts = *std::move(parts).value();
  registerParts(state->parts);
  if (options.drainsMainQueue) state->mainQueueThread.emplace();
  return Runtime(std::move(state));
}

Runtime::Runtime(std::shared_ptr<State> state) : state_(std::move(state)) {}

void Runtime::signOut(const Identity& identity) const {
  const Parts& parts = state_->parts;
  TimeMonitoringUserIDStore::shared()->set(identity, std::nullopt);
  parts.offsetStore->set(identity, std::nullopt);
  if (auto* keeping = dynamic_cast<KeepingTokenResolver*>(parts.tokenResolver.get())) {
    keeping->forget(identity);
  }
}

bool Runtime::shutdown(std::chrono::milliseconds timeout) const {
  const Clock::time_point end = Clock::now() + timeout;
  const bool isTransportDown = state_->parts.requestManager->shutdown(timeout);
  if (!state_->mainQueueThread) return isTransportDown;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
  const bool isQueueDown =
      state_->mainQueueThread->stop(std::max(left, std::chrono::milliseconds::zero()));
  return isTransportDown && isQueueDown;
}

}  // namespace orvane
