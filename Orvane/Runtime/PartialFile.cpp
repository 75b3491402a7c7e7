// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/PartialFile.h>

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <utility>

namespace orvane {
namespace {

// A firmware may be larger than 2 GiB on 32-bit, too.
static_assert(sizeof(off_t) >= sizeof(std::int64_t));

DownloadError fileError(int code) {
  return DownloadError(DownloadError::Kind::file, std::generic_category().message(code));
}

// URLs of stores carry signatures, which do not belong on a disk.
std::string sha256Of(const std::string& text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_sha256(), nullptr);
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string hash;
  for (unsigned place = 0; place < size; ++place) {
    const unsigned byte = digest[place];
    hash += digits[byte >> 4U];
    hash += digits[byte & 0xFU];
  }
  return hash;
}

bool isPrintable(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// The folder's own entry, so that a rename outlives a power cut.
void syncFolder(const std::string& target) {
  const std::size_t slash = target.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

Result<std::shared_ptr<PartialFile>> PartialFile::open(std::string target, const URL& source) {
  const std::shared_ptr<PartialFile> file(new PartialFile(std::move(target), source));
  if (auto error = file->lock()) return *std::move(error);
  file->readNote();
  return file;
}

PartialFile::PartialFile(std::string target, const URL& source)
    : target_(std::move(target)), sourceHash_(sha256Of(source.absoluteString())) {}

PartialFile::~PartialFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::optional<DownloadError> PartialFile::lock() {
  while (true) {
    descriptor_ =
        ::open(path().c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (descriptor_ < 0) return fileError(errno);
    if (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK) return fileError(errno);
      return DownloadError(DownloadError::Kind::busy);
    }
    // Another download may have finished in between: then this is the target by now, and the
    // temporary file a new one.
    struct stat opened {};
    struct stat named {};
    if (::fstat(descriptor_, &opened) != 0) return fileError(errno);
    if (::stat(path().c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino) {
      size_ = opened.st_size;
      return std::nullopt;
    }
    ::close(std::exchange(descriptor_, -1));
  }
}

void PartialFile::readNote() {
  std::ifstream note(notePath(), std::ios::binary);
  std::string hash;
  std::string validator;
  std::getline(note, hash);
  std::getline(note, validator);
  // A line that ends with the file has been cut.
  if (note.eof() || note.fail() || hash != sourceHash_ || !isPrintable(validator)) return;
  validator_ = std::move(validator);
}

bool PartialFile::writeNote() const {
  std::ofstream note(notePath(), std::ios::binary | std::ios::trunc);
  note << sourceHash_ << '\n' << validator_ << '\n';
  note.close();
  return !note.fail();
}

std::optional<DownloadError> PartialFile::restart(std::string validator) {
  // The former note goes first, so that it is never taken for that of other bytes.
  ::unlink(notePath().c_str());
  if (auto error = shorten(0)) return error;
  validator_ = isPrintable(validator) ? std::move(validator) : std::string();
  if (!validator_.empty() && !writeNote()) {
    ::unlink(notePath().c_str());
    validator_.clear();
  }
  return std::nullopt;
}

std::optional<DownloadError> PartialFile::shorten(std::int64_t size) {
  if (::ftruncate(descriptor_, size) != 0) return fileError(errno);
  size_ = size;
  return std::nullopt;
}

std::optional<DownloadError> PartialFile::append(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return fileError(errno);
    bytes.remove_prefix(static_cast<std::size_t>(count));
    size_ += count;
  }
  return std::nullopt;
}

std::optional<DownloadError> PartialFile::complete() {
  if (::fsync(descriptor_) != 0 || std::rename(path().c_str(), target_.c_str()) != 0) {
    return fileError(errno);
  }
  isThere_ = false;
  ::unlink(notePath().c_str());
  syncFolder(target_);
  return std::nullopt;
}

void PartialFile::discard() {
  if (!std::exchange(isThere_, false)) return;
  ::unlink(notePath().c_str());
  ::unlink(path().c_str());
}

}  // namespace orvane
