// SPDX-License-Identifier: Apache-2.0
// In a coroutine: one operation after the other, several at once, with a limit of time, and tried
// again.
//
//   orvane-sandbox --exec -- orvane-example-rename_user "New Name"   # with the local backend
//   ORVANE_BASE_URL=https://telematics.example ORVANE_TOKEN=… orvane-example-rename_user "New Name"
#include "Settings.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <chrono>
#include <iostream>
#include <string>

namespace {

using namespace std::chrono_literals;

int sorry(const orvane::Result<orvane::User>& user) {
  std::cerr << user.errorOr(orvane::NetworkError::unknown).description() << '\n';
  return 1;
}

orvane::Task<int> rename(std::string name) {
  const orvane::UserService users(identity());
  const orvane::VehicleService garage(identity());
  const orvane::TripService trips(identity());

  auto patient = retrying(users.fetch().within(5s), {.attempts = 4});
  const auto [before, cars] = co_await all(patient, garage.getAllVehicles());
  if (!before) co_return sorry(before);

  // Made beforehand: GCC 12 spoils texts in braces within a `co_await`.
  const orvane::UserUpdate update{.displayName = name};
  const auto after = co_await users.update(update);
  if (!after) co_return sorry(after);
  std::cout << before->displayName.value_or("nobody") << ", who drives "
            << (cars ? cars->size() : 0) << " vehicles, is "
            << after->displayName.value_or("nobody") << " now\n";

  using enum orvane::TripService::Expansion;
  const auto week =
      co_await trips.fetchAllChecked({orvane::TripService::Filter::cursor(3, 0)}, {events, scores});
  if (week && !week->empty()) {
    const auto latest = co_await trips.fetch(week->front().id.value_or(""), {points});
    std::cout << "the latest trip took " << (latest ? latest->duration.value_or(0) : 0) << " s\n";
  }

  std::size_t count = 0;
  const orvane::TripPageReader pages = trips.pages({.pageSize = 20});
  while (const auto page = co_await pages.next()) count += page->size();
  if (!pages.error()) std::cout << "and has made " << count << " trips\n";
  co_return after->displayName == name ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::cerr << "usage: " << arguments[0] << " NAME\n";
    return 64;
  }
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;
  return orvane::MainQueue::main().runUntil(rename(arguments[1]));
}
