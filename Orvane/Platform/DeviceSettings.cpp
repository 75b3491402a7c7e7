// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/DeviceSettings.h>

#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace orvane {
namespace {

struct State {
  std::mutex mutex;
  std::shared_ptr<const DeviceSettings> settings;
};

constinit std::atomic<std::uint64_t> settingsVersion{1};

// Never destroyed: calls may still run while the process ends.
State& state() {
  static State& state = *new State;
  return state;
}

std::string systemTimeZone() {
  const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
  icu::UnicodeString identifier;
  std::string text;
  zone->getID(identifier).toUTF8String(text);
  return text;
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

std::shared_ptr<const DeviceSettings> completed(DeviceSettings settings) {
  if (settings.locale.empty()) settings.locale = icu::Locale::getDefault().getName();
  if (settings.timeZone.empty()) settings.timeZone = systemTimeZone();
  if (settings.documentsDirectory.empty()) {
    settings.documentsDirectory = systemDocumentsDirectory();
  }
  return std::make_shared<const DeviceSettings>(std::move(settings));
}

}  // namespace

std::shared_ptr<const DeviceSettings> DeviceSettings::current() {
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  if (!shared.settings) shared.settings = completed({});
  return shared.settings;
}

void DeviceSettings::set(DeviceSettings settings) {
  auto replacement = completed(std::move(settings));
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  shared.settings = std::move(replacement);
  settingsVersion.fetch_add(1, std::memory_order_release);
}

std::uint64_t DeviceSettings::version() noexcept {
  return settingsVersion.load(std::memory_order_acquire);
}

}  // namespace orvane
