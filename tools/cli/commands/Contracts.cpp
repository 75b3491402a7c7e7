// SPDX-License-Identifier: Apache-2.0
// orvane subscriptions and named-drivers: what stands in the insurance contracts.
#include "Commands.h"
#include <Orvane/Services/NamedDriver/NamedDriverService.h>
#include <Orvane/Services/Subscription/SubscriptionService.h>

namespace orvane::cli {
namespace {

std::string daysOf(double milliseconds) {
  constexpr double millisecondsPerDay = 86'400'000;
  return decimal(milliseconds / millisecondsPerDay, 1);
}

struct ListSubscriptions {
  using Answer = std::vector<Subscription>;
  static constexpr std::string_view name = "subscriptions";
  static constexpr std::string_view summary = "List the contracts under which one takes part";

  Operation<Answer> ask(const SubscriptionService& service) const {
    return service.fetchContractDates();
  }

  static void print(const Answer& subscriptions, Output& output) {
    using S = Subscription;
    output.table(Table("subscriptions", subscriptions,
                       {{"enrolment", &S::telematicSubscriptionEnrollmentId},
                        {"type", &S::telematicSubscriptionType},
                        {"start", &S::startTimestamp, minuteOfMilliseconds},
                        {"end", &S::endTimestamp, minuteOfMilliseconds, 1},
                        {"days", &S::subscriptionLengthMillis, daysOf, 2},
                        {"trial days", &S::trialLengthMillis, daysOf, 4},
                        {"trial end", &S::trialEndTimestamp, minuteOfMilliseconds, 3}}));
  }
};

struct ListNamedDrivers {
  using Answer = std::vector<NamedDriver>;
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List the drivers that the policy names";

  Operation<Answer> ask(const NamedDriverService& service) const { return service.fetch(); }

  static void print(const Answer& drivers, Output& output) {
    using Driver = NamedDriver;
    output.table(Table("named drivers", drivers,
                       {{"id", &Driver::userId},
                        {"first name", &Driver::firstName},
                        {"last name", &Driver::lastName},
                        {"e-mail", &Driver::email, 2},
                        {"phone", &Driver::phone, 3},
                        {"activated", &Driver::activated, 1},
                        {"activated on", &Driver::activatedDate, minuteOfMilliseconds, 4}}));
  }
};

struct UpdateNamedDriver {
  using Answer = NamedDriver;
  static constexpr std::string_view name = "update";
  static constexpr std::string_view summary =
      "Set a named driver's e-mail address and phone number";
  static constexpr Example examples[] = {
      {"named-drivers update 1201 --email otto@example.com --phone ''",
       "both are written: an empty text clears one"}};

  std::int64_t id = 0;
  std::string email;
  std::string phone;

  void declare(Options& options) {
    options.positional("ID", id, "The driver");
    options.required("--email", email, "E-mail address");
    options.required("--phone", phone, "Phone number");
  }

  Operation<NamedDriver> ask(const NamedDriverService& service) const {
    return service.updateNamedDriver(id, email, phone);
  }

  static void print(const NamedDriver& driver, Output& output) {
    output.block(Block()
                     .row("id", toText(driver.userId))
                     .row("profile id", driver.userProfileId)
                     .row("first name", driver.firstName)
                     .row("last name", driver.lastName)
                     .row("e-mail", driver.email)
                     .row("phone", driver.phone)
                     .row("activated", toText(driver.activated))
                     .row("activated on", driver.activatedDate, dateOfMilliseconds));
  }
};

}  // namespace

Resource subscriptionsCommand() { return Resource::only<ListSubscriptions>(); }

Resource namedDriverCommands() {
  return Resource("named-drivers", "The further drivers that a policy names")
      .add<ListNamedDrivers>()
      .add<UpdateNamedDriver>();
}

}  // namespace orvane::cli
