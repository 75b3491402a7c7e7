// SPDX-License-Identifier: Apache-2.0
// What values print themselves to, without a stream of the standard library having to be included.
#pragma once

#include <string_view>

namespace orvane {

/// What a text can be written to, such as std::ostream.
template <class Stream>
concept TextStream = requires(Stream& stream, std::string_view text) {
  stream.write(text.data(), 0);
};

}  // namespace orvane
