// SPDX-License-Identifier: Apache-2.0
#include "inspector/Inspector.h"

#include "inspector/Api.h"
#include "inspector/Assets.h"
#include "security/Tokens.h"

#include <algorithm>
#include <exception>

namespace orvane::sandbox {

namespace {

constexpr std::string_view folder = "/inspector/";
constexpr std::string_view apiFolder = "/inspector/api/";
constexpr std::string_view codeQuery = "code=";
constexpr std::string_view cookieStem = "orvane-inspector-";

bool isChange(const Request& request) { return request.method != "GET"; }

Reply assetReply(std::string_view name, int status = 200) {
  const Asset* asset = findAsset(name);
  if (asset == nullptr) throw notFound("there is no such file");
  Reply reply;
  reply.status = status;
  reply.contentType = asset->contentType();
  reply.body = asset->bytes;
  return reply;
}

void addSecurityHeaders(Reply& reply) {
  const HeaderList headers{
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
       "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
      {"X-Content-Type-Options", "nosniff"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Cache-Control", "no-store"}};
  reply.headers.insert(reply.headers.end(), headers.begin(), headers.end());
}

/// The value of a cookie (RFC 6265, section 4.2).
std::string_view cookieOf(const Request& request, std::string_view name) {
  for (std::string_view pair : split(request.header("Cookie").value_or(""), ';')) {
    while (pair.starts_with(' ')) pair.remove_prefix(1);
    const auto equals = pair.find('=');
    if (equals != std::string_view::npos && pair.substr(0, equals) == name) {
      return pair.substr(equals + 1);
    }
  }
  return {};
}

/// The port at the end of an address; empty where there is none.
std::string_view portOf(std::string_view authority) {
  const auto colon = authority.rfind(':');
  const bool isInBrackets =
      colon != std::string_view::npos && authority.find(']', colon) != std::string_view::npos;
  if (colon == std::string_view::npos || isInBrackets) return {};
  return authority.substr(colon + 1);
}

std::string_view authorityOf(std::string_view url) { return url.substr(url.find("//") + 2); }

}  // namespace

Inspector::Inspector(Backend& backend, std::vector<std::string> hosts)
    : backend_(backend), hosts_(std::move(hosts)), feed_(backend) {
  backend_.requests().observe([this](const auto& request) { feed_.add(request); });
  backend_.setWitness([this](Happening happening) { feed_.tell(happening); });
}

bool Inspector::claims(const Request& request) {
  return request.path == "/" || request.path.starts_with(folder);
}

Reply Inspector::answer(const Request& request) {
  Reply reply;
  try {
    reply = answerOrThrow(request);
  } catch (const Problem& problem) {
    reply = problem.reply();
  } catch (const std::exception& exception) {
    reply = errorReply(500, "internal", exception.what());
  }
  addSecurityHeaders(reply);
  return reply;
}

Reply Inspector::answerOrThrow(const Request& request) {
  checkHost(request);
  const std::string_view path = request.path;
  if (path.starts_with(apiFolder)) return answerApi(request, path.substr(apiFolder.size()));
  if (request.method != "GET" && request.method != "HEAD") {
    throw Problem{405, "method_not_allowed", "pages are read", {{"Allow", "GET, HEAD"}}};
  }
  if (path != "/") return assetReply(path.substr(folder.size()));
  return answerRoot(request);
}

Reply Inspector::answerRoot(const Request& request) {
  const std::string_view query = request.query;
  // A browser that looks ahead must not use the code up.
  if (request.method == "GET" && query.starts_with(codeQuery)) {
    return enter(query.substr(codeQuery.size()));
  }
  return sessionOf(request) ? assetReply("index.html") : assetReply("locked.html", 401);
}

Reply Inspector::enter(std::string_view code) {
  const auto session = backend_.inspectorSessions().redeem(code);
  if (!session) return assetReply("locked.html", 401);
  Reply reply;
  reply.status = 303;
  reply.headers = {
      {"Location", "/"},
      {"Set-Cookie", cookieName() + "=" + session->id + "; Path=/; HttpOnly; SameSite=Strict" +
                         (isSecure() ? "; Secure" : "")}};
  return reply;
}

Reply Inspector::answerApi(const Request& request, std::string_view path) {
  const auto session = sessionOf(request);
  if (!session) throw Problem{401, "unauthorized", "the page must be opened with its link first"};
  if (isChange(request)) checkChange(request, *session);
  return answerInspectorApi(backend_, feed_, *session, request, path);
}

std::optional<Sessions::Session> Inspector::sessionOf(const Request& request) const {
  return backend_.inspectorSessions().find(cookieOf(request, cookieName()));
}

/// Cookies know no ports: those of two sandboxes would take each other's place.
std::string Inspector::cookieName() const {
  return std::string{cookieStem}.append(portOf(authorityOf(backend_.address().baseUrl)));
}

bool Inspector::isSecure() const { return backend_.address().baseUrl.starts_with("https:"); }

/// A foreign name that leads here would let a foreign page read everything (DNS rebinding).
void Inspector::checkHost(const Request& request) const {
  constexpr std::string_view loopback[] = {"127.0.0.1", "localhost", "[::1]"};
  const std::string_view authority = request.header("Host").value_or("");
  std::string_view port = portOf(authority);
  const std::string_view host =
      authority.substr(0, authority.size() - (port.empty() ? 0 : port.size() + 1));
  if (port.empty()) port = isSecure() ? "443" : "80";
  const auto isHost = [&](std::string_view known) {
    const bool isInBrackets = host.starts_with('[') && host.ends_with(']');  // RFC 3986, 3.2.2
    return equalIgnoringCase(host, known) ||
           (isInBrackets && equalIgnoringCase(host.substr(1, host.size() - 2), known));
  };
  const std::string address = backend_.address().baseUrl;
  if (port == portOf(authorityOf(address)) &&
      (std::ranges::any_of(loopback, isHost) || std::ranges::any_of(hosts_, isHost))) {
    return;
  }
  throw forbidden("the sandbox is not known by the name in the header Host");
}

void Inspector::checkChange(const Request& request, const Sessions::Session& session) const {
  const auto origin = request.header("Origin");
  const std::string own =
      (isSecure() ? "https://" : "http://") + std::string{request.header("Host").value_or("")};
  if (origin && *origin != own) throw forbidden("another origin's page may change nothing here");
  const auto token = request.header("X-Inspector-Token");
  if (!token || !equalInConstantTime(*token, session.token)) {
    throw forbidden("the header X-Inspector-Token does not hold the session's token");
  }
}

}  // namespace orvane::sandbox
