#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Lays the files of a new service: a record, a composer, the service and a test, which compile and pass as they are, and the
# lines by which the library knows them. CONTRIBUTING.md says what to fill in.
#   tools/new-service.sh NAME     a name as types have it, in the singular: Odometer
set -euo pipefail
export LC_ALL=C
cd "$(dirname "${BASH_SOURCE[0]}")/.."

name=${1:-}
if (($# != 1)) || [[ ! $name =~ ^[A-Z][A-Za-z0-9]*$ || $name == *Service ]]; then
  echo "new-service: give the name of what the service is about as types have it, such as Odometer" >&2
  exit 2
fi
service=Orvane/Services/$name
model=Orvane/Models/$name
if [[ -e $service || -e $model.h ]]; then
  echo "new-service: there is a $name already" >&2
  exit 1
fi
# "ChargingStation" is "chargingStation" in paths and "charging station" in words.
path=${name,}
words=$(sed -E 's/([a-z0-9])([A-Z])/\1 \2/g' <<<"$name" | tr '[:upper:]' '[:lower:]')

# file <path> [private]: what comes on standard input, under the licence's line.
file() {
  mkdir -p "$(dirname "$1")"
  {
    echo '// SPDX-License-Identifier: Apache-2.0'
    [[ ${2:-} != private ]] || echo '// Private header: not installed.'
    cat
  } >"$1"
  echo "new-service: $1"
}

file "$model.h" <<EOF
// The $words of a user.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <string>

namespace orvane {

/// The $words of a user.
struct ORVANE_EXPORT $name {
  std::optional<std::string> id{};

  ORVANE_EXPORT bool operator==(const $name& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<$name> = true;

}  // namespace orvane
EOF

file "$model.cpp" <<EOF
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <$model.h>

namespace orvane {
namespace {

constexpr KeyRow ${path}Keys[] = {
    key<&$name::id>("id"),
};

}  // namespace

KeyTables keysOf(RecordTag<$name>) { return ${path}Keys; }

template struct RecordCoding<$name>;
template struct RecordCoding<std::vector<$name>>;

bool $name::operator==(const $name&) const noexcept = default;

}  // namespace orvane
EOF

file "$service/${name}Composer.h" private <<EOF
// The request of a user's $words.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <string>
#include <string_view>

namespace orvane {

/// Reads the current user's $words.
class ${name}Composer final : public URLComposer {
 public:
  [[nodiscard]] std::string path(std::string_view userID) const override;
};

}  // namespace orvane
EOF

file "$service/${name}Composer.cpp" <<EOF
#include <Orvane/Platform/Text.h>
#include <$service/${name}Composer.h>

namespace orvane {

std::string ${name}Composer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/$path"});
}

}  // namespace orvane
EOF

file "$service/${name}Service.h" <<EOF
// The application's entry to the current user's $words.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <$model.h>
#include <Orvane/Platform/Export.h>

#include <utility>

namespace orvane {

/// Fetches the current user's $words.
class ORVANE_EXPORT ${name}Service : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit ${name}Service(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the current user's $words.
  Operation<$name> fetch() const;
  RequestHandle fetch(Completion<$name> then) const;
};

}  // namespace orvane
EOF

file "$service/${name}Service.cpp" <<EOF
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <$service/${name}Composer.h>
#include <$service/${name}Service.h>

namespace orvane {

Operation<$name> ${name}Service::fetch() const { return get<$name>(*this, ${name}Composer()); }

RequestHandle ${name}Service::fetch(Completion<$name> then) const {
  return fetch().start(std::move(then));
}

}  // namespace orvane
EOF

file "tests/unit/Services/${name}ServiceTest.cpp" <<EOF
// What is asked of the service, and what it makes of the answer.
#include "tests/support/RequestRows.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/GoogleTest.h>
#include <$service/${name}Service.h>

namespace orvane {
namespace {

TEST(${name}ServiceTest, sendsRequests) {
  expectRequests<${name}Service>({
      {"GET users/42/$path", [](auto& service) { service.fetch(nullptr); }},
  });
}

TEST(${name}ServiceTest, readsTheRecord) {
  const char* const text = R"({"id":"17"})";
  const Result<$name> read = decode<$name>(text);
  ASSERT_TRUE(read) << read;
  EXPECT_EQ(*read, $name{.id = "17"});
  EXPECT_EQ(encode(*read).value(), text);
}

}  // namespace
}  // namespace orvane
EOF

# include <file> <header>: its line, among the others of its folder in their order.
include() {
  local file=$1 line="#include <$2>" folder=${2%/*} at
  [[ $2 != Orvane/Services/* ]] || folder=Orvane/Services
  at=$(grep -n "^#include <$folder/" "$file" | awk -F: -v line="$line" '$2 < line { last = $1 } END { print last }')
  at=${at:-$(($(grep -n -m 1 "^#include <$folder/" "$file" | cut -d : -f 1) - 1))}
  sed -i "${at}a $line" "$file"
  echo "new-service: a line in $file"
}

include Orvane/Orvane.h "$model.h"
include Orvane/Orvane.h "$service/${name}Service.h"
include Orvane/Models/Coders.h "$model.h"
include fuzz/records.cpp "$model.h"
sed -i "0,/^    asIs<.*>,\$/s||&\n    asIs<$name>,|" fuzz/records.cpp
sed -i "s|^}  // namespace orvane\$|KeyTables keysOf(RecordTag<$name>);\n\n&|" Orvane/Models/Coders.h

if command -v clang-format >/dev/null; then
  clang-format -i "$model".* "$service"/* Orvane/Orvane.h "tests/unit/Services/${name}ServiceTest.cpp"
fi
echo "new-service: ./dev test passes; CONTRIBUTING.md says what to fill in"
