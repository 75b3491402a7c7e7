// SPDX-License-Identifier: Apache-2.0
#include "Client.h"

#include "Backend.h"

#include <algorithm>
#include <system_error>

namespace orvane::sandbox {

Settings clientSettings(const Address& address, const std::string& token) {
  Settings settings{{"ORVANE_BASE_URL", address.baseUrl},
                    {"ORVANE_API_KEY", sampleApiKey},
                    {"ORVANE_TOKEN", token},
                    {"ORVANE_FIRMWARE_HOST", address.baseUrl}};
  if (!address.certificateAuthority.empty()) {
    settings.emplace_back("ORVANE_CA_FILE", address.certificateAuthority.string());
  }
  return settings;
}

std::string shellWord(std::string_view text) {
  constexpr const char* plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:@%+=,";
  const auto isControl = [](char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F;
  };
  if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) {
    return std::string{text};
  }
  // Terminals take control characters for keys: those are escaped as POSIX's next issue has it.
  const bool isEscaped = std::ranges::any_of(text, isControl);
  std::string word = isEscaped ? "$'" : "'";
  for (const char c : text) {
    if (!isEscaped) {
      c == '\'' ? word.append("'\\''") : word.append(1, c);
    } else if (c == '\'' || c == '\\') {
      word.append({'\\', c});
    } else if (isControl(c) || c == '\n') {
      const auto byte = static_cast<unsigned char>(c);
      word.append({'\\', static_cast<char>('0' + byte / 64), static_cast<char>('0' + byte / 8 % 8),
                   static_cast<char>('0' + byte % 8)});
    } else {
      word += c;
    }
  }
  return word + "'";
}

std::string clientCommand() {
  std::error_code ignored;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
  for (const auto& folder : {self, self.parent_path() / "cli"}) {
    if (exists(folder / "orvane", ignored)) return shellWord((folder / "orvane").string());
  }
  return "orvane";
}

std::string developmentTokenOf(std::string_view userId) {
  return std::string{developmentToken}.append(userId);
}

std::string inspectorLink(const Address& address, const std::string& code) {
  return address.baseUrl + "/?code=" + code;
}

}  // namespace orvane::sandbox
