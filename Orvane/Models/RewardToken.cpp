// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/RewardToken.h>

namespace orvane {

bool decodeValue(json::Element element, RewardToken& reward, Decoder& decoder) {
  return decodeValue(element, reward.token.emplace(), decoder);
}

void encodeValue(const RewardToken& reward, json::Writer& writer) {
  if (!reward.token) return writer.null();
  encodeValue(*reward.token, writer);
}

template struct RecordCoding<RewardToken>;
template struct RecordCoding<std::vector<RewardToken>>;

bool RewardToken::operator==(const RewardToken&) const noexcept = default;

}  // namespace orvane
