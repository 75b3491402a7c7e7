// SPDX-License-Identifier: Apache-2.0
#include "inspector/Sessions.h"

#include "security/Tokens.h"

#include <algorithm>

namespace orvane::sandbox {

namespace {

constexpr std::size_t secretBytes = 24;

template <class T>
void append(std::deque<T>& list, T item, std::size_t most) {
  if (list.size() == most) list.pop_front();
  list.push_back(std::move(item));
}

}  // namespace

std::string Sessions::newCode() {
  std::string code = randomBase64url(secretBytes);
  const std::lock_guard lock{mutex_};
  append(codes_, code, most);
  return code;
}

std::optional<Sessions::Session> Sessions::redeem(std::string_view code) {
  const std::lock_guard lock{mutex_};
  const auto found = std::ranges::find_if(
      codes_, [&](const std::string& each) { return equalInConstantTime(each, code); });
  if (found == codes_.end()) return std::nullopt;
  codes_.erase(found);
  append(sessions_, {randomBase64url(secretBytes), randomBase64url(secretBytes)}, most);
  return sessions_.back();
}

std::optional<Sessions::Session> Sessions::find(std::string_view id) const {
  const std::lock_guard lock{mutex_};
  const auto found = std::ranges::find_if(
      sessions_, [&](const Session& each) { return equalInConstantTime(each.id, id); });
  return found != sessions_.end() ? std::optional{*found} : std::nullopt;
}

}  // namespace orvane::sandbox
