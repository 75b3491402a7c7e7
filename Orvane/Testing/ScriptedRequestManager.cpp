// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/ScriptedRequestManager.h>

namespace orvane {

ScriptedRequestManager::ScriptedRequestManager(Answer answer) : Script(std::move(answer)) {}
ScriptedRequestManager::~ScriptedRequestManager() = default;

void ScriptedRequestManager::answerPath(std::string end, std::vector<Answer> answers) {
  answerWhere([end = std::move(end)](
                  const RecordedRequest& request) { return request.url.path().ends_with(end); },
              std::move(answers));
}

RequestHandle ScriptedRequestManager::send(Verb verb, URL url, std::string body, Headers headers,
                                           Completion<std::string> then) {
  return ask({verb, std::move(url), std::move(headers), std::move(body)}, std::move(then));
}

}  // namespace orvane
