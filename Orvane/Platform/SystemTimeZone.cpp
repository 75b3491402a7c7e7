// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/SystemTimeZone.h>
#include <Orvane/Platform/ZoneRules.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvane {
namespace {

namespace fs = std::filesystem;

// What the database holds twice: by POSIX's time, as here, and with leap seconds.
std::string_view withoutVariant(std::string_view name) {
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (name.starts_with(variant)) name.remove_prefix(variant.size());
  }
  return name;
}

// "Europe/Zurich" of "/usr/share/zoneinfo/Europe/Zurich". The folder may have an ending.
std::optional<std::string> nameOfPath(const std::string& path) {
  const std::size_t folder = path.rfind("/zoneinfo");
  if (folder == std::string::npos) return std::nullopt;
  const std::size_t end = path.find('/', folder + 1);
  if (end == std::string::npos) return std::nullopt;
  return std::string(withoutVariant(std::string_view(path).substr(end + 1)));
}

std::optional<std::string> nameOfFile(const fs::path& file) {
  std::error_code error;
  // The link's own text first: beyond it a zone's file may be a link to another name's.
  if (const fs::path link = fs::read_symlink(file, error); !error) {
    if (auto name = nameOfPath(link.string())) return name;
  }
  const fs::path path = fs::canonical(file, error);
  return error ? std::nullopt : nameOfPath(path.string());
}

// Compares a copy with the files of the database, and knows other systems.
std::string nameThatICUFinds() {
  const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
  if (!zone) return {};
  icu::UnicodeString identifier;
  std::string text;
  return zone->getID(identifier).toUTF8String(text);
}

SystemTimeZone madeOf(std::string_view name, bool canChange) {
  SystemTimeZone zone;
  zone.canChange = canChange;
  zone.isKnown = zoneRules(name) != nullptr;
  if (zone.isKnown) zone.name = name;
  return zone;
}

// The value's forms: a name, a path, either of them behind a colon, and nothing, which is UTC.
std::optional<SystemTimeZone> zoneOfVariable(const SystemTimeZoneSource& source) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in this library changes the environment
  const char* value = std::getenv(source.variable);
  if (value == nullptr) return std::nullopt;
  std::string_view text(value);
  if (text.starts_with(':')) text.remove_prefix(1);
  // The file itself, or what the database has for it on some systems: a link back.
  if (text == source.file.string() || fs::path(text).filename() == "localtime") return std::nullopt;
  if (text.empty()) return madeOf("UTC", false);
  if (!text.starts_with('/')) return madeOf(withoutVariant(text), false);
  const auto name = nameOfPath(std::string(text));
  return madeOf(name ? *name : nameOfFile(text).value_or(""), false);
}

}  // namespace

SystemTimeZone systemTimeZone(const SystemTimeZoneSource& source) {
  if (const auto zone = zoneOfVariable(source)) return *zone;
  if (const auto name = nameOfFile(source.file)) return madeOf(*name, true);
  return madeOf(nameThatICUFinds(), true);
}

std::string stampOf(const fs::path& file) {
  std::error_code error;
  // What tells the zone by itself needs no further look.
  if (const fs::path link = fs::read_symlink(file, error); !error && nameOfPath(link.string())) {
    return link.string();
  }
  const fs::path path = fs::canonical(file, error);
  if (error) return {};
  const auto changed = fs::last_write_time(path, error);
  if (error) return {};
  const auto size = fs::file_size(path, error);
  if (error) return {};
  // libc++ counts in 128 bits, of which not all are needed to tell two times apart.
  const auto time = static_cast<std::int64_t>(changed.time_since_epoch().count());
  return path.string() + ' ' + std::to_string(time) + ' ' + std::to_string(size);
}

}  // namespace orvane
