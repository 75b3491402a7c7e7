// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Every record's key tables, each defined beside its record, so that records can embed one another.
// The few records that no table describes declare a `decodeValue` and an `encodeValue` here
// instead.
#pragma once

#include <Orvane/Coding/Record.h>
#include <Orvane/Models/Content.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Models/Discount.h>
#include <Orvane/Models/DrivingSummary.h>
#include <Orvane/Models/EULAStatus.h>
#include <Orvane/Models/Invitation.h>
#include <Orvane/Models/Leaderboard.h>
#include <Orvane/Models/Location.h>
#include <Orvane/Models/LogbookWrapper.h>
#include <Orvane/Models/NamedDriver.h>
#include <Orvane/Models/RewardToken.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Models/Subscription.h>
#include <Orvane/Models/Trip.h>
#include <Orvane/Models/User.h>
#include <Orvane/Models/Vehicle.h>

namespace orvane {

KeyTables keysOf(RecordTag<Account>);
KeyTables keysOf(RecordTag<UserRole>);
KeyTables keysOf(RecordTag<User>);
KeyTables keysOf(RecordTag<User::SharedInformation>);
KeyTables keysOf(RecordTag<UsersByRole>);

KeyTables keysOf(RecordTag<Device>);
KeyTables keysOf(RecordTag<Vehicle>);

bool decodeValue(json::Element element, TripScores& scores, Decoder& decoder);
void encodeValue(const TripScores& scores, json::Writer& writer);
KeyTables keysOf(RecordTag<IndividualComponentScores>);
KeyTables keysOf(RecordTag<TripScoring>);
KeyTables keysOf(RecordTag<ScoreComponent>);
KeyTables keysOf(RecordTag<ScoringComponents>);
KeyTables keysOf(RecordTag<DailyAggregate>);
KeyTables keysOf(RecordTag<ScoringAggregate>);
KeyTables keysOf(RecordTag<TripScoringComponents>);
KeyTables keysOf(RecordTag<TripScoringAverage>);
KeyTables keysOf(RecordTag<ScoringAverage>);

KeyTables keysOf(RecordTag<Event>);
bool decodeValue(json::Element element, Event& event, Decoder& decoder);
void encodeValue(const Event& event, json::Writer& writer);
bool decodeValue(json::Element element, Event::Severity& severity, Decoder& decoder);
void encodeValue(Event::Severity severity, json::Writer& writer);
bool decodeValue(json::Element element, Event::EventType& type, Decoder& decoder);
void encodeValue(const Event::EventType& type, json::Writer& writer);
KeyTables keysOf(RecordTag<Trip>);
bool decodeValue(json::Element element, Trip::Events& events, Decoder& decoder);
void encodeValue(const Trip::Events& events, json::Writer& writer);
KeyTables keysOf(RecordTag<LogbookWrapper>);
KeyTables keysOf(RecordTag<LogbookWrapper::TripWrapper>);

KeyTables keysOf(RecordTag<Location>);

KeyTables keysOf(RecordTag<DriverDetection>);
KeyTables keysOf(RecordTag<DrivingSummary>);
KeyTables keysOf(RecordTag<DrivingSummaryResult>);

KeyTables keysOf(RecordTag<Leaderboard>);
KeyTables keysOf(RecordTag<LeaderboardEntry>);

KeyTables keysOf(RecordTag<Discount>);
KeyTables keysOf(RecordTag<DiscountMetadata>);
KeyTables keysOf(RecordTag<DiscountMetadata::DiscountRange>);
KeyTables keysOf(RecordTag<DiscountMetadata::DiscountScore>);

bool decodeValue(json::Element element, RewardToken& reward, Decoder& decoder);
void encodeValue(const RewardToken& reward, json::Writer& writer);

KeyTables keysOf(RecordTag<Invitation>);
KeyTables keysOf(RecordTag<Invitation::InvitationUser>);
KeyTables keysOf(RecordTag<EULAStatus>);
KeyTables keysOf(RecordTag<Subscription>);
KeyTables keysOf(RecordTag<NamedDriver>);
KeyTables keysOf(RecordTag<Content>);

}  // namespace orvane
