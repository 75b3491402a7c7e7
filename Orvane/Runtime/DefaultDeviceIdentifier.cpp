// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Runtime/DefaultDeviceIdentifier.h>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using Path = std::filesystem::path;

#if defined(__APPLE__)
constexpr const char* stateVariable = nullptr;
constexpr const char* homeVariable = "HOME";
constexpr const char* stateBelowHome = "Library/Application Support";
#else
constexpr const char* stateVariable = "XDG_STATE_HOME";
constexpr const char* homeVariable = "HOME";
constexpr const char* stateBelowHome = ".local/state";
#endif

// The folder that a variable names; relative ones are ignored.
std::string named(const char* variable) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): read once; nothing in this library changes it
  const char* value = variable != nullptr ? std::getenv(variable) : nullptr;
  return value != nullptr && Path(value).is_absolute() ? value : std::string();
}

// The home folder that the user database names.
std::string homeOfTheUser() {
  std::vector<char> texts(1024);
  passwd user{};
  passwd* found = nullptr;
  while (::getpwuid_r(::geteuid(), &user, texts.data(), texts.size(), &found) == ERANGE) {
    texts.resize(2 * texts.size());
  }
  return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : std::string();
}

bool isFolder(const Path& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

bool isHome(const Path& path) {
  return path.is_absolute() && !path.relative_path().empty() && isFolder(path);
}

Path stateFolder(const DeviceFolders& folders) {
  if (Path(folders.state).is_absolute()) return folders.state;
  return isHome(folders.home) ? Path(folders.home) / stateBelowHome : Path();
}

}  // namespace

DeviceFolders DeviceFolders::ofTheSystem(std::string documents) {
  DeviceFolders folders{named(stateVariable), named(homeVariable), std::move(documents)};
  if (folders.home.empty()) folders.home = homeOfTheUser();
  return folders;
}

std::string defaultDeviceIdentifierFile(const DeviceFolders& folders) {
  const Path former =
      folders.documents.empty() ? Path() : Path(folders.documents) / "orvane-device-id";
  std::error_code ignored;
  if (std::filesystem::exists(former, ignored)) return former.string();
  if (const Path state = stateFolder(folders); !state.empty()) {
    return (state / "orvane" / "device-id").string();
  }
  return isFolder(folders.documents) ? former.string() : std::string();
}

std::string DefaultDeviceIdentifier::current() const {
  const std::scoped_lock lock(mutex_);
  if (!file_) {
    const DeviceFolders folders = DeviceFolders::ofTheSystem(documents_);
    std::string path = defaultDeviceIdentifierFile(folders);
    if (path.empty()) {
      log.w("The device identifier ends with the process: there is no home folder to keep it in (" +
            (folders.home.empty() ? "none is named" : folders.home) +
            "). RuntimeOptions::deviceIdentifierFile can name a file for it.");
    }
    file_.emplace(std::move(path));
  }
  return file_->current();
}

}  // namespace orvane
