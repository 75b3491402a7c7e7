// SPDX-License-Identifier: Apache-2.0
//
// The inspector: who gets in, what its page is told of and what it can do.
#include "Fixture.h"
#include "inspector/Feed.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>

namespace orvane::sandbox::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// What follows the origin in a link.
std::string pathOf(const std::string& link) { return link.substr(link.find("/?")); }

class InspectorTest : public SandboxTest {
 protected:
  std::string codePath() { return pathOf(sandbox().newInspectorLink()); }

  void enter() {
    const std::string cookie = ask("GET " + codePath()).header("Set-Cookie");
    headers_ = {{"Cookie", "theme=dark; " + cookie.substr(0, cookie.find(';'))}};
    headers_.emplace("X-Inspector-Token", api("GET session")["token"]);
  }

  Answer inspect(const std::string& request, const json& body = nullptr) {
    const std::size_t path = request.find(' ') + 1;
    return ask(request.substr(0, path) + "/inspector/api/" + request.substr(path), headers_,
               body.is_null() ? "" : body.dump());
  }

  /// The answer to a request that must succeed.
  json api(const std::string& request, const json& body = nullptr) {
    const Answer answer = inspect(request, body);
    EXPECT_EQ(answer.status, 200) << request << ": " << answer.body;
    return answer.parsed();
  }

  json newestRequest() {
    const json newest = api("GET requests?limit=1")["requests"][0];
    return api("GET requests/" + newest["id"].dump());
  }

  httplib::Headers headers_;
};

TEST_F(InspectorTest, ACodeOpensOneSession) {
  EXPECT_EQ(ask("GET /").status, 401);
  const std::string path = codePath();
  EXPECT_EQ(path.size(), std::string{"/?code="}.size() + 32);
  for (const std::string& wrong :
       {path + "A", path.substr(0, path.size() - 1), std::string{"/?code="}, "/?x&" + path}) {
    EXPECT_EQ(ask("GET " + wrong).status, 401) << wrong;
  }
  EXPECT_EQ(ask("HEAD " + path).status, 401) << "a look ahead uses nothing up";
  const Answer right = ask("GET " + path);
  EXPECT_EQ(right.status, 303);
  EXPECT_EQ(right.header("Location"), "/");
  EXPECT_THAT(
      right.header("Set-Cookie"),
      testing::MatchesRegex("orvane-inspector-" + std::to_string(sandbox().port()) +
                            "=[A-Za-z0-9_-]{32}; Path=/; HttpOnly; SameSite=Strict; Secure"));
  const Answer again = ask("GET " + path);
  EXPECT_EQ(again.status, 401);
  EXPECT_EQ(again.header("Set-Cookie"), "");

  const json description = json::parse(sandbox().description());
  const json further = admin("inspector", json::object()).parsed();
  for (const std::string url : {description["inspectorURL"], further["url"]}) {
    EXPECT_THAT(url, StartsWith(description["baseURL"].get<std::string>() + "/?code="));
    EXPECT_EQ(ask("GET " + pathOf(url)).status, 303) << url;
  }

  SandboxOptions plain;
  plain.plainHttp = true;
  start(plain);
  httplib::Client client{"127.0.0.1", sandbox().port()};
  const auto entered = client.Get(codePath());
  ASSERT_TRUE(entered);
  EXPECT_THAT(entered->get_header_value("Set-Cookie"),
              AllOf(HasSubstr("HttpOnly"), Not(HasSubstr("Secure"))));
}

TEST_F(InspectorTest, OnlyItsOwnPageGetsAnywhere) {
  SandboxOptions options;
  options.names = {"backend.example", "::2"};
  start(options);
  enter();
  const std::string port = ":" + std::to_string(sandbox().port());
  const std::string session = headers_.find("Cookie")->second;
  const std::string token = headers_.find("X-Inspector-Token")->second;
  const struct {
    const char* request;
    httplib::Headers headers;
    int status;
  } rows[] = {
      {"GET /inspector/index.html", {}, 200},
      {"GET /inspector/../ready.json", {}, 404},
      {"GET /inspector/", {}, 404},
      {"POST /inspector/index.html", {}, 405},
      {"GET /inspector/api/session", {}, 401},
      {"GET /inspector/api/session", {{"Cookie", session.substr(0, session.find('=') + 1)}}, 401},
      {"GET /inspector/api/session", {{"Cookie", session + "A"}}, 401},
      {"GET /inspector/api/session", {{"Cookie", session}}, 200},
      {"GET /inspector/api/nothing", {{"Cookie", session}}, 404},
      {"GET /", {{"Cookie", session}}, 200},
      // Names that lead here without being the sandbox's.
      {"GET /", {{"Cookie", session}, {"Host", "evil.example" + port}}, 403},
      {"GET /inspector/index.html", {{"Host", "127.0.0.1"}}, 403},
      {"GET /inspector/index.html", {{"Host", "127.0.0.1:1"}}, 403},
      {"GET /inspector/index.html", {{"Host", "127.0.0.1.evil.example" + port}}, 403},
      {"GET /inspector/index.html", {{"Host", "[::3]" + port}}, 403},
      {"GET /inspector/index.html", {{"Host", "LocalHost" + port}}, 200},
      {"GET /inspector/index.html", {{"Host", "[::1]" + port}}, 200},
      {"GET /inspector/index.html", {{"Host", "[::2]" + port}}, 200},
      {"GET /inspector/index.html", {{"Host", "backend.example" + port}}, 200},
      // Changes.
      {"DELETE /inspector/api/requests", {{"Cookie", session}}, 403},
      {"DELETE /inspector/api/requests",
       {{"Cookie", session}, {"X-Inspector-Token", token + "A"}},
       403},
      {"DELETE /inspector/api/requests",
       {{"Cookie", session},
        {"X-Inspector-Token", token},
        {"Origin", "https://evil.example" + port}},
       403},
      {"DELETE /inspector/api/requests",
       {{"Cookie", session}, {"X-Inspector-Token", token}, {"Origin", "null"}},
       403},
      {"DELETE /inspector/api/requests",
       {{"Cookie", session}, {"X-Inspector-Token", token}, {"Origin", "https://127.0.0.1" + port}},
       200},
  };
  for (const auto& [request, headers, status] : rows) {
    const Answer answer = ask(request, headers);
    std::string sent = request;
    for (const auto& [name, value] : headers) sent += " " + name + ": " + value;
    EXPECT_EQ(answer.status, status) << sent;
    EXPECT_THAT(answer.header("Content-Security-Policy"),
                AllOf(StartsWith("default-src 'none';"), Not(HasSubstr("unsafe"))));
    for (const auto& [name, value] : {std::pair{"X-Content-Type-Options", "nosniff"},
                                      {"Referrer-Policy", "no-referrer"},
                                      {"Cross-Origin-Opener-Policy", "same-origin"},
                                      {"Cross-Origin-Resource-Policy", "same-origin"},
                                      {"Cache-Control", "no-store"}}) {
      EXPECT_EQ(answer.header(name), value) << sent;
    }
  }
  EXPECT_EQ(api("GET requests")["requests"], json::array()) << "none of these is the backend's";
}

TEST_F(InspectorTest, ShowsWhatThereIs) {
  enter();
  const json people = api("GET people")["people"];
  const json anna = people[0];
  EXPECT_EQ(anna["name"], "Anna Keller");
  EXPECT_EQ(anna["token"], "sandbox-token-1001");
  const json trips = read("users/1001/trips?expand=scores&expand=events&expand=points");
  EXPECT_EQ(anna["trips"], trips.size());
  EXPECT_EQ(anna["vehicles"].size(), read("users/1001/vehicles/").size());
  EXPECT_EQ(people.size(), 20U);

  const json list = api("GET trips?user=1001");
  ASSERT_EQ(list["trips"].size(), trips.size());
  const std::string day = list["days"]["last"];
  EXPECT_EQ(list["trips"][0]["day"], day);
  const json ofDay = api("GET trips?user=1001&first=" + day + "&last=" + day);
  EXPECT_EQ(ofDay["days"], list["days"]);
  for (std::size_t i = 0; i < trips.size(); ++i) {
    const json& shown = list["trips"][i];
    const json one = api("GET trips/" + shown["id"].get<std::string>());
    EXPECT_EQ(shown["id"], trips[i]["tripId"]);
    EXPECT_NEAR(shown["distance"].get<double>(), 1000 * trips[i]["kilometers"].get<double>(), 1);
    EXPECT_EQ(shown["score"], trips[i].value("tripScore", json{}));
    std::size_t events = 0;
    for (const json& each : trips[i]["events"]) events += each.size();
    EXPECT_EQ(shown["events"], events);
    EXPECT_EQ(one["events"].size(), events);
    const json& route = one["route"];
    ASSERT_GT(route.size(), 2U);
    EXPECT_EQ(route[0][2], 0);
    double last = 0;
    for (const json& point : route) {
      EXPECT_GE(point[2], last);
      EXPECT_GE(point[3], 0);
      last = point[2];
    }
    EXPECT_NEAR(last, trips[i]["seconds"].get<double>(), 2) << shown;
    const json pois = read("trips/" + shown["id"].get<std::string>() + "?expand=pois")["pois"];
    EXPECT_NEAR(route[0][0].get<double>(), pois[0]["latitude"].get<double>(), 1e-5);
    EXPECT_NEAR(route.back()[1].get<double>(), pois[1]["longitude"].get<double>(), 1e-5);
    EXPECT_EQ(shown["endAddress"], pois[1]["name"]);
  }
  EXPECT_GT(api("GET roads")["roads"].size(), 80U);
  EXPECT_EQ(inspect("GET trips?user=7").status, 404);
  EXPECT_EQ(inspect("GET trips/7").status, 404);
  EXPECT_EQ(inspect("GET trips").status, 400);
}

TEST_F(InspectorTest, RequestsAreShownWithWhoAskedAndHowToAskAgain) {
  enter();
  postForm("users/1002", {{"city", "Bern", "", ""}});
  const json refused = newestRequest();
  EXPECT_EQ(refused["status"], 403);
  EXPECT_EQ(refused["name"], "Anna Keller");
  EXPECT_NE(refused["reason"], "");
  EXPECT_EQ(refused["form"][0]["value"], "Bern");
  EXPECT_THAT(refused.dump(),
              AllOf(HasSubstr("Bearer sandbox-t…01"), Not(HasSubstr("sandbox-token-1001"))));
  get("users/1001/trips?limit=2&startDate=2025-06-%30%31");
  const json read = newestRequest();
  EXPECT_EQ(read["orvane"],
            "orvane api GET users/1001/trips --query limit=2 --query startDate=2025-06-01");
  EXPECT_THAT(
      read["curl"].get<std::string>(),
      AllOf(HasSubstr("Authorization: Bearer $ORVANE_TOKEN"),
            HasSubstr("'https://127.0.0.1:" + std::to_string(sandbox().port()) +
                      "/kavra/api/sdk/users/1001/trips?limit=2&startDate=2025-06-%30%31'")));
  const std::string command = "ORVANE_TOKEN=sandbox-token-1001 && " +
                              read["curl"].get<std::string>() +
                              " --silent --fail --output /dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  EXPECT_EQ(newestRequest()["query"], read["query"]);
  api("DELETE requests");
  EXPECT_EQ(inspect("GET requests/" + read["id"].dump()).status, 404);
}

TEST_F(InspectorTest, HostileTextsAreTextsOfJson) {
  enter();
  const std::string markup = "<img src=x onerror=alert(1)>\"'</script>";
  EXPECT_EQ(postForm("users/1001", {{"firstName", markup, "", ""}}).status, 200);
  EXPECT_EQ(newestRequest()["form"][0]["value"], markup);
  EXPECT_THAT(api("GET people")["people"][0]["name"].get<std::string>(), StartsWith(markup));
  EXPECT_EQ(api("GET changes")["changes"][0]["after"]["first_name"], markup);

  const struct {
    const char* path;
    std::string body;
    json shownPath;
    json shownBody;
  } rows[] = {
      {"POST /kavra/<script>alert(1)</script>", markup, "/kavra/<script>alert(1)</script>", markup},
      {"POST /kavra/\xFF\xC3(\xE2\x82", "\xC3(",
       "/kavra/\xEF\xBF\xBD\xEF\xBF\xBD(\xEF\xBF\xBD\xEF\xBF\xBD", nullptr},
      {"POST /kavra/x", std::string(65'535, 'x') + "ü", "/kavra/x", std::string(65'535, 'x')},
      {"POST /kavra/x", std::string("\0\x1F", 2), "/kavra/x", std::string("\0\x1F", 2)},
  };
  for (const auto& [request, body, shownPath, shownBody] : rows) {
    ask(request, {{"X-Test", markup}}, body);
    const json shown = newestRequest();
    EXPECT_EQ(shown["path"], shownPath);
    EXPECT_TRUE(shown["requestBody"] == shownBody) << request;
    EXPECT_EQ(shown["requestBodyCut"], body.size() > 65'536) << request;
    EXPECT_THAT(shown["requestHeaders"], testing::Contains(json::array({"X-Test", markup})));
  }
}

TEST_F(InspectorTest, EveryKindOfFaultCanBeSwitchedOnAndOff) {
  SandboxOptions options;
  options.backend.faults = {Fault::fromJson({{"status", 500}, {"path", "never"}})};
  start(options);
  enter();
  const json kinds = api("GET faults")["kinds"];
  EXPECT_EQ(kinds.size(), 7U);
  for (const json& kind : kinds) {
    const json& parameter = kind["parameters"][0];
    for (const json& choice : parameter["choices"]) {
      api("POST faults", {{kind["name"], choice}, {"times", 3}});
    }
    const json id = api("POST faults", {{parameter["name"], parameter["default"]}})["id"];
    const json fault = api("GET faults")["faults"].back();
    EXPECT_EQ(fault["id"], id);
    EXPECT_EQ(fault["left"], nullptr);
    EXPECT_NE(fault["text"], "nothing goes wrong") << kind;
    api("DELETE faults/" + id.dump());
    EXPECT_EQ(inspect("DELETE faults/" + id.dump()).status, 404);
  }
  api("POST clock", {{"skew", 90}, {"today", "2025-07-01"}});
  EXPECT_EQ(inspect("POST clock", {{"skew", 1}, {"today", "2025-02-30"}}).status, 400);
  EXPECT_THAT(api("GET clock")["today"].get<std::string>(), StartsWith("2025-07-01"));
  api("DELETE faults");
  const json left = api("GET faults")["faults"];
  ASSERT_EQ(left.size(), 1U) << "the command line's";
  EXPECT_EQ(left[0]["permanent"], true);
  EXPECT_EQ(inspect("DELETE faults/" + left[0]["id"].dump()).status, 409);
  const json clock = api("GET clock");
  EXPECT_EQ(clock["skew"], 0);
  EXPECT_EQ(clock["today"], "2025-06-18T12:00:00.000Z");

  api("POST faults", {{"status", 503}, {"times", 2}, {"path", "identity"}});
  EXPECT_EQ(get("identity").status, 503);
  EXPECT_EQ(api("GET faults")["faults"][1]["left"], 1);
  const json hit = newestRequest();
  EXPECT_EQ(hit["fault"], "status 503, 2 more times, for paths with identity");
  EXPECT_EQ(hit["user"], "1001");
}

TEST_F(InspectorTest, ChangesAreWhatDiffersFromTheDataAsLaid) {
  enter();
  const auto changes = [this] {
    std::vector<std::string> texts;
    const json listed = api("GET changes");
    for (const json& change : listed["changes"]) {
      texts.push_back(change["table"].get<std::string>() + " " + change["kind"].get<std::string>() +
                      " " + change["key"].get<std::string>());
    }
    return texts;
  };
  EXPECT_THAT(changes(), ElementsAre());
  postForm("users/1001", {{"city", "Bern", "", ""}});
  postForm("users/1001", {{"city", "Biel", "", ""}});
  const json change = api("GET changes")["changes"][0];
  EXPECT_EQ(change["before"]["city"], "Basel");
  EXPECT_EQ(change["after"]["city"], "Biel");
  const std::string settings = "POST users/1001/settings?targetId=1001&targetType=USER";
  send(settings + "&eventAlertBraking=1");
  send(settings + "&eventAlertBraking=2");
  send("POST users/1001/devices/new?deviceToken=hidden-token&appId=1");
  EXPECT_THAT(changes(), ElementsAre("alert_settings added 1001 eventAlertBraking",
                                     "devices added 1001 new", "users changed 1001"));
  EXPECT_THAT(api("GET changes").dump(), Not(HasSubstr("hidden-token")));
  api("POST snapshots", {{"name", "changed"}});
  postForm("users/1001", {{"city", "Basel", "", ""}});
  send("DELETE users/1001/vehicles/3001");
  EXPECT_THAT(changes(), Not(testing::Contains("users changed 1001"))) << "as it was";
  api("POST restore", {{"name", "changed"}});
  EXPECT_EQ(changes().size(), 3U);
  EXPECT_EQ(api("GET snapshots")["snapshots"], json({"changed"}));
  api("DELETE snapshots/changed");
  EXPECT_EQ(inspect("DELETE snapshots/changed").status, 404);
  start();
  enter();
  EXPECT_EQ(changes().size(), 3U) << "a restart forgets nothing";
  api("POST reset", json::object());
  EXPECT_THAT(changes(), ElementsAre());
}

TEST_F(InspectorTest, EventsArriveWhileTheyHappen) {
  enter();
  auto viewer = client();
  viewer.enable_server_certificate_verification(false);
  viewer.set_read_timeout(20s);
  std::string events;
  viewer.Get("/inspector/api/events", headers_, [&](const char* data, std::size_t size) {
    if (events.empty()) {
      get("identity");
      api("POST faults", {{"drop", true}, {"path", "never"}});
      postForm("users/1001", {{"city", "Bern", "", ""}});
    }
    events.append(data, size);
    return events.find("\"changed\"") == std::string::npos;
  });
  EXPECT_THAT(events, AllOf(HasSubstr("event: requests\ndata: [{\"id\":1,"),
                            HasSubstr("\"drop\":true"), HasSubstr("event: data\n")));
}

class CountingViewer : public Viewer {
 public:
  void send(std::string text) override {
    const std::lock_guard lock{mutex_};
    received_ += text;
    ++sent_;
    changed_.notify_all();
  }
  [[nodiscard]] bool isBehind() const override {
    const std::lock_guard lock{mutex_};
    return behind_;
  }
  [[nodiscard]] bool isGone() const override {
    const std::lock_guard lock{mutex_};
    return gone_;
  }
  void leave() {
    const std::lock_guard lock{mutex_};
    gone_ = true;
  }
  void fallBehind(bool behind) {
    const std::lock_guard lock{mutex_};
    behind_ = behind;
  }
  [[nodiscard]] int sent() const {
    const std::lock_guard lock{mutex_};
    return sent_;
  }
  /// Waits for the text.
  bool has(const std::string& text) {
    std::unique_lock lock{mutex_};
    return changed_.wait_for(lock, 20s, [&] { return received_.find(text) != std::string::npos; });
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::string received_;
  int sent_ = 0;
  bool behind_ = false;
  bool gone_ = false;
};

TEST_F(InspectorTest, TheFeedGoesOnAfterItsLastViewerLeft) {
  Feed feed{sandbox().backend()};
  for (int round = 0; round < 3; ++round) {
    const auto first = std::make_shared<CountingViewer>();
    const auto second = std::make_shared<CountingViewer>();
    feed.join(first);
    feed.join(second);
    feed.tell(Happening::cleared);
    EXPECT_TRUE(first->has("event: cleared") && second->has("event: cleared"));
    first->leave();
    feed.tell(Happening::restored);
    EXPECT_TRUE(second->has("restored"));
    second->leave();
    feed.tell(Happening::clock);
  }
}

TEST_F(InspectorTest, TheFeedWaitsForWhoIsSlowAndForNobodyElse) {
  Feed feed{sandbox().backend()};
  const auto slow = std::make_shared<CountingViewer>();
  const auto quick = std::make_shared<CountingViewer>();
  feed.join(slow);
  feed.join(quick);
  EXPECT_TRUE(slow->has("\n:\n\n"));
  slow->fallBehind(true);
  const int before = slow->sent();
  const auto tell = [&](std::int64_t id) {
    auto request = std::make_shared<LoggedRequest>();
    request->id = id;
    feed.add(request);
    EXPECT_TRUE(quick->has("\"id\":" + std::to_string(id)));
  };
  for (const std::int64_t id : {11, 12, 13}) tell(id);
  EXPECT_EQ(slow->sent(), before);
  slow->fallBehind(false);
  EXPECT_TRUE(slow->has("\"id\":13"));
  EXPECT_TRUE(slow->has("\"id\":11"));
  EXPECT_EQ(slow->sent(), before + 1);
}

TEST(FeedQueue, GathersWhatHappensIntoFewEvents) {
  const auto request = [](std::int64_t id) {
    auto made = std::make_shared<LoggedRequest>();
    made->id = id;
    return made;
  };
  const auto ids = [](const FeedBatch& batch) {
    std::vector<std::int64_t> list;
    for (const auto& each : batch.requests) list.push_back(each->id);
    return list;
  };
  const FeedQueue::TimePoint start{1h};
  FeedQueue queue;
  (void)queue.take(start);
  EXPECT_EQ(queue.due(), start + 15s) << "a comment";
  queue.add(request(1));
  EXPECT_EQ(queue.due(), start + 100ms);
  queue.add(request(2));
  queue.tell(Happening::changed);
  queue.tell(Happening::reset);
  queue.tell(Happening::changed);
  FeedBatch batch = queue.take(start + 100ms);
  EXPECT_THAT(ids(batch), ElementsAre(1, 2));
  EXPECT_EQ(batch.data, Happening::reset);
  EXPECT_TRUE(queue.isEmpty());

  // Reports are rarer than batches.
  queue.tell(Happening::changed);
  EXPECT_EQ(queue.due(), start + 1100ms);
  queue.add(request(3));
  EXPECT_EQ(queue.due(), start + 200ms);
  batch = queue.take(start + 300ms);
  EXPECT_EQ(batch.data, std::nullopt);
  EXPECT_EQ(queue.due(), start + 1100ms);
  EXPECT_EQ(queue.take(start + 1100ms).data, Happening::changed);

  // What has been cleared is not sent, what comes after it is.
  queue.add(request(4));
  queue.tell(Happening::cleared);
  queue.add(request(5));
  batch = queue.take(start + 2s);
  EXPECT_TRUE(batch.cleared);
  EXPECT_THAT(ids(batch), ElementsAre(5));

  for (std::int64_t id = 1; id <= 10'001; ++id) queue.add(request(id));
  EXPECT_EQ(queue.take(start + 3s).requests.front()->id, 2);
}

TEST(RequestLog, StaysWithinItsBounds) {
  Request request{.method = "POST", .path = "/", .query = "", .headers = {}, .body = ""};
  const auto add = [&](RequestLog& log, std::size_t size) {
    request.body.assign(size, 'x');
    log.add(request, Reply{}, {}, 0, RequestLog::Duration{1});
  };
  RequestLog few{{.requests = 3, .bytes = 1'000'000}};
  for (int i = 0; i < 5; ++i) add(few, 1);
  EXPECT_EQ(few.newest(10).requests.front()->id, 3);
  EXPECT_EQ(few.newest(2).requests.front()->id, 4);
  EXPECT_EQ(few.newest(10).dropped, 2);
  EXPECT_FALSE(few.find(2).has_value());
  EXPECT_FALSE(few.find(6).has_value());
  few.clear();
  add(few, 1);
  EXPECT_EQ(few.newest(10).requests.front()->id, 6);
  EXPECT_EQ(few.newest(10).dropped, 0);

  RequestLog small{{.requests = 100, .bytes = 30'000}};
  for (int i = 0; i < 5; ++i) add(small, 9'000);
  ASSERT_EQ(small.newest(10).requests.size(), 5U);
  for (std::int64_t id = 1; id <= 5; ++id) {
    EXPECT_EQ(small.find(id)->bodies != nullptr, id >= 3) << "the oldest bodies go first: " << id;
  }
  for (int i = 0; i < 1000; ++i) add(small, 0);
  EXPECT_LT(small.newest(1000).requests.size(), 100U) << "then requests";
  EXPECT_EQ(small.newest(1000).requests.back()->id, 1005);
  add(small, 9'000);
  EXPECT_EQ(small.find(1006)->bodies->request.size(), 9'000U);
}

}  // namespace
}  // namespace orvane::sandbox::test
