// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/User/UserComposer.h>
#include <Orvane/Services/User/UserService.h>

namespace orvane {

RequestHandle UserService::fetch(std::optional<std::string> id, std::set<Expansion> expansions,
                                 Completion<User> then) const {
  UserComposer::RequestType type = UserComposer::Current{};
  if (id) type = UserComposer::Other{*std::move(id)};
  return get(*this, UserComposer(std::move(type), std::move(expansions)), std::move(then));
}

RequestHandle UserService::update(UserUpdate update, Completion<User> then) const {
  return post(*this, UserComposer(std::move(update)), std::move(then));
}

RequestHandle UserService::updateAddress(UserAddressUpdate update, Completion<User> then) const {
  return post(*this, UserAddressComposer(std::move(update)), std::move(then));
}

}  // namespace orvane
