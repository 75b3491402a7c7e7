// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Conversions.h>
#include <Orvane/Models/Event.h>

#include <array>

namespace orvane {
namespace {

constexpr KeyRow eventKeys[] = {
    required<&Event::latitude>("latitude"),
    required<&Event::longitude>("longitude"),
    indispensable<&Event::date, Milliseconds>("timeStamp"),
    key<&Event::severity>("level"),
    key<&Event::speed, KilometresPerHour>("kmPerHour"),
    key<&Event::averageSpeed, KilometresPerHour>("averageKmPerHour"),
    key<&Event::polyline, EncodedPolyline>("geometry"),
    key<&Event::duration>("secondsOfDriving"),
    key<&Event::speedLimit, KilometresPerHour>("kmSpeedLimit"),
    required<&Event::transportMode>("transportMode"),
};

// The severities by the backend's levels from 0 on.
constexpr auto levels =
    std::to_array({Event::Severity::veryLow, Event::Severity::veryLow, Event::Severity::low,
                   Event::Severity::medium, Event::Severity::high, Event::Severity::veryHigh});

// The key under which an event type stands when it is written alone.
std::string_view caseName(Event::KnownEventType type) noexcept {
  switch (type) {
    case Event::KnownEventType::acceleration:
      return "acceleration";
    case Event::KnownEventType::braking:
      return "braking";
    case Event::KnownEventType::cornering:
      return "cornering";
    case Event::KnownEventType::speeding:
      return "speeding";
    case Event::KnownEventType::postedSpeedLimit:
      return "postedSpeedLimit";
  }
  return {};
}

}  // namespace

std::optional<std::vector<CLLocationCoordinate2D>> Event::geometry() const {
  if (!polyline) return std::nullopt;
  return polyline->decode();
}

Event::EventType Event::EventType::fromWireText(std::string_view text) {
  if (const auto known = orvane::fromWireText<KnownEventType>(text)) return *known;
  return OtherEventType{std::string(text)};
}

std::string_view Event::EventType::wireText() const noexcept {
  if (const auto* known = as<KnownEventType>()) return orvane::wireText(*known);
  return as<OtherEventType>()->key;
}

// Any integer is a level, of whatever size: one that is not known is the lowest.
bool decodeValue(json::Element element, Event::Severity& severity, Decoder& decoder) {
  std::int64_t level = 0;
  if (!decodeNearestInteger(element, level, decoder)) return false;
  const bool isKnown = level >= 0 && static_cast<std::uint64_t>(level) < levels.size();
  severity = isKnown ? levels[static_cast<std::size_t>(level)] : Event::Severity::veryLow;
  return true;
}

void encodeValue(Event::Severity severity, json::Writer& writer) {
  writer.value(rawValue(severity));
}

bool decodeValue(json::Element element, Event::EventType& type, Decoder& decoder) {
  std::string_view text;
  if (!decodeValue(element, text, decoder)) return false;
  type = Event::EventType::fromWireText(text);
  return true;
}

// An object keyed by the case, and so not what is read.
void encodeValue(const Event::EventType& type, json::Writer& writer) {
  writer.beginObject();
  type.match(
      [&](Event::KnownEventType known) {
        writer.key(caseName(known));
        writer.beginObject();
      },
      [&](const Event::OtherEventType& other) {
        writer.key("other");
        writer.beginObject();
        writer.key("key");
        writer.value(other.key);
      });
  writer.endObject();
  writer.endObject();
}

// A page of trips holds thousands of events.
bool decodeValue(json::Element element, Event& event, Decoder& decoder) {
  return decodeInOrder<eventKeys>(element, &event, decoder);
}

void encodeValue(const Event& event, json::Writer& writer) {
  encodeInOrder<eventKeys>(&event, writer);
}

KeyTables keysOf(RecordTag<Event>) { return eventKeys; }

template struct RecordCoding<Event>;
template struct RecordCoding<std::vector<Event>>;
template struct RecordCoding<Event::EventType>;
template struct RecordCoding<std::vector<Event::EventType>>;
template struct RecordCoding<Event::Severity>;
template struct RecordCoding<std::vector<Event::Severity>>;

bool Event::OtherEventType::operator==(const Event::OtherEventType&) const noexcept = default;
bool Event::operator==(const Event&) const noexcept = default;

}  // namespace orvane
