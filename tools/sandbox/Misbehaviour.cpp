// SPDX-License-Identifier: Apache-2.0
#include "Misbehaviour.h"

#include <nlohmann/json.hpp>
#include <zlib.h>

#include <algorithm>
#include <array>

namespace orvane::sandbox {

namespace {

constexpr std::size_t hugeSize = 100'000'000;
constexpr std::size_t pieceSize = 65'536;

/// A JSON array of text that never seems to end.
BodyStream hugeStream() {
  return [sent = std::size_t{0}, piece = std::string{}]() mutable -> std::string_view {
    if (sent >= hugeSize) return {};
    const bool first = sent == 0;
    const bool last = sent + pieceSize >= hugeSize;
    piece.assign(pieceSize, 'x');
    if (first) piece.replace(0, 2, "[\"");
    if (last) piece.replace(piece.size() - 2, 2, "\"]");
    sent += piece.size();
    return piece;
  };
}

/// Some 100 b that unpack to the same 100 MB.
std::string gzipBomb() {
  const std::string plain(pieceSize, ' ');
  z_stream stream{};
  constexpr int gzipWindow = 15 + 16;
  deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, gzipWindow, 9, Z_DEFAULT_STRATEGY);
  std::string packed(hugeSize / 500, '\0');
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  for (std::size_t sent = 0; sent < hugeSize; sent += pieceSize) {
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.data()));
    stream.avail_in = static_cast<uInt>(plain.size());
    deflate(&stream, sent + pieceSize >= hugeSize ? Z_FINISH : Z_NO_FLUSH);
  }
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

struct FaultBody {
  const char* name;
  void (*apply)(Reply&);
};

constexpr std::array<FaultBody, 11> bodies{{
    {"garbage", [](Reply& reply) { reply.body = "{\"items\":[{\"trip\":{\"tripId\":\x01\x02"; }},
    {"empty", [](Reply& reply) { reply.body.clear(); }},
    {"notUtf8", [](Reply& reply) { reply.body = "{\"userId\":\"\xC3\x28\"}"; }},
    {"huge", [](Reply& reply) { reply.stream = hugeStream(); }},
    {"gzipBomb",
     [](Reply& reply) {
       reply.body = gzipBomb();
       reply.compressible = false;
       reply.headers.emplace_back("Content-Encoding", "gzip");
     }},
    {"wrongType", [](Reply& reply) { reply.body = "42"; }},
    {"null", [](Reply& reply) { reply.body = "null"; }},
    {"emptyObject", [](Reply& reply) { reply.body = "{}"; }},
    {"deep",
     [](Reply& reply) { reply.body = std::string(100'000, '[') + std::string(100'000, ']'); }},
    {"html",
     [](Reply& reply) {
       reply.body = "<!doctype html><title>Sign in</title><p>Please sign in to this network.";
       reply.contentType = "text/html; charset=utf-8";
     }},
    {"truncated", [](Reply& reply) { reply.body.resize(reply.body.size() / 2); }},
}};

std::string knownBodies() {
  std::string names;
  for (const FaultBody& body : bodies) names.append(names.empty() ? "" : ", ").append(body.name);
  return names;
}

std::string inQuotes(std::string_view text) { return "\"" + std::string{text} + "\""; }

std::int64_t integerIn(const FaultParameter& parameter, const nlohmann::json& value) {
  const auto number = value.get<std::int64_t>();
  const bool fits = (!parameter.least || number >= *parameter.least) &&
                    (!parameter.most || number <= *parameter.most);
  if (value.is_number_integer() && fits) return number;
  throw badRequest(inQuotes(parameter.name) + " is out of range");
}

/// A member of the JSON object: what it is called, what it takes, what it does to the fault, and
/// how that is put into words. Whatever knows misbehaviours reads them here.
struct FaultMember {
  const char* title;        // null for a member that narrows the fault to some requests
  const char* description;  // of what goes wrong
  FaultParameter parameter;
  void (*read)(Fault&, const nlohmann::json&, const FaultParameter&);
  std::string (*text)(const Fault&);  // empty where the fault has nothing of it
};

const std::array<FaultMember, 10>& members() {
  using Json = nlohmann::json;
  using Parameter = FaultParameter;
  static const std::array<FaultMember, 10> all{{
      {"Another status",
       "A refusal with this status takes the place of the answer; the resource is not asked.",
       {.name = "status", .type = "integer", .initial = "503", .least = 200, .most = 599},
       [](Fault& fault, const Json& value, const Parameter& parameter) {
         fault.status = static_cast<int>(integerIn(parameter, value));
       },
       [](const Fault& fault) {
         return fault.status ? "status " + std::to_string(*fault.status) : std::string{};
       }},
      {"Late answer",
       "The answer comes so much later; the resource is asked after the delay.",
       {.name = "delayMs",
        .type = "integer",
        .unit = "ms",
        .initial = "2000",
        .least = 0,
        .most = 600'000},
       [](Fault& fault, const Json& value, const Parameter& parameter) {
         fault.delay = std::chrono::milliseconds{
             std::clamp(value.get<std::int64_t>(), *parameter.least, *parameter.most)};
       },
       [](const Fault& fault) {
         const auto delay = fault.delay.count();
         return delay > 0 ? std::to_string(delay) + " ms late" : std::string{};
       }},
      {"Slow transfer",
       "The whole answer comes no faster than that.",
       {.name = "bytesPerSecond",
        .type = "integer",
        .unit = "bytes/s",
        .initial = "2000",
        .least = 1},
       [](Fault& fault, const Json& value, const Parameter& parameter) {
         fault.bytesPerSecond = static_cast<std::size_t>(integerIn(parameter, value));
       },
       [](const Fault& fault) {
         const auto rate = fault.bytesPerSecond;
         return rate > 0 ? "at " + std::to_string(rate) + " bytes/s" : std::string{};
       }},
      {"Cut off",
       "The connection ends after so many bytes of the body, whose full length was announced.",
       {.name = "cutAfterBytes", .type = "integer", .unit = "bytes", .initial = "20", .least = 0},
       [](Fault& fault, const Json& value, const Parameter& parameter) {
         fault.cutAfterBytes = static_cast<std::size_t>(integerIn(parameter, value));
       },
       [](const Fault& fault) {
         return fault.cutAfterBytes
                    ? "cut off after " + std::to_string(*fault.cutAfterBytes) + " bytes"
                    : std::string{};
       }},
      {"No answer",
       "The resource does its work, and the connection ends without a word.",
       {.name = "drop", .type = "boolean", .initial = "true"},
       [](Fault& fault, const Json& value, const Parameter&) { fault.drop = value.get<bool>(); },
       [](const Fault& fault) { return std::string{fault.drop ? "no answer" : ""}; }},
      {"No Date",
       "The header Date, by which clients correct their clock, is left out when this is false.",
       {.name = "date", .type = "boolean", .initial = "false"},
       [](Fault& fault, const Json& value, const Parameter&) { fault.date = value.get<bool>(); },
       [](const Fault& fault) { return std::string{fault.date ? "" : "no Date"}; }},
      {"Another body",
       "Something else takes the place of the answer's body; of truncated it is the half.",
       {.name = "body", .type = "choice", .initial = "\"garbage\""},
       [](Fault& fault, const Json& value, const Parameter&) {
         fault.body = value.get<std::string>();
         if (std::ranges::find(bodies, fault.body, &FaultBody::name) == bodies.end()) {
           throw badRequest("\"body\" is not one of: " + knownBodies());
         }
       },
       [](const Fault& fault) { return fault.body.empty() ? "" : "body " + fault.body; }},
      {nullptr,
       "How many requests are spoilt; all of them without it.",
       {.name = "times", .type = "integer", .least = 1},
       [](Fault& fault, const Json& value, const Parameter& parameter) {
         fault.times = integerIn(parameter, value);
       },
       [](const Fault& fault) {
         if (fault.times < 0) return std::string{};
         return fault.times == 1 ? std::string{"once more"}
                                 : std::to_string(fault.times) + " more times";
       }},
      {nullptr,
       "Only requests with this method.",
       {.name = "method", .type = "text"},
       [](Fault& fault, const Json& value, const Parameter&) {
         fault.method = value.get<std::string>();
       },
       [](const Fault& fault) {
         return fault.method.empty() ? "" : "for " + fault.method + " requests";
       }},
      {nullptr,
       "Only requests in whose path this extended regular expression is found.",
       {.name = "path", .type = "text"},
       [](Fault& fault, const Json& value, const Parameter&) {
         fault.path.emplace(value.get<std::string>());
       },
       [](const Fault& fault) {
         return fault.path ? "for paths with " + fault.path->expression() : std::string{};
       }},
  }};
  return all;
}

std::string knownMembers() {
  std::string names;
  for (const FaultMember& member : members()) {
    names.append(names.empty() ? "" : ", ").append(member.parameter.name);
  }
  return names;
}

nlohmann::json describe(const FaultMember& member) {
  const FaultParameter& parameter = member.parameter;
  nlohmann::json json{{"name", parameter.name},
                      {"type", parameter.type},
                      {"unit", parameter.unit},
                      {"default", nlohmann::json::parse(parameter.initial)},
                      {"least", nullptr},
                      {"most", nullptr},
                      {"choices", nlohmann::json::array()}};
  if (parameter.least) json["least"] = *parameter.least;
  if (parameter.most) json["most"] = *parameter.most;
  if (std::string_view{parameter.type} == "choice") {
    for (const FaultBody& body : bodies) json["choices"].push_back(body.name);
  }
  return json;
}

}  // namespace

Pattern::Pattern(const std::string& expression) : expression_(expression) {
  auto compiled = std::make_unique<regex_t>();
  if (::regcomp(compiled.get(), expression.c_str(), REG_EXTENDED | REG_NOSUB) != 0) {
    throw badRequest("\"path\" is not a regular expression");
  }
  compiled_ = std::shared_ptr<regex_t>{compiled.release(), [](regex_t* pattern) {
                                         ::regfree(pattern);
                                         delete pattern;
                                       }};
}

bool Pattern::matches(const std::string& text) const {
  return ::regexec(compiled_.get(), text.c_str(), 0, nullptr, 0) == 0;
}

Fault Fault::fromJson(const nlohmann::json& json) {
  if (!json.is_object()) throw badRequest("a misbehaviour is a JSON object");
  Fault fault;
  for (const auto& [name, value] : json.items()) {
    const auto member = std::ranges::find(
        members(), name,
        [](const FaultMember& each) -> std::string_view { return each.parameter.name; });
    if (member == members().end()) {
      throw badRequest("unknown member " + inQuotes(name) + ": there are " + knownMembers());
    }
    try {
      member->read(fault, value, member->parameter);
    } catch (const nlohmann::json::exception&) {
      throw badRequest(inQuotes(name) + " has the wrong type");
    }
  }
  fault.source_ = json.dump();
  return fault;
}

nlohmann::json Fault::toJson() const {
  auto json = nlohmann::json::parse(source_);
  if (times > 0) json["times"] = times;
  return json;
}

std::string Fault::text() const {
  std::string whole;
  for (const FaultMember& member : members()) {
    const std::string part = member.text(*this);
    if (!part.empty()) whole.append(whole.empty() ? "" : ", ").append(part);
  }
  return whole.empty() ? "nothing goes wrong" : whole;
}

nlohmann::json Fault::kinds() {
  auto list = nlohmann::json::array();
  for (const FaultMember& member : members()) {
    if (member.title == nullptr) continue;
    list.push_back({{"name", member.parameter.name},
                    {"title", member.title},
                    {"description", member.description},
                    {"parameters", nlohmann::json::array({describe(member)})}});
  }
  return list;
}

nlohmann::json Fault::scope() {
  auto list = nlohmann::json::array();
  for (const FaultMember& member : members()) {
    if (member.title != nullptr) continue;
    list.push_back(describe(member));
    list.back()["description"] = member.description;
  }
  return list;
}

Reply Fault::spoil(Reply reply) const {
  if (status) {
    Reply refusal = errorReply(*status, "misbehaviour", "the sandbox was told to answer this");
    refusal.headers = std::move(reply.headers);
    reply = std::move(refusal);
  }
  if (!body.empty()) std::ranges::find(bodies, body, &FaultBody::name)->apply(reply);
  if (cutAfterBytes) {
    reply.cutAfterBytes = cutAfterBytes;
    reply.compressible = false;
  }
  if (bytesPerSecond > 0) reply.bytesPerSecond = bytesPerSecond;
  reply.drop = drop;
  reply.sendDate = date;
  return reply;
}

Misbehaviours::Misbehaviours(std::vector<Fault> always) : always_(std::move(always)) {
  for (Fault& fault : always_) fault.permanent = true;
  reset();
}

std::int64_t Misbehaviours::add(Fault fault) {
  const std::lock_guard lock{mutex_};
  fault.id = ++lastId_;
  faults_.push_back(std::move(fault));
  any_ = true;
  return lastId_;
}

void Misbehaviours::remove(std::int64_t id) {
  const std::lock_guard lock{mutex_};
  const auto found = std::ranges::find(faults_, id, &Fault::id);
  if (found == faults_.end()) throw notFound("that misbehaviour is not in force");
  if (found->permanent) throw conflict("that misbehaviour is the command line's");
  faults_.erase(found);
  any_ = !faults_.empty();
}

void Misbehaviours::removeAll() {
  const std::lock_guard lock{mutex_};
  std::erase_if(faults_, [](const Fault& fault) { return !fault.permanent; });
  any_ = !faults_.empty();
}

void Misbehaviours::reset() {
  const std::lock_guard lock{mutex_};
  faults_ = always_;
  for (Fault& fault : faults_) fault.id = ++lastId_;
  any_ = !faults_.empty();
}

std::vector<Fault> Misbehaviours::all() {
  const std::lock_guard lock{mutex_};
  return faults_;
}

std::optional<Fault> Misbehaviours::next(std::string_view method, const std::string& path) {
  if (!any_) return std::nullopt;
  const std::lock_guard lock{mutex_};
  const auto found = std::ranges::find_if(faults_, [&](const Fault& fault) {
    return (fault.method.empty() || fault.method == method) &&
           (!fault.path || fault.path->matches(path));
  });
  if (found == faults_.end()) return std::nullopt;
  Fault fault = *found;
  if (found->times > 0 && --found->times == 0) faults_.erase(found);
  any_ = !faults_.empty();
  return fault;
}

void Misbehaviours::delay(std::chrono::milliseconds duration) {
  if (duration.count() == 0) return;
  std::unique_lock lock{mutex_};
  ended_.wait_for(lock, duration, [this] { return stopping_; });
}

void Misbehaviours::endDelays() {
  {
    const std::lock_guard lock{mutex_};
    stopping_ = true;
  }
  ended_.notify_all();
}

}  // namespace orvane::sandbox
