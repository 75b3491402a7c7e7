// SPDX-License-Identifier: Apache-2.0
// orvane subscriptions and named-drivers: what stands in the insurance contracts.
#include "Commands.h"
#include <Orvane/Services/NamedDriver/NamedDriverService.h>
#include <Orvane/Services/Subscription/SubscriptionService.h>

namespace orvane::cli {
namespace {

std::optional<Date> dateOf(const std::optional<double>& milliseconds) {
  if (!milliseconds) return std::nullopt;
  return dateOfMilliseconds(*milliseconds);
}

std::optional<std::string> daysOf(const std::optional<double>& milliseconds) {
  constexpr double millisecondsPerDay = 86'400'000;
  if (!milliseconds) return std::nullopt;
  return decimal(*milliseconds / millisecondsPerDay, 1);
}

struct ListSubscriptions {
  using Answer = std::vector<Subscription>;
  static constexpr std::string_view name = "subscriptions";
  static constexpr std::string_view summary = "List the contracts under which one takes part";

  RequestHandle start(const Identity& identity, Completion<Answer> then) const {
    return SubscriptionService(identity).fetchContractDates(std::move(then));
  }

  static void print(const Answer& subscriptions, Output& output) {
    constexpr auto right = Table::Alignment::right;
    constexpr auto whole = Table::Fit::whole;
    Table table{{"enrolment", right}, "type",          {"start", whole},
                {"end", whole},       {"days", right}, {"trial days", right},
                {"trial end", whole}};
    for (const Subscription& subscription : subscriptions) {
      table.row(subscription.telematicSubscriptionEnrollmentId,
                subscription.telematicSubscriptionType, dateOf(subscription.startTimestamp),
                dateOf(subscription.endTimestamp), daysOf(subscription.subscriptionLengthMillis),
                daysOf(subscription.trialLengthMillis), dateOf(subscription.trialEndTimestamp));
    }
    output.table(table);
  }
};

struct ListNamedDrivers {
  using Answer = std::vector<NamedDriver>;
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List the drivers that the policy names";

  RequestHandle start(const Identity& identity, Completion<Answer> then) const {
    return NamedDriverService(identity).fetch(std::move(then));
  }

  static void print(const Answer& drivers, Output& output) {
    Table table{"id",
                "first name",
                "last name",
                "e-mail",
                "phone",
                "activated",
                {"activated on", Table::Fit::whole}};
    for (const NamedDriver& driver : drivers) {
      table.row(driver.userId, driver.firstName, driver.lastName, driver.email, driver.phone,
                driver.activated, dateOf(driver.activatedDate));
    }
    output.table(table);
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

  RequestHandle start(const Identity& identity, Completion<NamedDriver> then) const {
    return NamedDriverService(identity).updateNamedDriver(id, email, phone, std::move(then));
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
                     .row("activated on", dateOf(driver.activatedDate)));
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
