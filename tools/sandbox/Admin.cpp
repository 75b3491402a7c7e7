// SPDX-License-Identifier: Apache-2.0
#include "Admin.h"

#include "Backend.h"
#include "JsonWriter.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace orvane::sandbox {

namespace {

constexpr std::int64_t largestSkew = 100LL * 365 * 24 * 60 * 60;

Reply misbehave(Backend& backend, const Request& request) {
  backend.misbehaviours().add(Fault::fromJson(objectIn(request)));
  backend.tell(Happening::faults);
  return done();
}

Reply behave(Backend& backend, const Request&) {
  backend.misbehaviours().reset();
  backend.tell(Happening::faults);
  return done();
}

Reply listMisbehaviours(Backend& backend, const Request&) {
  auto list = nlohmann::json::array();
  for (const Fault& fault : backend.misbehaviours().all()) list.push_back(fault.toJson());
  return jsonReply(list.dump());
}

Reply showClock(Backend& backend, const Request&) { return jsonReply(clockAsJson(backend)); }

Reply setClock(Backend& backend, const Request& request) {
  backend.clock().setSkew(skewIn(objectIn(request)));
  backend.tell(Happening::clock);
  return done();
}

Reply listRequests(Backend& backend, const Request& request) {
  const bool withBodies = request.query == "bodies=true";
  if (!withBodies && !request.query.empty()) throw badRequest("the query is not bodies=true");
  return jsonReply(backend.requests().json(withBodies));
}

Reply listSnapshots(Backend& backend, const Request&) {
  return jsonReply(nlohmann::json(backend.snapshots().names()).dump());
}

Reply removeSnapshot(Backend& backend, const Request& request) {
  backend.snapshots().remove(nameIn(request));
  return done();
}

/// A further way in, for another browser.
Reply openInspector(Backend& backend, const Request&) {
  JsonWriter json;
  json.beginObject()
      .member("url", inspectorLink(backend.address(), backend.inspectorSessions().newCode()))
      .endObject();
  return jsonReply(json.take());
}

Reply health(Backend&, const Request&) { return jsonReply(R"({"status":"ok"})"); }

struct AdminRoute {
  std::string_view method;
  std::string_view path;
  Reply (*handle)(Backend&, const Request&);
  bool needsKey = true;
};

constexpr auto routes = std::to_array<AdminRoute>({
    {"GET", "health", &health, false},
    {"GET", "misbehave", &listMisbehaviours},
    {"POST", "misbehave", &misbehave},
    {"DELETE", "misbehave", &behave},
    {"GET", "clock", &showClock},
    {"POST", "clock", &setClock},
    {"POST", "reset", &resetAll},
    {"GET", "requests", &listRequests},
    {"DELETE", "requests", &forgetRequests},
    {"GET", "snapshots", &listSnapshots},
    {"POST", "snapshots", &saveSnapshot},
    {"DELETE", "snapshots", &removeSnapshot},
    {"POST", "restore", &restoreSnapshot},
    {"POST", "inspector", &openInspector},
});

Reply dispatch(Backend& backend, const Request& request) {
  const std::string_view path = std::string_view{request.path}.substr(adminRoot.size());
  const auto route = std::ranges::find_if(routes, [&](const AdminRoute& candidate) {
    return candidate.path == path && candidate.method == request.method;
  });
  const auto key = request.header(adminKeyHeader);
  const bool hasKey = key && equalInConstantTime(*key, backend.adminKey());
  if (!hasKey && (route == routes.end() || route->needsKey)) {
    throw Problem{
        401, "unauthorized",
        std::string{"the header "} + adminKeyHeader + " does not hold the key of the ready file"};
  }
  if (route == routes.end()) throw notFound("there is no such admin request");
  return route->handle(backend, request);
}

}  // namespace

Reply done() { return jsonReply(R"({"done":true})"); }

Reply resetAll(Backend& backend, const Request&) {
  backend.reset();
  return done();
}

Reply forgetRequests(Backend& backend, const Request&) {
  backend.requests().clear();
  backend.tell(Happening::cleared);
  return done();
}

Reply saveSnapshot(Backend& backend, const Request& request) {
  backend.snapshots().save(nameIn(request), *backend.database().lease());
  return done();
}

Reply restoreSnapshot(Backend& backend, const Request& request) {
  backend.restore(nameIn(request));
  return done();
}

std::string clockAsJson(Backend& backend) {
  JsonWriter json;
  json.beginObject()
      .member("skew", backend.clock().skew())
      .member("now", formatTime(backend.clock().now()))
      .member("today", formatTime(backend.now()))
      .member("laidAround", formatTime(backend.laidAround()))
      .endObject();
  return json.take();
}

nlohmann::json objectIn(const Request& request) {
  auto json = nlohmann::json::parse(request.body, nullptr, false);
  if (!json.is_object()) throw badRequest("the body is not a JSON object");
  return json;
}

std::string nameIn(const Request& request) {
  const auto json = objectIn(request);
  const auto name = json.find("name");
  if (json.size() != 1 || name == json.end() || !name->is_string()) {
    throw badRequest("the body is not {\"name\": text}");
  }
  return name->get<std::string>();
}

std::int64_t skewIn(const nlohmann::json& json) {
  const auto skew = json.find("skew");
  if (json.size() != 1 || skew == json.end() || !skew->is_number_integer() ||
      std::abs(skew->get<double>()) > largestSkew) {
    throw badRequest("the body is not {\"skew\": seconds}");
  }
  return skew->get<std::int64_t>();
}

Reply answerAdmin(Backend& backend, const Request& request) {
  try {
    return dispatch(backend, request);
  } catch (const Problem& problem) {
    return problem.reply();
  } catch (const std::exception& exception) {
    return errorReply(500, "internal", exception.what());
  }
}

}  // namespace orvane::sandbox
