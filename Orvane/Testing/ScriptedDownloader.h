// SPDX-License-Identifier: Apache-2.0
// A downloader that fetches nothing: it records every download and writes what a test tells it.
#pragma once

#include <Orvane/Common/Downloader.h>
#include <Orvane/Testing/Export.h>
#include <Orvane/Testing/Script.h>

#include <string>

namespace orvane {

/// What a `Downloader` is asked.
struct RecordedDownload {
  URL url;           ///< What to fetch.
  std::string path;  ///< Where it is to stand.

  friend bool operator==(const RecordedDownload&, const RecordedDownload&) = default;
};

/// The downloader's double. Its answers are the contents of the file, which it tells the progress
/// of, all at once, and writes before it calls the handler; or the error. Until it is told
/// otherwise it answers every download at once with a failure without an error.
class ORVANE_TESTING_EXPORT ScriptedDownloader final
    : public Downloader,
      public Script<RecordedDownload, std::string> {
 public:
  /// Answers `answer` until it is told otherwise.
  explicit ScriptedDownloader(Answer answer = Result<std::string>{});
  ~ScriptedDownloader() override;

  RequestHandle download(URL url, std::string path, DownloadProgressHandler progress,
                         Completion<Unit> then) override;
};

}  // namespace orvane
