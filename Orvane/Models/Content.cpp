// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Content.h>

namespace orvane {
namespace {

constexpr KeyRow contentKeys[] = {
    key<&Content::body>("body"),
};

}  // namespace

KeyTables keysOf(RecordTag<Content>) { return contentKeys; }

template struct RecordCoding<Content>;
template struct RecordCoding<std::vector<Content>>;

bool Content::operator==(const Content&) const noexcept = default;

}  // namespace orvane
