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

// RFC 9562, section 4: written in lower case, read in either.
bool isUUID(std::string_view text) {
  constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  return std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char c, char expected) {
    if (expected == '-') return c == '-';
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  });
}

// What reading a file brought: its text, or the error number that tells why there is none.
struct Contents {
  std::string text;
  int failure = 0;

  [[nodiscard]] bool isMissing() const { return failure == ENOENT || failure == ENOTDIR; }
};

// Reads more than an identifier is long, so that what is longer shows.
Contents contentsOf(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return {{}, errno};
  std::string text(64, '\0');
  const ssize_t count = ::read(file.get(), text.data(), text.size());
  if (count < 0) return {{}, errno};
  text.resize(static_cast<std::size_t>(count));
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return {text, 0};
}

// The functions below answer an error number, 0 for success.

int writeWhole(const std::string& path, const std::string& text) {
  const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!file) return errno;
  const ssize_t count = ::write(file.get(), text.data(), text.size());
  if (count < 0) return errno;
  if (static_cast<std::size_t>(count) != text.size()) return ENOSPC;
  return ::fsync(file.get()) == 0 ? 0 : errno;
}

// Puts `temporary` in the place of `path`. Where none is to be replaced, one that another process
// has put there meanwhile stays.
int putInPlace(const std::string& temporary, const std::string& path, bool replaces) {
  if (!replaces) {
    if (::link(temporary.c_str(), path.c_str()) == 0 || errno == EEXIST) return 0;
    // Some file systems know no links.
  }
  return std::rename(temporary.c_str(), path.c_str()) == 0 ? 0 : errno;
}

// Makes what is missing of a folder and of those above it, for their owner only. What can't be made
// shows when the file is written.
void makeFolders(const std::filesystem::path& folder) {
  std::filesystem::path made;
  for (const std::filesystem::path& part : folder) {
    made /= part;
    ::mkdir(made.c_str(), 0700);
  }
}

int store(const std::string& identifier, const std::string& path, bool replaces) {
  makeFolders(std::filesystem::path(path).parent_path());
  const std::string temporary = path + "." + identifier;
  int failure = writeWhole(temporary, identifier + "\n");
  if (failure == 0) failure = putInPlace(temporary, path, replaces);
  ::unlink(temporary.c_str());
  return failure;
}

void warn(std::string_view what, int failure, const std::string& path) {
  std::string line("The device identifier ");
  line.append(what);
  if (failure != 0) line.append(" (").append(std::generic_category().message(failure)).append(")");
  log.w(line + ": " + path);
}

// The identifier that the file holds, made where there is none; or one that is not stored.
std::string identifierIn(const std::string& path) {
  std::string fresh = randomUUID();
  if (path.empty()) return fresh;
  const Contents found = contentsOf(path);
  if (isUUID(found.text)) return found.text;
  if (found.failure != 0 && !found.isMissing()) {
    warn("can't be read, another is used until the process ends", found.failure, path);
    return fresh;
  }
  if (!found.isMissing()) warn("was damaged and is replaced", 0, path);
  int failure = store(fresh, path, !found.isMissing());
  if (failure == 0) {
    const Contents stored = contentsOf(path);
    if (isUUID(stored.text)) return stored.text;
    failure = stored.failure;
  }
  warn("can't be stored and ends with the process", failure, path);
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
