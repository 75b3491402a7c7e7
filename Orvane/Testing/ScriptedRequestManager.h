// SPDX-License-Identifier: Apache-2.0
// A transport that sends nothing: it records every request and answers as a test tells it.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/Testing/Export.h>
#include <Orvane/Testing/Script.h>

#include <string>
#include <vector>

namespace orvane {

/// A request as it reached the transport.
struct RecordedRequest {
  Verb verb;           ///< What is asked of the resource.
  URL url;             ///< The whole URL, query included.
  Headers headers{};   ///< As the service gave them.
  std::string body{};  ///< The bytes; empty for a read.

  friend bool operator==(const RecordedRequest&, const RecordedRequest&) = default;

  /// Prints the request as HTTP would show it.
  template <class Stream>
  friend Stream& operator<<(Stream& stream, const RecordedRequest& request) {
    stream << wireText(request.verb) << ' ' << request.url.absoluteString() << '\n';
    for (const auto& [name, value] : request.headers) stream << name << ": " << value << '\n';
    stream << '\n' << request.body;
    return stream;
  }
};

/// The transport's double. Until it is told otherwise it answers every request at once with a
/// failure without an error.
///
/// ```cpp
/// auto transport = std::make_shared<ScriptedRequestManager>();
/// transport->answer(R"({"userId":"42"})");                           // from now on
/// transport->answerPath("/trips/17", {NetworkError::noData});         // that resource
/// transport->answer({"{}", AnswerTime::whenTold});                    // not before …
/// transport->answerWaiting();                                        // … this call
/// EXPECT_EQ(transport->questions().at(0).url.path(), "/users/42");
/// ```
class ORVANE_TESTING_EXPORT ScriptedRequestManager final
    : public RequestManager,
      public Script<RecordedRequest, std::string> {
 public:
  /// Answers `answer` until it is told otherwise.
  explicit ScriptedRequestManager(Answer answer = Result<std::string>{});
  ~ScriptedRequestManager() override;

  /// What requests are answered whose URL's path ends with `end`, in turn: the last one stays.
  void answerPath(std::string end, std::vector<Answer> answers);

  RequestHandle send(Verb verb, URL url, std::string body, Headers headers,
                     Completion<std::string> then) override;
};

}  // namespace orvane
