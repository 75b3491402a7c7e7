// SPDX-License-Identifier: Apache-2.0
// Any bytes as the command line's file of settings: there are entries, each of which stands in it,
// or an error that says in which line.
#include "ConfigurationFile.h"
#include "ExitCode.h"
#include "fuzz/Bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <set>
#include <string>

namespace {

using namespace orvane;

// A file in memory.
class File {
 public:
  explicit File(std::string_view text) : descriptor_(::memfd_create("settings", 0)) {
    require(descriptor_ >= 0);
    require(::write(descriptor_, text.data(), text.size()) == static_cast<ssize_t>(text.size()));
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { ::close(descriptor_); }

  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  const int descriptor_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  const File file(text);
  try {
    std::set<std::string> names;
    for (const auto& [name, value] : cli::readConfigurationFile(file.path())) {
      require(!name.empty() && names.insert(name).second);
      require(text.find(name) != std::string_view::npos);
      require(text.find(value) != std::string_view::npos);
    }
  } catch (const cli::Failure& failure) {
    require(failure.code() == cli::ExitCode::configuration);
    require(std::string_view(failure.what()).find(": line ") != std::string_view::npos);
  }
  return 0;
}
