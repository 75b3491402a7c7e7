// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Core/Container+Network.h>
#include <Orvane/Core/DeviceNamingService.h>

namespace orvane {

DeviceNamingService::DeviceNamingService(Identity identity)
    : SerializableService(std::move(identity)),
      deviceIdentifier_(injectOrStop<DeviceIdentifier>(networkContainer())) {}

}  // namespace orvane
