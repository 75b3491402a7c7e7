// SPDX-License-Identifier: Apache-2.0
// With handlers, as in an application with a loop: nothing waits, and a request can be cancelled.
//
//   orvane-sandbox --exec -- orvane-example-with_handlers   # with the local backend
//   ORVANE_BASE_URL=https://telematics.example ORVANE_TOKEN=… orvane-example-with_handlers
#include "Settings.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <iostream>

int main() {
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;

  const orvane::TripService trips(identity());
  using enum orvane::TripService::Expansion;
  bool isThere = false;
  // `onMain`: handlers run where the main queue is drained, and not on the transport's thread.
  const orvane::ScopedRequest request =
      trips.fetchAllChecked({orvane::TripService::Filter::cursor(10, 0)}, {events, scores})
          .onMain()
          .start([&](orvane::Result<std::vector<orvane::Trip>> result) {
            if (result) {
              for (const orvane::Trip& trip : *result) {
                std::cout << trip.id.value_or("?") << ": " << trip.distance.value_or(0) << " m\n";
              }
            } else {
              std::cerr << result.errorOr(orvane::NetworkError::unknown).description() << '\n';
            }
            isThere = result.has_value();
            orvane::MainQueue::main().stop();
          });

  // An application with a loop of its own hands the queue to it (`forward`) instead.
  orvane::MainQueue::main().run();
  return isThere ? 0 : 1;
}
