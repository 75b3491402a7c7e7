// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Scoring.h>

namespace orvane {
namespace {

constexpr std::string_view overallKey = "overall";

// Everything under "scores" is a score; the overall one has a member of its own.
bool decodeScores(json::Element element, void* record, Decoder& decoder) {
  auto& scores = *static_cast<TripScores*>(record);
  scores.overall.reset();
  scores.subScores.emplace();
  return decodeEntries(element, decoder, [&](std::string_view key, json::Element value) {
    auto& score = key == overallKey ? scores.overall
                                    : (*scores.subScores)[TripScores::SubScore::fromWireText(key)];
    return decodeValue(value, score, decoder);
  });
}

constexpr KeyRow tripScoresKeys[] = {
    KeyRow{"scores", /*isRequired=*/true, decodeScores, /*encode=*/nullptr},
};

constexpr KeyRow individualComponentScoresKeys[] = {
    key<&IndividualComponentScores::component>("component"),
    key<&IndividualComponentScores::componentScore>("componentScore"),
};

constexpr KeyRow tripScoringKeys[] = {
    key<&TripScoring::scoreAlgorithmProvider>("scoreAlgorithmProvider"),
    key<&TripScoring::scoreUnit>("scoreUnit"),
    key<&TripScoring::overallScore>("overallScore"),
    key<&TripScoring::individualComponentScores>("individualComponentScores"),
};

constexpr KeyRow scoreComponentKeys[] = {
    key<&ScoreComponent::score>("score"),
    key<&ScoreComponent::averageScore>("averageScore"),
    key<&ScoreComponent::trackingType>("trackingType"),
};

constexpr KeyRow scoringComponentsKeys[] = {
    key<&ScoringComponents::harshAcceleration>("harshAcceleration"),
    key<&ScoringComponents::harshBraking>("harshBraking"),
    key<&ScoringComponents::harshCornering>("harshCornering"),
    key<&ScoringComponents::overSpeeding>("overSpeeding"),
    key<&ScoringComponents::speeding>("speeding"),
    key<&ScoringComponents::distractedDriving>("distractedDriving"),
    key<&ScoringComponents::mileage>("mileage"),
    key<&ScoringComponents::payd>("payd"),
    key<&ScoringComponents::abc_subscore>("abc_subscore"),
    key<&ScoringComponents::speed_subscore>("speed_subscore"),
    key<&ScoringComponents::usage_subscore>("usage_subscore"),
    key<&ScoringComponents::distracted_driving>("distracted_driving"),
};

constexpr KeyRow dailyAggregateKeys[] = {
    key<&DailyAggregate::score>("score"),
    key<&DailyAggregate::averageScore>("averageScore"),
    key<&DailyAggregate::date>("date"),
    key<&DailyAggregate::trackingType>("trackingType"),
    key<&DailyAggregate::secondsOfDriving>("secondsOfDriving"),
    key<&DailyAggregate::componentScores>("componentScores"),
    key<&DailyAggregate::scoreType>("scoreType"),
};

constexpr KeyRow scoringAggregateKeys[] = {
    key<&ScoringAggregate::highestScore>("highestScore"),
    key<&ScoringAggregate::averageScore>("averageScore"),
    key<&ScoringAggregate::tripScoringDailyAggregate>("tripScoringDailyAggregate"),
};

constexpr KeyRow tripScoringComponentsKeys[] = {
    key<&TripScoringComponents::harshAcceleration>("harsh.acceleration"),
    key<&TripScoringComponents::harshBraking>("harsh.braking"),
    key<&TripScoringComponents::harshCornering>("harsh.cornering"),
    key<&TripScoringComponents::overSpeeding>("over.speeding"),
    key<&TripScoringComponents::speeding>("speeding"),
    key<&TripScoringComponents::distractedDriving>("distracted.driving"),
    key<&TripScoringComponents::mileage>("mileage"),
    key<&TripScoringComponents::payd>("payd"),
    key<&TripScoringComponents::abc_subscore>("abc_subscore"),
    key<&TripScoringComponents::speed_subscore>("speed_subscore"),
    key<&TripScoringComponents::usage_subscore>("usage_subscore"),
    key<&TripScoringComponents::distracted_driving>("distracted_driving"),
};

constexpr KeyRow tripScoringAverageKeys[] = {
    required<&TripScoringAverage::date>("date"),
    required<&TripScoringAverage::trackingType>("trackingType"),
    required<&TripScoringAverage::componentScores>("componentScores"),
};

constexpr KeyRow scoringAverageKeys[] = {
    key<&ScoringAverage::highestScore>("highestScore"),
    key<&ScoringAverage::lowestScore>("lowestScore"),
    key<&ScoringAverage::periodStartDate>("periodStartDate"),
    key<&ScoringAverage::periodEndDate>("periodEndDate"),
    key<&ScoringAverage::averageScore>("averageScore"),
    key<&ScoringAverage::tripScoringAverage>("tripScoringAverage"),
};

}  // namespace

TripScores::SubScore TripScores::SubScore::fromWireText(std::string_view text) {
  if (const auto known = orvane::fromWireText<KnownSubScore>(text)) return *known;
  return OtherSubScore{std::string(text)};
}

std::string_view TripScores::SubScore::wireText() const noexcept {
  if (const auto* known = as<KnownSubScore>()) return orvane::wireText(*known);
  return as<OtherSubScore>()->key;
}

bool decodeValue(json::Element element, TripScores& scores, Decoder& decoder) {
  return decodeObject(element, &scores, tripScoresKeys, decoder);
}

// Flat, and so not what is read: "scores" is not written, and an "overall" among the sub-scores
// gives way to the real one, even where that is absent.
void encodeValue(const TripScores& scores, json::Writer& writer) {
  if (!scores.subScores) return writer.null();
  std::map<std::string_view, double> flat;
  for (const auto& [subScore, score] : *scores.subScores) {
    if (score) {
      flat[subScore.wireText()] = *score;
    } else {
      flat.erase(subScore.wireText());
    }
  }
  if (scores.overall) {
    flat[overallKey] = *scores.overall;
  } else {
    flat.erase(overallKey);
  }
  encodeValue(flat, writer);
}

KeyTables keysOf(RecordTag<IndividualComponentScores>) { return individualComponentScoresKeys; }
KeyTables keysOf(RecordTag<TripScoring>) { return tripScoringKeys; }
KeyTables keysOf(RecordTag<ScoreComponent>) { return scoreComponentKeys; }
KeyTables keysOf(RecordTag<ScoringComponents>) { return scoringComponentsKeys; }
KeyTables keysOf(RecordTag<DailyAggregate>) { return dailyAggregateKeys; }
KeyTables keysOf(RecordTag<ScoringAggregate>) { return scoringAggregateKeys; }
KeyTables keysOf(RecordTag<TripScoringComponents>) { return tripScoringComponentsKeys; }
KeyTables keysOf(RecordTag<TripScoringAverage>) { return tripScoringAverageKeys; }
KeyTables keysOf(RecordTag<ScoringAverage>) { return scoringAverageKeys; }

template struct RecordCoding<TripScores>;
template struct RecordCoding<std::vector<TripScores>>;
template struct RecordCoding<IndividualComponentScores>;
template struct RecordCoding<std::vector<IndividualComponentScores>>;
template struct RecordCoding<TripScoring>;
template struct RecordCoding<std::vector<TripScoring>>;
template struct RecordCoding<ScoreComponent>;
template struct RecordCoding<std::vector<ScoreComponent>>;
template struct RecordCoding<ScoringComponents>;
template struct RecordCoding<std::vector<ScoringComponents>>;
template struct RecordCoding<DailyAggregate>;
template struct RecordCoding<std::vector<DailyAggregate>>;
template struct RecordCoding<ScoringAggregate>;
template struct RecordCoding<std::vector<ScoringAggregate>>;
template struct RecordCoding<TripScoringComponents>;
template struct RecordCoding<std::vector<TripScoringComponents>>;
template struct RecordCoding<TripScoringAverage>;
template struct RecordCoding<std::vector<TripScoringAverage>>;
template struct RecordCoding<ScoringAverage>;
template struct RecordCoding<std::vector<ScoringAverage>>;

bool TripScores::OtherSubScore::operator==(const TripScores::OtherSubScore&) const noexcept =
    default;
bool TripScores::operator==(const TripScores&) const noexcept = default;
bool TripScoring::operator==(const TripScoring&) const noexcept = default;
bool ScoreComponent::operator==(const ScoreComponent&) const noexcept = default;
bool ScoringComponents::operator==(const ScoringComponents&) const noexcept = default;
bool DailyAggregate::operator==(const DailyAggregate&) const noexcept = default;
bool ScoringAggregate::operator==(const ScoringAggregate&) const noexcept = default;
bool TripScoringComponents::operator==(const TripScoringComponents&) const noexcept = default;
bool TripScoringAverage::operator==(const TripScoringAverage&) const noexcept = default;
bool ScoringAverage::operator==(const ScoringAverage&) const noexcept = default;

}  // namespace orvane
