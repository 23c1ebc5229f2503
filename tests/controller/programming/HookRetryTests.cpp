// When a web hook is tried again, and where redirects lead.

#include "tests/controller/programming/ActionHelp.h"
#include "tests/controller/programming/HttpReceiver.h"

namespace {

using namespace controller;
using Reply = HttpReceiver::Reply;

class HookRetries : public ActionTest {};

TEST_F(HookRetries, GoOnUntilItWorks) {
  const char* const passing[] = {"408 Request Timeout", "429 Too Many Requests",
                                 "500 Internal Server Error", "503 Service Unavailable"};
  for (const char* status : passing) {
    HttpReceiver server([&](const ReceivedRequest&, int before) {
      return HttpReceiver::Plain(before < 2 ? status : "200 OK");
    });
    EXPECT_EQ(Text(Do(Hook(server.Url(), /*retries=*/3))), "done: 200 OK, 3 attempts") << status;
    EXPECT_EQ(server.Requests().size(), 3u) << status;
  }
}

TEST_F(HookRetries, EndWhenThereHaveBeenEnough) {
  HttpReceiver server(
      [](const ReceivedRequest&, int) { return HttpReceiver::Plain("502 Bad Gateway", "sorry"); });
  for (const int retries : {0, 1, 4}) {
    const std::size_t before = server.Requests().size();
    const ActionOutcome outcome = Do(Hook(server.Url(), retries));
    const std::string attempts =
        retries == 0 ? "" : ", " + std::to_string(retries + 1) + " attempts";
    EXPECT_EQ(Text(outcome), "failed: 502 Bad Gateway" + attempts);
    EXPECT_EQ(outcome.output, "sorry");
    EXPECT_EQ(server.Requests().size() - before, static_cast<std::size_t>(retries) + 1);
  }
}

TEST_F(HookRetries, AreForConnectionsThatFail) {
  const std::string refused = Text(Do(Hook("http://127.0.0.1:" + std::to_string(ClosedPort()), 1)));
  EXPECT_EQ(refused.substr(0, 36), "failed: failed to connect to 127.0.0") << refused;
  EXPECT_NE(refused.find(", 2 attempts"), std::string::npos) << refused;
  EXPECT_EQ(Text(Do(Hook("http://hub.invalid/", 2))),
            "failed: could not resolve host: hub.invalid, 3 attempts");
  HttpReceiver closes([](const ReceivedRequest&, int before) {
    return before == 0 ? Reply{} : HttpReceiver::Plain("200 OK");
  });
  EXPECT_EQ(Text(Do(Hook(closes.Url(), 1))), "done: 200 OK, 2 attempts");
}

TEST_F(HookRetries, WaitAsLongAsTheServerAsksButNotLonger) {
  limits.longestRetryAfterMilliseconds = 120;
  Restart(limits);
  HttpReceiver server([](const ReceivedRequest&, int before) {
    return before == 0 ? HttpReceiver::Plain("429 Slow Down", "", "Retry-After: 86400\r\n")
                       : HttpReceiver::Plain("200 OK");
  });
  const ActionOutcome outcome = Do(Hook(server.Url(), 1));
  EXPECT_EQ(Text(outcome), "done: 200 OK, 2 attempts");
  EXPECT_GE(outcome.milliseconds, 115) << "without Retry-After it would be 4";
}

TEST_F(HookRetries, PauseLongerEachTime) {
  limits.firstPauseMilliseconds = 40;
  limits.longestPauseMilliseconds = 80;
  Restart(limits);
  HttpReceiver server(
      [](const ReceivedRequest&, int) { return HttpReceiver::Plain("500 Broken"); });
  // At least half of 40, 80, 80.
  EXPECT_GE(Do(Hook(server.Url(), 3)).milliseconds, 95);
}

TEST_F(HookRetries, LetOthersGoAheadMeanwhile) {
  limits.hooks = 1;
  limits.firstPauseMilliseconds = 300;
  Restart(limits);
  HttpReceiver server([](const ReceivedRequest& request, int before) {
    return HttpReceiver::Plain(request.target == "/first" && before == 0 ? "500 Broken" : "200 OK");
  });
  Start({Hook(server.Url("/first"), 1), Hook(server.Url("/second"))});
  ASSERT_TRUE(RunUntilEnded(1));
  EXPECT_EQ(Text(house.ended[0].outcome), "done: 200 OK");
  EXPECT_EQ(StateOf(0), "retrying");
  ASSERT_TRUE(RunUntilEnded(2));
  EXPECT_EQ(Text(house.ended[1].outcome), "done: 200 OK, 2 attempts");
}

class HookRedirects : public ActionTest {
 protected:
  static Reply To(const std::string& status, const std::string& where) {
    return HttpReceiver::Plain(status, "", "Location: " + where + "\r\n");
  }
  static Action WithBody(const std::string& url, const std::string& method = "POST") {
    Action action = Hook(url, /*retries=*/2);
    auto& hook = std::get<HookAction>(action.what);
    hook.method = method;
    hook.body = "{}";
    hook.headers = {{"X-Key", "secret"}};
    return action;
  }
};

TEST_F(HookRedirects, AreFollowedAsBrowsersDoIt) {
  const struct {
    const char* status;
    const char* method;
    const char* then;
  } rows[] = {{"301 Moved", "POST", "GET"},      {"302 Found", "POST", "GET"},
              {"302 Found", "PUT", "PUT"},       {"303 See Other", "PUT", "GET"},
              {"307 Temporary", "POST", "POST"}, {"308 Permanent", "PATCH", "PATCH"}};
  for (const auto& row : rows) {
    HttpReceiver server([&](const ReceivedRequest& request, int) {
      return request.target == "/old" ? To(row.status, "/new?x") : HttpReceiver::Plain("200 OK");
    });
    EXPECT_EQ(Text(Do(WithBody(server.Url("/old"), row.method))), "done: 200 OK") << row.status;
    ASSERT_EQ(server.Requests().size(), 2u) << row.status;
    ReceivedRequest second = server.Requests()[1];
    EXPECT_EQ(second.method, row.then) << row.status;
    EXPECT_EQ(second.target, "/new?x");
    EXPECT_EQ(second.body, std::string(row.then) == "GET" ? "" : "{}") << row.status;
    EXPECT_EQ(second.headers["x-key"], "secret") << "the same server";
  }
}

TEST_F(HookRedirects, ToAnotherServerTellItNothing) {
  HttpReceiver other([](const ReceivedRequest&, int) { return HttpReceiver::Plain("200 OK"); });
  HttpReceiver server([&](const ReceivedRequest&, int) {
    return To("307 Temporary", "http://eve:x@127.0.0.1:" + std::to_string(other.Port()) + "/");
  });
  const std::string url = "http://ada:pw@127.0.0.1:" + std::to_string(server.Port()) + "/";
  EXPECT_EQ(Text(Do(WithBody(url))), "done: 200 OK");
  ASSERT_EQ(server.Requests().size(), 1u);
  EXPECT_EQ(server.Requests()[0].headers.count("authorization"), 1u);
  ASSERT_EQ(other.Requests().size(), 1u);
  ReceivedRequest request = other.Requests()[0];
  EXPECT_EQ(request.headers.count("x-key"), 0u);
  EXPECT_EQ(request.headers.count("authorization"), 0u);
  EXPECT_EQ(request.headers["content-type"], "application/json");
  EXPECT_EQ(request.body, "{}");
}

TEST_F(HookRedirects, KeepTheUserOnTheSameServer) {
  HttpReceiver server([&](const ReceivedRequest& request, int) {
    return request.target == "/old" ? To("302 Found", "new") : HttpReceiver::Plain("200 OK");
  });
  Do(Hook("http://ada:pw@127.0.0.1:" + std::to_string(server.Port()) + "/old"));
  ASSERT_EQ(server.Requests().size(), 2u);
  EXPECT_EQ(server.Requests()[1].target, "/new");
  EXPECT_EQ(server.Requests()[1].headers.count("authorization"), 1u);
}

TEST_F(HookRedirects, EndAfterThree) {
  HttpReceiver server([&](const ReceivedRequest&, int before) {
    return To("302 Found", "/" + std::to_string(before + 1));
  });
  EXPECT_EQ(Text(Do(Hook(server.Url("/0"), 2))), "failed: 302 Found, more than 3 redirects");
  EXPECT_EQ(server.Requests().size(), 4u);
}

TEST_F(HookRedirects, LeadNowhereButToHttp) {
  for (const std::string where :
       {"file:///etc/passwd", "ftp://127.0.0.1/", "gopher://127.0.0.1/"}) {
    HttpReceiver server([&](const ReceivedRequest&, int) { return To("302 Found", where); });
    const ActionOutcome outcome = Do(Hook(server.Url(), 2));
    EXPECT_EQ(Text(outcome), "failed: 302 Found, redirected to \"" + where +
                                 "\", which is neither http nor https");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(server.Requests().size(), 1u);
  }
}

}  // namespace
