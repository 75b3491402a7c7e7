// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/SystemTimeZone.h>
#include <Orvane/Platform/ZoneRules.h>

#include <unicode/locid.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <utility>

namespace orvane {
namespace {

using Ticks = std::chrono::steady_clock::rep;

struct State {
  std::mutex mutex;
  DeviceSettings chosen;
  std::shared_ptr<const DeviceSettings> settings;  // null until somebody asks
  SystemTimeZoneSource source;
  std::string stamp;
};

// Whether the log is to be told that the system's zone is not known.
enum class Notice : std::uint8_t { none, due, given };

constexpr Ticks never = std::numeric_limits<Ticks>::max();
constexpr std::chrono::steady_clock::duration lookInterval = std::chrono::seconds(1);

constinit std::atomic<std::uint64_t> settingsVersion{1};
constinit std::atomic<Ticks> nextLook{never};
constinit std::atomic<SystemTimeZoneSource::Clock> lookClock{nullptr};
constinit std::atomic<Notice> unknownZone{Notice::none};

// Never destroyed: calls may still run while the process ends.
State& state() {
  static State& state = *new State;
  return state;
}

// XDG Base Directory and user-dirs: the desktop's documents folder, or the usual one below home.
std::string systemDocumentsDirectory() {
  // NOLINTBEGIN(concurrency-mt-unsafe): read once; nothing in this library changes the environment
  if (const char* documents = std::getenv("XDG_DOCUMENTS_DIR"); documents && *documents) {
    return documents;
  }
  if (const char* home = std::getenv("HOME"); home && *home)
    return std::string(home) + "/Documents";
  // NOLINTEND(concurrency-mt-unsafe)
  return {};
}

// The log is told of an unknown zone as long as that is true.
void note(bool isKnown) {
  Notice expected = isKnown ? Notice::due : Notice::none;
  unknownZone.compare_exchange_strong(expected, isKnown ? Notice::none : Notice::due);
}

// The machine's zone. It is looked at again as long as it can change. Under the lock.
std::string followedTimeZone(State& shared) {
  // Before the zone: a change between the two is seen at the next look.
  shared.stamp = stampOf(shared.source.file);
  SystemTimeZone zone = systemTimeZone(shared.source);
  note(zone.isKnown);
  lookClock = shared.source.clock;
  nextLook =
      zone.canChange ? (shared.source.clock() + lookInterval).time_since_epoch().count() : never;
  return std::move(zone.name);
}

// Under the lock.
void adopt(State& shared, DeviceSettings settings) {
  shared.chosen = settings;
  if (settings.locale.empty()) settings.locale = icu::Locale::getDefault().getName();
  if (settings.timeZone.empty()) {
    settings.timeZone = followedTimeZone(shared);
  } else {
    note(true);
    nextLook = never;
  }
  if (settings.documentsDirectory.empty()) {
    settings.documentsDirectory = systemDocumentsDirectory();
  }
  shared.settings = std::make_shared<const DeviceSettings>(std::move(settings));
}

void announceChange() { settingsVersion.fetch_add(1, std::memory_order_release); }

void lookAtSystemTimeZone() {
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  // Somebody else may have set one meanwhile.
  if (!shared.settings || !shared.chosen.timeZone.empty()) return;
  if (stampOf(shared.source.file) == shared.stamp) return;
  std::string zone = followedTimeZone(shared);
  if (zone == shared.settings->timeZone) return;
  DeviceSettings settings = *shared.settings;
  settings.timeZone = std::move(zone);
  shared.settings = std::make_shared<const DeviceSettings>(std::move(settings));
  announceChange();
}

}  // namespace

std::string UnknownTimeZone::message() const { return "there is no time zone \"" + name + '"'; }

std::shared_ptr<const DeviceSettings> DeviceSettings::current() {
  followSystemTimeZone();
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  if (!shared.settings) adopt(shared, {});
  return shared.settings;
}

DeviceSettings DeviceSettings::chosen() {
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  return shared.chosen;
}

Result<Unit> DeviceSettings::set(DeviceSettings settings) {
  if (!settings.timeZone.empty() && !zoneRules(settings.timeZone)) {
    return UnknownTimeZone{std::move(settings.timeZone)};
  }
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  adopt(shared, std::move(settings));
  announceChange();
  return Unit{};
}

std::uint64_t DeviceSettings::version() noexcept {
  return settingsVersion.load(std::memory_order_acquire);
}

void followSystemTimeZone() {
  Ticks due = nextLook.load(std::memory_order_acquire);
  if (due == never) return;
  const auto now = lookClock.load(std::memory_order_relaxed)();
  if (now.time_since_epoch().count() < due) return;
  // One thread looks; the others go on with what was.
  const Ticks next = (now + lookInterval).time_since_epoch().count();
  if (nextLook.compare_exchange_strong(due, next)) lookAtSystemTimeZone();
}

bool takeUnknownSystemTimeZone() noexcept {
  if (unknownZone.load(std::memory_order_relaxed) != Notice::due) return false;
  Notice expected = Notice::due;
  return unknownZone.compare_exchange_strong(expected, Notice::given);
}

SystemTimeZoneSource setSystemTimeZoneSource(SystemTimeZoneSource source) {
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  std::swap(shared.source, source);
  unknownZone = Notice::none;
  adopt(shared, shared.chosen);
  announceChange();
  return source;
}

}  // namespace orvane
