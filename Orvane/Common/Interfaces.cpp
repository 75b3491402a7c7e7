// SPDX-License-Identifier: Apache-2.0
// The homes of the host's interfaces: one type identity each across shared libraries.
#include <Orvane/Common/Downloader.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Common/Stores.h>

namespace orvane {

RequestManager::~RequestManager() = default;
Downloader::~Downloader() = default;
EndpointResolver::~EndpointResolver() = default;
TokenResolver::~TokenResolver() = default;
DeviceIdentifier::~DeviceIdentifier() = default;
TimeOffsetStore::~TimeOffsetStore() = default;
TimeMonitor::~TimeMonitor() = default;

}  // namespace orvane
