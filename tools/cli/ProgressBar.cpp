// SPDX-License-Identifier: Apache-2.0
#include "ProgressBar.h"

#include "Text.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace orvane::cli {
namespace {

using Clock = std::chrono::steady_clock;

// Often enough to look alive.
constexpr std::chrono::milliseconds interval{100};
constexpr std::string_view lineStart = "\r\x1b[K";

bool canShow() {
  const char* terminal = std::getenv("TERM");
  return ::isatty(STDERR_FILENO) == 1 &&
         (terminal == nullptr || std::string_view(terminal) != "dumb");
}

std::size_t columnsOfErrors() {
  winsize size{};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

std::string megabytes(std::int64_t bytes) {
  const auto tenths = static_cast<std::int64_t>(static_cast<double>(bytes) / 100'000.0);
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::string percentText(double share) {
  const std::string number = std::to_string(static_cast<int>(share * 100.0));
  return std::string(3 - std::min<std::size_t>(number.size(), 3), ' ') + number + " %";
}

}  // namespace

std::string progressLine(std::string_view title, const DownloadProgress& progress,
                         std::size_t columns) {
  constexpr std::size_t shortestBar = 10;
  constexpr std::size_t longestBar = 40;
  if (!progress.total || *progress.total <= 0) {
    return cut(std::string(title) + "  " + megabytes(progress.received) + " MB", columns);
  }
  const double share = std::clamp(
      static_cast<double>(progress.received) / static_cast<double>(*progress.total), 0.0, 1.0);
  const std::string numbers = percentText(share) + "  " + megabytes(progress.received) + " of " +
                              megabytes(*progress.total) + " MB";
  const std::size_t used = columnsOf(title) + numbers.size() + 4;  // brackets and blanks
  if (used + shortestBar > columns) return cut(std::string(title) + " " + numbers, columns);
  const std::size_t length = std::min(longestBar, columns - used);
  const auto filled = static_cast<std::size_t>(share * static_cast<double>(length));
  return std::string(title) + " [" + std::string(filled, '#') + std::string(length - filled, '.') +
         "] " + numbers;
}

struct ProgressBar::State {
  std::mutex mutex;
  std::string title;
  bool isShown = false;
  bool hasEnded = false;
  Clock::time_point due{};  // when the next line is worth its while

  void show(const DownloadProgress& progress) {
    const std::scoped_lock lock(mutex);
    const bool isComplete = progress.total && progress.received >= *progress.total;
    if (hasEnded || (Clock::now() < due && !isComplete)) return;
    due = Clock::now() + interval;
    isShown = true;
    // The last column stays free: some terminals would go to the next line.
    write(std::string(lineStart) + progressLine(title, progress, columnsOfErrors() - 1));
  }

  void end() {
    const std::scoped_lock lock(mutex);
    if (isShown && !hasEnded) write(lineStart);
    hasEnded = true;
  }

  static void write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }
};

ProgressBar::ProgressBar(std::string title) {
  if (!canShow()) return;
  state_ = std::make_shared<State>();
  state_->title = std::move(title);
}

DownloadProgressHandler ProgressBar::handler() const {
  if (!state_) return nullptr;
  return [state = state_](const DownloadProgress& progress) { state->show(progress); };
}

void ProgressBar::end() {
  if (state_) state_->end();
}

}  // namespace orvane::cli
