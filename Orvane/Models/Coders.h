// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Every record's key tables, each defined beside its record, so that records can embed one another.
// The few records that no table describes declare a `decodeValue` and an `encodeValue` here
// instead.
#pragma once

#include <Orvane/Coding/Record.h>
#include <Orvane/Models/User.h>

namespace orvane {

KeyTables keysOf(RecordTag<Account>);
KeyTables keysOf(RecordTag<UserRole>);
KeyTables keysOf(RecordTag<User>);
KeyTables keysOf(RecordTag<User::SharedInformation>);
KeyTables keysOf(RecordTag<UsersByRole>);

}  // namespace orvane
