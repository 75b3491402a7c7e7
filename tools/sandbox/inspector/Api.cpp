// SPDX-License-Identifier: Apache-2.0
#include "inspector/Api.h"

#include "Admin.h"
#include "inspector/Views.h"
#include "store/Changes.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace orvane::sandbox {

namespace {

constexpr std::int64_t mostRequests = 10'000;
constexpr std::int64_t usualRequests = 1000;
constexpr std::size_t mostChanges = 500;

struct Inquiry {
  Backend& backend;
  Feed& feed;
  const Sessions::Session& session;
  const Request& request;
  std::string item;  // what follows the room's name and a slash
};

std::int64_t numberOf(const Inquiry& inquiry) {
  const auto number = parseInteger(inquiry.item);
  if (!number) throw notFound("there is no such number");
  return *number;
}

/// As it is done for admin requests.
template <Reply (*handle)(Backend&, const Request&)>
Reply steered(Inquiry& inquiry) {
  return handle(inquiry.backend, inquiry.request);
}

Reply showSession(Inquiry& inquiry) {
  const Backend& backend = inquiry.backend;
  const Address address = backend.address();
  JsonWriter json;
  json.beginObject()
      .member("token", inquiry.session.token)
      .member("version", ORVANE_SANDBOX_VERSION)
      .member("baseURL", address.baseUrl)
      .member("apiKey", sampleApiKey)
      .member("certificateAuthority", address.certificateAuthority.string())
      .member("data", backend.folder().string())
      .member("now", formatTime(inquiry.backend.clock().now()))
      .member("today", formatTime(backend.now()))
      .member("laidAround", formatTime(backend.laidAround()))
      .member("skew", inquiry.backend.clock().skew())
      .member("recording", inquiry.backend.recording().state().isOn)
      .endObject();
  return jsonReply(json.take());
}

Reply listRequests(Inquiry& inquiry) {
  const Query query{inquiry.request.query, {"limit"}};
  const auto limit = query.integer("limit", 1, mostRequests).value_or(usualRequests);
  const auto newest = inquiry.backend.requests().newest(static_cast<std::size_t>(limit));
  JsonWriter json;
  json.beginObject().key("requests").beginArray();
  for (const auto& request : newest.requests) writeSummary(json, *request);
  json.endArray().member("dropped", newest.dropped).endObject();
  return jsonReply(json.take());
}

Reply showRequest(Inquiry& inquiry) {
  const auto kept = inquiry.backend.requests().find(numberOf(inquiry));
  if (!kept) throw notFound("that request is no longer on record");
  return jsonReply(detailsAsJson(inquiry.backend, *kept));
}

Reply watch(Inquiry& inquiry) {
  Reply reply;
  reply.contentType = "text/event-stream";
  reply.compressible = false;
  reply.stay = [&feed = inquiry.feed](std::shared_ptr<Viewer> viewer) {
    feed.join(std::move(viewer));
  };
  return reply;
}

Reply listPeople(Inquiry& inquiry) { return jsonReply(peopleAsJson(inquiry.backend)); }

Reply listTrips(Inquiry& inquiry) {
  const Query query{inquiry.request.query, {"user", "first", "last"}};
  const Period period{query.day("first"), query.day("last")};
  return jsonReply(tripsAsJson(inquiry.backend, query.requiredText("user"), period));
}

Reply showTrip(Inquiry& inquiry) { return jsonReply(tripAsJson(inquiry.backend, inquiry.item)); }

Reply listRoads(Inquiry&) { return jsonReply(roadsAsJson()); }

Reply listFaults(Inquiry& inquiry) { return jsonReply(faultsAsJson(inquiry.backend)); }

Reply addFault(Inquiry& inquiry) {
  const auto id = inquiry.backend.misbehaviours().add(Fault::fromJson(objectIn(inquiry.request)));
  inquiry.backend.tell(Happening::faults);
  return jsonReply("{\"id\":" + std::to_string(id) + "}");
}

Reply endFault(Inquiry& inquiry) {
  inquiry.backend.misbehaviours().remove(numberOf(inquiry));
  inquiry.backend.tell(Happening::faults);
  return done();
}

/// All is well again, the clock as well.
Reply endFaults(Inquiry& inquiry) {
  inquiry.backend.misbehaviours().removeAll();
  inquiry.backend.clock().setSkew(0);
  inquiry.backend.moveToday(std::nullopt);
  inquiry.backend.tell(Happening::faults);
  inquiry.backend.tell(Happening::clock);
  return done();
}

Reply showClock(Inquiry& inquiry) { return jsonReply(clockAsJson(inquiry.backend)); }

std::optional<Day> dayIn(const nlohmann::json& value) {
  if (value.is_null()) return std::nullopt;
  const auto day = value.is_string() ? parseDay(value.get<std::string>()) : std::nullopt;
  if (!day) throw badRequest("\"today\" is neither null nor a day like 2025-06-18");
  return day;
}

Reply setClock(Inquiry& inquiry) {
  auto json = objectIn(inquiry.request);
  std::optional<std::optional<Day>> today;
  if (json.contains("today")) today = dayIn(json["today"]);
  json.erase("today");
  // Nothing is moved unless all of it can be.
  const auto skew = json.empty() && today ? std::nullopt : std::optional{skewIn(json)};
  if (skew) inquiry.backend.clock().setSkew(*skew);
  if (today) inquiry.backend.moveToday(*today);
  inquiry.backend.tell(Happening::clock);
  return jsonReply(clockAsJson(inquiry.backend));
}

Reply listSnapshots(Inquiry& inquiry) {
  return jsonReply(nlohmann::json{{"snapshots", inquiry.backend.snapshots().names()}}.dump());
}

Reply removeSnapshot(Inquiry& inquiry) {
  inquiry.backend.snapshots().remove(inquiry.item);
  return done();
}

Reply listChanges(Inquiry& inquiry) {
  return jsonReply(changesIn(*inquiry.backend.database().lease(), mostChanges).dump());
}

Reply setRecording(Inquiry& inquiry) {
  const auto json = objectIn(inquiry.request);
  const auto flag = [&](const char* name, bool isNeeded) {
    const auto found = json.find(name);
    if (found == json.end() && !isNeeded) return false;
    if (found != json.end() && found->is_boolean()) return found->get<bool>();
    throw badRequest(std::string{"\""} + name + "\" is neither true nor false");
  };
  const bool withSecrets = flag("withSecrets", false);
  Recording& recording = inquiry.backend.recording();
  flag("on", true) ? recording.start(withSecrets) : recording.stop();
  inquiry.backend.tell(Happening::recording);
  return jsonReply(recordingAsJson(inquiry.backend));
}

Reply takeRecording(Inquiry& inquiry) {
  Reply reply = jsonReply(inquiry.backend.recording().file());
  reply.headers.emplace_back("Content-Disposition",
                             "attachment; filename=\"orvane-recording.json\"");
  return reply;
}

struct Route {
  std::string_view method;
  std::string_view room;
  Reply (*handle)(Inquiry&);
  bool hasItem = false;
};

constexpr auto routes = std::to_array<Route>({
    {"GET", "session", &showSession},
    {"GET", "requests", &listRequests},
    {"GET", "requests", &showRequest, true},
    {"DELETE", "requests", &steered<&forgetRequests>},
    {"GET", "events", &watch},
    {"GET", "people", &listPeople},
    {"GET", "trips", &listTrips},
    {"GET", "trips", &showTrip, true},
    {"GET", "roads", &listRoads},
    {"GET", "faults", &listFaults},
    {"POST", "faults", &addFault},
    {"DELETE", "faults", &endFault, true},
    {"DELETE", "faults", &endFaults},
    {"GET", "clock", &showClock},
    {"POST", "clock", &setClock},
    {"POST", "reset", &steered<&resetAll>},
    {"GET", "snapshots", &listSnapshots},
    {"POST", "snapshots", &steered<&saveSnapshot>},
    {"DELETE", "snapshots", &removeSnapshot, true},
    {"POST", "restore", &steered<&restoreSnapshot>},
    {"GET", "changes", &listChanges},
    {"GET", "recording", &takeRecording},
    {"POST", "recording", &setRecording},
});

}  // namespace

Reply answerInspectorApi(Backend& backend, Feed& feed, const Sessions::Session& session,
                         const Request& request, std::string_view path) {
  const auto slash = path.find('/');
  const bool hasItem = slash != std::string_view::npos;
  const std::string_view room = path.substr(0, slash);
  const auto route = std::ranges::find_if(routes, [&](const Route& candidate) {
    return candidate.room == room && candidate.method == request.method &&
           candidate.hasItem == hasItem;
  });
  if (route == routes.end()) throw notFound("the inspector has no such room");
  Inquiry inquiry{backend, feed, session, request,
                  hasItem ? percentDecode(path.substr(slash + 1)) : std::string{}};
  return route->handle(inquiry);
}

std::string faultsAsJson(Backend& backend) {
  static const std::string kinds = Fault::kinds().dump();
  static const std::string scope = Fault::scope().dump();
  JsonWriter json;
  json.beginObject().rawMember("kinds", kinds).rawMember("scope", scope);
  json.key("faults").beginArray();
  for (const Fault& fault : backend.misbehaviours().all()) {
    json.beginObject()
        .member("id", fault.id)
        .rawMember("fault", fault.toJson().dump())
        .member("text", fault.text())
        .key("left");
    fault.times > 0 ? json.value(fault.times) : json.null();
    json.member("permanent", fault.permanent).endObject();
  }
  return json.endArray().endObject().take();
}

std::string recordingAsJson(Backend& backend) {
  const Recording::State state = backend.recording().state();
  JsonWriter json;
  json.beginObject()
      .member("recording", state.isOn)
      .member("count", state.count)
      .member("full", state.isFull)
      .endObject();
  return json.take();
}

}  // namespace orvane::sandbox
