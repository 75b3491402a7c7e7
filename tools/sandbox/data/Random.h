// SPDX-License-Identifier: Apache-2.0
//
// Chance that comes out the same with every compiler and library.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>

namespace orvane::sandbox {

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  /// At least 0 and below 1.
  double unit() { return static_cast<double>(engine_() >> 11U) * 0x1p-53; }
  double between(double low, double high) { return low + (high - low) * unit(); }
  bool chance(double probability) { return unit() < probability; }

  /// At least 0 and below `count`.
  std::size_t index(std::size_t count) {
    return static_cast<std::size_t>(unit() * static_cast<double>(count));
  }

  /// Standard normal (Box and Muller).
  double normal() {
    const double radius = std::sqrt(-2 * std::log(1 - unit()));
    return radius * std::cos(2 * std::numbers::pi * unit());
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace orvane::sandbox
