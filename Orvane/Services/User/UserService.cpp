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

Operation<User> UserService::update(UserUpdate update) const {
  return post<User>(*this, UserComposer(std::move(update)));
}

Operation<User> UserService::updateAddress(UserAddressUpdate update) const {
  return post<User>(*this, UserAddressComposer(std::move(update)));
}

}  // namespace orvane
