// SPDX-License-Identifier: Apache-2.0
// Downloads: what is asked of the server, what is on the disk at any time, and what is told.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/TestServer.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/CurlDownloader.h>
#include <Orvane/Runtime/DownloadError.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
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

// Publishes one file, as a server does that supports ranges.
class Publisher {
 public:
  // Ends the first answers after so many bytes of the file, one each.
  explicit Publisher(std::vector<std::size_t> cuts = {},
                     std::optional<Credentials> credentials = {})
      : cuts_(std::move(cuts)),
        server_([this](ServerConnection& connection,
                       const ReceivedRequest& request) { answer(connection, request); },
                std::move(credentials)) {}

  std::string file = madeUpBytes(100'000);
  std::string validator = "ETag: \"one\"\r\n";
  // Keeps connections open after a cut instead of closing them.
  bool waitsAfterCut = false;
  // What is answered to the next request, whatever it asks for, before the connection ends.
  const char* rudeAnswer = nullptr;
  // That end is a proper one.
  bool takesLeave = false;

  [[nodiscard]] std::string url(std::string_view target = "/") const { return server_.url(target); }

  // "GET <target>[ <Range>[ if <If-Range>]]" for each request.
  [[nodiscard]] std::vector<std::string> requests() const {
    std::vector<std::string> lines;
    for (const ReceivedRequest& request : server_.requests()) {
      std::string& line = lines.emplace_back(request.method() + " " + request.target());
      if (const auto range = request.header("Range"); !range.empty()) line += " " + range;
      if (const auto condition = request.header("If-Range"); !condition.empty()) {
        line += " if " + condition;
      }
    }
    return lines;
  }

 private:
  struct Answer {
    std::string head;
    std::string body;
    bool isCut = false;
  };

  [[nodiscard]] bool isUnchanged(const ReceivedRequest& request) const {
    const std::string condition = request.header("If-Range");
    return condition.empty() || validator.find(": " + condition + "\r\n") != std::string::npos;
  }

  void answer(ServerConnection& connection, const ReceivedRequest& request) {
    if (const char* rude = std::exchange(rudeAnswer, nullptr); rude != nullptr) {
      connection.send(rude);
      return takesLeave ? connection.end() : connection.cut();
    }
    const Answer answer = answerTo(request);
    connection.send(answer.head);
    connection.send(answer.body);
    if (!answer.isCut) return;
    if (waitsAfterCut) return connection.waitUntilClosed();
    connection.cut();
  }

  Answer answerTo(const ReceivedRequest& request) {
    const std::scoped_lock lock(mutex_);
    const std::string range = request.header("Range");
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
    if (!cuts_.empty()) {
      answer.body.resize(cuts_.front());
      answer.isCut = true;
      cuts_.erase(cuts_.begin());
    }
    return answer;
  }

  std::mutex mutex_;
  std::vector<std::size_t> cuts_;
  const TestServer server_;
};

class DownloadTest : public testing::Test {
 protected:
  [[nodiscard]] static std::shared_ptr<CurlDownloader> downloaderWith(TransportOptions options) {
    return CurlDownloader::make(std::move(options)).value().value();
  }

  // Downloads, and answers what comes of it.
  [[nodiscard]] Result<Unit> download(Downloader& downloader, const std::string& url,
                                      const std::string& target) {
    std::promise<Result<Unit>> promise;
    auto outcome = promise.get_future();
    progress_.clear();
    downloader.download(
        *URL::parse(url), target,
        [this](const DownloadProgress& progress) { progress_.push_back(progress); },
        [&promise](Result<Unit> result) { promise.set_value(std::move(result)); });
    return outcome.get();
  }
  [[nodiscard]] Result<Unit> download(const std::string& url) {
    return download(*downloader_, url, target_);
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
  const std::string bytes = madeUpBytes(3'000'000);
  const TestServer server(answering(bytes));
  writeFile(target_, "former");
  EXPECT_EQ(download(server.url("/image.zip?signed=yes")), Unit{});
  EXPECT_TRUE(contentsOf(target_) == bytes);
  EXPECT_THAT(names(), ElementsAre("image.zip"));
  const std::string head = server.requests().at(0).head;
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
  const std::tuple<const char*, std::string, std::optional<std::int64_t>> rows[] = {
      {"HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", "", {}},
      {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", "abc", {}},
      {"HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Encoding: identity\r\n\r\nab", "ab", 2},
  };
  for (const auto& [answer, file, total] : rows) {
    SCOPED_TRACE(answer);
    Publisher publisher;
    publisher.rudeAnswer = answer;
    writeFile(target_, "former");
    EXPECT_EQ(download(publisher.url()), Unit{});
    EXPECT_EQ(contentsOf(target_), file);
    if (!file.empty()) {
      EXPECT_EQ(progress_.back(),
                (DownloadProgress{static_cast<std::int64_t>(file.size()), total}));
    }
    EXPECT_THAT(names(), ElementsAre("image.zip"));
  }
}

// The farewell of TLS is an end as good as a length.
TEST_F(DownloadTest, takesAFileOfUnknownLengthWithAFarewellOnly) {
  const Authority authority;
  const auto downloader = downloaderWith({.caPEM = authority.pem()});
  writeFile(target_, "former");
  for (const bool takesLeave : {false, true}) {
    Publisher publisher({}, authority.issue({}));
    publisher.rudeAnswer = "HTTP/1.1 200 OK\r\n\r\nabc";
    publisher.takesLeave = takesLeave;
    EXPECT_EQ(kindOf(download(publisher.url())), Kind::tls) << "of an authority that is not known";
    EXPECT_EQ(kindOf(download(*downloader, publisher.url(), target_)),
              takesLeave ? std::nullopt : std::optional(Kind::cutOff));
    EXPECT_EQ(contentsOf(target_), takesLeave ? "abc" : "former");
  }
}

TEST_F(DownloadTest, goesOnWhereItWasCut) {
  const std::string tagged = "GET / bytes=39999- if \"one\"";
  // What the server tells about the file, and what it is asked for then.
  const std::pair<const char*, std::string> rows[] = {
      {"ETag: \"one\"\r\n", tagged},
      {"Last-Modified: Tue, 14 Nov 2023 22:00:00 GMT\r\nETag: \"one\"\r\n", tagged},
      // A time counts once it lies back.
      {"Last-Modified: Tue, 14 Nov 2023 22:12:20 GMT\r\n",
       "GET / bytes=39999- if Tue, 14 Nov 2023 22:12:20 GMT"},
      {"Last-Modified: Tue, 14 Nov 2023 22:12:21 GMT\r\n", "GET /"},
      {"ETag: W/\"one\"\r\n", "GET /"},
      {"", "GET /"},
  };
  for (const auto& [validator, request] : rows) {
    SCOPED_TRACE(validator);
    Publisher publisher({40'000});
    publisher.validator = validator;
    writeFile(target_, "former");
    EXPECT_EQ(kindOf(download(publisher.url())), Kind::cutOff);
    EXPECT_EQ(contentsOf(target_), "former");
    const bool continues = request != "GET /";
    EXPECT_EQ(names().size(), continues ? 3U : 1U);

    EXPECT_EQ(download(publisher.url()), Unit{});
    EXPECT_TRUE(contentsOf(target_) == publisher.file);
    EXPECT_THAT(publisher.requests(), ElementsAre("GET /", request));
    EXPECT_THAT(names(), ElementsAre("image.zip"));
    EXPECT_EQ(progress_.back(), (DownloadProgress{100'000, 100'000}));
    EXPECT_EQ(progress_.front().received >= 40'000, continues);
  }
}

TEST_F(DownloadTest, goesOnAsOftenAsItTakes) {
  const Publisher publisher({1, 50'000, 0});
  for (const bool succeeds : {false, false, false, true}) {
    EXPECT_EQ(download(publisher.url()) == Unit{}, succeeds);
  }
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_THAT(publisher.requests(),
              ElementsAre("GET /", "GET / bytes=0- if \"one\"", "GET / bytes=49999- if \"one\"",
                          "GET / bytes=49999- if \"one\""));
}

// As after a cancellation with the last byte, or a power cut before the renaming.
TEST_F(DownloadTest, completesWhatIsAllThere) {
  const Publisher publisher({40'000});
  EXPECT_FALSE(download(publisher.url()));
  writeFile(target_ + ".part", publisher.file);
  EXPECT_EQ(download(publisher.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_EQ(publisher.requests().back(), "GET / bytes=99999- if \"one\"");
}

TEST_F(DownloadTest, startsAnewForAnotherFile) {
  Publisher publisher({40'000});
  EXPECT_FALSE(download(publisher.url()));
  publisher.file = madeUpBytes(70'000) + "changed";
  publisher.validator = "ETag: \"two\"\r\n";
  EXPECT_EQ(download(publisher.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_EQ(progress_.front().total, 70'007);
}

TEST_F(DownloadTest, doesNotContinueAnotherURL) {
  const Publisher publisher({40'000});
  EXPECT_FALSE(download(publisher.url("/a?signature=secret")));
  EXPECT_THAT(contentsOf(target_ + ".part.from"), Not(HasSubstr("secret")));
  EXPECT_EQ(download(publisher.url("/b")), Unit{});
  EXPECT_THAT(publisher.requests(), ElementsAre("GET /a?signature=secret", "GET /b"));
}

TEST_F(DownloadTest, trustsOnlyWholeNotes) {
  const std::string path = target_ + ".part.from";
  // How much of the note's end is lost, and what stands there instead.
  const std::pair<std::size_t, const char*> rows[] = {{1, ""}, {3, ""}, {1000, ""}, {2, "\1\n"}};
  for (const auto& [lost, instead] : rows) {
    const Publisher publisher({40'000});
    EXPECT_FALSE(download(publisher.url()));
    const std::string note = contentsOf(path);
    writeFile(path, note.substr(0, note.size() - std::min(lost, note.size())) + instead);
    SCOPED_TRACE(contentsOf(path));
    EXPECT_EQ(download(publisher.url()), Unit{});
    EXPECT_THAT(publisher.requests(), ElementsAre("GET /", "GET /"));
    EXPECT_TRUE(contentsOf(target_) == publisher.file);
  }
}

// Each answer is given to a download that has 40,000 bytes; the next download starts anew where
// they can't be trusted any more.
TEST_F(DownloadTest, survivesAnswersThatAreNoFile) {
  const Error noPart =
      TransportError(Kind::protocol, "the answer is not the part that was asked for");
  const auto refused = [](int status) { return Error(NetworkError::invalidStatusCode(status)); };
  const std::tuple<const char*, Error, bool> rows[] = {
      {"HTTP/1.1 404 Gone\r\nContent-Length: 3\r\n\r\nabc", refused(404), true},
      {"HTTP/1.1 503 Busy\r\nContent-Length: 0\r\n\r\n", refused(503), true},
      {"HTTP/1.1 302 Elsewhere\r\nLocation: /\r\nContent-Length: 0\r\n\r\n", refused(302), true},
      {"HTTP/1.1 416 No range\r\nContent-Length: 0\r\n\r\n", refused(416), false},
      {"HTTP/1.1 204 Nothing\r\n\r\n", TransportError(Kind::protocol, "the answer is no file"),
       true},
      {"HTTP/1.0 200 OK\r\n\r\nabcd",
       TransportError(Kind::protocol, "the answer does not tell where the file ends"), true},
      {"HTTP/1.1 200 OK\r\n", TransportError(Kind::cutOff, "it ended within its headers"), true},
      {"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 3\r\n\r\nabc",
       TransportError(Kind::protocol, "the file comes compressed, unasked"), true},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 0-2/3\r\nContent-Length: 3\r\n\r\nabc", noPart,
       false},
      {"HTTP/1.1 206 Part\r\nContent-Length: 3\r\n\r\nabc", noPart, false},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 39999-40001/*\r\nContent-Length: 3\r\n\r\nabc",
       noPart, false},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 39999-x/3\r\nContent-Length: 3\r\n\r\nabc",
       noPart, false},
      {"HTTP/1.1 206 Part\r\nContent-Range: bytes 39999-40001/100000\r\nContent-Length: 3\r\n\r\n"
       "abc",
       TransportError(Kind::cutOff, "a part of the file is missing"), true},
  };
  for (const auto& [answer, error, isKept] : rows) {
    SCOPED_TRACE(answer);
    Publisher publisher({40'000});
    writeFile(target_, "former");
    EXPECT_FALSE(download(publisher.url()));
    publisher.rudeAnswer = answer;
    EXPECT_EQ(download(publisher.url()).error(), error);
    EXPECT_EQ(contentsOf(target_), "former");
    EXPECT_EQ(names().size(), isKept ? 3U : 1U);
    static_cast<void>(download(publisher.url()));
    EXPECT_EQ(publisher.requests().back().find("bytes=") != std::string::npos, isKept);
  }
}

TEST_F(DownloadTest, refusesAPartNobodyAskedForAndPlainHTTP) {
  Publisher publisher;
  publisher.rudeAnswer =
      "HTTP/1.1 206 Part\r\nContent-Range: bytes 0-2/3\r\nContent-Length: 3\r\n\r\nabc";
  EXPECT_EQ(kindOf(download(publisher.url())), Kind::protocol);
  EXPECT_TRUE(names().empty());
  EXPECT_EQ(kindOf(download("http://firmware.example/image.zip")), Kind::insecure);
}

TEST_F(DownloadTest, takesAsLongAsBytesKeepComing) {
  Publisher publisher;
  publisher.file = madeUpBytes(4'000'000);
  const auto hurried =
      downloaderWith({.totalTimeout = std::chrono::milliseconds(1), .maximumAnswerSize = 1000});
  EXPECT_EQ(download(*hurried, publisher.url(), target_), Unit{});
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
  Publisher publisher({40'000});
  publisher.waitsAfterCut = true;
  writeFile(target_, "former");
  Begun cancelled;
  cancelled.start(*downloader_, publisher.url(), target_);
  EXPECT_TRUE(cancelled.request->cancel());
  EXPECT_TRUE(cancelled.request->isFinished());
  EXPECT_EQ(contentsOf(target_), "former");

  EXPECT_EQ(download(publisher.url()), Unit{});
  EXPECT_TRUE(contentsOf(target_) == publisher.file);
  EXPECT_EQ(publisher.requests().back(), "GET / bytes=39999- if \"one\"");
  EXPECT_EQ(cancelled.outcome.get_future().wait_for(std::chrono::seconds(0)),
            std::future_status::timeout);
}

TEST_F(DownloadTest, keepsOthersFromTheSameFile) {
  Publisher publisher({40'000});
  publisher.waitsAfterCut = true;
  Begun first;
  first.start(*downloader_, publisher.url(), target_);
  const auto other = downloaderWith({});
  for (Downloader* second : {downloader_.get(), other.get()}) {
    EXPECT_EQ(download(*second, publisher.url(), target_),
              DownloadError(DownloadError::Kind::busy));
  }
  EXPECT_THAT(names(), UnorderedElementsAre("image.zip.part", "image.zip.part.from"));
  EXPECT_TRUE(downloader_->shutdown());
  EXPECT_EQ(first.outcome.get_future().get(), TransportError(Kind::cancelled));
  EXPECT_EQ(download(publisher.url()), TransportError(Kind::cancelled));
  EXPECT_EQ(download(*other, publisher.url(), target_), Unit{});
}

TEST_F(DownloadTest, tellsWhatIsWrongWithTheFile) {
  const Publisher publisher;
  std::filesystem::create_directories(folder_ / "folder");
  std::filesystem::create_symlink("elsewhere", folder_ / "linked.part");
  for (const char* name : {"missing/image.zip", "folder", "linked"}) {
    SCOPED_TRACE(name);
    const auto result = download(*downloader_, publisher.url(), folder_ / name);
    ASSERT_TRUE(result.error() && result.error()->as<DownloadError>());
    EXPECT_EQ(result.error()->as<DownloadError>()->kind(), DownloadError::Kind::file);
    EXPECT_THAT(result.error()->message(), Not(HasSubstr(folder_.path().string())));
  }
}

}  // namespace
}  // namespace orvane
