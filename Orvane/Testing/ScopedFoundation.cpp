// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Resolvers.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <utility>

namespace orvane {

ScopedFoundation::ScopedFoundation(Resolution resolution)
    : requestManager(std::make_shared<ScriptedRequestManager>()),
      detailsResolver(std::make_shared<FixedOrvaneDetailsResolver>()),
      tokenResolver(std::make_shared<FixedTokenResolver>()),
      endpointResolver(std::make_shared<FixedEndpointResolver>()),
      offsetStore(std::make_shared<MemoryTimeOffsetStore>()),
      deviceIdentifier(std::make_shared<FixedDeviceIdentifier>()),
      downloader(std::make_shared<ScriptedDownloader>()),
      timeMonitor(MovableTimeMonitor::shared()),
      former_(Container::common()->registrations()) {
  Container& common = *Container::common();
  common.register_<RequestManager>(requestManager);
  common.register_<TokenResolver>(tokenResolver);
  common.register_<EndpointResolver>(endpointResolver);
  common.register_<TimeOffsetStore>(offsetStore);
  common.register_<DeviceIdentifier>(deviceIdentifier);
  common.register_<Downloader>(downloader);
  common.register_<TimeMonitor>(timeMonitor);
  if (resolution == Resolution::fixed) {
    common.register_<OrvaneDetailsResolver>(detailsResolver);
  } else {
    common.register_<OrvaneDetailsResolver>([](Container& asked, const Container::Arguments&) {
      return TokenOffsettingOrvaneDetailsResolver::make(asked);
    });
  }
}

ScopedFoundation::~ScopedFoundation() { Container::common()->restore(std::move(former_)); }

}  // namespace orvane
