// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Testing/ScriptedDownloader.h>

#include <cstdint>
#include <fstream>
#include <utility>

namespace orvane {
namespace {

bool writeFile(const std::string& path, const std::string& contents) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << contents;
  file.close();
  return !file.fail();
}

}  // namespace

ScriptedDownloader::ScriptedDownloader(Answer answer) : Script(std::move(answer)) {}
ScriptedDownloader::~ScriptedDownloader() = default;

RequestHandle ScriptedDownloader::download(URL url, std::string path,
                                           DownloadProgressHandler progress,
                                           Completion<Unit> then) {
  auto write = [path, progress = std::move(progress),
                then = std::move(then)](Result<std::string> contents) mutable {
    if (!contents.value()) {
      return then(contents.error() ? Result<Unit>(*std::move(contents).error()) : Result<Unit>());
    }
    const auto size = static_cast<std::int64_t>(contents.value()->size());
    progress({.received = size, .total = size});
    if (!writeFile(path, *contents.value())) return then(NetworkError::unknown);
    then(Unit{});
  };
  return ask({std::move(url), std::move(path)}, std::move(write));
}

}  // namespace orvane
