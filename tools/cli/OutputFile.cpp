// SPDX-License-Identifier: Apache-2.0
#include "OutputFile.h"

#include "ExitCode.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace orvane::cli {
namespace {

namespace fs = std::filesystem;

// What any file is created with; the process's mask takes away what it does not want.
constexpr mode_t everyone = 0666;
constexpr mode_t owner = 0600;

[[noreturn]] void fail(const fs::path& file, int reason) {
  throw Failure(ExitCode::output, file.string() + " can't be written: " + std::strerror(reason));
}

// An open file. One that was created is gone again unless it is `kept`.
class NewFile {
 public:
  NewFile(fs::path path, int flags, mode_t mode = everyone)
      : path_(std::move(path)), isCreated_((flags & O_EXCL) != 0) {
    descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC | flags, mode);
  }
  ~NewFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    if (isCreated_) ::unlink(path_.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  [[nodiscard]] int descriptor() const { return descriptor_; }

  // These answer whether it went well; `errno` says why it did not.
  [[nodiscard]] bool write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t count = ::write(descriptor_, text.data(), text.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return false;
      text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }
  [[nodiscard]] bool moveTo(const fs::path& target) {
    if (std::rename(path_.c_str(), target.c_str()) != 0) return false;
    isCreated_ = false;
    return true;
  }

 private:
  fs::path path_;
  int descriptor_ = -1;
  bool isCreated_;
};

void writeInPlace(const fs::path& file, std::string_view text) {
  const NewFile opened(file, 0);
  if (opened.descriptor() < 0 || !opened.write(text)) fail(file, errno);
}

void replace(const fs::path& file, std::string_view text, fs::perms permissions, mode_t fresh) {
  const std::string name = ".orvane-" + std::to_string(::getpid()) + ".part";
  NewFile part(file.parent_path() / name, O_CREAT | O_EXCL, fresh);
  if (part.descriptor() < 0) fail(file, errno);
  const bool isFormer = permissions != fs::perms::unknown;
  const auto mode = static_cast<mode_t>(permissions & fs::perms::mask);
  if (isFormer && ::fchmod(part.descriptor(), mode) != 0) fail(file, errno);
  if (!part.write(text) || ::fsync(part.descriptor()) != 0 || !part.moveTo(file)) fail(file, errno);
}

}  // namespace

bool isStandardOutput(const fs::path& file) { return file == "-"; }

void writeDocument(const fs::path& file, std::string_view text, Output& output, Readers readers) {
  const mode_t fresh = readers == Readers::everyone ? everyone : owner;
  if (isStandardOutput(file)) return output.raw(text);
  std::error_code failure;
  const fs::file_status status = fs::status(file, failure);
  if (!fs::exists(status)) return replace(file, text, fs::perms::unknown, fresh);
  if (!fs::is_regular_file(status)) return writeInPlace(file, text);
  // The file behind a symbolic link, not the link.
  const fs::path target = fs::canonical(file, failure);
  replace(failure ? file : target, text, status.permissions(), fresh);
}

}  // namespace orvane::cli
