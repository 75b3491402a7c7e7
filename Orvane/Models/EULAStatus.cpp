// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/EULAStatus.h>

namespace orvane {
namespace {

constexpr KeyRow eulaStatusKeys[] = {
    key<&EULAStatus::acceptedTerms>("acceptedTerms"),
};

}  // namespace

KeyTables keysOf(RecordTag<EULAStatus>) { return eulaStatusKeys; }

template struct RecordCoding<EULAStatus>;
template struct RecordCoding<std::vector<EULAStatus>>;

bool EULAStatus::operator==(const EULAStatus&) const noexcept = default;

}  // namespace orvane
