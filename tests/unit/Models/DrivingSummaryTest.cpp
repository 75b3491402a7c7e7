// SPDX-License-Identifier: Apache-2.0
// Driving summaries, the driver detection in them, and locations.
#include "tests/support/Records.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/DriverDetection.h>
#include <Orvane/Models/DrivingSummary.h>
#include <Orvane/Models/Location.h>

#include <optional>
#include <string>

namespace orvane {
namespace {

using Status = DriverDetection::Status;

TEST(DriverDetectionTest, tellsHowFarTheTrainingIs) {
  expectMirrored(R"({"status":"TRAINING","numberOfDriverTrips":3,"minimumNumberOfDriverTrips":10})",
                 DriverDetection{.status = Status::inTraining,
                                 .numberOfDriverTrips = 3,
                                 .minimumNumberOfDriverTrips = 10});
  expectMirrored("{}", DriverDetection{});
  EXPECT_EQ(wireTexts<Status>(), "TRAINING DETECTION");
  EXPECT_EQ(failure<DrivingSummary>(R"({"assessmentPeriodStartUtc":0,)"
                                    R"("driverPassengerDetectionStatus":{"status":"training"}})"),
            "dataCorrupted driverPassengerDetectionStatus.status");
}

const DrivingSummary summary{.userId = 42,
                             .maximumDiscountAvailable = 25.5,
                             .kmOfDeclaredMileage = 12000,
                             .id = 7,
                             .dateAssessmentStarted = dateFromSeconds(0x1.954fc40008312p+30),
                             .distanceDriven = 1234.5,
                             .numberOfTrips = 88,
                             .currentDiscount = 10,
                             .projectedDiscount = 15,
                             .overallScore = 81.25,
                             .driverDetection = DriverDetection{.status = Status::trained}};

TEST(DrivingSummaryTest, isReadWhole) {
  EXPECT_EQ(decode<DrivingSummary>(
                R"({"userId":42,"maximumDiscountAvailable":25.5,"kmOfDeclaredMileage":12000,"id":7,
                    "assessmentPeriodStartUtc":1700000000008,"kmOfDriving":1234.5,
                    "numberOfTrips":88,"currentDiscount":10,"projectedDiscount":15,
                    "overallScore":81.25,
                    "driverPassengerDetectionStatus":{"status":"DETECTION"}})"),
            summary);
  EXPECT_EQ(decode<DrivingSummary>(R"({"assessmentPeriodStartUtc":1500,"id":null})"),
            DrivingSummary{.dateAssessmentStarted = dateFromSeconds(1.5)});
  expectNeeds<DrivingSummary>(R"({"assessmentPeriodStartUtc":1500})", {"assessmentPeriodStartUtc"});
  EXPECT_FALSE(decode<DrivingSummary>(R"({"assessmentPeriodStartUtc":"1500"})"));
  EXPECT_FALSE(decode<DrivingSummary>(R"({"assessmentPeriodStartUtc":1,"currentDiscount":1.5})"));
}

TEST(DrivingSummaryTest, isWrittenWithoutItsDiscountAndDetection) {
  EXPECT_EQ(encode(summary),
            std::string(R"({"assessmentPeriodStartUtc":1700000000008,"id":7,"userId":42,)"
                        R"("maximumDiscountAvailable":25.5,"kmOfDeclaredMileage":12000,)"
                        R"("kmOfDriving":1234.5,"numberOfTrips":88,"projectedDiscount":15,)"
                        R"("overallScore":81.25})"));
  EXPECT_EQ(encode(DrivingSummary{.dateAssessmentStarted = dateFromSeconds(-0.0015)}),
            std::string(R"({"assessmentPeriodStartUtc":-2})"));
}

TEST(DrivingSummaryResultTest, isReadAndWrittenWhole) {
  const std::string json =
      R"({"startDate":1.5,"endDate":2.5,"secondsOfDriving":3,"secondsOfIdling":4,)"
      R"("kmOfDriving":5.5,"litresOfFuel":6.5,"numberOfTrips":7,"avgKmPerHour":8.5,)"
      R"("secondsInMotion":9})";
  const DrivingSummaryResult result{.startDate = 1.5,
                                    .endDate = 2.5,
                                    .secondsOfDriving = 3,
                                    .secondsOfIdling = 4,
                                    .kmOfDriving = 5.5,
                                    .litresOfFuel = 6.5,
                                    .numberOfTrips = 7,
                                    .avgKmPerHour = 8.5,
                                    .secondsInMotion = 9};
  expectMirrored(json, result);
  expectNeeds<DrivingSummaryResult>(
      json, {"startDate", "endDate", "secondsOfDriving", "secondsOfIdling", "kmOfDriving",
             "litresOfFuel", "numberOfTrips", "avgKmPerHour", "secondsInMotion"});
}

TEST(LocationTest, isReadAndWrittenWhole) {
  const Location location{.latitude = 47.5, .longitude = -8.25, .date = dateFromSeconds(1.5)};
  const std::string json = R"({"lat":47.5,"lng":-8.25,"utcDateTime":1500})";
  expectMirrored(json, location);
  expectNeeds<Location>(json, {"lat", "lng", "utcDateTime"});
  EXPECT_EQ(location.location(), (CLLocation{.coordinate = {47.5, -8.25},
                                             .altitude = 0,
                                             .horizontalAccuracy = 0,
                                             .verticalAccuracy = 0,
                                             .timestamp = dateFromSeconds(1.5)}));
  EXPECT_EQ(encode(Location{.date = dateFromSeconds(0.0025)}),
            std::string(R"({"lat":null,"lng":null,"utcDateTime":3})"));
  EXPECT_EQ(failure<Location>(R"({"lat":"1","lng":1,"utcDateTime":1})"), "typeMismatch lat");
  EXPECT_EQ(failure<Location>(R"({"lat":1,"lng":1,"utcDateTime":1.5})"),
            "typeMismatch utcDateTime");
}

class DrivingDeathTest : public DeathTest {};

TEST_F(DrivingDeathTest, stopsTheProcessWithoutItsDate) {
  EXPECT_DEATH((void)encode(DrivingSummary{}), "without \"assessmentPeriodStartUtc\"");
  EXPECT_DEATH((void)encode(Location{.latitude = 1, .longitude = 2}), "without \"utcDateTime\"");
  EXPECT_TRUE(encodeChecked(DrivingSummary{}).error());
  EXPECT_TRUE(encodeChecked(Location{}).error());

  for (const Location& location :
       {Location{.longitude = 2, .date = Date()}, Location{.latitude = 1, .date = Date()},
        Location{.latitude = 1, .longitude = 2}}) {
    EXPECT_DEATH((void)location.location(),
                 "Fatal error: a location lacks its coordinates or its date");
  }
}

}  // namespace
}  // namespace orvane
