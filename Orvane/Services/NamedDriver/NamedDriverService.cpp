// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/NamedDriver/NamedDriverComposer.h>
#include <Orvane/Services/NamedDriver/NamedDriverService.h>

namespace orvane {

Operation<std::vector<NamedDriver>> NamedDriverService::fetch() const {
  return get<std::vector<NamedDriver>>(*this,
                                       NamedDriverComposer(NamedDriverComposer::NamedDrivers{}));
}

RequestHandle NamedDriverService::fetch(Completion<std::vector<NamedDriver>> then) const {
  return fetch().start(std::move(then));
}

Operation<NamedDriver> NamedDriverService::updateNamedDriver(std::int64_t userId, std::string email,
                                                             std::string phone) const {
  return put<NamedDriver>(*this, NamedDriverComposer(NamedDriverComposer::UpdateNamedDriver{
                                     userId, std::move(email), std::move(phone)}));
}

RequestHandle NamedDriverService::updateNamedDriver(std::int64_t userId, std::string email,
                                                    std::string phone,
                                                    Completion<NamedDriver> then) const {
  return updateNamedDriver(userId, std::move(email), std::move(phone)).start(std::move(then));
}

}  // namespace orvane
