// SPDX-License-Identifier: Apache-2.0
// In a program with GLib's main loop, such as one with GTK: the loop runs the main queue's jobs, so
// that every answer comes on its thread. Prints the trips of late; Ctrl-C gives up.
//
//   orvane-sandbox --exec -- orvane-example-glib   # with the local backend
//   ORVANE_BASE_URL=https://telematics.example ORVANE_TOKEN=… orvane-example-glib
//
// By itself: g++ -std=c++20 glib.cpp $(pkg-config --cflags --libs orvane-runtime glib-2.0)
#include "Settings.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <glib-unix.h>
#include <glib.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Job = orvane::MainQueue::Job;

// Each job is a source of its own that is ready at once. Those of one priority run in the order in
// which they were attached; `context` may be that of any thread, null for the default one.
void handMainQueueTo(GMainContext* context) {
  orvane::MainQueue::main().forward([context](Job job) {
    const auto run = [](gpointer data) -> gboolean {
      (*static_cast<Job*>(data))();
      return G_SOURCE_REMOVE;
    };
    const auto destroy = [](gpointer data) { delete static_cast<Job*>(data); };
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, run, new Job(std::move(job)), destroy);
    g_source_attach(source, context);
    g_source_unref(source);
  });
}

// What a window would be: whatever it asked for is cancelled when it goes.
class TripList {
 public:
  explicit TripList(GMainLoop* loop) : loop_(loop) {}

  void load() {
    using enum orvane::TripService::Expansion;
    request_ =
        trips_.fetchAllChecked({orvane::TripService::Filter::cursor(10, 0)}, {events, scores})
            .onMain()
            .start([this](const orvane::Result<std::vector<orvane::Trip>>& trips) { show(trips); });
  }

  void cancel() {
    request_ = {};
    g_main_loop_quit(loop_);
  }

  [[nodiscard]] bool isThere() const { return isThere_; }

 private:
  void show(const orvane::Result<std::vector<orvane::Trip>>& trips) {
    if (trips) {
      for (const orvane::Trip& trip : *trips) {
        std::cout << trip.id.value_or("?") << ": " << trip.distance.value_or(0) << " m\n";
      }
    } else {
      std::cerr << trips.errorOr(orvane::NetworkError::unknown).description() << '\n';
    }
    isThere_ = trips.has_value();
    g_main_loop_quit(loop_);
  }

  GMainLoop* loop_;
  const orvane::TripService trips_{identity()};
  orvane::ScopedRequest request_;
  bool isThere_ = false;
};

}  // namespace

int main() {
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;
  handMainQueueTo(nullptr);

  const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(
      g_main_loop_new(nullptr, FALSE), &g_main_loop_unref);
  TripList list(loop.get());
  const auto giveUp = [](gpointer data) -> gboolean {
    static_cast<TripList*>(data)->cancel();
    return G_SOURCE_CONTINUE;
  };
  g_unix_signal_add(SIGINT, giveUp, &list);

  list.load();
  std::cerr << "Ctrl-C gives up\n";
  g_main_loop_run(loop.get());
  runtime.value()->shutdown();
  return list.isThere() ? 0 : 1;
}
