// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Platform/UUID.h>
#include <Orvane/Runtime/FileDeviceIdentifier.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvane {
namespace {

// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }

  [[nodiscard]] int get() const noexcept { return number_; }
  explicit operator bool() const noexcept { return number_ >= 0; }

 private:
  const int number_;
};

std::string reason() { return std::generic_category().message(errno); }

bool isUUID(std::string_view text) {
  constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  return std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char c, char expected) {
    if (expected == '-') return c == '-';
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
  });
}

// What a file of ours holds, or anything else that is no identifier; absent when it can't be read,
// `errno` telling why.
std::optional<std::string> contents(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return std::nullopt;
  std::string text(64, '\0');
  const ssize_t count = ::read(file.get(), text.data(), text.size());
  if (count < 0) return std::nullopt;
  text.resize(static_cast<std::size_t>(count));
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

bool writeWhole(const std::string& path, const std::string& text) {
  const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  return file &&
         ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
         ::fsync(file.get()) == 0;
}

// Puts `temporary` in the place of `path`. Where none is to be replaced, one that another process
// has put there meanwhile stays.
bool putInPlace(const std::string& temporary, const std::string& path, bool replaces) {
  if (!replaces) {
    if (::link(temporary.c_str(), path.c_str()) == 0 || errno == EEXIST) return true;
    // Some file systems know no links.
  }
  return std::rename(temporary.c_str(), path.c_str()) == 0;
}

// Makes the file and answers what it holds then; absent when it can't be made.
std::optional<std::string> store(const std::string& identifier, const std::string& path,
                                 bool replaces) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  const std::string temporary = path + "." + identifier;
  const bool isStored =
      writeWhole(temporary, identifier + "\n") && putInPlace(temporary, path, replaces);
  const int failure = errno;
  ::unlink(temporary.c_str());
  errno = failure;
  return isStored ? contents(path) : std::nullopt;
}

// The identifier that the file holds, made where there is none; or one that is not stored.
std::string identifierIn(const std::string& path) {
  if (path.empty()) return randomUUID();
  const std::optional<std::string> found = contents(path);
  if (found && isUUID(*found)) return *found;
  std::string fresh = randomUUID();
  if (!found && errno != ENOENT && errno != ENOTDIR) {
    log.w("The device identifier can't be read (" + reason() +
          "), this process uses another: " + path);
    return fresh;
  }
  if (found) log.w("The device identifier's file held none and is replaced: " + path);
  const std::optional<std::string> stored = store(fresh, path, found.has_value());
  if (stored && isUUID(*stored)) return *stored;
  log.w("The device identifier can't be stored (" + reason() +
        "), it lasts as long as this process: " + path);
  return fresh;
}

}  // namespace

FileDeviceIdentifier::FileDeviceIdentifier(std::string path) : path_(std::move(path)) {}

std::string FileDeviceIdentifier::current() const {
  const std::scoped_lock lock(mutex_);
  if (identifier_.empty()) identifier_ = identifierIn(path_);
  return identifier_;
}

}  // namespace orvane
