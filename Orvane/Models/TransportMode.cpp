// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/TransportMode.h>

namespace orvane {

template struct RecordCoding<TransportMode>;
template struct RecordCoding<std::vector<TransportMode>>;

}  // namespace orvane
