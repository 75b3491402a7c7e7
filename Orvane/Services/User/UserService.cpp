// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/User/UserComposer.h>
#include <Orvane/Services/User/UserService.h>

namespace orvane {

Operation<User> UserService::fetch(std::optional<std::string> id,
                                   SetOf<Expansion> expansions) const {
  UserComposer::RequestType type = UserComposer::Current{};
  if (id) type = UserComposer::Other{*std::move(id)};
  return get<User>(*this, UserComposer(std::move(type), std::move(expansions).elements()));
}

RequestHandle UserService::fetch(std::optional<std::string> id, std::set<Expansion> expansions,
                                 Completion<User> then) const {
  return fetch(std::move(id), std::move(expansions)).start(std::move(then));
}

Operation<User> UserService::update(UserUpdate update) const {
  return post<User>(*this, UserComposer(std::move(update)));
}

RequestHandle UserService::update(UserUpdate update, Completion<User> then) const {
  return this->update(std::move(update)).start(std::move(then));
}

Operation<User> UserService::updateAddress(UserAddressUpdate update) const {
  return post<User>(*this, UserAddressComposer(std::move(update)));
}

RequestHandle UserService::updateAddress(UserAddressUpdate update, Completion<User> then) const {
  return updateAddress(std::move(update)).start(std::move(then));
}

}  // namespace orvane
