// SPDX-License-Identifier: Apache-2.0
// Any bytes as a user: decoding answers a user or an error, and what it answers survives the way
// back.
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/User.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  auto decoded = orvane::decode<orvane::User>(text);
  if (!decoded) return 0;

  // Components that the backend sent as a text without a day are present and empty; they are not
  // written again.
  orvane::User user = *std::move(decoded).value();
  if (user.dateOfBirth == orvane::DateComponents{}) user.dateOfBirth.reset();

  const auto encoded = orvane::encode(user);
  if (!encoded) std::abort();
  auto again = orvane::decode<orvane::User>(*encoded.value());
  if (!again) std::abort();
  return 0;
}
