// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Subscription.h>

namespace orvane {
namespace {

constexpr KeyRow subscriptionKeys[] = {
    key<&Subscription::startTimestamp>("startTimestamp"),
    key<&Subscription::endTimestamp>("endTimestamp"),
    key<&Subscription::telematicSubscriptionEnrollmentId>("telematicSubscriptionEnrollmentId"),
    key<&Subscription::telematicSubscriptionType>("telematicSubscriptionType"),
    key<&Subscription::subscriptionLengthMillis>("subscriptionLengthMillis"),
    key<&Subscription::trialLengthMillis>("trialLengthMillis"),
    key<&Subscription::trialEndTimestamp>("trialEndTimestamp"),
};

}  // namespace

KeyTables keysOf(RecordTag<Subscription>) { return subscriptionKeys; }

template struct RecordCoding<Subscription>;
template struct RecordCoding<std::vector<Subscription>>;

bool Subscription::operator==(const Subscription&) const noexcept = default;

}  // namespace orvane
