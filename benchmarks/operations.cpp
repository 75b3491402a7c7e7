// SPDX-License-Identifier: Apache-2.0
// What a call costs beside the network: nanoseconds and allocations of UserService::fetch over a
// transport that answers inside the call, in each of the ways in which it can be asked for.
#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace {

std::atomic<std::size_t> allocations = 0;

}  // namespace

// Never inlined: GCC would see memory of malloc's given to delete, and warn.
[[gnu::noinline]] void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace orvane;

class Answering final : public RequestManager {
 public:
  RequestHandle send(Verb, URL, std::string, Headers, Completion<std::string> then) override {
    std::string answer;
    answer.reserve(128);
    answer = R"({"userId":"42"})";
    then(std::move(answer));
    return request_;
  }

 private:
  const RequestHandle request_ = std::make_shared<EmptyRequest>();
};

UserService& service() {
  static UserService& users = []() -> UserService& {
    Container::common()->register_<RequestManager>(std::make_shared<Answering>());
    Container::common()->register_<OrvaneDetailsResolver>(std::make_shared<MockOrvaneResolver>());
    return *new UserService(Identity{"key"});
  }();
  return users;
}

template <class Ask>
void calls(benchmark::State& state, Ask ask) {
  const UserService& users = service();
  bool isRight = ask(users);
  const std::size_t before = allocations.load();
  for (auto _ : state) isRight &= ask(users);
  state.counters["allocations"] = benchmark::Counter(
      static_cast<double>(allocations.load() - before), benchmark::Counter::kAvgIterations);
  if (!isRight) state.SkipWithError("a call failed");
}

void handlerForm(benchmark::State& state) {
  calls(state, [](const UserService& users) {
    bool isThere = false;
    users.fetch({}, {}, [&](const Result<User>& user) { isThere = static_cast<bool>(user); });
    return isThere;
  });
}
BENCHMARK(handlerForm);

void started(benchmark::State& state) {
  calls(state, [](const UserService& users) {
    bool isThere = false;
    users.fetch().start([&](const Result<User>& user) { isThere = user.has_value(); });
    return isThere;
  });
}
BENCHMARK(started);

void startedAgain(benchmark::State& state) {
  calls(state, [fetch = service().fetch()](const UserService&) {
    bool isThere = false;
    fetch.start([&](const Result<User>& user) { isThere = user.has_value(); });
    return isThere;
  });
}
BENCHMARK(startedAgain);

void waitedFor(benchmark::State& state) {
  calls(state, [](const UserService& users) { return users.fetch().wait().has_value(); });
}
BENCHMARK(waitedFor);

Task<bool> fetching(const UserService& users) {
  const auto user = co_await users.fetch();
  co_return user.has_value();
}

void awaited(benchmark::State& state) {
  calls(state,
        [](const UserService& users) { return MainQueue::main().runUntil(fetching(users)); });
}
BENCHMARK(awaited);

void limitedAndRetried(benchmark::State& state) {
  calls(state, [](const UserService& users) {
    return retrying(users.fetch().within(std::chrono::seconds(5))).wait().has_value();
  });
}
BENCHMARK(limitedAndRetried);

}  // namespace
