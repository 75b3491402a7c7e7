// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Version.h>

#include <algorithm>

namespace orvane {
namespace {

// Takes the first component off `version`: its leading digits without leading zeros.
std::string_view takeComponent(std::string_view& version) {
  const std::size_t end = std::min(version.find('.'), version.size());
  std::string_view component = version.substr(0, end);
  version.remove_prefix(std::min(end + 1, version.size()));

  component = component.substr(0, component.find_first_not_of("0123456789"));
  component.remove_prefix(std::min(component.find_first_not_of('0'), component.size()));
  return component;
}

}  // namespace

bool isVersion(std::string_view version, std::string_view greaterThan) {
  while (!version.empty() || !greaterThan.empty()) {
    const std::string_view left = takeComponent(version);
    const std::string_view right = takeComponent(greaterThan);
    if (left.size() != right.size()) return left.size() > right.size();
    if (left != right) return left > right;
  }
  return false;
}

}  // namespace orvane
