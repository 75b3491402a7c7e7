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

void read(Fault& fault, const std::string& name, const nlohmann::json& value) {
  if (name == "status") {
    fault.status = value.get<int>();
    if (*fault.status < 200 || *fault.status > 599) throw badRequest("\"status\" is out of range");
  } else if (name == "delayMs") {
    fault.delay = std::chrono::milliseconds{
        std::clamp(value.get<std::int64_t>(), std::int64_t{0}, std::int64_t{600'000})};
  } else if (name == "cutAfterBytes") {
    fault.cutAfterBytes = value.get<std::size_t>();
  } else if (name == "bytesPerSecond") {
    fault.bytesPerSecond = value.get<std::size_t>();
    if (fault.bytesPerSecond == 0) throw badRequest("\"bytesPerSecond\" is less than 1");
  } else if (name == "body") {
    fault.body = value.get<std::string>();
    if (std::ranges::find(bodies, fault.body, &FaultBody::name) == bodies.end()) {
      throw badRequest("\"body\" is not one of: " + knownBodies());
    }
  } else if (name == "drop") {
    fault.drop = value.get<bool>();
  } else if (name == "date") {
    fault.date = value.get<bool>();
  } else if (name == "times") {
    fault.times = value.get<std::int64_t>();
    if (fault.times < 1) throw badRequest("\"times\" is less than 1");
  } else if (name == "method") {
    fault.method = value.get<std::string>();
  } else if (name == "path") {
    fault.path.emplace(value.get<std::string>());
  } else {
    throw badRequest("unknown member \"" + name +
                     "\": there are status, delayMs, bytesPerSecond, cutAfterBytes, drop, date, "
                     "body, times, method and path");
  }
}

}  // namespace

Pattern::Pattern(const std::string& expression) {
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
    try {
      read(fault, name, value);
    } catch (const nlohmann::json::exception&) {
      throw badRequest("\"" + name + "\" has the wrong type");
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

void Misbehaviours::add(Fault fault) {
  const std::lock_guard lock{mutex_};
  faults_.push_back(std::move(fault));
  any_ = true;
}

void Misbehaviours::reset() {
  const std::lock_guard lock{mutex_};
  faults_ = always_;
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
