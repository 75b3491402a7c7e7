// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include "data/People.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <netinet/in.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): POSIX wants it declared

namespace orvane::sandbox {

namespace {

constexpr std::int64_t staleDays = 7;

// --- Signals -------------------------------------------------------------------------------------

/// Those that the program waits for, blocked in every thread.
const sigset_t& awaitedSignals() {
  static const sigset_t signals = [] {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGCHLD}) sigaddset(&set, signal);
    return set;
  }();
  return signals;
}

/// Laying the data takes a while: it shows how far it is on a terminal, and ends when asked to.
LayingProgress progressShown() {
  return [shown = -1](int done, int all) mutable {
    constexpr timespec noTime{};
    int signal = sigtimedwait(&awaitedSignals(), nullptr, &noTime);
    if (signal == SIGCHLD) signal = 0;  // of a process that was there before
    const bool isOnTerminal = ::isatty(STDERR_FILENO) != 0;
    const bool isEnd = signal > 0 || done == all;
    const int percent = done * 100 / all;
    if (isOnTerminal && percent != shown) {
      std::fprintf(stderr, isEnd ? "\r\033[K" : "\rlaying the data: %d %%", percent);
      std::fflush(stderr);
    }
    shown = percent;
    if (signal > 0) throw Interrupted(signal);
  };
}

// --- What it tells -------------------------------------------------------------------------------

/// A file that appears whole or not at all, for its owner only.
class PrivateFile {
 public:
  /// Throws when it can't be written.
  explicit PrivateFile(std::filesystem::path file) : file_(std::move(file)), part_(file_) {
    part_ += ".part";
    stream_.open(part_);
    using std::filesystem::perms;
    std::error_code ignored;
    permissions(part_, perms::owner_read | perms::owner_write, ignored);
    check();
  }
  ~PrivateFile() {
    std::error_code ignored;
    if (!isWritten_) std::filesystem::remove(part_, ignored);
  }
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;

  void write(const std::string& text) {
    stream_ << text << '\n';
    stream_.close();
    check();
    rename(part_, file_);
    isWritten_ = true;
  }

 private:
  void check() const {
    if (!stream_) throw std::runtime_error("can't write " + part_.string());
  }

  const std::filesystem::path file_;
  std::filesystem::path part_;
  std::ofstream stream_;
  bool isWritten_ = false;
};

/// A file that goes with this object. Whoever waits for it finds either nothing or all of it.
class AnnouncingFile {
 public:
  AnnouncingFile(std::filesystem::path file, const std::string& text) : file_(std::move(file)) {
    PrivateFile{file_}.write(text);
  }
  ~AnnouncingFile() {
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
  }
  AnnouncingFile(const AnnouncingFile&) = delete;
  AnnouncingFile& operator=(const AnnouncingFile&) = delete;

 private:
  const std::filesystem::path file_;
};

/// What the command-line client and the examples read from the environment.
Settings settingsFor(const Sandbox& sandbox) {
  return clientSettings(sandbox.address(), Sandbox::sampleToken());
}

bool isLoopback(const std::string& host) {
  return host == "localhost" || host == "::1" || host.starts_with("127.");
}

void printWelcome(const Sandbox& sandbox, const SandboxOptions& options,
                  const std::filesystem::path& readyFile) {
  std::cout << "orvane-sandbox is listening.\n\n"
            << "  base URL    " << sandbox.baseUrl() << '\n';
  if (!options.plainHttp)
    std::cout << "  CA file     " << sandbox.certificateAuthority().string() << '\n';
  std::cout << "  API key     " << sampleApiKey << '\n'
            << "  ready file  " << readyFile.string()
            << " (all of this as JSON, and the key of admin requests)\n"
            << "  inspector   " << sandbox.newInspectorLink()
            << "\n              (in one browser, once: what it does, and what goes wrong)\n\n"
            << "  user  external reference  who\n";
  for (const Person& person : people()) {
    if (!person.isSample) continue;
    std::cout << "  " << person.userId << "  " << std::left << std::setw(18)
              << person.externalReferenceId << "  " << person.firstName << ' ' << person.lastName
              << ": " << person.note << '\n';
  }
  std::cout << "\n  token of a user: " << developmentToken << "<user>\n\nIn another terminal:\n\n";
  for (const auto& [name, value] : settingsFor(sandbox)) {
    std::cout << "  export " << name << '=' << shellWord(value) << '\n';
  }
  std::cout << "  " << clientCommand() << " trips list --limit 3\n\n";
  if (!isLoopback(options.host)) {
    std::cout << "  Other machines can reach it on " << options.host
              << ", and its tokens are no secrets: not for an open network.\n";
  }
  const auto days = (sandbox.backend().now() - sandbox.backend().laidAround()) / millisPerDay;
  if (days > staleDays) {
    std::cout << "  The trips end " << days << " days ago; --fresh brings them up to date.\n";
  }
  std::cout << std::flush;
}

// --- Names for other machines --------------------------------------------------------------------

/// The addresses of this machine beyond the loopback interface.
std::vector<std::string> ownAddresses(int family) {
  std::vector<std::string> addresses;
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return addresses;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> all{first, &::freeifaddrs};
  for (const ifaddrs* each = first; each != nullptr; each = each->ifa_next) {
    if (each->ifa_addr == nullptr || each->ifa_addr->sa_family != family) continue;
    std::array<char, INET6_ADDRSTRLEN> text{};
    const void* address = family == AF_INET
                              ? static_cast<const void*>(
                                    &reinterpret_cast<const sockaddr_in*>(each->ifa_addr)->sin_addr)
                              : &reinterpret_cast<const sockaddr_in6*>(each->ifa_addr)->sin6_addr;
    ::inet_ntop(family, address, text.data(), text.size());
    if (!isLoopback(text.data())) addresses.emplace_back(text.data());
  }
  return addresses;
}

/// The certificate names whatever the sandbox can be reached by as far as this machine knows.
SandboxOptions withNames(SandboxOptions options) {
  if (isLoopback(options.host)) return options;
  const bool isAny = options.host == "0.0.0.0" || options.host == "::";
  const int family = options.host.find(':') == std::string::npos ? AF_INET : AF_INET6;
  std::vector<std::string> found = isAny ? ownAddresses(family) : std::vector{options.host};
  std::array<char, 256> hostName{};
  if (::gethostname(hostName.data(), hostName.size() - 1) == 0) found.emplace_back(hostName.data());
  for (std::string& name : found) {
    if (std::ranges::find(options.names, name) == options.names.end()) {
      options.names.push_back(std::move(name));
    }
  }
  return options;
}

// --- The command ---------------------------------------------------------------------------------

/// The process's environment with the settings in place of any other of the client's.
std::vector<std::string> environmentWith(const Settings& settings) {
  std::vector<std::string> all;
  for (char** each = environ; *each != nullptr; ++each) {
    if (!std::string_view{*each}.starts_with("ORVANE_")) all.emplace_back(*each);
  }
  for (const auto& [name, value] : settings) all.emplace_back(name).append("=").append(value);
  return all;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Waits for the process's end; hands signals on to it, but those of the terminal, which it has
/// got.
int exitCodeOf(pid_t process) {
  for (;;) {
    int status = 0;
    if (::waitpid(process, &status, WNOHANG) == process) {
      return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    siginfo_t info{};
    const int signal = sigwaitinfo(&awaitedSignals(), &info);
    if (signal > 0 && signal != SIGCHLD && info.si_code != SI_KERNEL) ::kill(process, signal);
  }
}

int runCommand(std::vector<std::string> words, const Settings& settings) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  std::vector<std::string> environment = environmentWith(settings);
  pid_t process = 0;
  const int error = ::posix_spawnp(&process, words.front().c_str(), nullptr, &attributes,
                                   pointersTo(words).data(), pointersTo(environment).data());
  posix_spawnattr_destroy(&attributes);
  if (error == 0) return exitCodeOf(process);
  std::cerr << "orvane-sandbox: " << words.front() << ": " << std::strerror(error) << '\n';
  constexpr int notFound = 127;
  constexpr int notRunnable = 126;
  return error == ENOENT ? notFound : notRunnable;
}

/// A folder that goes with this object.
class TemporaryData {
 public:
  TemporaryData() {
    std::string name = (std::filesystem::temp_directory_path() / "orvane-sandbox-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("can't make " + name);
    path = name;
  }
  ~TemporaryData() {
    std::error_code ignored;
    remove_all(path, ignored);
  }
  TemporaryData(const TemporaryData&) = delete;
  TemporaryData& operator=(const TemporaryData&) = delete;

  std::filesystem::path path;
};

void waitForEnd() {
  for (int signal = 0; signal != SIGINT && signal != SIGTERM;) {
    signal = sigwaitinfo(&awaitedSignals(), nullptr);
  }
}

/// Until it is asked to end, or the command has ended.
int serve(const Sandbox& sandbox, const ProgramOptions& options) {
  const auto readyFile = sandbox.backend().folder() / "ready.json";
  const AnnouncingFile ready{readyFile, sandbox.description()};
  std::optional<AnnouncingFile> further;
  if (!options.readyFile.empty()) further.emplace(options.readyFile, sandbox.description());
  if (!options.command.empty()) return runCommand(options.command, settingsFor(sandbox));
  printWelcome(sandbox, options.sandbox, readyFile);
  waitForEnd();
  return 0;
}

void writeRecording(Sandbox& sandbox, PrivateFile& file) {
  sandbox.stop();
  Recording& recording = sandbox.backend().recording();
  file.write(recording.file());
  if (!recording.state().isFull) return;
  std::cerr << "orvane-sandbox: the recording was full before the end\n";
}

}  // namespace

int run(ProgramOptions options) {
#ifdef __GLIBC__
  // The log's memory is taken on one thread and given back on another: with an arena for each
  // thread, which is the default, several times of what the log has would be held.
  ::mallopt(M_ARENA_MAX, 2);
#endif
  // Blocked before any thread starts, so that only this one sees them.
  pthread_sigmask(SIG_BLOCK, &awaitedSignals(), nullptr);

  std::optional<TemporaryData> temporary;
  if (!options.keepsData) options.sandbox.backend.folder = temporary.emplace().path;
  options.sandbox = withNames(std::move(options.sandbox));
  options.sandbox.backend.progress = progressShown();
  std::optional<PrivateFile> recording;
  if (!options.recording.empty()) recording.emplace(options.recording);
  options.sandbox.backend.records = recording.has_value();
  Sandbox sandbox{options.sandbox};
  const int exitCode = serve(sandbox, options);
  if (recording) writeRecording(sandbox, *recording);
  return exitCode;
}

}  // namespace orvane::sandbox
