// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/DriverDetection.h>

namespace orvane {
namespace {

constexpr KeyRow driverDetectionKeys[] = {
    key<&DriverDetection::status>("status"),
    key<&DriverDetection::numberOfDriverTrips>("numberOfDriverTrips"),
    key<&DriverDetection::minimumNumberOfDriverTrips>("minimumNumberOfDriverTrips"),
};

}  // namespace

KeyTables keysOf(RecordTag<DriverDetection>) { return driverDetectionKeys; }

template struct RecordCoding<DriverDetection>;
template struct RecordCoding<std::vector<DriverDetection>>;

bool DriverDetection::operator==(const DriverDetection&) const noexcept = default;

}  // namespace orvane
