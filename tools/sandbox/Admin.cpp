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

Reply done() { return jsonReply(R"({"done":true})"); }

nlohmann::json parseBody(const Request& request) {
  auto json = nlohmann::json::parse(request.body, nullptr, false);
  if (!json.is_object()) throw badRequest("the body is not a JSON object");
  return json;
}

Reply misbehave(Backend& backend, const Request& request) {
  backend.misbehaviours().add(Fault::fromJson(parseBody(request)));
  return done();
}

Reply behave(Backend& backend, const Request&) {
  backend.misbehaviours().reset();
  return done();
}

Reply setClock(Backend& backend, const Request& request) {
  const auto json = parseBody(request);
  const auto skew = json.find("skew");
  if (json.size() != 1 || skew == json.end() || !skew->is_number_integer() ||
      std::abs(skew->get<double>()) > largestSkew) {
    throw badRequest("the body is not {\"skew\": seconds}");
  }
  backend.clock().setSkew(skew->get<std::int64_t>());
  return done();
}

Reply resetAll(Backend& backend, const Request&) {
  backend.reset();
  return done();
}

Reply listRequests(Backend& backend, const Request&) {
  return jsonReply(backend.requests().json());
}

Reply forgetRequests(Backend& backend, const Request&) {
  backend.requests().clear();
  return done();
}

struct AdminRoute {
  std::string_view method;
  std::string_view path;
  Reply (*handle)(Backend&, const Request&);
};

constexpr std::array<AdminRoute, 6> routes{{
    {"POST", "misbehave", &misbehave},
    {"DELETE", "misbehave", &behave},
    {"POST", "clock", &setClock},
    {"POST", "reset", &resetAll},
    {"GET", "requests", &listRequests},
    {"DELETE", "requests", &forgetRequests},
}};

Reply dispatch(Backend& backend, const Request& request) {
  const auto key = request.header(adminKeyHeader);
  if (!key || !equalInConstantTime(*key, backend.adminKey())) {
    throw Problem{
        401, "unauthorized",
        std::string{"the header "} + adminKeyHeader + " does not hold the key of the ready file"};
  }
  const std::string_view path = std::string_view{request.path}.substr(adminRoot.size());
  const auto route = std::ranges::find_if(routes, [&](const AdminRoute& candidate) {
    return candidate.path == path && candidate.method == request.method;
  });
  if (route == routes.end()) throw notFound("there is no such admin request");
  return route->handle(backend, request);
}

}  // namespace

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
