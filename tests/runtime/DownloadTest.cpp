// SPDX-License-Identifier: Apache-2.0
// Downloads: what is asked of the server, what is on the disk at any time, and what is told.
#include "tests/runtime/support/TestServer.h"
#include "tests/support/Printing.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/Common/FirmwareHost.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/CurlDownloader.h>
#include <Orvane/Runtime/DownloadError.h>
#include <Orvane/Runtime/Runtime.h>
#include <Orvane/Runtime/TransportError.h>
#include <Orvane/Services/WedgeFirmware/WedgeFirmwareService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>
#include <chrono>
#include <filesystem>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;
using Kind = TransportError::Kind;

// Bytes of which no two stretches are the same.
std::string madeUpBytes(std::size_t count) {
  std::string bytes(count, '\0');
  std::uint32_t state = 4417;
  for (char& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<char>(state >> 24U);
  }
  return bytes;
}

std::string headerOf(const ReceivedRequest& request, const std::string& name) {
  const std::string start = "\r\n" + name + ": ";
  const std::size_t place = request.head.find(start);
  if (place == std::string::npos) return {};
  const std::size_t value = place + start.size();
  return request.head.substr(value, request.head.find('\r', value) - value);
}

// Publishes one file, as a server does that supports ranges.
class Publisher {
 public:
  std::string file = madeUpBytes(100'000);
  std::string validator = "ETag: \"one\"\r\n";
  // Ends the next answers after so many bytes of the file, one each.
  std::vector<std::size_t> cuts;
  // Keeps connections open after a cut instead of closing them.
  bool waitsAfterCut = false;

  [[nodiscard]] TestServer::Handler handler() {
    return [this](ServerConnection& connection, const ReceivedRequest& request) {
      const Answer answer = answerTo(request);
      connection.send(answer.head);
      connection.send(answer.body);
      if (!answer.isCut) return;
      if (waitsAfterCut) return connection.waitUntilClosed();
      connection.cut();
    };
  }

  // "GET <target>[ <Range>[ if <If-Range>]]" for each request.
  [[nodiscard]] std::vector<std::string> requests() const {
    const std::scoped_lock lock(mutex_);
    return requests_;
  }

 private:
  struct Answer {
    std::string head;
    std::string body;
    bool isCut = false;
  };

  [[nodiscard]] bool isUnchanged(const ReceivedRequest& request) const {
    const std::string condition = headerOf(request, "If-Range");
    return condition.empty() || validator.find(": " + condition + "\r\n") != std::string::npos;
  }

  Answer answerTo(const ReceivedRequest& request) {
    const std::scoped_lock lock(mutex_);
    const std::string range = headerOf(request, "Range");
    std::string line = request.method() + " " + request.target();
    if (!range.empty()) line += " " + range;
    if (const auto condition = headerOf(request, "If-Range"); !condition.empty()) {
      line += " if " + condition;
    }
    requests_.push_back(line);

    Answer answer;
    if (!range.empty() && isUnchanged(request)) {
      std::size_t first = 0;
      std::from_chars(range.data() + 6, range.data() + range.size(), first);
      answer.body = file.substr(first);
      answer.head = "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes " +
                    std::to_string(first) + "-" + std::to_string(file.size() - 1) + "/" +
                    std::to_string(file.size()) + "\r\n";
    } else {
      answer.body = file;
      answer.head = "HTTP/1.1 200 OK\r\n";
    }
    answer.head += "Content-Length: " + std::to_string(answer.body.size()) + "\r\n" + validator +
                   "Date: Tue, 14 Nov 2023 22:13:20 GMT\r\n\r\n";
    if (!cuts.empty()) {
      answer.body.resize(cuts.front());
      answer.isCut = true;
      cuts.erase(cuts.begin());
    }
    return answer;
  }

  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
};

class DownloadTest : public testing::Test {
 protected:
  [[nodiscard]] static std::shared_ptr<CurlDownloader> downloaderWith(TransportOptions options) {
    return CurlDownloader::make(std::move(options)).value().value();
  }

  // Downloads, and answers what comes of it.
  [[nodiscard]] Result<Unit> download(Downloader& downloader, const std::string& url) {
    std::promise<Result<Unit>> promise;
    auto outcome = promise.get_future();
    progress_.clear();
    downloader.download(
        *URL::parse(url), target_,
        [this](const DownloadProgress& progress) { progress_.push_back(progress); },
        [&promise](Result<Unit> result) { promise.set_value(std::move(result)); });
    return outcome.get();
  }
  [[nodiscard]] Result<Unit> download(const std::string& url) {
    return download(*downloader_, url);
  }

  // The names of what is in the folder.
  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  const TemporaryFolder folder_;
  const std::string target_ = folder_ / "image.zip";
  const std::shared_ptr<CurlDownloader> downloader_ = downloaderWith({});
  std::vector<DownloadProgress> progress_;
};

TEST_F(DownloadTest, putsTheWholeFileInItsPlace) {
  std::string head;
  const std::string bytes = madeUpBytes(3'000'000);
  const TestServer server([&](ServerConnection& connection, const ReceivedRequest& request) {
    head = request.head;
    connection.answer(200, bytes, "ETag: \"one\"\r\n");
  });
  writeFile(target_, "former");
  EXPECT_EQ(download(server.url("/image.zip?signed=yes")), Unit{});
  EXPECT_TRUE(contentsOf(target_) == bytes);
  EXPECT_THAT(names(), ElementsAre("image.zip"));
  EXPECT_THAT(head, HasSubstr("GET /image.zip?signed=yes HTTP/1.1"));
  EXPECT_THAT(head, HasSubstr("Accept-Encoding: identity"));
  for (const char* name : {"Range", "If-Range", "Authorization", "Content-Length"}) {
    EXPECT_THAT(head, Not(HasSubstr("\r\n" + std::string(name) + ":")));
  }

  ASSERT_FALSE(progress_.empty());
  std::int64_t received = 0;
  for (const DownloadProgress& progress : progress_) {
    EXPECT_GT(progress.received, std::exchange(received, progress.received));
    EXPECT_EQ(progress.total, 3'000'000);
  }
  EXPECT_EQ(received, 3'000'000);
}

TEST_F(DownloadTest, takesFilesOfAnyAnnouncement) {
  struct Row {
    const char* answer;
    std::string file;
    std::optional<std::int64_t> total;
  };
  const Row rows[] = {
      {"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", "", {}},
      {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", "abc", {}},
      {"HTTP/1.0 200 OK\r\n\r\nabcd", "abcd", {}},
      {"HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Encoding: identity\r\n\r\nab", "ab", 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.answer);
    const TestServer server([&](ServerConnection& connection, const ReceivedRequest&) {
      connection.send(row.answer);
      connection.cut();
    });
    writeFile(target_, "former");
    EXPECT_EQ(download(server.url()), Unit{});
    EXPECT_EQ(contentsOf(target_), row.file);
    if (!row.file.empty()) {
      EXPECT_EQ(progress_.back(),
                (DownloadProgress{static_cast<std::int64_t>(row.file.size()), row.total}));
    }
    EXPECT_THAT(names(), ElementsAre("image.zip"));
  }
}

TEST_F(DownloadTest, goesOnWhereItWasCut) {
  struct Row {
    const char* name;
    const char* validator;
    std::string secondRequest;
  };
  const Row rows[] = {
      {"strong tag", "ETag: \"one\"\r\n", "GET / bytes=39999- if \"one\""},
      {"tag and time", "Last-Modified: Tue, 14 Nov 2023 22:00:00 GMT\r\nETag: \"one\"\r\n",
       "GET / bytes=39999- if \"one\""},
      {"time that lies back", "Last-Modified: Tue, 14 Nov 2023 22:12:20 GMT\r\n",
       "GET / bytes=39999- if Tue, 14 Nov 2023 22:12:20 GMT"},
      {"time just now", "Last-Modified: Tue, 14 Nov 2023 22:12:21 GMT\r\n", "GET /"},
      {"weak tag", "ETag: W/\"one\"\r\n", "GET /"},
      {"nothing", "", "GET /"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Publisher publisher;
    publisher.validator = row.validator;
    publisher.cuts = {40'000};
    const TestServer server(publisher.handler());
    writeFile(target_, "former");

    const auto cut = download(server.url());
    ASSERT_TRUE(cut.error() && cut.error()->as<TransportError>());
    EXPECT_EQ(cut.error()->as<TransportError>()->kind(), Kind::cutOff);
    EXPECT_EQ(contentsOf(target_), "former");
    const bool continues = row.secondRequest != "GET /";
    EXPECT_EQ(names().size(), continues ? 3U : 1U);

    EXPECT_EQ(download(server.url()), Unit{});
    EXPECT_TRUE(contentsOf(target_) == publisher.file);
    EXPECT_THAT(publisher.requests(), ElementsAre("GET /", row.secondRequest));
    EXPECT_THAT(names(), ElementsAre("image.zip"));
    EXPECT_EQ(progress_.back(), (DownloadProgress{100'000, 100'000}));
    EXPECT_EQ(progress_.front().received >= 40'000, continues);
  }
}

TEST_F(DownloadTest, goesOnAsOftenAsItTakes) {
  Publisher publisher;
  publisher.cuts = {1, 50'000, 0};
  const TestServer server(publisher.handler());
  EXPECT_FALSE(download(server.url()));
  EXPECT_FALSE(download(server.url()));
  EXPECT_FALSE(download(server.url()));
  EXPECT_EQ(download(server.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_THAT(publisher.requests(),
              ElementsAre("GET /", "GET / bytes=0- if \"one\"", "GET / bytes=49999- if \"one\"",
                          "GET / bytes=49999- if \"one\""));
}

// As after a cancellation with the last byte, or a power cut before the renaming.
TEST_F(DownloadTest, completesWhatIsAllThere) {
  Publisher publisher;
  publisher.cuts = {40'000};
  const TestServer server(publisher.handler());
  EXPECT_FALSE(download(server.url()));
  writeFile(target_ + ".part", publisher.file);
  EXPECT_EQ(download(server.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_EQ(publisher.requests().back(), "GET / bytes=99999- if \"one\"");
}

TEST_F(DownloadTest, startsAnewForAnotherFile) {
  Publisher publisher;
  publisher.cuts = {40'000};
  const TestServer server(publisher.handler());
  EXPECT_FALSE(download(server.url()));

  publisher.file = madeUpBytes(70'000) + "changed";
  publisher.validator = "ETag: \"two\"\r\n";
  EXPECT_EQ(download(server.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_EQ(progress_.front().total, 70'007);
}

TEST_F(DownloadTest, doesNotContinueAnotherURL) {
  Publisher publisher;
  publisher.cuts = {40'000};
  const TestServer server(publisher.handler());
  EXPECT_FALSE(download(server.url("/a?signature=secret")));
  EXPECT_THAT(contentsOf(target_ + ".part.from"), Not(HasSubstr("secret")));
  EXPECT_EQ(download(server.url("/b")), Unit{});
  EXPECT_THAT(publisher.requests(), ElementsAre("GET /a?signature=secret", "GET /b"));
}

TEST_F(DownloadTest, trustsOnlyWholeNotes) {
  struct Row {
    const char* name;
    std::function<std::string(std::string)> change;
  };
  const Row rows[] = {
      {"cut", [](std::string note) { return note.substr(0, note.size() - 1); }},
      {"cut further", [](std::string note) { return note.substr(0, note.size() - 3); }},
      {"empty", [](const std::string&) { return std::string(); }},
      {"other bytes",
       [](std::string note) {
         note[note.size() - 2] = '\1';
         return note;
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Publisher publisher;
    publisher.cuts = {40'000};
    const TestServer server(publisher.handler());
    EXPECT_FALSE(download(server.url()));
    const std::string note = target_ + ".part.from";
    writeFile(note, row.change(contentsOf(note)));
    EXPECT_EQ(download(server.url()), Unit{});
    EXPECT_THAT(publisher.requests(), ElementsAre("GET /", "GET /"));
    EXPECT_TRUE(contentsOf(target_) == publisher.file);
  }
}

// Each answer is given to a download that has 40,000 bytes; the next download starts anew where
// they can't be trusted any more.
TEST_F(DownloadTest, survivesAnswersThatAreNoFile) {
  const Error noPart =
      TransportError(Kind::protocol, "the answer is not the part that was asked for");
  struct Row {
    const char* answer;
    std::optional<Error> error;
    bool isKept;
  };
  const Row rows[] = {
      {"HTTP/1.1 404 Gone\r\nContent-Length: 3\r\n\r\nabc", NetworkError::invalidStatusCode(404),
       true},
      {"HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n", NetworkError::invalidStatusCode(503),
       true},
      {"HTTP/1.1 302 Elsewhere\r\nLocation: /\r\nContent-Length: 0\r\n\r\n",
       NetworkError::invalidStatusCode(302), true},
      {"HTTP/1.1 416 No range\r\nContent-Length: 0\r\n\r\n", NetworkError::invalidStatusCode(416),
       false},
      {"HTTP/1.1 204 Nothing\r\n\r\n", TransportError(Kind::protocol, "the answer is no file"),
       true},
      {"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 3\r\n\r\nabc",
       TransportError(Kind::protocol, "the file comes compressed, unasked"), true},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 0-2/3\r\nContent-Length: 3\r\n\r\nabc", noPart,
       false},
      {"HTTP/1.1 206 Part\r\nContent-Length: 3\r\n\r\nabc", noPart, false},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 39999-x/3\r\nContent-Length: 3\r\n\r\nabc",
       noPart, false},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 39999-40001/100000\r\nContent-Length: 3\r\n\r\n"
       "abc",
       TransportError(Kind::cutOff, "a part of the file is missing"), true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.answer);
    Publisher publisher;
    publisher.cuts = {40'000};
    bool isRude = false;
    const TestServer server([&, polite = publisher.handler()](ServerConnection& connection,
                                                              const ReceivedRequest& request) {
      if (!std::exchange(isRude, false)) return polite(connection, request);
      connection.send(row.answer);
    });
    writeFile(target_, "former");
    EXPECT_FALSE(download(server.url()));
    isRude = true;
    EXPECT_EQ(download(server.url()).error(), row.error);
    EXPECT_EQ(contentsOf(target_), "former");
    EXPECT_EQ(names().size(), row.isKept ? 3U : 1U);
    static_cast<void>(download(server.url()));
    EXPECT_EQ(publisher.requests().back().find("bytes=") != std::string::npos, row.isKept);
  }
}

TEST_F(DownloadTest, refusesAPartNobodyAskedFor) {
  const TestServer server([](ServerConnection& connection, const ReceivedRequest&) {
    connection.answer(206, "abc", "Content-Range: bytes 0-2/3\r\n");
  });
  const auto result = download(server.url());
  ASSERT_TRUE(result.error() && result.error()->as<TransportError>());
  EXPECT_EQ(result.error()->as<TransportError>()->kind(), Kind::protocol);
  EXPECT_TRUE(names().empty());
}

TEST_F(DownloadTest, trustsTheGivenAuthorityOnly) {
  const Authority authority;
  const Authority stranger;
  Publisher publisher;
  const TestServer server(publisher.handler(), authority.issue({}));
  writeFile(target_, "former");
  for (const TransportOptions& options :
       {TransportOptions{}, TransportOptions{.caPEM = stranger.pem()}}) {
    const auto result = download(*downloaderWith(options), server.url());
    ASSERT_TRUE(result.error() && result.error()->as<TransportError>());
    EXPECT_EQ(result.error()->as<TransportError>()->kind(), Kind::tls);
    EXPECT_EQ(contentsOf(target_), "former");
    EXPECT_THAT(names(), ElementsAre("image.zip"));
  }
  EXPECT_EQ(download(*downloaderWith({.caPEM = authority.pem()}), server.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
}

TEST_F(DownloadTest, sendsNothingInTheClear) {
  const auto result = download("http://firmware.example/image.zip");
  ASSERT_TRUE(result.error() && result.error()->as<TransportError>());
  EXPECT_EQ(result.error()->as<TransportError>()->kind(), Kind::insecure);
}

TEST_F(DownloadTest, takesAsLongAsBytesKeepComing) {
  Publisher publisher;
  publisher.file = madeUpBytes(4'000'000);
  const TestServer server(publisher.handler());
  const auto hurried =
      downloaderWith({.totalTimeout = std::chrono::milliseconds(1), .maximumAnswerSize = 1000});
  EXPECT_EQ(download(*hurried, server.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
}

// A download that has begun and waits for more.
struct Begun {
  RequestHandle request;
  std::shared_ptr<std::promise<void>> begun = std::make_shared<std::promise<void>>();
  std::promise<Result<Unit>> outcome;

  void start(Downloader& downloader, const std::string& url, const std::string& target) {
    request = downloader.download(
        *URL::parse(url), target,
        [begun = begun](const DownloadProgress& progress) {
          if (progress.received == 40'000) begun->set_value();
        },
        [this](Result<Unit> result) { outcome.set_value(std::move(result)); });
    begun->get_future().wait();
  }
};

TEST_F(DownloadTest, canBeCancelledAndTakenUpAtOnce) {
  Publisher publisher;
  publisher.cuts = {40'000};
  publisher.waitsAfterCut = true;
  const TestServer server(publisher.handler());
  writeFile(target_, "former");
  Begun cancelled;
  cancelled.start(*downloader_, server.url(), target_);
  EXPECT_TRUE(cancelled.request->cancel());
  EXPECT_TRUE(cancelled.request->isFinished());
  EXPECT_EQ(contentsOf(target_), "former");

  EXPECT_EQ(download(server.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_EQ(publisher.requests().back(), "GET / bytes=39999- if \"one\"");
  EXPECT_EQ(cancelled.outcome.get_future().wait_for(std::chrono::seconds(0)),
            std::future_status::timeout);
}

TEST_F(DownloadTest, keepsOthersFromTheSameFile) {
  Publisher publisher;
  publisher.cuts = {40'000};
  publisher.waitsAfterCut = true;
  const TestServer server(publisher.handler());
  Begun first;
  first.start(*downloader_, server.url(), target_);
  const auto other = downloaderWith({});
  for (Downloader* second : {downloader_.get(), other.get()}) {
    EXPECT_EQ(download(*second, server.url()), DownloadError(DownloadError::Kind::busy));
  }
  EXPECT_THAT(names(), UnorderedElementsAre("image.zip.part", "image.zip.part.from"));
  EXPECT_TRUE(downloader_->shutdown());
  EXPECT_EQ(first.outcome.get_future().get(), TransportError(Kind::cancelled));
  EXPECT_EQ(download(server.url()), TransportError(Kind::cancelled));
  EXPECT_EQ(download(*other, server.url()), Unit{});
}

TEST_F(DownloadTest, tellsWhatIsWrongWithTheFile) {
  Publisher publisher;
  const TestServer server(publisher.handler());
  std::filesystem::create_directories(folder_ / "folder");
  std::filesystem::create_symlink("elsewhere", folder_ / "linked.part");
  for (const char* name : {"missing/image.zip", "folder", "linked"}) {
    SCOPED_TRACE(name);
    std::promise<Result<Unit>> promise;
    downloader_->download(*URL::parse(server.url()), folder_ / name, nullptr,
                          [&](Result<Unit> result) { promise.set_value(std::move(result)); });
    const auto result = promise.get_future().get();
    ASSERT_TRUE(result.error() && result.error()->as<DownloadError>());
    EXPECT_EQ(result.error()->as<DownloadError>()->kind(), DownloadError::Kind::file);
    EXPECT_THAT(result.error()->message(), Not(HasSubstr(folder_.path().string())));
  }
}

TEST_F(DownloadTest, bringsFirmwareThroughTheRuntime) {
  const ScopedFoundation restoresTheContainer;
  const ScopedDeviceSettings settings({.documentsDirectory = folder_.path().string()});
  Publisher publisher;
  const TestServer server(publisher.handler());
  const auto options = [](std::string host) {
    return RuntimeOptions{.baseURL = "https://telematics.example",
                          .tokens = "token",
                          .firmwareHost = std::move(host)};
  };
  const auto wrong = Runtime::install(options("no host"));
  ASSERT_TRUE(wrong.error());
  EXPECT_EQ(*wrong.error(), ConfigurationError("firmwareHost is no URL"));

  const auto runtime = Runtime::install(options(server.url()));
  ASSERT_TRUE(runtime);
  std::promise<std::optional<std::string>> version;
  WedgeFirmwareService().downloadFirmware(
      [&](std::optional<std::string> downloaded) { version.set_value(std::move(downloaded)); });
  EXPECT_EQ(version.get_future().get(), "2.2.2");
  EXPECT_TRUE(contentsOf(folder_ / "firmware/DFU_4417_Release___2_2_2.zip") == publisher.file);
  EXPECT_THAT(publisher.requests(), ElementsAre("GET /downloads/DFU_4417_Release___2_2_2.zip"));
  EXPECT_TRUE(runtime.value()->shutdown());
}

}  // namespace
}  // namespace orvane
