// SPDX-License-Identifier: Apache-2.0
#include "Process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <system_error>

namespace orvane::test {
namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
  std::vector<char*> all;
  all.reserve(texts.size() + 1);
  // execve() leaves them as they are.
  for (const std::string& text : texts) all.push_back(const_cast<char*>(text.c_str()));
  all.push_back(nullptr);
  return all;
}

std::array<int, 2> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) fail("pipe2");
  return ends;
}

int millisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  return left.count() > 0 ? static_cast<int>(left.count()) : 0;
}

void close(int& descriptor) {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

}  // namespace

Process::Process(const std::string& program, const std::vector<std::string>& arguments,
                 const Environment& environment, Streams streams) {
  std::vector<std::string> words{program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables;
  for (const auto& [name, value] : environment) {
    variables.push_back(std::string(name).append("=").append(value));
  }
  const std::vector<char*> wordPointers = pointers(words);
  const std::vector<char*> variablePointers = pointers(variables);

  const bool isCaptured = streams == Streams::captured;
  auto output = isCaptured ? makePipe() : std::array{-1, ::open("/dev/null", O_WRONLY | O_CLOEXEC)};
  auto errors = isCaptured ? makePipe() : std::array{-1, STDERR_FILENO};
  const pid_t parent = ::getpid();
  id_ = ::fork();
  if (id_ < 0) fail("fork");
  if (id_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(126);
    ::dup2(output[1], STDOUT_FILENO);
    ::dup2(errors[1], STDERR_FILENO);
    ::execve(program.c_str(), wordPointers.data(), variablePointers.data());
    ::_exit(127);
  }
  // glibc's own function has no C linkage in version 2.36.
  endDescriptor_ = static_cast<int>(::syscall(SYS_pidfd_open, id_, 0));
  if (endDescriptor_ < 0) fail("pidfd_open");
  close(output[1]);
  if (isCaptured) close(errors[1]);
  output_.descriptor = output[0];
  errors_.descriptor = errors[0];
}

Process::~Process() {
  if (id_ > 0) {
    send(SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  close(endDescriptor_);
  close(output_.descriptor);
  close(errors_.descriptor);
}

void Process::send(int signal) const { ::kill(id_, signal); }

bool Process::read(Clock::time_point deadline) {
  std::array<Pipe*, 2> pipes{&output_, &errors_};
  std::array<pollfd, 2> polled{};
  for (std::size_t index = 0; index < pipes.size(); ++index) {
    polled[index] = {pipes[index]->descriptor, POLLIN, 0};
  }
  if (output_.descriptor < 0 && errors_.descriptor < 0) return false;
  if (::poll(polled.data(), polled.size(), millisecondsUntil(deadline)) <= 0) return false;
  for (std::size_t index = 0; index < pipes.size(); ++index) {
    if (polled[index].revents == 0) continue;
    std::array<char, 65536> bytes{};
    const ssize_t count = ::read(pipes[index]->descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      pipes[index]->text.append(bytes.data(), static_cast<std::size_t>(count));
    } else {
      close(pipes[index]->descriptor);
    }
  }
  return true;
}

bool Process::waitForError(const std::string& text) {
  const auto deadline = Clock::now() + patience;
  while (errors_.text.find(text) == std::string::npos) {
    if (!read(deadline)) return false;
  }
  return true;
}

Ending Process::wait() {
  const auto deadline = Clock::now() + patience;
  while (read(deadline)) {
  }
  pollfd ended{endDescriptor_, POLLIN, 0};
  if (::poll(&ended, 1, millisecondsUntil(deadline)) <= 0) send(SIGKILL);
  int status = 0;
  ::waitpid(id_, &status, 0);
  id_ = -1;
  Ending ending;
  if (WIFEXITED(status)) ending.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) ending.signal = WTERMSIG(status);
  ending.output = std::move(output_.text);
  ending.errors = std::move(errors_.text);
  return ending;
}

FileWatch::FileWatch(const std::string& path, std::uint32_t events)
    : descriptor_(::inotify_init1(IN_CLOEXEC)) {
  if (::inotify_add_watch(descriptor_, path.c_str(), events) < 0) fail("inotify_add_watch");
}

FileWatch::~FileWatch() { ::close(descriptor_); }

bool FileWatch::wait(const Process& process) const {
  std::array<pollfd, 2> polled{{{descriptor_, POLLIN, 0}, {process.endDescriptor(), POLLIN, 0}}};
  ::poll(polled.data(), polled.size(), millisecondsUntil(Clock::now() + patience));
  return polled[0].revents != 0;
}

Ending run(const std::string& program, const std::vector<std::string>& arguments,
           const Environment& environment) {
  return Process(program, arguments, environment, Process::Streams::captured).wait();
}

}  // namespace orvane::test
