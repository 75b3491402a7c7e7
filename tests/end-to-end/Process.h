// SPDX-License-Identifier: Apache-2.0
// A program run by a test: started, waited for within bounds, and never left behind.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvane::test {

using Environment = std::map<std::string, std::string>;

/// No test waits longer than that for something that is bound to happen.
inline constexpr std::chrono::seconds patience{60};

/// How a program ended, and what it wrote.
struct Ending {
  int exitCode = -1;  ///< -1 when a signal ended it.
  int signal = 0;
  std::string output;
  std::string errors;
};

/// A child process. It is killed when its object goes, or this process does.
class Process {
 public:
  enum class Streams {
    captured,  ///< Standard output and error go to `Ending`.
    quiet,     ///< Standard output is dropped, standard error shared with the test.
  };

  /// Starts `program` with nothing in its environment but `environment`.
  Process(const std::string& program, const std::vector<std::string>& arguments,
          const Environment& environment, Streams streams);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  [[nodiscard]] pid_t id() const noexcept { return id_; }
  /// Readable once the process has ended.
  [[nodiscard]] int endDescriptor() const noexcept { return endDescriptor_; }

  void send(int signal) const;

  /// Reads standard error until it contains `text`; false when it ends without.
  [[nodiscard]] bool waitForError(const std::string& text);

  /// What has been read of standard error so far.
  [[nodiscard]] const std::string& errors() const noexcept { return errors_.text; }

  /// Waits until the process has ended. One that does not within `patience` is killed and its
  /// `signal` says so.
  Ending wait();

 private:
  struct Pipe {
    int descriptor = -1;
    std::string text;
  };

  // Reads what is there; false once both pipes are closed or time is up.
  bool read(std::chrono::steady_clock::time_point deadline);

  pid_t id_ = -1;
  int endDescriptor_ = -1;
  Pipe output_;
  Pipe errors_;
};

/// Tells when something happens to a file, or in a folder.
class FileWatch {
 public:
  /// `events` as inotify(7) names them.
  FileWatch(const std::string& path, std::uint32_t events);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  /// Waits for it. False when the process ends first, or patience does.
  [[nodiscard]] bool wait(const Process& process) const;

 private:
  int descriptor_;
};

/// Runs a program to its end.
[[nodiscard]] Ending run(const std::string& program, const std::vector<std::string>& arguments,
                         const Environment& environment = {});

}  // namespace orvane::test
