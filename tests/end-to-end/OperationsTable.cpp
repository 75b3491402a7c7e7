// SPDX-License-Identifier: Apache-2.0
#include "OperationsTable.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <regex>

namespace orvane::test {
namespace {

const std::filesystem::path root = ORVANE_SOURCE_DIR;

// What `pattern` finds in `text`, each match as its first group, or the first two of them.
std::vector<std::string> findAll(const std::string& text, const char* pattern) {
  const std::regex regex(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    found.push_back(match->str(1) + (match->size() > 2 ? match->str(2) : ""));
  }
  return found;
}

std::vector<std::string> cellsOf(const std::string& line) { return findAll(line, R"(\|([^|]*))"); }

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::vector<std::string> OperationRow::names() const {
  std::vector<std::string> names;
  for (const std::string& service : services) {
    for (const std::string& operation : operations) {
      names.push_back(std::string(service).append(".").append(operation));
    }
  }
  return names;
}

bool OperationRow::isAt(const std::string& path) const {
  for (const std::string& documented : paths) {
    const std::string plain = std::regex_replace(documented, std::regex(R"([.])"), R"(\.)");
    const std::string pattern = std::regex_replace(plain, std::regex(R"(\{[^}]*\})"), "[^/]+");
    if (std::regex_match(path, std::regex(pattern))) return true;
  }
  return false;
}

std::vector<OperationRow> documentedOperations() {
  constexpr std::size_t cellCount = 8;  // the last one is what follows the last bar: nothing
  constexpr const char* code = "`([^`]+)`";
  std::vector<OperationRow> rows;
  std::vector<std::string> services;
  std::ifstream file(root / "docs/operations.md");
  for (std::string line; std::getline(file, line);) {
    const std::vector<std::string> cells = cellsOf(line);
    if (cells.size() != cellCount || cells[1].find('`') == std::string::npos) continue;
    if (const auto named = findAll(cells[0], code); !named.empty()) services = named;
    rows.push_back({.services = services,
                    .operations = findAll(cells[1], R"(`([^`]+)`( \([^)]*\))?)"),
                    .verb = trimmed(cells[2]),
                    .paths = findAll(cells[3], code),
                    .commands = findAll(cells[6], code)});
  }
  return rows;
}

std::set<std::string> declaredOperations() {
  std::set<std::string> names;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(root / "Orvane/Services")) {
    if (!entry.path().filename().string().ends_with("Service.h")) continue;
    const std::string service = entry.path().stem();
    const std::string header = contentsOf(entry.path());
    const std::string open = header.substr(0, header.find("\n private:"));
    for (const std::string& name : findAll(open, R"((?:RequestHandle|Operation<\S+>) (\w+)\()")) {
      names.insert(std::string(service).append(".").append(name));
    }
  }
  return names;
}

std::string withoutVariant(const std::string& name) { return name.substr(0, name.find(' ')); }

}  // namespace orvane::test
