// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/NamedDriver.h>

namespace orvane {
namespace {

constexpr KeyRow namedDriverKeys[] = {
    required<&NamedDriver::firstName>("firstName"),
    required<&NamedDriver::lastName>("lastName"),
    key<&NamedDriver::email>("email"),
    key<&NamedDriver::phone>("phone"),
    required<&NamedDriver::activated>("activated"),
    key<&NamedDriver::activatedDate>("activatedDate"),
    required<&NamedDriver::userProfileId>("userProfileId"),
    required<&NamedDriver::userId>("userId"),
};

}  // namespace

KeyTables keysOf(RecordTag<NamedDriver>) { return namedDriverKeys; }

template struct RecordCoding<NamedDriver>;
template struct RecordCoding<std::vector<NamedDriver>>;

bool NamedDriver::operator==(const NamedDriver&) const noexcept = default;

}  // namespace orvane
