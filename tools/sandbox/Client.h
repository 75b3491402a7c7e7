// SPDX-License-Identifier: Apache-2.0
//
// What a client needs to reach the sandbox, as lines for a shell.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::sandbox {

struct Address {
  std::string baseUrl;
  std::filesystem::path certificateAuthority;  // empty over plain HTTP
};

using Settings = std::vector<std::pair<std::string, std::string>>;

/// What the command-line client and the examples read from the environment.
[[nodiscard]] Settings clientSettings(const Address& address, const std::string& token);

/// Text as a shell's word.
[[nodiscard]] std::string shellWord(std::string_view text);

/// The client beside this program, or else by its name; a shell's word.
[[nodiscard]] std::string clientCommand();

/// The token that stands for a user at any time.
[[nodiscard]] std::string developmentTokenOf(std::string_view userId);

/// Where the inspector's page opens for a browser that has the code.
[[nodiscard]] std::string inspectorLink(const Address& address, const std::string& code);

}  // namespace orvane::sandbox
