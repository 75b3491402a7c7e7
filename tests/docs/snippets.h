// SPDX-License-Identifier: Apache-2.0
// What the C++ on the project's pages supposes to be there. It is compiled, never linked.
#pragma once

#include <Orvane/Asio.h>
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>
#include <Orvane/Testing.h>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <sys/eventfd.h>

#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Of GoogleTest.
#define EXPECT_EQ(left, right) static_cast<void>((left) == (right))

namespace snippets {

using namespace orvane;
using namespace std::chrono_literals;
using TripService::Expansion::events;
using TripService::Expansion::scores;

extern const Identity identity;
extern const UserService users;
extern const VehicleService vehicles;
extern const TripService trips;
extern const SetOf<TripService::Filter> filters;
extern const DateRange week;
extern const std::string name;
extern const std::stop_token stopToken;
extern const std::string signIn;
extern const std::string mySignIn;
extern const Result<Trip> result;
extern const Result<User> me;
extern std::vector<Operation<Trip>> fetches;

void greet(const std::string& name);
void use(const std::vector<Trip>& trips);
void report(const Error& error);
void askToTryAgain();
Task<int> run(TripService trips);
std::string authoritiesFromTheBundle();
std::string keyFromTheStore();
RequestHandle handToMyNetwork(std::string_view verb, const std::string& url, const Headers& headers,
                              const std::string& body,
                              UniqueFunction<void(int, std::string)> finished);

// Of other frameworks, as much as the pages speak of.
struct QMetaObject {
  template <class Context, class Job>
  static bool invokeMethod(Context*, Job job, int) {
    job();
    return true;
  }
};
struct Qt {
  static constexpr int QueuedConnection = 2;
};
struct QObject {};

using gboolean = int;
using gpointer = void*;
constexpr bool G_SOURCE_REMOVE = false;
constexpr int G_PRIORITY_DEFAULT = 0;
unsigned g_idle_add_full(int priority, gboolean (*run)(gpointer), gpointer data,
                         void (*destroy)(gpointer));

struct dispatch_queue_s;
dispatch_queue_s* dispatch_get_main_queue();
void dispatch_async_f(dispatch_queue_s* queue, void* context, void (*run)(void*));

struct ALooper;
constexpr int ALOOPER_POLL_CALLBACK = -2;
constexpr int ALOOPER_EVENT_INPUT = 1;
ALooper* ALooper_forThread();
int ALooper_addFd(ALooper* looper, int descriptor, int ident, int events,
                  int (*callback)(int descriptor, int events, void* data), void* data);

}  // namespace snippets
