// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Container+Network.h>
#include <Orvane/Core/SerializableService.h>

namespace orvane {

SerializableService::SerializableService(Identity identity)
    : identity_(std::move(identity)),
      requestManager_(injectOrStop<RequestManager>(networkContainer())),
      orvaneDetailsResolver_(injectOrStop<OrvaneDetailsResolver>(networkContainer())) {}

}  // namespace orvane
