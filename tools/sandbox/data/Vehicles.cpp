// SPDX-License-Identifier: Apache-2.0
#include "data/Vehicles.h"

#include "JsonWriter.h"

#include <algorithm>
#include <array>
#include <string>

namespace orvane::sandbox {

namespace {

struct Vehicle {
  const char* vehicleId;
  const char* make;
  const char* model;
  const char* nickName;
  int year;
  const char* vin;
  const char* plate;
  const char* deviceType;
  bool healthy;
};

constexpr std::array<Vehicle, 6> allVehicles{{
    {"3001", "Škoda", "Octavia", "The blue one", 2021, "TMBJJ7NX0MY000001", "BS 30461", "WEDGE",
     true},
    {"3002", "Volkswagen", "Polo", nullptr, 2017, "WVWZZZAWZHU000002", "BS 77120", "WEDGE", false},
    {"3003", "Renault", "Kangoo", "Courier 1", 2020, "VF1RJK00064000003", "BS 112233", "OBD", true},
    {"3004", "Opel", "Vivaro-e", "Courier 2", 2022, "W0VV0000000000004", "BS 112234", "OBD", true},
    {"3005", "Fiat", "Panda", nullptr, 2014, "ZFA31200000000005", "FX-415-QR", "WEDGE", true},
    {"3006", "BMW", "R 1250 GS", "Two wheels", 2019, "WB10J9402KZ000006", "BS 6161", "WEDGE", true},
}};

struct Link {
  const char* vehicleId;
  const char* userId;
  const char* role;
};

// The first link of a user names the vehicle that the user's trips are made with.
constexpr std::array<Link, 10> allLinks{{
    {"3001", "1001", "OWNER"},
    {"3006", "1001", "OWNER"},
    {"3002", "1002", "OWNER"},
    {"3001", "1002", "OPERATOR"},
    {"3001", "1003", "OPERATOR"},
    {"3003", "1004", "OWNER"},
    {"3004", "1004", "OWNER"},
    {"3004", "1005", "OPERATOR"},
    {"3003", "1005", "OPERATOR"},
    {"3005", "1006", "OWNER"},
}};

std::string healthOf(const Vehicle& vehicle, Milliseconds now) {
  JsonWriter json;
  json.beginObject()
      .member("batteryVolts", vehicle.healthy ? 12.6 : 11.7)
      .member("checkEngine", !vehicle.healthy)
      .member("lastReadTimestamp", now - millisPerDay)
      .key("troubleCodes")
      .beginArray();
  if (!vehicle.healthy) json.value("P0420");
  return json.endArray().endObject().take();
}

std::string devicesOf(const Vehicle& vehicle) {
  JsonWriter json;
  json.beginArray()
      .beginObject()
      .member("identifier", std::string{"dev-"} + vehicle.vehicleId)
      .member("deviceType", vehicle.deviceType)
      .member("enrollmentDeviceId", std::string{"8"} + vehicle.vehicleId)
      .member("serialNumber", std::string{"4417-00"} + vehicle.vehicleId)
      .member("activeForDataCollection", true)
      .endObject()
      .endArray();
  return json.take();
}

}  // namespace

void layVehicles(DatabaseConnection& database, Milliseconds now) {
  int index = 0;
  for (const Vehicle& vehicle : allVehicles) {
    database.execute("INSERT INTO vehicles VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                     vehicle.vehicleId, vehicle.make, vehicle.model,
                     vehicle.nickName ? std::optional{vehicle.nickName} : std::nullopt,
                     vehicle.year, vehicle.vin, vehicle.plate, "Europe/Zurich", "+01:00",
                     startOf(dayOf(now)) - (100 + 7 * index) * millisPerDay, index % 2 == 0,
                     index == 1, healthOf(vehicle, now), devicesOf(vehicle));
    ++index;
  }
  for (const Link& link : allLinks) {
    database.execute("INSERT INTO vehicle_users VALUES (?, ?, ?)", link.vehicleId, link.userId,
                     link.role);
  }
}

const char* vehicleOf(std::string_view userId) {
  const auto found = std::ranges::find(allLinks, userId, &Link::userId);
  return found != allLinks.end() ? found->vehicleId : nullptr;
}

}  // namespace orvane::sandbox
