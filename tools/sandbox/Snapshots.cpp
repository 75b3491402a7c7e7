// SPDX-License-Identifier: Apache-2.0
#include "Snapshots.h"

#include "http/Message.h"

#include <algorithm>

namespace orvane::sandbox {

namespace {

constexpr const char* extension = ".sqlite";
constexpr std::size_t longestName = 64;

bool isName(const std::string& name) {
  constexpr std::string_view allowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
  return !name.empty() && name.size() <= longestName && name.front() != '.' &&
         name.find_first_not_of(allowed) == std::string::npos;
}

}  // namespace

std::filesystem::path Snapshots::file(const std::string& name) const {
  if (!isName(name)) throw badRequest("a snapshot's name is letters, digits, dots and dashes");
  return folder_ / (name + extension);
}

std::filesystem::path Snapshots::existing(const std::string& name) const {
  std::filesystem::path found = file(name);
  if (!exists(found)) throw notFound("there is no snapshot \"" + name + "\"");
  return found;
}

void Snapshots::save(const std::string& name, const DatabaseConnection& data) {
  const std::filesystem::path target = file(name);
  const std::lock_guard lock{mutex_};
  create_directories(folder_);
  // Whole or not at all, whatever ends the process meanwhile.
  const std::filesystem::path part = folder_ / ("." + name + ".part");
  std::filesystem::remove(part);
  DatabaseConnection{part}.copyFrom(data);
  rename(part, target);
}

void Snapshots::restore(const std::string& name, DatabaseConnection& data) {
  const std::lock_guard lock{mutex_};
  data.copyFrom(DatabaseConnection{existing(name)});
}

void Snapshots::remove(const std::string& name) {
  const std::lock_guard lock{mutex_};
  std::filesystem::remove(existing(name));
}

std::vector<std::string> Snapshots::names() {
  const std::lock_guard lock{mutex_};
  std::vector<std::string> names;
  if (!exists(folder_)) return names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    if (entry.path().extension() == extension) names.push_back(entry.path().stem().string());
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace orvane::sandbox
