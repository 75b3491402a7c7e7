// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Retrying.h>

#include <algorithm>
#include <random>

namespace orvane {
namespace {

using std::chrono::milliseconds;

double chanceOfProcess() {
  thread_local std::minstd_rand engine{std::random_device{}()};
  return std::uniform_real_distribution<double>()(engine);
}

// What the server wants to be waited for, nothing where it does not say; absent beyond all waiting.
std::optional<milliseconds> retryAfter(const Error& failure) {
  const auto* refusal = failure.as<NetworkError>();
  const std::optional<Seconds> named = refusal != nullptr ? refusal->retryAfter() : std::nullopt;
  if (!named || !(named->count() > 0)) return milliseconds::zero();
  if (*named > std::chrono::duration_cast<Seconds>(milliseconds::max() / 2)) return std::nullopt;
  return std::chrono::ceil<milliseconds>(*named);
}

}  // namespace

namespace detail {

Attempts::Attempts(RetryPolicy policy) : policy_(std::move(policy)), start_(timers().now()) {}

Timers& Attempts::timers() const noexcept {
  return policy_.timers ? *policy_.timers : Timers::ofProcess();
}

std::optional<milliseconds> Attempts::pauseAfter(const std::optional<Error>& failure) {
  if (!failure || !failure->isTransient() || made_ >= policy_.attempts) return std::nullopt;
  const milliseconds cap = std::max(policy_.longestPause, milliseconds::zero());
  milliseconds longest = std::clamp(policy_.firstPause, milliseconds::zero(), cap);
  for (std::size_t i = 1; i < made_ && longest < cap; ++i) {
    longest = longest > cap / 2 ? cap : longest * 2;
  }
  const double chance = policy_.chance ? policy_.chance() : chanceOfProcess();
  const milliseconds random(static_cast<milliseconds::rep>(static_cast<double>(longest.count()) *
                                                           std::clamp(chance, 0.0, 1.0)));
  const std::optional<milliseconds> named = retryAfter(*failure);
  if (!named) return std::nullopt;
  const milliseconds pause = std::max(random, *named);
  const auto spent = std::chrono::floor<milliseconds>(timers().now() - start_);
  if (pause > policy_.totalTime - spent) return std::nullopt;
  ++made_;
  return pause;
}

}  // namespace detail

RetryingRequestManager::~RetryingRequestManager() = default;

RequestHandle RetryingRequestManager::send(Verb verb, URL url, std::string body, Headers headers,
                                           Completion<std::string> then) {
  if (verb != Verb::get && !policy_.includesWrites) {
    return requestManager_->send(verb, std::move(url), std::move(body), std::move(headers),
                                 std::move(then));
  }
  const Operation<std::string> request(
      [manager = requestManager_, verb, url = std::move(url), body = std::move(body),
       headers = std::move(headers)](Completion<std::string> handler) {
        return manager->send(verb, url, body, headers, std::move(handler));
      },
      Effect::reads);
  return retrying(request, policy_).start(std::move(then));
}

}  // namespace orvane
