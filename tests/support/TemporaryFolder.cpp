// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp is of POSIX

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace orvane {

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "orvane-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& contents) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << contents;
}

}  // namespace orvane
