// SPDX-License-Identifier: Apache-2.0
// Any bytes as a bearer token: as it is, no text is one, since nobody guesses a signature. Signed
// with the backend's own key, its claims are refused with status 401, or name a subject.
#include "fuzz/Bytes.h"
#include "http/Message.h"
#include "security/Tokens.h"
#include <Orvane/Runtime/SelfSignedTokenResolver.h>

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

namespace {

using namespace orvane;
namespace fs = std::filesystem;

constexpr sandbox::Milliseconds now = 1'700'000'000'000;

const sandbox::SigningKey& key() {
  static const sandbox::SigningKey key = [] {
    const fs::path file =
        fs::temp_directory_path() / ("orvane-fuzz-token-" + std::to_string(::getpid()));
    sandbox::SigningKey made(file);
    fs::remove(file);
    return made;
  }();
  return key;
}

std::string base64url(std::string_view bytes) {
  std::string text(4 * (bytes.size() / 3 + 1) + 1, '\0');
  const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                   reinterpret_cast<const unsigned char*>(bytes.data()),
                                   static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(size));
  text.erase(std::min(text.find('='), text.size()));
  std::replace(text.begin(), text.end(), '+', '-');
  std::replace(text.begin(), text.end(), '/', '_');
  return text;
}

std::string signedWithTheKey(const std::string& text) {
  static const std::string bytes = bytesFromHexadecimal(key().hex()).value_or(std::string());
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned size = 0;
  HMAC(EVP_sha256(), bytes.data(), static_cast<int>(bytes.size()),
       reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest, &size);
  return text + '.' + base64url({reinterpret_cast<const char*>(digest), size});
}

// Absent where it is refused.
std::optional<std::string> subject(const std::string& token) {
  try {
    return key().verify(token, now);
  } catch (const sandbox::Problem& problem) {
    require(problem.status() == 401);
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view claims = textOf(data, size);
  require(!subject(std::string(claims)));

  // The first line is the header, the rest the claims.
  const std::string header = base64url(takeUntil(claims, '\n'));
  static_cast<void>(subject(signedWithTheKey(header + '.' + base64url(claims))));

  // A key that an application writes down.
  if (const auto bytes = bytesFromHexadecimal(claims)) require(2 * bytes->size() == claims.size());
  return 0;
}
