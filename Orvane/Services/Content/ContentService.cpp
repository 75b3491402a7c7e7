// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Content/ContentComposer.h>
#include <Orvane/Services/Content/ContentService.h>

namespace orvane {

Operation<Content> ContentService::fetch(Key withKey,
                                         std::optional<std::string> languageTags) const {
  return get<Content>(*this, ContentComposer(std::move(languageTags), withKey));
}

RequestHandle ContentService::fetch(Key withKey, std::optional<std::string> languageTags,
                                    Completion<Content> then) const {
  return fetch(withKey, std::move(languageTags)).start(std::move(then));
}

}  // namespace orvane
