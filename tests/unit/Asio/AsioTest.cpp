// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Asio.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/FixedResolvers.h>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/bind_allocator.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/bind_executor.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/deferred.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/use_future.hpp>

#include <cstddef>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace orvane {
namespace {

namespace io = boost::asio;
using Text = Result<std::string>;

const Text token = std::string("token");
const Text cancelled = Cancelled{};

Operation<std::string> asking(FixedTokenResolver& tokens) {
  return Operation<std::string>([&tokens](Completion<std::string> then) {
    return tokens.resolve({}, std::nullopt, std::move(then));
  });
}

class AsioTest : public testing::TestWithParam<AnswerTime> {
 protected:
  // The loop ends by itself when nothing is outstanding any more.
  void run() {
    if (GetParam() == AnswerTime::onMainQueue) MainQueue::main().drain();
    context.run();
  }

  FixedTokenResolver tokens{{std::string("token"), GetParam()}};
  const Operation<std::string> operation = asking(tokens);
  io::io_context context;
};

INSTANTIATE_TEST_SUITE_P(Answers, AsioTest,
                         testing::Values(AnswerTime::atOnce, AnswerTime::onMainQueue,
                                         AnswerTime::onAnotherThread));

TEST_P(AsioTest, aHandlerIsPostedToItsExecutor) {
  Text result;
  std::thread::id thread;
  auto handler = [&](Text answer) {
    result = std::move(answer);
    thread = std::this_thread::get_id();
  };
  asio::async(operation, io::bind_executor(context, handler));
  EXPECT_FALSE(result) << "never inside the call";
  run();
  EXPECT_EQ(result, token);
  EXPECT_EQ(thread, std::this_thread::get_id());

  result = Text();
  context.restart();
  asio::async(operation, io::make_strand(context), handler);
  run();
  EXPECT_EQ(result, token);
}

TEST_P(AsioTest, aFutureIsFulfilled) {
  std::future<Text> direct = asio::async(operation, io::use_future);
  std::future<Text> packaged =
      asio::async(operation, context, io::use_future([](Text answer) { return answer; }));
  run();
  EXPECT_EQ(direct.get(), token);
  EXPECT_EQ(packaged.get(), token);
}

TEST_P(AsioTest, aCoroutineGoesOn) {
  std::vector<Text> results;
  io::co_spawn(
      context,
      [&]() -> io::awaitable<void> {
        results.push_back(co_await asio::async(operation, io::use_awaitable));
        if (GetParam() == AnswerTime::onMainQueue)
          io::post(context, [] { MainQueue::main().drain(); });
        results.push_back(co_await asio::async(operation, io::deferred)(io::use_awaitable));
      },
      io::detached);
  io::post(context, [] { MainQueue::main().drain(); });
  run();
  EXPECT_EQ(results, (std::vector<Text>{token, token}));
}

template <class T>
struct CountingAllocator {
  using value_type = T;
  explicit CountingAllocator(std::size_t& counter) : count(&counter) {}
  template <class U>
  CountingAllocator(const CountingAllocator<U>& other) : count(other.count) {}
  T* allocate(std::size_t size) {
    ++*count;
    return std::allocator<T>().allocate(size);
  }
  void deallocate(T* memory, std::size_t size) { std::allocator<T>().deallocate(memory, size); }
  template <class U>
  bool operator==(const CountingAllocator<U>& other) const {
    return count == other.count;
  }
  std::size_t* count;
};

TEST_P(AsioTest, whatIsPostedIsAllocatedAsTheHandlerWishes) {
  std::size_t count = 0;
  Text result;
  asio::async(operation, io::bind_executor(
                             context, io::bind_allocator(CountingAllocator<char>(count),
                                                         [&](Text answer) { result = answer; })));
  run();
  EXPECT_EQ(result, token);
  EXPECT_GT(count, 0U);
}

TEST(AsioCancellationTest, aSlotCancelsTheOperation) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  io::io_context context;
  io::cancellation_signal signal;
  Text result = token;
  asio::async(
      asking(tokens),
      io::bind_executor(context, io::bind_cancellation_slot(
                                     signal.slot(), [&](Text answer) { result = answer; })));
  context.poll();
  EXPECT_EQ(result, token);
  signal.emit(io::cancellation_type::terminal);
  EXPECT_TRUE(tokens.calls().front()->isCancelled());
  context.restart();
  context.run();
  EXPECT_EQ(result, cancelled);
}

TEST(AsioCancellationTest, whoeverCancelsItCompletes) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  io::io_context context;
  Text result;
  asio::async(asking(tokens), context, [&](Text answer) { result = answer; });
  tokens.calls().front()->cancel();
  context.run();
  EXPECT_EQ(result, cancelled);
}

TEST(AsioCancellationTest, aTimerIsRacedAgainst) {
  using namespace io::experimental::awaitable_operators;
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  io::io_context context;
  std::size_t winner = 0;
  io::co_spawn(
      context,
      [&]() -> io::awaitable<void> {
        io::steady_timer timer(context, std::chrono::milliseconds(1));
        const auto first = co_await (asio::async(asking(tokens), io::use_awaitable) ||
                                     timer.async_wait(io::use_awaitable));
        winner = first.index();
      },
      io::detached);
  context.run();
  EXPECT_EQ(winner, 1U);
  EXPECT_TRUE(tokens.calls().front()->isCancelled());
}

}  // namespace
}  // namespace orvane
