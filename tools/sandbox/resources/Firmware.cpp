// SPDX-License-Identifier: Apache-2.0
#include "resources/Firmware.h"

#include "JsonWriter.h"
#include "data/Archive.h"
#include "data/Random.h"
#include "http/Query.h"

#include <array>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace orvane::sandbox {

namespace {

constexpr std::size_t imageSize = 2'000'000;
constexpr const char* tag = "\"4417-2.2.2\"";

std::string makeImage() {
  Random random{4417};
  std::string image(imageSize, '\0');
  for (char& byte : image) byte = static_cast<char>(random.index(256));
  return image;
}

std::string makeManifest() {
  JsonWriter json;
  json.beginObject()
      .member("device", "4417")
      .member("version", "2.2.2")
      .member("image", "firmware.bin")
      .member("bytes", imageSize)
      .endObject();
  return json.take();
}

struct Range {
  std::size_t first;
  std::size_t last;
};

/// The one range that the header asks for. Absent for anything else than a single well-formed
/// range, which a server may ignore. Throws a 416 when it lies outside
/// or ends before it begins.
std::optional<Range> rangeOf(std::string_view header, std::size_t size) {
  if (!header.starts_with("bytes=")) return std::nullopt;
  header.remove_prefix(6);
  const auto dash = header.find('-');
  if (dash == std::string_view::npos || header.find(',') != std::string_view::npos) {
    return std::nullopt;
  }
  const auto first = parseInteger(header.substr(0, dash));
  const auto last = parseInteger(header.substr(dash + 1));
  const Problem unsatisfiable{416,
                              "range_not_satisfiable",
                              "the range lies outside the package",
                              {{"Content-Range", "bytes */" + std::to_string(size)}}};
  if (dash == 0) {
    if (!last) return std::nullopt;
    if (*last == 0) throw Problem{unsatisfiable};
    const auto count = std::min(static_cast<std::size_t>(*last), size);
    return Range{size - count, size - 1};
  }
  const bool open = dash + 1 == header.size();
  if (!first || (!last && !open)) return std::nullopt;
  const auto start = static_cast<std::size_t>(*first);
  if (start >= size || (last && *last < *first)) throw Problem{unsatisfiable};
  return Range{start, open ? size - 1 : std::min(static_cast<std::size_t>(*last), size - 1)};
}

}  // namespace

void makeFirmware(const std::filesystem::path& folder) {
  const auto file = folder / firmwarePackage;
  if (exists(file)) return;
  const std::array<ArchiveEntry, 2> entries{
      {{"manifest.json", makeManifest()}, {"firmware.bin", makeImage()}}};
  auto part = file;
  part += ".part";
  std::ofstream{part, std::ios::binary} << makeArchive(entries);
  rename(part, file);
}

Reply answerDownload(const std::filesystem::path& folder, const Request& request) {
  if (request.path.substr(downloads.size()) != firmwarePackage) {
    throw notFound("there is no such package");
  }
  if (request.method != "GET" && request.method != "HEAD") {
    throw Problem{405, "method_not_allowed", "packages are only read", {{"Allow", "GET, HEAD"}}};
  }
  std::ifstream file{folder / firmwarePackage, std::ios::binary};
  std::string package{std::istreambuf_iterator<char>{file}, {}};

  Reply reply;
  reply.contentType = "application/zip";
  reply.compressible = false;
  reply.headers = {{"Accept-Ranges", "bytes"}, {"ETag", tag}};
  const auto header = request.header("Range");
  const bool unchanged = request.header("If-Range").value_or(tag) == tag;
  const auto range = header && unchanged && request.method == "GET"
                         ? rangeOf(*header, package.size())
                         : std::nullopt;
  if (!range) {
    reply.body = std::move(package);
    return reply;
  }
  reply.status = 206;
  reply.headers.emplace_back("Content-Range", "bytes " + std::to_string(range->first) + "-" +
                                                  std::to_string(range->last) + "/" +
                                                  std::to_string(package.size()));
  reply.body = package.substr(range->first, range->last - range->first + 1);
  return reply;
}

}  // namespace orvane::sandbox
