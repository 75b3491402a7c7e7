// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Vehicle.h>

#include <tuple>

namespace orvane {
namespace {

constexpr KeyRow vehicleKeys[] = {
    key<&Vehicle::vehicleId>("vehicleId"),
    key<&Vehicle::make>("make"),
    key<&Vehicle::model>("model"),
    key<&Vehicle::nickName>("nickName"),
    key<&Vehicle::year>("year"),
    key<&Vehicle::vin>("vin"),
    key<&Vehicle::plate>("plate"),
    key<&Vehicle::timeZoneName>("timeZoneName"),
    key<&Vehicle::timeZoneOffset>("timeZoneOffset"),
    key<&Vehicle::enrollmentDate>("enrollmentDate"),
    key<&Vehicle::usersByRole>("usersByRole"),
    key<&Vehicle::backgroundImageEnabled>("backgroundImageEnabled"),
    key<&Vehicle::devices>("devices"),
    key<&Vehicle::requireOdometerSnapshot>("requireOdometerSnapshot"),
};

// All members; a member that is added must be named here, or this does not compile.
auto membersOf(const Vehicle& vehicle) {
  const auto& [id, make, model, nickName, year, vin, plate, zone, offset, enrolled, users, image,
               devices, odometer] = vehicle;
  return std::tie(id, make, model, nickName, year, vin, plate, zone, offset, enrolled, users, image,
                  devices, odometer);
}

}  // namespace

bool Vehicle::isIdentical(const Vehicle& other) const {
  return membersOf(*this) == membersOf(other);
}

KeyTables keysOf(RecordTag<Vehicle>) { return vehicleKeys; }

template struct RecordCoding<Vehicle>;
template struct RecordCoding<std::vector<Vehicle>>;

}  // namespace orvane
