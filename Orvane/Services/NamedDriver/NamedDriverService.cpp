// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/NamedDriver/NamedDriverComposer.h>
#include <Orvane/Services/NamedDriver/NamedDriverService.h>

namespace orvane {

RequestHandle NamedDriverService::fetch(Completion<std::vector<NamedDriver>> then) const {
  return get(*this, NamedDriverComposer(NamedDriverComposer::NamedDrivers{}), std::move(then));
}

RequestHandle NamedDriverService::updateNamedDriver(std::int64_t userId, std::string email,
                                                    std::string phone,
                                                    Completion<NamedDriver> then) const {
  return put(*this,
             NamedDriverComposer(NamedDriverComposer::UpdateNamedDriver{userId, std::move(email),
                                                                        std::move(phone)}),
             std::move(then));
}

}  // namespace orvane
