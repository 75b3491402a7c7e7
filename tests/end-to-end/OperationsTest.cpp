// SPDX-License-Identifier: Apache-2.0
// Every operation of every service, once, through the Runtime against a backend in another process.
#include "CommandLine.h"
#include "OperationsTable.h"
#include "SandboxProcess.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Orvane.h>
#include <Orvane/Runtime/Runtime.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>
#include <Orvane/Testing/Device.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane::test {
namespace {

using testing::Contains;
using testing::Not;
using testing::SizeIs;

const Identity anna{"sandbox-api-key", "anna.keller"};
const Identity daniel{"sandbox-api-key", "daniel.meier"};
const Identity nora{"sandbox-api-key", "nora.frei"};

// The value of an operation that must succeed.
template <class T>
T ask(const Operation<T>& operation) {
  Result<T> result = operation.wait();
  EXPECT_TRUE(result) << result.errorOr(NetworkError::unknown).description();
  return result ? *std::move(result) : T{};
}

// The status with which the backend refuses an operation.
template <class T>
std::int64_t refusal(const Operation<T>& operation) {
  const Result<T> result = operation.wait();
  return result.errorOr(NetworkError::unknown).template as<NetworkError>()->statusCode();
}

User userOf(const Identity& identity) { return ask(UserService(identity).fetch()); }

std::vector<std::string> vehicleInvitations(const char* states) {
  std::vector<std::string> ids;
  for (const Invitation& invitation : ask(InvitationService(anna).fetchVehicleInvites(states))) {
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

using Trips = std::vector<Trip>;

Trips latestTrips(std::int64_t count) {
  return ask(TripService(anna).fetch(std::nullopt, {TripService::Filter::cursor(count, 0)}));
}

double metres(const CLLocationCoordinate2D& from, const CLLocationCoordinate2D& to) {
  constexpr double degree = 111'195;
  return degree * std::hypot(from.latitude - to.latitude,
                             (from.longitude - to.longitude) * std::cos(from.latitude / 57.3));
}

// A trip is as long as its route, and its events lie on it.
void expectRoute(const Trip& trip) {
  SCOPED_TRACE(trip.id.value_or(""));
  std::vector<CLLocationCoordinate2D> line;
  for (const auto& polyline : {trip.startPolyline, trip.polyline}) {
    if (!polyline) continue;
    const auto part = polyline->decode();
    line.insert(line.end(), part.begin(), part.end());
  }
  ASSERT_GT(line.size(), 20U);
  double length = 0;
  for (std::size_t i = 1; i < line.size(); ++i) length += metres(line[i - 1], line[i]);
  EXPECT_NEAR(length, trip.distance.value_or(0), 0.05 * length + 300);
  for (const auto& [type, events] : trip.events.value_or(Trip::Events{})) {
    for (const Event& event : events) {
      const CLLocationCoordinate2D place{*event.latitude, *event.longitude};
      const auto isNear = [&](const auto& point) { return metres(point, place) < 60; };
      EXPECT_TRUE(std::ranges::any_of(line, isNear));
      EXPECT_GE(event.date, trip.dateStarted);
    }
  }
}

std::string latestTrip() { return latestTrips(1).at(0).id.value_or(""); }

Date now() { return DeviceClock::now(); }
Date daysAgo(int days) { return now() - std::chrono::hours(24 * days); }

Leaderboard leaderboard() {
  const std::chrono::year_month_day today(
      std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
  const DateComponents day{static_cast<int>(today.year()), static_cast<unsigned>(today.month()),
                           static_cast<unsigned>(today.day())};
  return ask(LeaderboardService(anna).fetch(day));
}

// A period of scores that people with a history have.
template <class Scores>
void expectScores(const Scores& scores) {
  EXPECT_GT(scores.averageScore.value_or(0), 0);
  EXPECT_GE(scores.highestScore.value_or(0), scores.averageScore.value_or(0));
}

// The package as the sandbox has it is some 2 MB.
void expectPackage(const std::string& path) {
  EXPECT_GT(std::filesystem::file_size(path), 2'000'000U);
  std::filesystem::remove(path);
}

// Operations by name, each called once, with a look at what it answered or did.
using Operations = std::vector<std::pair<std::string, std::function<void()>>>;

void addPeople(Operations& all) {
  all.emplace_back("UserService.fetch", [] {
    const User user = userOf(anna);
    EXPECT_EQ(user.id, "1001");
    EXPECT_EQ(user.firstName, "Anna");
  });
  all.emplace_back("UserService.update", [] {
    // Texts that a form could stumble over.
    User expected = userOf(anna);
    expected.displayName = "Zoë \"Z\" – 测试";
    expected.email = "zoe+orvane@example.org";
    expected.selfDescription = "first line\r\nsecond line";
    expected.dateOfBirth = DateComponents{1990, 5, 17};
    expected.gender = User::Gender::custom("non-binary");
    const UserUpdate update{.displayName = expected.displayName,
                            .gender = expected.gender,
                            .dateOfBirth = expected.dateOfBirth,
                            .email = expected.email,
                            .selfDescription = expected.selfDescription};
    EXPECT_EQ(ask(UserService(anna).update(update)), expected);
    EXPECT_EQ(userOf(anna), expected);
  });
  all.emplace_back("UserService.updateAddress", [] {
    const UserAddressUpdate update{.city = "Zürich", .formattedAddress = "Langstrasse 1\nZürich"};
    const User user = ask(UserService(anna).updateAddress(update));
    EXPECT_EQ(user.city, update.city);
    EXPECT_EQ(user.formattedAddress, update.formattedAddress);
  });
  all.emplace_back("InvitationService.fetchVehicleInvites", [] {
    EXPECT_EQ(vehicleInvitations("DECLINED"), std::vector<std::string>{"9003"});
  });
  all.emplace_back("InvitationService.fetchAccountInvites", [] {
    const auto invitations = ask(InvitationService(anna).fetchAccountInvites(std::nullopt));
    ASSERT_THAT(invitations, SizeIs(1));
    EXPECT_EQ(invitations[0].invitationId, "9008");
    EXPECT_EQ(invitations[0].account->accountId, "2003");
  });
  all.emplace_back("InvitationService.sendVehicleInvitation", [] {
    NewInvitation draft = toNora();
    draft.vehicleIDs = {"3006"};
    const Invitation sent = ask(InvitationService(anna).sendVehicleInvitation(draft));
    EXPECT_EQ(sent.invitationId, "9011");
    EXPECT_EQ(sent.status, Invitation::Status::pending);
    EXPECT_EQ(sent.toUser->userId, "1007");
    EXPECT_EQ(sent.vehicle->vehicleId, "3006");
  });
  all.emplace_back("InvitationService.sendAccountInvitation", [] {
    const auto sent = ask(InvitationService(anna).sendAccountInvitation(toNora()));
    ASSERT_THAT(sent, SizeIs(1));
    EXPECT_EQ(sent[0].account->accountId, "2001");
  });
  all.emplace_back("InvitationService.respondToInvitation", [] {
    const InvitationReply reply{
        .toUserId = "1007", .invitationId = "9011", .response = Invitation::Response::accept};
    ask(InvitationService(nora).respondToInvitation(reply));
    EXPECT_THAT(vehicleInvitations("ACCEPTED"), Contains("9011"));
  });
  all.emplace_back("InvitationService.cancelVehicleInvitation", [] {
    ask(InvitationService(anna).cancelVehicleInvitation("1001", "9001"));
    EXPECT_THAT(vehicleInvitations("PENDING"), Not(Contains("9001")));
  });
  all.emplace_back("InvitationService.removeGuestDriverFromVehicle", [] {
    const auto remove = InvitationService(anna).removeGuestDriverFromVehicle("1007", "3006");
    ask(remove);
    EXPECT_EQ(refusal(remove), 404);
  });
  all.emplace_back("InvitationService.removeGuestDriverFromAccount", [] {
    const auto remove = InvitationService(daniel).removeGuestDriverFromAccount("1106", "2002");
    ask(remove);
    EXPECT_EQ(refusal(remove), 404);
  });
  all.emplace_back("ActivationService.activate", [] {
    ask(ActivationService(nora).activate("ACT-1007", "424242", "nora@example.com"));
    const User user = userOf(nora);
    EXPECT_EQ(user.activated, true);
    EXPECT_EQ(user.displayName, "nora@example.com");
  });
  all.emplace_back("EULAService.acceptTerms", [] {
    ask(EULAService(nora).acceptTerms());
    EXPECT_EQ(userOf(nora).acceptedTerms, true);
  });
  all.emplace_back("DeviceService.fetch", [] {
    const Device device = ask(DeviceService(nora).fetch());
    EXPECT_TRUE(device.identifier);
    EXPECT_EQ(device.dataCollectionIsActive, true) << "since the activation";
  });
  all.emplace_back("DeviceService.deactivate", [] {
    EXPECT_EQ(ask(DeviceService(nora).deactivate()).dataCollectionIsActive, false);
  });
  all.emplace_back("DeviceService.activate", [] {
    EXPECT_EQ(ask(DeviceService(nora).activate()).dataCollectionIsActive, true);
  });
  all.emplace_back("PushNotificationService.setToken", [] {
    const Device device = ask(PushNotificationService(nora).setToken("abc 1+2"));
    EXPECT_EQ(device.pushNotificationToken, "abc 1+2");
    EXPECT_EQ(device.pushNotificationsAreEnabled, true);
  });
  all.emplace_back("SubscriptionService.fetchContractDates", [] {
    const auto subscriptions = ask(SubscriptionService(anna).fetchContractDates());
    ASSERT_THAT(subscriptions, SizeIs(5));
    EXPECT_EQ(subscriptions[4].telematicSubscriptionType, Subscription::SubscriptionType::aFNOL);
  });
  all.emplace_back("NamedDriverService.fetch", [] {
    const auto drivers = ask(NamedDriverService(anna).fetch());
    ASSERT_THAT(drivers, SizeIs(3));
    EXPECT_EQ(drivers[2].firstName, "Otto");
  });
  all.emplace_back("NamedDriverService.updateNamedDriver", [] {
    const NamedDriver driver =
        ask(NamedDriverService(anna).updateNamedDriver(1201, "otto@example.com", ""));
    EXPECT_EQ(driver.userId, 1201);
    EXPECT_EQ(driver.email, "otto@example.com");
    EXPECT_FALSE(driver.phone);
  });
}

void addDriving(Operations& all) {
  all.emplace_back("TripService.fetch (a user's)", [] {
    EXPECT_THAT(latestTrips(3), SizeIs(3));
    using enum TripService::Expansion;
    const Trips trips = ask(TripService(anna).fetch(std::nullopt, {}, {geometry, events}));
    EXPECT_GT(trips.size(), 3U);
    for (const Trip& trip : trips) expectRoute(trip);
  });
  all.emplace_back("TripService.fetch (one)", [] {
    const std::string id = latestTrip();
    EXPECT_EQ(ask(TripService(anna).fetch(id)).id, id);
  });
  all.emplace_back("TripService.fetchAll", [] {
    const std::set page{TripService::Filter::cursor(2, 1)};
    EXPECT_THAT(ask(TripService(anna).fetchAll(page)), SizeIs(2));
  });
  all.emplace_back("TripService.fetchAllChecked", [] {
    EXPECT_THAT(ask(TripService(nora).fetchAllChecked()), SizeIs(0))
        << "who never drove has an empty logbook";
  });
  all.emplace_back("TripService.fetchPages", [] {
    const Trips paged = ask(TripService(anna).fetchPages({.pageSize = 3}));
    EXPECT_GT(paged.size(), 3U);
    EXPECT_EQ(paged, ask(TripService(anna).fetchAll()));
  });
  all.emplace_back("TripService.update", [] {
    const std::string id = latestTrip();
    const Trip trip = ask(TripService(anna).update(id, std::nullopt, Trip::Purpose::business));
    EXPECT_EQ(trip.id, id);
    EXPECT_EQ(trip.purpose, Trip::Purpose::business);
  });
  all.emplace_back("TripService.fetchTripsByVehicle", [] {
    const Trips trips =
        ask(TripService(anna).fetchTripsByVehicle(TripsByVehicle{.startDate = "2000-01-01",
                                                                 .endDate = "2999-12-31",
                                                                 .vehicleId = "3001",
                                                                 .vehicleTripsLimit = 2,
                                                                 .userId = "1001"}));
    ASSERT_THAT(trips, SizeIs(2));
    EXPECT_EQ(trips[0].vehicleId, "3001");
  });
  all.emplace_back("LocationService.fetchLastKnownLocation", [] {
    const Location location = ask(LocationService(anna).fetchLastKnownLocation());
    EXPECT_NEAR(location.latitude.value_or(0), 47.5, 1);
    EXPECT_GT(location.date.value_or(Date()), daysAgo(15));
  });
  all.emplace_back("VehicleService.getAllVehicles", [] {
    EXPECT_EQ(ask(VehicleService(anna).getAllVehicles()),
              (std::vector<Vehicle>{{.vehicleId = "3001"}, {.vehicleId = "3006"}}));
  });
  all.emplace_back("VehicleService.getVehicleFor", [] {
    EXPECT_EQ(ask(VehicleService(anna).getVehicleFor("3001", {}, "BS 30461")).model, "Octavia");
  });
  all.emplace_back("DrivingSummaryService.fetch", [] {
    const std::set detection{DrivingSummaryService::Expansion::driverDetection};
    const DrivingSummary summary = ask(DrivingSummaryService(anna).fetch({}, detection));
    EXPECT_GT(summary.distanceDriven.value_or(0), 0);
    EXPECT_TRUE(summary.driverDetection);
  });
  all.emplace_back("DrivingSummaryService.fetchList", [] {
    EXPECT_GT(ask(DrivingSummaryService(anna).fetchList({}, "DAY")).size(), 1U);
  });
  all.emplace_back("DrivingAlertService.registerAlertSetting", [] {
    const DrivingAlertService alerts(anna);
    const auto setting = [](const char* driver) {
      return DrivingAlertType::braking(driver, DrivingEventSeverity::medium);
    };
    ask(alerts.registerAlertSetting(setting("1001")));
    EXPECT_EQ(refusal(alerts.registerAlertSetting(setting("nobody"))), 404);
  });
}

// The operations that score days are those of two services.
template <class Service>
void addScoredDays(const std::string& service, Operations& all) {
  using Period = Operation<ScoringAggregate> (Service::*)() const;
  const std::pair<const char*, Period> periods[] = {
      {"last7Days", &Service::last7Days},   {"lastWeek", &Service::lastWeek},
      {"last30Days", &Service::last30Days}, {"lastMonth", &Service::lastMonth},
      {"last90Days", &Service::last90Days}, {"lastYear", &Service::lastYear},
  };
  for (const auto& [name, period] : periods) {
    all.emplace_back(service + "." + name,
                     [period = period] { expectScores(ask((Service(anna).*period)())); });
  }
  all.emplace_back(service + ".dateRange",
                   [] { expectScores(ask(Service(anna).dateRange(daysAgo(7), now()))); });
  all.emplace_back(service + ".today", [] {
    const ScoringAggregate scores = ask(Service(anna).today());
    ASSERT_TRUE(scores.tripScoringDailyAggregate);
    EXPECT_LE(scores.tripScoringDailyAggregate->size(), 1U);
  });
}

void addIncentives(Operations& all) {
  using Scores = ScoringService;
  all.emplace_back("ScoringService.custom",
                   [] { expectScores(ask(Scores(anna).custom(daysAgo(7), now()))); });
  all.emplace_back("ScoringService.fetchWeek", [] {
    EXPECT_GT(ask(Scores(anna).fetchWeek(0U)).periodStartDate.value_or(0), 0);
  });
  all.emplace_back("ScoringService.fetchAggregateScoresByVehicle", [] {
    expectScores(ask(Scores(anna).fetchAggregateScoresByVehicle("3001", daysAgo(7), now())));
  });
  all.emplace_back("ScoringService.fetchLastNDaysAggregateScoresByVehicle", [] {
    expectScores(ask(Scores(anna).fetchLastNDaysAggregateScoresByVehicle("3001", 7U)));
  });
  all.emplace_back("ScoringService.fetchAverageScoresByVehicle", [] {
    expectScores(ask(Scores(anna).fetchAverageScoresByVehicle("3001", daysAgo(7), now())));
  });
  all.emplace_back("ScoringService.fetchLastNDaysAverageScores", [] {
    expectScores(ask(Scores(anna).fetchLastNDaysAverageScores("3001", 7U)));
    expectScores(ask(Scores(anna).fetchLastNDaysAverageScores(std::nullopt, 7U)));
  });
  all.emplace_back("LeaderboardService.optOut", [] {
    ask(LeaderboardService(anna).optOut());
    EXPECT_EQ(leaderboard().isOptedIn, false);
  });
  all.emplace_back("LeaderboardService.optIn", [] {
    ask(LeaderboardService(anna).optIn());
    EXPECT_EQ(leaderboard().isOptedIn, true);
  });
  all.emplace_back("LeaderboardService.fetch", [] {
    const Leaderboard board = leaderboard();
    ASSERT_TRUE(board.entries && !board.entries->empty());
    EXPECT_EQ(board.entries->front().position, 1);
  });
  all.emplace_back("DiscountService.fetchDiscount", [] {
    const std::set scores{DiscountService::Expansion::scores};
    EXPECT_GT(ask(DiscountService(anna).fetchDiscount(scores)).discountRangeMax.value_or(0), 0);
  });
  all.emplace_back("DiscountMetadataService.fetchDiscountMetadata", [] {
    const auto scheme = ask(DiscountMetadataService(anna).fetchDiscountMetadata());
    ASSERT_TRUE(scheme.scoreDiscountMap());
    EXPECT_GT(scheme.scoreDiscountMap()->size(), 1U);
  });
  all.emplace_back("RewardsService.fetchToken", [] {
    const RewardToken token = ask(RewardsService(anna).fetchToken());
    EXPECT_THAT(token.token.value_or(""), testing::MatchesRegex("[^.]+.[^.]+.[^.]+")) << "signed";
  });
}

void addContent(Operations& all) {
  all.emplace_back("ContentService.fetch", [] {
    constexpr auto title = ContentService::Key::faqPageTitle;
    EXPECT_EQ(ask(ContentService(anna).fetch(title, "de_CH")).body, "Häufige Fragen");
  });
  all.emplace_back("ContentService.allCases<ContentService::Key>()",
                   [] { EXPECT_EQ(std::size(allCases<ContentService::Key>()), 32U); });
  all.emplace_back("WedgeFirmwareService.checkUpdateAvailability", [] {
    std::vector<bool> told;
    const auto tell = [&](bool isNewer) { told.push_back(isNewer); };
    const WedgeFirmwareService service;
    service.checkUpdateAvailability("2.2.1", tell);
    service.checkUpdateAvailability("2.2.2", tell);
    EXPECT_EQ(told, (std::vector{true, false}));
  });
  all.emplace_back("WedgeFirmwareService.downloadFirmware", [] {
    const WedgeFirmwareService service;
    EXPECT_EQ(ask(service.downloadFirmware()), "2.2.2");
    expectPackage(*service.firmwareLocation->filePath() + "/DFU_4417_Release___2_2_2.zip");
  });
  all.emplace_back("WedgeFirmwareService.downloadPackage", [] {
    const FirmwarePackage package = ask(WedgeFirmwareService().downloadPackage());
    EXPECT_EQ(package.version, "2.2.2");
    expectPackage(package.path);
  });
}

Operations allOperations() {
  Operations all;
  addPeople(all);
  addDriving(all);
  addScoredDays<ScoringService>("ScoringService", all);
  addScoredDays<ScoringAggregateService>("ScoringAggregateService", all);
  addIncentives(all);
  addContent(all);
  return all;
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
  Words words;  // resource and verb
  Words more;   // options, and arguments that are words of their own
  for (std::string word : wordsOf(command)) {
    std::erase_if(word, [](char character) { return character == '[' || character == ']'; });
    const bool isOption = word.starts_with("--");
    if (!isOption && (word[0] < 'a' || word[0] > 'z')) continue;
    (isOption || words.size() == 2 ? more : words).push_back(word);
  }
  std::string line;
  for (const std::string& word : words) line += word + " ";
  const Ending help = orvane(line + "--help");
  const auto tells = [&](const std::string& text) {
    return help.output.find(text) != std::string::npos;
  };
  // Asked about a command that it does not know it tells of the one above.
  return help.exitCode == 0 && tells("Usage: orvane " + line) && std::ranges::all_of(more, tells);
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
  const Operations operations = allOperations();
  const auto rows = documented();
  std::set<std::string> names;
  for (const auto& [name, run] : operations) {
    EXPECT_TRUE(names.insert(name).second) << name << " is there twice";
  }
  std::set<std::string> documentedNames;
  for (const auto& [name, row] : rows) documentedNames.insert(name);
  expectSame(names, documentedNames);
  ASSERT_FALSE(HasFailure());

  SandboxProcess sandbox;
  const ScopedDeviceSettings settings(
      {.timeZone = "UTC", .documentsDirectory = sandbox.folder() / "documents"});
  const Result<Runtime> runtime =
      Runtime::install({.baseURL = sandbox.baseURL(),
                        .tokens = SelfSignedTokenResolver::make(
                            {.key = bytesFromHexadecimal(sandbox.signingKey()).value_or("")}),
                        .transport = {.caFile = sandbox.caFile()},
                        .firmwareHost = sandbox.baseURL(),
                        .deviceIdentifierFile = sandbox.folder() / "device"});
  ASSERT_TRUE(runtime) << runtime.error()->message();
  for (const auto& [name, run] : operations) {
    SCOPED_TRACE(name);
    sandbox.behave();
    run();
    const OperationRow& row = rows.at(name);
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
