// SPDX-License-Identifier: Apache-2.0
#include "tests/runtime/support/NameLookups.h"

#include <dlfcn.h>
#include <netdb.h>

#include <condition_variable>
#include <mutex>
#include <string_view>

namespace orvane {
namespace {

struct State {
  std::mutex mutex;
  std::condition_variable changed;
  bool isStuck = false;
  std::size_t begun = 0;
  std::size_t waiting = 0;

  // True when the lookup was held up.
  bool hold() {
    std::unique_lock lock(mutex);
    if (!isStuck) return false;
    ++begun;
    ++waiting;
    changed.notify_all();
    changed.wait(lock, [this] { return !isStuck; });
    --waiting;
    changed.notify_all();
    return true;
  }
};

// Never destroyed: threads of libcurl's may still be in it.
State& state() {
  static State& state = *new State;
  return state;
}

}  // namespace

StuckNameLookups::StuckNameLookups() {
  const std::scoped_lock lock(state().mutex);
  state().isStuck = true;
  state().begun = 0;
}

StuckNameLookups::~StuckNameLookups() {
  std::unique_lock lock(state().mutex);
  state().isStuck = false;
  state().changed.notify_all();
  state().changed.wait(lock, [] { return state().waiting == 0; });
}

void StuckNameLookups::waitFor(std::size_t count) const {
  std::unique_lock lock(state().mutex);
  state().changed.wait(lock, [count] { return state().begun >= count; });
}

}  // namespace orvane

// Takes the place of the C library's function, for libcurl as well: hence visible.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): those are reserved
extern "C" [[gnu::visibility("default")]] int getaddrinfo(const char* name, const char* service,
                                                          const addrinfo* hints, addrinfo** found) {
  if (name != nullptr && std::string_view(name) == orvane::StuckNameLookups::host &&
      orvane::state().hold()) {
    return EAI_NONAME;
  }
  static const auto next =
      reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return next(name, service, hints, found);
}
