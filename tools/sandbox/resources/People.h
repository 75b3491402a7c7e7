// SPDX-License-Identifier: Apache-2.0
//
// Users as other resources embed them, and the question whose data a caller may see.
#pragma once

#include "JsonWriter.h"
#include "Router.h"
#include "store/Database.h"

#include <string>
#include <string_view>

namespace orvane::sandbox {

/// The columns that the writers below read, from the first column on.
extern const std::string userColumns;

/// The members of a user without the expansions, inside an object that the caller opens and closes.
void writeUserMembers(JsonWriter& json, const Rows& user);

/// What strangers may see of a user: a whole object.
void writePublicUser(JsonWriter& json, const Rows& user);

/// The caller's own id, or that of a user of the same account. Throws a 404 or a 403.
const std::string& readableUser(Call& call, const std::string& userId);

/// The caller's own id and no other. Throws a 404 or a 403.
const std::string& ownUser(Call& call, const std::string& userId);

}  // namespace orvane::sandbox
