// SPDX-License-Identifier: Apache-2.0
// Calls to a server that misbehaves, for as long as one likes:
//   orvane-soak [minutes] [seed]
// Each call has one outcome, the right one; writes reach the server once at most; memory, files and
// threads do not grow. Ends with 1, and says the seed, where that is not so.
#include "tests/soak/Backend.h"
#include "tests/soak/Faults.h"
#include "tests/soak/Round.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

// What sanitizers offer; null without one.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is theirs
extern "C" [[gnu::weak]] std::size_t __sanitizer_get_current_allocated_bytes();

namespace orvane::soak {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::uint64_t callsPerRound = 400;

/// What the process holds.
struct Holdings {
  double heap = 0;    ///< Megabytes that are in use.
  double memory = 0;  ///< Megabytes that the system has given.
  double descriptors = 0;
  double threads = 0;
};

constexpr std::array counted{&Holdings::heap, &Holdings::memory, &Holdings::descriptors,
                             &Holdings::threads};

bool isSanitized() { return __sanitizer_get_current_allocated_bytes != nullptr; }

std::size_t bytesInUse() {
  if (isSanitized()) return __sanitizer_get_current_allocated_bytes();
  ::malloc_trim(0);
  const auto use = ::mallinfo2();
  return use.uordblks + use.hblkhd;
}

Holdings holdings() {
  Holdings now;
  now.heap = static_cast<double>(bytesInUse()) / 1e6;
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  now.memory = static_cast<double>(pages) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
  const auto entries = [](const char* folder) {
    return static_cast<double>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  };
  now.descriptors = entries("/proc/self/fd");
  now.threads = entries("/proc/self/task");
  return now;
}

/// Whether holdings grow, from the end of a warm-up on. They come and go: what counts is the least
/// of the last rounds beside the most of the first ones.
class Growth {
 public:
  void add(const Holdings& now, bool isWarmUp) {
    if (!isWarmUp) {
      last_.push_back(now);
      if (last_.size() > 10) last_.pop_front();
      return;
    }
    for (const auto member : counted) most_.*member = std::max(most_.*member, now.*member);
  }

  /// Prints it; true where there is none.
  [[nodiscard]] bool isNone() const {
    if (last_.empty()) return true;
    Holdings least = last_.front();
    for (const Holdings& now : last_) {
      for (const auto member : counted) least.*member = std::min(least.*member, now.*member);
    }
    std::printf(
        "from the warm-up to the end: heap %.2f to %.2f MB, memory %.0f to %.0f MB, descriptors "
        "%.0f to %.0f, threads %.0f to %.0f\n",
        most_.heap, least.heap, most_.memory, least.memory, most_.descriptors, least.descriptors,
        most_.threads, least.threads);
    // Sanitizers keep notes of threads and stacks that are gone.
    const bool isMemoryFlat = isSanitized() || least.memory <= 1.05 * most_.memory + 4;
    return isMemoryFlat && least.heap <= 1.05 * most_.heap + 0.1 &&
           least.descriptors <= most_.descriptors && least.threads <= most_.threads;
  }

 private:
  Holdings most_;
  std::deque<Holdings> last_;
};

void tell(Clock::duration elapsed, const Counts& counts, const Holdings& now) {
  const double seconds = std::chrono::duration<double>(elapsed).count();
  const std::uint64_t all = counts.succeeded + counts.failed + counts.cancelled;
  std::printf(
      "%6.0f s  %9llu calls, %5.0f a second: %llu succeeded, %llu failed (%llu unlucky), "
      "%llu cancelled; heap %.2f MB, memory %.0f MB, %.0f descriptors\n",
      seconds, static_cast<unsigned long long>(all), static_cast<double>(all) / seconds,
      static_cast<unsigned long long>(counts.succeeded.load()),
      static_cast<unsigned long long>(counts.failed.load()),
      static_cast<unsigned long long>(counts.unlucky.load()),
      static_cast<unsigned long long>(counts.cancelled.load()), now.heap, now.memory,
      now.descriptors);
  std::fflush(stdout);
}

// False where something was wrong.
bool soak(Clock::duration duration, const Dice& dice, const fs::path& folder) {
  const auto start = Clock::now();
  Backend backend(dice);
  Counts counts;
  Growth growth;
  auto told = start;
  Holdings now;
  for (std::uint64_t first = 0; Clock::now() - start < duration; first += callsPerRound) {
    Round(backend, dice, counts, folder, first, callsPerRound).run();
    if (!backend.rest()) {
      std::printf("FAULT: connections stay open after the shutdown\n");
      return false;
    }
    for (const fs::directory_entry& file : fs::directory_iterator(folder)) fs::remove(file);
    now = holdings();
    growth.add(now, first == 0 || Clock::now() - start < duration / 5);
    if (Clock::now() - told < std::chrono::seconds(10)) continue;
    told = Clock::now();
    tell(told - start, counts, now);
  }
  tell(Clock::now() - start, counts, now);
  const bool isFlat = growth.isNone();
  if (!isFlat) std::printf("FAULT: the process grows\n");
  // Were nearly everything to fail, nothing would be shown.
  const bool isLively = counts.unlucky < counts.succeeded / 2;
  if (!isLively) std::printf("FAULT: too much fails that should not\n");
  return counts.faults == 0 && isFlat && isLively;
}

}  // namespace
}  // namespace orvane::soak

int main(int argumentCount, char** arguments) {
  const double minutes = argumentCount > 1 ? std::strtod(arguments[1], nullptr) : 1;
  const std::uint64_t seed =
      argumentCount > 2 ? std::strtoull(arguments[2], nullptr, 10) : std::random_device()();
  if (!(minutes > 0)) {
    std::fprintf(stderr, "usage: %s [minutes] [seed]\n", arguments[0]);
    return 2;
  }
  std::printf("soak: %g min, seed %llu\n", minutes, static_cast<unsigned long long>(seed));
  std::string folder = (std::filesystem::temp_directory_path() / "orvane-soak-XXXXXX").string();
  if (::mkdtemp(folder.data()) == nullptr) return 2;
  const auto duration = std::chrono::duration_cast<std::chrono::steady_clock::duration>(
      std::chrono::duration<double, std::ratio<60>>(minutes));
  const bool isGood = orvane::soak::soak(duration, orvane::soak::Dice(seed), folder);
  std::filesystem::remove_all(folder);
  std::printf("soak: %s, seed %llu\n", isGood ? "passed" : "FAILED",
              static_cast<unsigned long long>(seed));
  return isGood ? 0 : 1;
}
