// SPDX-License-Identifier: Apache-2.0
// Orvane/Asio.h with the Asio that stands alone: a program of its own, since one program has one
// Asio. What it does in detail is tested with that of Boost.
#define ORVANE_ASIO_STANDALONE
#include <Orvane/Asio.h>
#include <Orvane/GoogleTest.h>

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/use_future.hpp>

#include <string>

namespace orvane {
namespace {

TEST(StandaloneAsioTest, answersWithHandlersAndFutures) {
  const auto operation = Operation<std::string>::answering(std::string("a text"));
  ::asio::io_context context;
  std::string answer;
  asio::async(operation, context,
              [&](const Result<std::string>& text) { answer = text.value_or("none"); });
  auto later = asio::async(operation, context, ::asio::use_future);
  EXPECT_GT(context.run(), 0U);
  EXPECT_EQ(answer, "a text");
  EXPECT_EQ(later.get(), Result<std::string>(std::string("a text")));
}

// Asio 1.22 has none with Clang 14.
#ifdef ASIO_HAS_CO_AWAIT
TEST(StandaloneAsioTest, goesOnInCoroutines) {
  ::asio::io_context context;
  std::string answer;
  ::asio::co_spawn(
      context,
      [&]() -> ::asio::awaitable<void> {
        const auto operation = Operation<std::string>::answering(std::string("a text"));
        const auto text = co_await asio::async(operation, ::asio::use_awaitable);
        answer = text.value_or("none");
      },
      ::asio::detached);
  context.run();
  EXPECT_EQ(answer, "a text");
}
#endif

}  // namespace
}  // namespace orvane
