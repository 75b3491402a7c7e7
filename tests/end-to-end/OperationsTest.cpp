// SPDX-License-Identifier: Apache-2.0
// Every operation of every service, once, through the Runtime against a backend in another process.
#include "CommandLine.h"
#include "OperationsTable.h"
#include "SandboxProcess.h"
#include "tests/support/Outcome.h"
#include <Orvane/Common/Await.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Orvane.h>
#include <Orvane/Runtime/Runtime.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>
#include <Orvane/Testing/Device.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <sstream>

namespace orvane::test {
namespace {

using testing::Contains;
using testing::Not;
using testing::SizeIs;

const Identity anna{"sandbox-api-key", "anna.keller"};
const Identity daniel{"sandbox-api-key", "daniel.meier"};
const Identity nora{"sandbox-api-key", "nora.frei"};

// Runs an operation and answers its value.
template <class T, class Start>
T answer(Start start) {
  Result<T> result = wait<T>(std::move(start));
  EXPECT_TRUE(result) << result.errorOr(NetworkError::unknown).message();
  return result.value() ? *std::move(result).value() : T{};
}

template <class Start>
void succeeds(Start start) {
  answer<Unit>(std::move(start));
}

// The status with which the backend refuses an operation; 0 when it does not.
template <class Start>
std::int64_t refusal(Start start) {
  const Result<Unit> result = wait<Unit>(std::move(start));
  const auto* error = result.error() ? result.error()->as<NetworkError>() : nullptr;
  return error == nullptr ? 0 : error->statusCode();
}

User userOf(const Identity& identity) {
  return answer<User>(
      [&](auto then) { return UserService(identity).fetch(std::nullopt, {}, std::move(then)); });
}

std::vector<std::string> vehicleInvitations(const Identity& identity, const char* states) {
  const auto invitations = answer<std::vector<Invitation>>([&](auto then) {
    return InvitationService(identity).fetchVehicleInvites(states, std::move(then));
  });
  std::vector<std::string> ids;
  ids.reserve(invitations.size());
  for (const Invitation& invitation : invitations) {
    ids.push_back(invitation.invitationId.value_or(""));
  }
  return ids;
}

NewInvitation toNora() {
  return {.fromUserID = "1001",
          .toUserFirstName = "Nora",
          .toUserLastName = "Frei",
          .toUserEmail = "nora.frei@example.com"};
}

std::vector<Trip> latestTrips(std::int64_t count) {
  return answer<std::vector<Trip>>([&](auto then) {
    return TripService(anna).fetch(std::nullopt, {TripService::Filter::cursor(count, 0)}, {},
                                   std::move(then));
  });
}

std::string latestTrip() {
  const auto trips = latestTrips(1);
  return trips.empty() ? std::string() : trips.front().id.value_or("");
}

Date now() { return DeviceClock::now(); }
Date daysAgo(int days) { return now() - std::chrono::hours(24 * days); }

DateComponents today() {
  const std::chrono::year_month_day day(
      std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
  return {static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
          static_cast<unsigned>(day.day())};
}

Leaderboard leaderboard() {
  return answer<Leaderboard>(
      [](auto then) { return LeaderboardService(anna).fetch(today(), {}, std::move(then)); });
}

// A period of scores that people with a history have.
void expectScores(const ScoringAggregate& scores) {
  EXPECT_GT(scores.averageScore.value_or(0), 0);
  EXPECT_GE(scores.highestScore.value_or(0), scores.averageScore.value_or(0));
}

void expectScores(const ScoringAverage& scores) {
  EXPECT_GT(scores.averageScore.value_or(0), 0);
  EXPECT_GE(scores.highestScore.value_or(0), scores.lowestScore.value_or(101));
}

using Aggregate = Completion<ScoringAggregate>;

// An operation, called once, with a look at what it answered or did.
struct Operation {
  std::string name;
  std::function<void()> run;
};

std::vector<Operation> ofPeople() {
  return {
      {"UserService.fetch",
       [] {
         const User user = userOf(anna);
         EXPECT_EQ(user.id, "1001");
         EXPECT_EQ(user.firstName, "Anna");
       }},
      {"UserService.update",
       [] {
         const User user = answer<User>([](auto then) {
           return UserService(anna).update({.displayName = "Zoë"}, std::move(then));
         });
         EXPECT_EQ(user.displayName, "Zoë");
       }},
      {"UserService.updateAddress",
       [] {
         const User user = answer<User>([](auto then) {
           return UserService(anna).updateAddress({.city = "Bern"}, std::move(then));
         });
         EXPECT_EQ(user.city, "Bern");
       }},
      {"InvitationService.fetchVehicleInvites",
       [] { EXPECT_EQ(vehicleInvitations(anna, "DECLINED"), std::vector<std::string>{"9003"}); }},
      {"InvitationService.fetchAccountInvites",
       [] {
         const auto invitations = answer<std::vector<Invitation>>([](auto then) {
           return InvitationService(anna).fetchAccountInvites(std::nullopt, std::move(then));
         });
         ASSERT_THAT(invitations, SizeIs(1));
         EXPECT_EQ(invitations[0].invitationId, "9008");
         EXPECT_EQ(invitations[0].account->accountId, "2003");
       }},
      {"InvitationService.sendVehicleInvitation",
       [] {
         NewInvitation draft = toNora();
         draft.vehicleIDs = {"3006"};
         const auto sent = answer<Invitation>([&](auto then) {
           return InvitationService(anna).sendVehicleInvitation(draft, std::move(then));
         });
         EXPECT_EQ(sent.invitationId, "9011");
         EXPECT_EQ(sent.status, Invitation::Status::pending);
         EXPECT_EQ(sent.toUser->userId, "1007");
         EXPECT_EQ(sent.vehicle->vehicleId, "3006");
       }},
      {"InvitationService.sendAccountInvitation",
       [] {
         const auto sent = answer<std::vector<Invitation>>([](auto then) {
           return InvitationService(anna).sendAccountInvitation(toNora(), std::move(then));
         });
         ASSERT_THAT(sent, SizeIs(1));
         EXPECT_EQ(sent[0].account->accountId, "2001");
       }},
      {"InvitationService.respondToInvitation",
       [] {
         succeeds([](auto then) {
           return InvitationService(nora).respondToInvitation(
               {.toUserId = "1007",
                .invitationId = "9011",
                .response = Invitation::Response::accept},
               std::move(then));
         });
         EXPECT_THAT(vehicleInvitations(anna, "ACCEPTED"), Contains("9011"));
       }},
      {"InvitationService.cancelVehicleInvitation",
       [] {
         succeeds([](auto then) {
           return InvitationService(anna).cancelVehicleInvitation("1001", "9001", std::move(then));
         });
         EXPECT_THAT(vehicleInvitations(anna, "PENDING"), Not(Contains("9001")));
       }},
      {"InvitationService.removeGuestDriverFromVehicle",
       [] {
         const auto remove = [](auto then) {
           return InvitationService(anna).removeGuestDriverFromVehicle("1007", "3006",
                                                                       std::move(then));
         };
         succeeds(remove);
         EXPECT_EQ(refusal(remove), 404);
       }},
      {"InvitationService.removeGuestDriverFromAccount",
       [] {
         const auto remove = [](auto then) {
           return InvitationService(daniel).removeGuestDriverFromAccount("1106", "2002",
                                                                         std::move(then));
         };
         succeeds(remove);
         EXPECT_EQ(refusal(remove), 404);
       }},
      {"ActivationService.activate",
       [] {
         succeeds([](auto then) {
           return ActivationService(nora).activate("ACT-1007", "424242", "nora@example.com",
                                                   std::move(then));
         });
         const User user = userOf(nora);
         EXPECT_EQ(user.activated, true);
         EXPECT_EQ(user.displayName, "nora@example.com");
       }},
      {"EULAService.acceptTerms",
       [] {
         succeeds([](auto then) { return EULAService(nora).acceptTerms(std::move(then)); });
         EXPECT_EQ(userOf(nora).acceptedTerms, true);
       }},
      {"DeviceService.fetch",
       [] {
         const auto device =
             answer<Device>([](auto then) { return DeviceService(nora).fetch(std::move(then)); });
         EXPECT_TRUE(device.identifier);
         EXPECT_EQ(device.dataCollectionIsActive, true) << "since the activation";
       }},
      {"DeviceService.deactivate",
       [] {
         const auto device = answer<Device>(
             [](auto then) { return DeviceService(nora).deactivate(std::move(then)); });
         EXPECT_EQ(device.dataCollectionIsActive, false);
       }},
      {"DeviceService.activate",
       [] {
         const auto device = answer<Device>(
             [](auto then) { return DeviceService(nora).activate(std::move(then)); });
         EXPECT_EQ(device.dataCollectionIsActive, true);
       }},
      {"PushNotificationService.setToken",
       [] {
         const auto device = answer<Device>([](auto then) {
           return PushNotificationService(nora).setToken("abc 1+2", std::move(then));
         });
         EXPECT_EQ(device.pushNotificationToken, "abc 1+2");
         EXPECT_EQ(device.pushNotificationsAreEnabled, true);
       }},
      {"SubscriptionService.fetchContractDates",
       [] {
         const auto subscriptions = answer<std::vector<Subscription>>([](auto then) {
           return SubscriptionService(anna).fetchContractDates(std::move(then));
         });
         ASSERT_THAT(subscriptions, SizeIs(5));
         EXPECT_EQ(subscriptions[4].telematicSubscriptionType,
                   Subscription::SubscriptionType::aFNOL);
       }},
      {"NamedDriverService.fetch",
       [] {
         const auto drivers = answer<std::vector<NamedDriver>>(
             [](auto then) { return NamedDriverService(anna).fetch(std::move(then)); });
         ASSERT_THAT(drivers, SizeIs(3));
         EXPECT_EQ(drivers[2].firstName, "Otto");
       }},
      {"NamedDriverService.updateNamedDriver",
       [] {
         const auto driver = answer<NamedDriver>([](auto then) {
           return NamedDriverService(anna).updateNamedDriver(1201, "otto@example.com", "",
                                                             std::move(then));
         });
         EXPECT_EQ(driver.userId, 1201);
         EXPECT_EQ(driver.email, "otto@example.com");
         EXPECT_FALSE(driver.phone);
       }},
  };
}

std::vector<Operation> ofDriving() {
  return {
      {"TripService.fetch (a user's)", [] { EXPECT_THAT(latestTrips(3), SizeIs(3)); }},
      {"TripService.fetch (one)",
       [] {
         const std::string id = latestTrip();
         const auto trip = answer<Trip>([&](auto then) {
           return TripService(anna).fetch(id, {TripService::Expansion::geometry}, std::move(then));
         });
         EXPECT_EQ(trip.id, id);
         ASSERT_TRUE(trip.polyline);
         EXPECT_GT(trip.polyline->decodeChecked().value()->size(), 10U);
       }},
      {"TripService.fetchAll",
       [] {
         const auto trips = answer<std::vector<Trip>>([](auto then) {
           return TripService(anna).fetchAll({TripService::Filter::cursor(2, 1)}, {},
                                             std::move(then));
         });
         EXPECT_THAT(trips, SizeIs(2));
       }},
      {"TripService.fetchAllChecked",
       [] {
         const auto trips = answer<std::vector<Trip>>(
             [](auto then) { return TripService(nora).fetchAllChecked({}, {}, std::move(then)); });
         EXPECT_THAT(trips, SizeIs(0)) << "who never drove has an empty logbook";
       }},
      {"TripService.fetchPages",
       [] {
         const auto all = answer<std::vector<Trip>>(
             [](auto then) { return TripService(anna).fetchAll({}, {}, std::move(then)); });
         const auto paged = answer<std::vector<Trip>>([](auto then) {
           return TripService(anna).fetchPages(TripPages{.pageSize = 3}, std::move(then));
         });
         EXPECT_GT(paged.size(), 3U);
         EXPECT_EQ(paged, all);
       }},
      {"TripService.update",
       [] {
         const std::string id = latestTrip();
         const auto trip = answer<Trip>([&](auto then) {
           return TripService(anna).update(id, std::nullopt, Trip::Purpose::business,
                                           std::move(then));
         });
         EXPECT_EQ(trip.id, id);
         EXPECT_EQ(trip.purpose, Trip::Purpose::business);
       }},
      {"TripService.fetchTripsByVehicle",
       [] {
         const auto trips = answer<std::vector<Trip>>([](auto then) {
           return TripService(anna).fetchTripsByVehicle({.startDate = "2000-01-01",
                                                         .endDate = "2999-12-31",
                                                         .vehicleId = "3001",
                                                         .vehicleTripsLimit = 2,
                                                         .userId = "1001"},
                                                        std::move(then));
         });
         ASSERT_THAT(trips, SizeIs(2));
         EXPECT_EQ(trips[0].vehicleId, "3001");
       }},
      {"LocationService.fetchLastKnownLocation",
       [] {
         const auto location = answer<Location>([](auto then) {
           return LocationService(anna).fetchLastKnownLocation(std::move(then));
         });
         EXPECT_NEAR(location.latitude.value_or(0), 47.5, 1);
         EXPECT_GT(location.date.value_or(Date()), daysAgo(15));
       }},
      {"VehicleService.getAllVehicles",
       [] {
         const auto vehicles = answer<std::vector<Vehicle>>(
             [](auto then) { return VehicleService(anna).getAllVehicles({}, std::move(then)); });
         EXPECT_EQ(vehicles, (std::vector<Vehicle>{{.vehicleId = "3001"}, {.vehicleId = "3006"}}));
       }},
      {"VehicleService.getVehicleFor",
       [] {
         const auto vehicle = answer<Vehicle>([](auto then) {
           return VehicleService(anna).getVehicleFor("3001", {}, "BS 30461", std::move(then));
         });
         EXPECT_EQ(vehicle.model, "Octavia");
       }},
      {"DrivingSummaryService.fetch",
       [] {
         const auto summary = answer<DrivingSummary>([](auto then) {
           return DrivingSummaryService(anna).fetch(
               {}, {DrivingSummaryService::Expansion::driverDetection}, std::move(then));
         });
         EXPECT_GT(summary.distanceDriven.value_or(0), 0);
         EXPECT_TRUE(summary.driverDetection);
       }},
      {"DrivingSummaryService.fetchList",
       [] {
         const auto periods = answer<std::vector<DrivingSummaryResult>>([](auto then) {
           return DrivingSummaryService(anna).fetchList({}, "DAY", std::move(then));
         });
         EXPECT_GT(periods.size(), 1U);
       }},
      {"DrivingAlertService.registerAlertSetting",
       [] {
         const auto set = [](const char* driver) {
           return [driver](auto then) {
             return DrivingAlertService(anna).registerAlertSetting(
                 DrivingAlertType::braking(driver, DrivingEventSeverity::medium), std::move(then));
           };
         };
         succeeds(set("1001"));
         EXPECT_EQ(refusal(set("nobody")), 404);
       }},
  };
}

// The operations that score days are those of two services.
template <class Service>
std::vector<Operation> ofScoredDays(const std::string& service) {
  using Call = RequestHandle (*)(const Service&, Aggregate);
  struct Row {
    const char* name;
    Call call;
  };
  const Row rows[] = {
      {"dateRange",
       [](const Service& scores, Aggregate then) {
         return scores.dateRange(daysAgo(7), now(), std::move(then));
       }},
      {"last7Days",
       [](const Service& scores, Aggregate then) { return scores.last7Days(std::move(then)); }},
      {"lastWeek",
       [](const Service& scores, Aggregate then) { return scores.lastWeek(std::move(then)); }},
      {"last30Days",
       [](const Service& scores, Aggregate then) { return scores.last30Days(std::move(then)); }},
      {"lastMonth",
       [](const Service& scores, Aggregate then) { return scores.lastMonth(std::move(then)); }},
      {"last90Days",
       [](const Service& scores, Aggregate then) { return scores.last90Days(std::move(then)); }},
      {"lastYear",
       [](const Service& scores, Aggregate then) { return scores.lastYear(std::move(then)); }},
  };
  std::vector<Operation> operations;
  for (const Row& row : rows) {
    operations.push_back({service + "." + row.name, [call = row.call] {
                            expectScores(answer<ScoringAggregate>(
                                [&](auto then) { return call(Service(anna), std::move(then)); }));
                          }});
  }
  operations.push_back({service + ".today", [] {
                          const auto scores = answer<ScoringAggregate>(
                              [](auto then) { return Service(anna).today(std::move(then)); });
                          ASSERT_TRUE(scores.tripScoringDailyAggregate);
                          EXPECT_LE(scores.tripScoringDailyAggregate->size(), 1U);
                        }});
  return operations;
}

std::vector<Operation> ofIncentives() {
  return {
      {"ScoringService.custom",
       [] {
         expectScores(answer<ScoringAverage>([](auto then) {
           return ScoringService(anna).custom(daysAgo(7), now(), std::move(then));
         }));
       }},
      {"ScoringService.fetchWeek",
       [] {
         const auto week = answer<ScoringAverage>(
             [](auto then) { return ScoringService(anna).fetchWeek(0, std::move(then)); });
         EXPECT_GT(week.periodStartDate.value_or(0), 0);
       }},
      {"ScoringService.fetchAggregateScoresByVehicle",
       [] {
         expectScores(answer<ScoringAggregate>([](auto then) {
           return ScoringService(anna).fetchAggregateScoresByVehicle("3001", daysAgo(7), now(),
                                                                     std::move(then));
         }));
       }},
      {"ScoringService.fetchLastNDaysAggregateScoresByVehicle",
       [] {
         expectScores(answer<ScoringAggregate>([](auto then) {
           return ScoringService(anna).fetchLastNDaysAggregateScoresByVehicle("3001", 7,
                                                                              std::move(then));
         }));
       }},
      {"ScoringService.fetchAverageScoresByVehicle",
       [] {
         expectScores(answer<ScoringAverage>([](auto then) {
           return ScoringService(anna).fetchAverageScoresByVehicle("3001", daysAgo(7), now(),
                                                                   std::move(then));
         }));
       }},
      {"ScoringService.fetchLastNDaysAverageScores",
       [] {
         const auto average = [](std::optional<std::string> vehicle) {
           return answer<ScoringAverage>([&](auto then) {
             return ScoringService(anna).fetchLastNDaysAverageScores(vehicle, 7, std::move(then));
           });
         };
         expectScores(average("3001"));
         expectScores(average(std::nullopt));
       }},
      {"LeaderboardService.optOut",
       [] {
         succeeds([](auto then) { return LeaderboardService(anna).optOut(std::move(then)); });
         EXPECT_EQ(leaderboard().isOptedIn, false);
       }},
      {"LeaderboardService.optIn",
       [] {
         succeeds([](auto then) { return LeaderboardService(anna).optIn(std::move(then)); });
         EXPECT_EQ(leaderboard().isOptedIn, true);
       }},
      {"LeaderboardService.fetch",
       [] {
         const Leaderboard board = leaderboard();
         ASSERT_TRUE(board.entries && !board.entries->empty());
         EXPECT_EQ(board.entries->front().position, 1);
       }},
      {"DiscountService.fetchDiscount",
       [] {
         const auto discount = answer<Discount>([](auto then) {
           return DiscountService(anna).fetchDiscount({DiscountService::Expansion::scores},
                                                      std::move(then));
         });
         EXPECT_GT(discount.discountRangeMax.value_or(0), 0);
       }},
      {"DiscountMetadataService.fetchDiscountMetadata",
       [] {
         const auto scheme = answer<DiscountMetadata>([](auto then) {
           return DiscountMetadataService(anna).fetchDiscountMetadata(std::move(then));
         });
         ASSERT_TRUE(scheme.scoreDiscountMap());
         EXPECT_GT(scheme.scoreDiscountMap()->size(), 1U);
       }},
      {"RewardsService.fetchToken",
       [] {
         const auto token = answer<RewardToken>(
             [](auto then) { return RewardsService(anna).fetchToken(std::move(then)); });
         EXPECT_THAT(token.token.value_or(""), testing::MatchesRegex("[^.]+.[^.]+.[^.]+"))
             << "signed";
       }},
  };
}

// The package as the sandbox has it is some 2 MB.
void expectPackage(const std::string& path) {
  EXPECT_GT(std::filesystem::file_size(path), 2'000'000U);
  std::filesystem::remove(path);
}

std::vector<Operation> ofContent() {
  return {
      {"ContentService.fetch",
       [] {
         const auto content = answer<Content>([](auto then) {
           return ContentService(anna).fetch(ContentService::Key::faqPageTitle, "de_CH",
                                             std::move(then));
         });
         EXPECT_EQ(content.body, "Häufige Fragen");
       }},
      {"ContentService.allCases<ContentService::Key>()",
       [] { EXPECT_EQ(std::size(allCases<ContentService::Key>()), 32U); }},
      {"WedgeFirmwareService.checkUpdateAvailability",
       [] {
         std::vector<bool> told;
         const auto tell = [&](bool isNewer) { told.push_back(isNewer); };
         const WedgeFirmwareService service;
         service.checkUpdateAvailability("2.2.1", tell);
         service.checkUpdateAvailability("2.2.2", tell);
         EXPECT_EQ(told, (std::vector{true, false}));
       }},
      {"WedgeFirmwareService.downloadFirmware",
       [] {
         const WedgeFirmwareService service;
         std::optional<std::string> version;
         MainQueue::main().wait(service.downloadFirmware(
             [&](std::optional<std::string> downloaded) { version = std::move(downloaded); }));
         EXPECT_EQ(version, "2.2.2");
         expectPackage(*service.firmwareLocation->filePath() + "/DFU_4417_Release___2_2_2.zip");
       }},
      {"WedgeFirmwareService.downloadPackage",
       [] {
         const auto package = answer<FirmwarePackage>([](auto then) {
           return WedgeFirmwareService().downloadPackage(nullptr, std::move(then));
         });
         EXPECT_EQ(package.version, "2.2.2");
         expectPackage(package.path);
       }},
  };
}

std::vector<Operation> allOperations() {
  std::vector<Operation> all;
  const auto add = [&](const auto& operations) {
    all.insert(all.end(), std::begin(operations), std::end(operations));
  };
  add(ofPeople());
  add(ofDriving());
  add(ofScoredDays<ScoringService>("ScoringService"));
  add(ofScoredDays<ScoringAggregateService>("ScoringAggregateService"));
  add(ofIncentives());
  add(ofContent());
  return all;
}

std::set<std::string> names(const std::vector<Operation>& operations) {
  std::set<std::string> names;
  for (const Operation& operation : operations) {
    EXPECT_TRUE(names.insert(operation.name).second) << operation.name << " is there twice";
  }
  return names;
}

// Every documented operation by its name.
std::map<std::string, OperationRow> documented() {
  std::map<std::string, OperationRow> rows;
  for (const OperationRow& row : documentedOperations()) {
    for (const std::string& name : row.names()) {
      EXPECT_TRUE(rows.emplace(name, row).second) << name << " is documented twice";
    }
  }
  return rows;
}

// Says what one of the two has and the other has not.
void expectSame(const std::set<std::string>& left, const std::set<std::string>& right) {
  std::vector<std::string> difference;
  std::ranges::set_symmetric_difference(left, right, std::back_inserter(difference));
  EXPECT_THAT(difference, SizeIs(0));
}

TEST(OperationsTest, AreDocumentedAllOfThem) {
  std::set<std::string> withDocument;
  for (const auto& [name, row] : documented()) withDocument.insert(withoutVariant(name));
  // These two send nothing and so answer no handle.
  std::set<std::string> expected = declaredOperations();
  expected.insert({"ContentService.allCases<ContentService::Key>()",
                   "WedgeFirmwareService.checkUpdateAvailability"});
  expectSame(withDocument, expected);
}

// Whether `orvane` knows a command as it is documented: "scores average --days N [--vehicle ID]".
bool isKnown(const std::string& command) {
  Words words;                    // resource and verb
  std::vector<std::string> more;  // options, and arguments that are words of their own
  std::istringstream stream(command);
  for (std::string word; stream >> word;) {
    std::erase_if(word, [](char character) { return character == '[' || character == ']'; });
    const bool isOption = word.starts_with("--");
    if (!isOption && (word[0] < 'a' || word[0] > 'z')) continue;
    (isOption || words.size() == 2 ? more : words).push_back(word);
  }
  std::string usage = "Usage: orvane ";
  for (const std::string& word : words) usage += word + " ";
  words.emplace_back("--help");
  const Ending help = orvane(words);
  const auto tells = [&](const std::string& text) {
    return help.output.find(text) != std::string::npos;
  };
  // Asked about a command that it does not know it tells of the one above.
  return help.exitCode == 0 && tells(usage) && std::ranges::all_of(more, tells);
}

TEST(OperationsTest, HaveTheirCommands) {
  std::vector<std::string> unknown;
  for (const OperationRow& row : documentedOperations()) {
    EXPECT_FALSE(row.commands.empty()) << testing::PrintToString(row.names());
    std::ranges::copy_if(row.commands, std::back_inserter(unknown), std::not_fn(isKnown));
  }
  EXPECT_THAT(unknown, SizeIs(0));
}

TEST(OperationsTest, EachDoesWhatItSaysAndAsksWhatIsDocumented) {
  const std::vector<Operation> operations = allOperations();
  const auto rows = documented();
  std::set<std::string> documentedNames;
  for (const auto& [name, row] : rows) documentedNames.insert(name);
  expectSame(names(operations), documentedNames);
  ASSERT_FALSE(HasFailure());

  SandboxProcess sandbox;
  const ScopedDeviceSettings settings(
      {.timeZone = "UTC", .documentsDirectory = sandbox.folder().path() + "/documents"});
  const Result<Runtime> runtime =
      Runtime::install({.baseURL = sandbox.baseURL(),
                        .tokens = SelfSignedTokenResolver::make(
                            {.key = bytesFromHexadecimal(sandbox.signingKey()).value_or("")}),
                        .transport = {.caFile = sandbox.caFile()},
                        .firmwareHost = sandbox.baseURL(),
                        .deviceIdentifierFile = sandbox.folder().path() + "/device"});
  ASSERT_TRUE(runtime) << runtime.error()->message();
  for (const Operation& operation : operations) {
    SCOPED_TRACE(operation.name);
    sandbox.behave();
    operation.run();
    const OperationRow& row = rows.at(operation.name);
    const auto arrivals = sandbox.arrivals();
    const bool hasAsked = std::ranges::any_of(arrivals, [&](const auto& arrival) {
      const auto blank = arrival.request.find(' ');
      return arrival.request.substr(0, blank) == row.verb &&
             row.isAt(arrival.request.substr(blank + 1)) && arrival.status < 300;
    });
    EXPECT_EQ(hasAsked, !row.verb.empty()) << testing::PrintToString(arrivals);
    EXPECT_TRUE(hasAsked || arrivals.empty()) << testing::PrintToString(arrivals);
  }
  for (const Identity& identity : {anna, daniel, nora}) runtime.value()->signOut(identity);
  EXPECT_TRUE(runtime.value()->shutdown());
}

}  // namespace
}  // namespace orvane::test
