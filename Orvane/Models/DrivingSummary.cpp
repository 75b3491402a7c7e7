// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/DrivingSummary.h>

namespace orvane {
namespace {

// What is read, and what is written: not the same, on purpose.
constexpr KeyRow decodingKeys[] = {
    indispensable<&DrivingSummary::dateAssessmentStarted, Milliseconds>("assessmentPeriodStartUtc"),
    key<&DrivingSummary::distanceDriven>("kmOfDriving"),
    key<&DrivingSummary::numberOfTrips>("numberOfTrips"),
    key<&DrivingSummary::currentDiscount>("currentDiscount"),
    key<&DrivingSummary::projectedDiscount>("projectedDiscount"),
    key<&DrivingSummary::overallScore>("overallScore"),
    key<&DrivingSummary::driverDetection>("driverPassengerDetectionStatus"),
    key<&DrivingSummary::userId>("userId"),
    key<&DrivingSummary::maximumDiscountAvailable>("maximumDiscountAvailable"),
    key<&DrivingSummary::kmOfDeclaredMileage>("kmOfDeclaredMileage"),
    key<&DrivingSummary::id>("id"),
};

constexpr KeyRow encodingKeys[] = {
    indispensable<&DrivingSummary::dateAssessmentStarted, Milliseconds>("assessmentPeriodStartUtc"),
    key<&DrivingSummary::id>("id"),
    key<&DrivingSummary::userId>("userId"),
    key<&DrivingSummary::maximumDiscountAvailable>("maximumDiscountAvailable"),
    key<&DrivingSummary::kmOfDeclaredMileage>("kmOfDeclaredMileage"),
    key<&DrivingSummary::distanceDriven>("kmOfDriving"),
    key<&DrivingSummary::numberOfTrips>("numberOfTrips"),
    key<&DrivingSummary::projectedDiscount>("projectedDiscount"),
    key<&DrivingSummary::overallScore>("overallScore"),
};

constexpr KeyRow resultKeys[] = {
    required<&DrivingSummaryResult::startDate>("startDate"),
    required<&DrivingSummaryResult::endDate>("endDate"),
    required<&DrivingSummaryResult::secondsOfDriving>("secondsOfDriving"),
    required<&DrivingSummaryResult::secondsOfIdling>("secondsOfIdling"),
    required<&DrivingSummaryResult::kmOfDriving>("kmOfDriving"),
    required<&DrivingSummaryResult::litresOfFuel>("litresOfFuel"),
    required<&DrivingSummaryResult::numberOfTrips>("numberOfTrips"),
    required<&DrivingSummaryResult::avgKmPerHour>("avgKmPerHour"),
    required<&DrivingSummaryResult::secondsInMotion>("secondsInMotion"),
};

}  // namespace

KeyTables keysOf(RecordTag<DrivingSummary>) { return {decodingKeys, encodingKeys}; }
KeyTables keysOf(RecordTag<DrivingSummaryResult>) { return resultKeys; }

template struct RecordCoding<DrivingSummary>;
template struct RecordCoding<std::vector<DrivingSummary>>;
template struct RecordCoding<DrivingSummaryResult>;
template struct RecordCoding<std::vector<DrivingSummaryResult>>;

bool DrivingSummary::operator==(const DrivingSummary&) const noexcept = default;
bool DrivingSummaryResult::operator==(const DrivingSummaryResult&) const noexcept = default;

}  // namespace orvane
