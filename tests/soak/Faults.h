// SPDX-License-Identifier: Apache-2.0
// What a server does with a request, and what must become of the request then.
#pragma once

#include "tests/runtime/support/TestServer.h"

#include <cstdint>
#include <string>

namespace orvane::soak {

/// How a call may end.
enum class Ending : std::uint8_t { success, failure };

/// A way to answer, right or wrong.
struct Behaviour {
  const char* name;
  /// How often it is chosen, beside the others.
  unsigned weight;
  /// How a call ends that is answered so. One that should succeed may fail all the same, for what
  /// becomes of its connection; one that must fail must.
  Ending ending;
  void (*answer)(ServerConnection& connection, const std::string& body);
  /// How a download ends, where that differs: files come uncompressed.
  Ending endingOfDownloads = ending;
};

/// Decides by numbers: the same for the same seed, whatever threads do meanwhile.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : seed_(seed) {}

  /// A number below `sides`, for the `number`th of what `what` names.
  [[nodiscard]] std::uint64_t roll(char what, std::uint64_t number, std::uint64_t sides) const;

  /// What the server does with a request of that number.
  [[nodiscard]] const Behaviour& behaviour(std::uint64_t number) const;

 private:
  const std::uint64_t seed_;
};

}  // namespace orvane::soak
