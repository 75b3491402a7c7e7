// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/LogbookWrapper.h>

namespace orvane {
namespace {

constexpr KeyRow tripWrapperKeys[] = {
    key<&LogbookWrapper::TripWrapper::trip>("trip"),
};
constexpr KeyRow logbookWrapperKeys[] = {
    key<&LogbookWrapper::tripWrappers>("items"),
};

}  // namespace

KeyTables keysOf(RecordTag<LogbookWrapper::TripWrapper>) { return tripWrapperKeys; }
KeyTables keysOf(RecordTag<LogbookWrapper>) { return logbookWrapperKeys; }

template struct RecordCoding<LogbookWrapper::TripWrapper>;
template struct RecordCoding<std::vector<LogbookWrapper::TripWrapper>>;
template struct RecordCoding<LogbookWrapper>;
template struct RecordCoding<std::vector<LogbookWrapper>>;

bool LogbookWrapper::TripWrapper::operator==(const LogbookWrapper::TripWrapper&) const noexcept =
    default;
bool LogbookWrapper::operator==(const LogbookWrapper&) const noexcept = default;

}  // namespace orvane
