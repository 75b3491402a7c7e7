// SPDX-License-Identifier: Apache-2.0
#include "Sandbox.h"

#include "Admin.h"
#include "JsonWriter.h"
#include "data/People.h"
#include "resources/Firmware.h"

#include <unistd.h>

#include <algorithm>

namespace orvane::sandbox {

namespace {

SandboxOptions prepareFolder(SandboxOptions options) {
  auto& folder = options.backend.folder;
  const bool isNew = create_directories(folder);
  folder = canonical(folder);
  if (isNew) permissions(folder, std::filesystem::perms::owner_all);
  return options;
}

void writeIdentities(JsonWriter& json) {
  json.key("identities").beginArray();
  for (const Person& person : people()) {
    if (!person.isSample) continue;
    json.beginObject()
        .member("name", std::string{person.firstName} + " " + person.lastName)
        .member("externalReferenceId", person.externalReferenceId)
        .member("userId", person.userId)
        .member("accountId", person.accountId)
        .member("developmentToken", developmentTokenOf(person.userId))
        .member("note", person.note)
        .endObject();
  }
  json.endArray();
}

}  // namespace

Sandbox::Sandbox(SandboxOptions options)
    : options_(prepareFolder(std::move(options))), lock_(options_.backend.folder) {
  const auto& folder = options_.backend.folder;
  if (!options_.plainHttp) {
    makeCertificates(folder, options_.flaw, options_.names);
    tls_ = makeTlsContext(folder);
  }
  options_.backend.address = [this] { return address(); };
  backend_ = std::make_unique<Backend>(options_.backend);
  std::vector<std::string> hosts = options_.names;
  const bool isAny = options_.host == "0.0.0.0" || options_.host == "::";  // nobody's name
  if (!isAny) hosts.push_back(options_.host);
  inspector_ = std::make_unique<Inspector>(*backend_, std::move(hosts));
  listener_ = std::make_unique<Listener>(
      Listener::Options{options_.host, options_.port, options_.threads, options_.compress,
                        tls_.get()},
      backend_->clock(), [this](const Request& request) {
        return Inspector::claims(request) ? inspector_->answer(request) : backend_->answer(request);
      });
  listener_->start();
  inspectorUrl_ = newInspectorLink();
}

Sandbox::~Sandbox() {
  stop();
  inspector_.reset();  // while those who watch are still known to the listener
}

void Sandbox::stop() {
  backend_->misbehaviours().endDelays();
  listener_->stop();
}

Address Sandbox::address() const {
  return {baseUrl(), options_.plainHttp ? std::filesystem::path{} : certificateAuthority()};
}

std::string Sandbox::newInspectorLink() const {
  return inspectorLink(address(), backend_->inspectorSessions().newCode());
}

std::string Sandbox::baseUrl() const {
  std::string host = options_.names.empty() ? "127.0.0.1" : options_.names.front();
  if (host.find(':') != std::string::npos) host = "[" + host + "]";  // RFC 3986, section 3.2.2
  return (options_.plainHttp ? "http://" : "https://") + host + ":" + std::to_string(port());
}

std::string Sandbox::sampleToken() {
  const auto first = std::ranges::find_if(people(), &Person::isSample);
  return developmentTokenOf(first->userId);
}

std::filesystem::path Sandbox::certificateAuthority() const {
  return options_.backend.folder / "ca.pem";
}

std::string Sandbox::description() const {
  JsonWriter json;
  json.beginObject()
      .member("port", port())
      .member("pid", static_cast<std::int64_t>(::getpid()))
      .member("baseURL", baseUrl())
      .member("apiURL", baseUrl() + std::string{apiRoot.substr(0, apiRoot.size() - 1)})
      .member("firmwareURL", baseUrl() + std::string{downloads} + std::string{firmwarePackage})
      .member("data", options_.backend.folder.string());
  if (!options_.plainHttp) json.member("certificateAuthority", certificateAuthority().string());
  json.member("signingKeyFile", (options_.backend.folder / "signing.key").string())
      .member("signingKey", backend_->signingKey().hex())
      .member("adminKeyHeader", adminKeyHeader)
      .member("adminKey", backend_->adminKey())
      .member("inspectorURL", inspectorUrl_)
      .member("apiKey", sampleApiKey)
      .member("token", sampleToken());
  writeIdentities(json);
  return json.endObject().take();
}

}  // namespace orvane::sandbox
