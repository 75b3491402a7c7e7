// SPDX-License-Identifier: Apache-2.0
// orvane leaderboard, discount and rewards: what careful driving earns.
#include "Commands.h"
#include "Days.h"
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/Services/Discount/DiscountMetadataService.h>
#include <Orvane/Services/Discount/DiscountService.h>
#include <Orvane/Services/Leaderboard/LeaderboardService.h>
#include <Orvane/Services/Rewards/RewardsService.h>

#include <limits>

namespace orvane::cli {
namespace {

DateComponents today() {
  const auto day = dayOf(currentDate());
  if (!day) throw Failure(ExitCode::usage, "the device's clock shows no day: give --day");
  return componentsOf(*day);
}

struct ShowLeaderboard {
  using Answer = Leaderboard;
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show the leaderboard of a day";
  static constexpr Example examples[] = {
      {"leaderboard show --gender female --age 18-25", "young women"},
      {"leaderboard show --day yesterday --location 4051", "those of a part of a town, yesterday"},
  };

  std::optional<Day> day;
  std::optional<User::Gender> gender;
  std::optional<ClosedRange<std::int64_t>> age;
  std::optional<std::string> location;

  void declare(Options& options) {
    options.option("--day", day, "The day; left out, today");
    options.option("--gender", gender, "Only drivers of this gender");
    options.option("--age", age, "Only drivers of these ages, both included");
    options.option("--location", location, "Only drivers with this postal code");
  }

  Operation<Leaderboard> ask(Session& session) const {
    using Filter = LeaderboardService::Filter;
    std::set<Filter> filters;
    if (gender) filters.insert(Filter::gender(*gender));
    if (age) filters.insert(Filter::age(*age));
    if (location) filters.insert(Filter::postalCode(*location));
    return LeaderboardService(session.identity())
        .fetch(day ? dateOf(*day) : today(), std::move(filters));
  }

  static void print(const Leaderboard& leaderboard, Output& output) {
    output.block(Block()
                     .row("taking part", leaderboard.isOptedIn)
                     .row("ranked", leaderboard.isInLeaderboard)
                     .row("among the best", leaderboard.isInTop));
    if (leaderboard.entries) output.section("drivers", tableOf(*leaderboard.entries));
  }

 private:
  static Table tableOf(const std::vector<LeaderboardEntry>& entries) {
    using Entry = LeaderboardEntry;
    const auto of = [](auto member) {
      return [member](const Entry& entry) {
        return entry.user ? (*entry.user).*member : std::nullopt;
      };
    };
    return {"drivers",
            entries,
            {{"place", &Entry::position},
             {"points", &Entry::points},
             {"driver", of(&User::displayName)},
             {"city", of(&User::city), 1},
             {"id", of(&User::id), 2}}};
  }
};

struct OptIn {
  static constexpr std::string_view name = "opt-in";
  static constexpr std::string_view summary = "Appear on leaderboards";
  static constexpr std::string_view done = "Leaderboards show you.";

  static Operation<Unit> ask(const LeaderboardService& service) { return service.optIn(); }
};

struct OptOut {
  static constexpr std::string_view name = "opt-out";
  static constexpr std::string_view summary = "Disappear from leaderboards";
  static constexpr std::string_view done = "Leaderboards don't show you any more.";

  static Operation<Unit> ask(const LeaderboardService& service) { return service.optOut(); }
};

struct ShowDiscount {
  using Answer = Discount;
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show what one's driving takes off the premium";

  std::set<DiscountService::Expansion> expansions;

  void declare(Options& options) {
    options.option("--expand", expansions, "What the backend is asked to take into account");
  }

  Operation<Discount> ask(const DiscountService& service) const {
    return service.fetchDiscount(expansions);
  }

  static void print(const Discount& discount, Output& output) {
    output.block(Block()
                     .row("current", discount.currentDiscount)
                     .row("projected", discount.projectedDiscount)
                     .row("projected, at least", discount.projectedDiscountMinimum)
                     .row("projected, at most", discount.projectedDiscountMaximum)
                     .row("possible, from", discount.discountRangeMin)
                     .row("possible, up to", discount.discountRangeMax));
  }
};

struct ShowScheme {
  using Answer = DiscountMetadata;
  static constexpr std::string_view name = "scheme";
  static constexpr std::string_view summary = "Show which score earns which discount";

  static Operation<DiscountMetadata> ask(const DiscountMetadataService& service) {
    return service.fetchDiscountMetadata();
  }

  static void print(const DiscountMetadata& scheme, Output& output) {
    output.block(Block().row("distance needed", scheme.minimumKmRequired,
                             [](double kilometres) { return decimal(kilometres, 1) + " km"; }));
    const auto ranges = scheme.scoreDiscountMap();
    if (!ranges) return;
    using Range = DiscountMetadata::DiscountRange;
    const Table table(
        "discounts", *ranges,
        {{"score from", [](const Range& range) { return range.scoreRange.lowerBound(); }},
         {"up to", [](const Range& range) { return limitOf(range.scoreRange.upperBound()); }},
         {"discount", &Range::associatedDiscount}});
    output.section("discounts", table);
  }

 private:
  // The best scores have no upper limit.
  static std::optional<double> limitOf(double score) {
    if (score == std::numeric_limits<double>::max()) return std::nullopt;
    return score;
  }
};

struct FetchToken {
  using Answer = RewardToken;
  static constexpr std::string_view name = "token";
  static constexpr std::string_view summary = "Print a token that opens the rewards";

  static Operation<RewardToken> ask(const RewardsService& service) { return service.fetchToken(); }

  static void print(const RewardToken& reward, Output& output) {
    output.line(visible(reward.token.value_or("")));
  }
};

}  // namespace

Resource leaderboardCommands() {
  return Resource("leaderboard", "How the programme's drivers rank")
      .add<ShowLeaderboard>()
      .add<OptIn>()
      .add<OptOut>();
}

Resource discountCommands() {
  return Resource("discount", "What careful driving takes off the premium")
      .add<ShowDiscount>()
      .add<ShowScheme>();
}

Resource rewardCommands() {
  return Resource("rewards", "The programme's rewards").add<FetchToken>();
}

}  // namespace orvane::cli
