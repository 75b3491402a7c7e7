// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/Files.h>

#include <filesystem>

namespace orvane {

std::optional<std::string> documentsFolder(std::string_view name) {
  const std::string& documents = DeviceSettings::current()->documentsDirectory;
  if (documents.empty()) return std::nullopt;
  std::error_code failure;
  const std::filesystem::path folder = std::filesystem::absolute(documents, failure);
  if (failure) return std::nullopt;
  return (folder / name).string();
}

std::error_code createFolder(const std::string& path) {
  std::error_code failure;
  std::filesystem::create_directories(path, failure);
  return failure;
}

}  // namespace orvane
