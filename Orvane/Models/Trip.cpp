// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Conversions.h>
#include <Orvane/Models/Trip.h>

namespace orvane {
namespace {

// A zone as its offset from UTC. An offset that no zone has leaves the member absent.
struct OffsetMilliseconds {
  using Wire = std::int64_t;
  static std::optional<TimeZone> fromWire(Wire offset) {
    return TimeZone::fromSeconds(offset / 1000);
  }
  // The offset in force now. It has 32 bits, and can't overflow.
  static Wire toWire(const TimeZone& zone) {
    return zone.secondsFromGMT(DeviceClock::now()) * 1000;
  }
};

// What is read, and what is written: not the same, on purpose.
constexpr KeyRow decodingKeys[] = {
    required<&Trip::id>("tripId"),
    key<&Trip::dateStarted, Milliseconds>("tripStartTimestampUtc"),
    key<&Trip::dateEnded, Milliseconds>("tripEndTimestampUtc"),
    key<&Trip::dateProcessed, Milliseconds>("tripProcessingEndTimestampUtc"),
    key<&Trip::distance, Kilometres>("kilometers"),
    key<&Trip::averageSpeed, KilometresPerHour>("avgKilometersPerHour"),
    key<&Trip::maximumSpeed, KilometresPerHour>("maxKilometersPerHour"),
    key<&Trip::duration>("seconds"),
    key<&Trip::timeZone, OffsetMilliseconds>("timeZoneOffsetMillis"),
    required<&Trip::status>("tripStatus"),
    required<&Trip::transportMode>("transportMode"),
    key<&Trip::polyline, EncodedPolyline>("geometry"),
    key<&Trip::events>("events"),
    key<&Trip::score>("tripScore"),
    key<&Trip::scores>("tripScores"),
    key<&Trip::scoring>("scoring"),
    required<&Trip::purpose>("purpose"),
    key<&Trip::startPolyline, EncodedPolyline>("reconstructedStartGeometry"),
    key<&Trip::user>("user"),
    key<&Trip::vehicleId>("vehicleId"),
    key<&Trip::vehicle>("vehicle"),
};

constexpr KeyRow encodingKeys[] = {
    required<&Trip::id>("tripId"),
    required<&Trip::status>("tripStatus"),
    required<&Trip::transportMode>("transportMode"),
    required<&Trip::purpose>("purpose"),
    key<&Trip::user>("user"),
    key<&Trip::vehicleId>("vehicleId"),
    key<&Trip::dateStarted, Milliseconds>("tripStartTimestampUtc"),
    key<&Trip::duration>("seconds"),
    key<&Trip::dateEnded, Milliseconds>("tripEndTimestampUtc"),
    key<&Trip::dateProcessed, Milliseconds>("tripProcessingEndTimestampUtc"),
    key<&Trip::distance, Kilometres>("kilometers"),
    key<&Trip::averageSpeed, KilometresPerHour>("avgKilometersPerHour"),
    key<&Trip::maximumSpeed, KilometresPerHour>("maxKilometersPerHour"),
    key<&Trip::timeZone, OffsetMilliseconds>("timeZoneOffsetMillis"),
    key<&Trip::polyline, EncodedPolyline>("geometry"),
    key<&Trip::startPolyline, EncodedPolyline>("reconstructedStartGeometry"),
    key<&Trip::vehicle>("vehicle"),
    key<&Trip::events>("events"),
};

}  // namespace

std::optional<std::vector<CLLocationCoordinate2D>> Trip::geometry() const {
  if (!polyline) return std::nullopt;
  return polyline->decode();
}

std::optional<std::vector<CLLocationCoordinate2D>> Trip::reconstructedStartGeometry() const {
  if (!startPolyline) return std::nullopt;
  return startPolyline->decode();
}

bool decodeValue(json::Element element, Trip::Events& events, Decoder& decoder) {
  events.clear();
  return decodeEntries(element, decoder, [&](std::string_view key, json::Element list) {
    return decodeValue(list, events[Event::EventType::fromWireText(key)], decoder);
  });
}

// In the alphabetical order of the backend's names. Where an unknown type has a known one's name,
// the known one, which comes after it, takes its place.
void encodeValue(const Trip::Events& events, json::Writer& writer) {
  std::map<std::string_view, const std::vector<Event>&> named;
  for (const auto& [type, list] : events) {
    named.erase(type.wireText());
    named.emplace(type.wireText(), list);
  }
  encodeValue(named, writer);
}

KeyTables keysOf(RecordTag<Trip>) { return {decodingKeys, encodingKeys}; }

template struct RecordCoding<Trip>;
template struct RecordCoding<std::vector<Trip>>;

bool Trip::operator==(const Trip&) const noexcept = default;

}  // namespace orvane
