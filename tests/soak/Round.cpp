// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/Round.h"

#include <Orvane/Common/Container.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Runtime/Loggers.h>
#include <Orvane/Services/Trip/TripService.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <type_traits>
#include <utility>

namespace orvane::soak {
namespace {

using namespace std::chrono_literals;

// Far longer than anything takes, unless it hangs.
constexpr std::chrono::seconds patience(60);

constexpr const char* formerContent = "former";

Runtime installed(const Backend& backend, const std::filesystem::path& folder) {
  return Runtime::install({
                              .baseURL = backend.url(),
                              .tokens = std::string("token"),
                              .transport = {.connectTimeout = 5s,
                                            .idleTimeout = 500ms,
                                            .totalTimeout = 20s,
                                            .maximumAnswerSize = 1U << 20U,
                                            .caPEM = backend.authorityPEM()},
                              .userIDLifetime = 20ms,
                              .deviceIdentifierFile = (folder / "device-id").string(),
                              .logger = std::make_shared<FunctionLogger>([](auto&&...) {}),
                              .drainsMainQueue = true,
                          })
      .value()
      .value();
}

}  // namespace

Round::Round(Backend& backend, const Dice& dice, Counts& counts, std::filesystem::path folder,
             std::uint64_t first, std::uint64_t calls)
    : backend_(backend),
      dice_(dice),
      counts_(counts),
      folder_(std::move(folder)),
      first_(first),
      runtime_(installed(backend, folder_)),
      requestManager_(Container::common()->inject<RequestManager>()),
      downloader_(Container::common()->inject<Downloader>()) {
  for (std::uint64_t i = 0; i < calls; ++i) {
    const std::uint64_t number = first + i;
    const auto kind = static_cast<Kind>(dice.roll('k', number, 5));
    calls_.push_back(std::make_shared<Call>(number, kind));
  }
}

void Round::run() {
  makeCalls();
  end();
  check();
}

void Round::makeCalls() {
  for (const CallPointer& call : calls_) {
    free_.acquire();
    const UnderWay underWay{call, start(call)};
    keep(underWay);
    const std::uint64_t chosen = dice_.roll('c', call->number, 100);
    if (chosen < 6) cancel(underWay);
    if (chosen >= 90) cancelOneBefore(call->number, chosen - 90);
  }
}

// A service lasts no longer than it takes to ask it.
RequestHandle Round::start(const CallPointer& call) {
  const std::string digits = std::to_string(call->number);
  const Identity identity{.apiKey = "soak",
                          .externalReferenceID = std::to_string(dice_.roll('u', call->number, 9))};
  switch (call->kind) {
    case Kind::read:
      return TripService(identity).fetch(digits, {}, handler<Trip>(call));
    case Kind::write:
      return TripService(identity).update(digits, std::nullopt, Trip::Purpose::business,
                                          handler<Trip>(call));
    case Kind::upload:
      return requestManager_->send(Verb::post, *URL::parse(backend_.url() + "/uploads/" + digits),
                                   std::string(dice_.roll('l', call->number, 200'000), 'x'), {},
                                   handler<std::string>(call));
    case Kind::multiplex:
      return requestManager_->send(Verb::post, *URL::parse(backend_.multiplexURL()), digits, {},
                                   handler<std::string>(call));
    case Kind::download:
      break;
  }
  return startDownload(call);
}

RequestHandle Round::startDownload(const CallPointer& call) {
  const std::filesystem::path path = fileOf(*call);
  if (call->number % 2 == 0) std::ofstream(path) << formerContent;
  return downloader_->download(
      *URL::parse(backend_.url() + "/files/" + std::to_string(call->number)), path.string(),
      [](const DownloadProgress&) {}, handler<Unit>(call));
}

void Round::keep(UnderWay underWay) {
  const std::scoped_lock lock(mutex_);
  std::swap(underWay_.at(underWay.call->number % underWay_.size()), underWay);
}

void Round::cancelOneBefore(std::uint64_t number, std::uint64_t distance) {
  UnderWay underWay;
  {
    const std::scoped_lock lock(mutex_);
    underWay = underWay_.at((number - distance) % underWay_.size());
  }
  if (underWay.call) cancel(underWay);
}

void Round::cancel(const UnderWay& underWay) {
  if (!underWay.handle->cancel()) return;
  Call& call = *underWay.call;
  if (call.isCancelled.exchange(true)) return;
  if (call.answers > 0) fault(call, "was cancelled after its handler had been called");
  ++counts_.cancelled;
  free_.release();
}

template <class T>
Completion<T> Round::handler(const CallPointer& call) {
  return [this, call](Result<T> result) { answered(*call, result); };
}

template <class T>
void Round::answered(Call& call, const Result<T>& result) {
  if (++call.answers > 1) return fault(call, "was answered twice");
  if (call.isCancelled) return fault(call, "was answered after it had been cancelled");
  const bool isMultiplex = call.kind == Kind::multiplex;
  const Behaviour& behaviour = dice_.behaviour(call.number);
  const bool mustFail =
      !isMultiplex && Ending::failure == (call.kind == Kind::download ? behaviour.endingOfDownloads
                                                                      : behaviour.ending);
  if (result) {
    ++counts_.succeeded;
    if (mustFail) fault(call, "succeeded");
    if (contentOf(call, *result) != expected(call)) fault(call, "has another's answer");
  } else {
    ++counts_.failed;
    if (!mustFail && !isMultiplex) ++counts_.unlucky;
    if (!result.error()) fault(call, "failed without an error");
    if (call.kind == Kind::download) checkFormerFile(call);
  }
  const std::uint64_t chosen = dice_.roll('h', call.number, 100);
  if (chosen < 5) cancelOneBefore(call.number, chosen + 1);
  free_.release();
}

template <class Record>
std::string Round::contentOf(const Call& call, const Record& record) const {
  if constexpr (std::is_same_v<Record, std::string>) {
    return record;
  } else if constexpr (std::is_same_v<Record, Trip>) {
    return record.id.value_or("");
  } else {
    std::ifstream file(fileOf(call));
    return {std::istreambuf_iterator<char>(file), {}};
  }
}

std::string Round::expected(const Call& call) const {
  const bool isTrip = call.kind == Kind::read || call.kind == Kind::write;
  return isTrip ? std::to_string(call.number) : answerTo(call.kind, call.number, dice_);
}

std::filesystem::path Round::fileOf(const Call& call) const {
  return folder_ / std::to_string(call.number);
}

void Round::checkFormerFile(const Call& call) {
  std::ifstream file(fileOf(call));
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  if (content != (call.number % 2 == 0 ? formerContent : "")) fault(call, "spoilt the former file");
}

// At once, under all that is under way; after that; or when everything has been answered.
void Round::end() {
  const std::uint64_t chosen = dice_.roll('e', first_, 3);
  if (chosen == 1 && !runtime_.finish(patience, patience)) fault(*calls_.back(), "did not finish");
  for (std::ptrdiff_t i = 0; chosen == 2 && i < mostAtOnce; ++i) {
    if (!free_.try_acquire_for(patience)) return fault(*calls_.back(), "or one before is lost");
  }
  if (!runtime_.shutdown(patience)) fault(*calls_.back(), "or one before held up the shutdown");
}

void Round::check() {
  for (const CallPointer& call : calls_) {
    const int outcomes = call->answers + (call->isCancelled ? 1 : 0);
    if (outcomes != 1) fault(*call, "had " + std::to_string(outcomes) + " outcomes");
    const unsigned arrivals = backend_.arrivals(call->number);
    const bool isRead = call->kind == Kind::read || call->kind == Kind::download;
    if (arrivals > (isRead ? 2U : 1U)) {
      fault(*call, "reached the server " + std::to_string(arrivals) + " times");
    }
  }
}

void Round::fault(const Call& call, const std::string& what) {
  static constexpr std::array kinds{"read", "write", "upload", "download", "write over HTTP/2"};
  const bool isMultiplex = call.kind == Kind::multiplex;
  ++counts_.faults;
  std::printf("FAULT: call %llu (%s, %s) %s\n", static_cast<unsigned long long>(call.number),
              kinds.at(static_cast<std::size_t>(call.kind)),
              isMultiplex ? "see the connection" : dice_.behaviour(call.number).name, what.c_str());
}

}  // namespace orvane::soak
