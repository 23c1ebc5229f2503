#include <gtest/gtest.h>

#include "RawClient.h"
#include "controller/Failure.h"
#include "controller/http/Problem.h"

using controller::HttpRequest;
using controller::HttpResponse;
using controller::HttpRoute;
using controller::Problem;
using controller::Respond;

TEST(HttpServer, AnswersWhatItsTableSays) {
  TestServer server;
  server.AddEcho("GET", "/api/v1/events/{id}");
  server.AddEcho("POST", "/api/v1/events");
  server.Listen();
  const RawAnswer looked = Ask(server, "GET", "/api/v1/events/a%2Fb%20c?q=x+y%26&z");
  EXPECT_EQ(looked.status, 200);
  EXPECT_EQ(looked.body, "GET /api/v1/events/a/b c {id=a/b c} q=x y& z= [] local");
  const RawAnswer posted =
      Ask(server, "POST", "/api/v1/events", "Vexalink-Actor: cli:ada\r\n", "{}");
  EXPECT_EQ(posted.body, "POST /api/v1/events [{}] cli:ada");
}

TEST(HttpServer, PutsTheProtectingFieldsOnEveryAnswer) {
  TestServer server;
  server.AddEcho("GET", "/x");
  server.Listen();
  RawClient garbage(server);
  garbage.Send("NONSENSE\r\n\r\n");
  const RawAnswer answers[] = {Ask(server, "GET", "/x"),
                               Ask(server, "GET", "/none"),
                               Ask(server, "DELETE", "/x"),
                               Ask(server, "OPTIONS", "/x"),
                               Ask(server, "GET", "/x", "Host: evil.example\r\n"),
                               garbage.Read()};
  for (RawAnswer answer : answers) {
    EXPECT_EQ(answer.fields["content-security-policy"],
              "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
              "connect-src 'self'; font-src 'self'; manifest-src 'self'; base-uri 'none'; "
              "form-action 'self'; frame-ancestors 'none'");
    EXPECT_EQ(answer.fields["x-content-type-options"], "nosniff");
    EXPECT_EQ(answer.fields["referrer-policy"], "no-referrer");
    EXPECT_EQ(answer.fields["cross-origin-opener-policy"], "same-origin");
    EXPECT_EQ(answer.fields["cross-origin-resource-policy"], "same-origin");
    EXPECT_EQ(answer.fields["cache-control"], "no-store");
    EXPECT_FALSE(answer.fields["date"].empty());
    EXPECT_EQ(answer.fields.count("access-control-allow-origin"), 0U);
    EXPECT_EQ(answer.fields.count("server"), 0U);
  }
}

TEST(HttpServer, AnswersHeadLikeGetWithoutTheBody) {
  TestServer server;
  server.AddEcho("GET", "/x");
  server.Listen();
  RawClient client(server);
  client.Send(
      "HEAD /x HTTP/1.1\r\nHost: localhost\r\n\r\nGET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
  RawAnswer head = client.Read(/*hasBody=*/false);
  const RawAnswer get = client.Read();
  EXPECT_EQ(head.status, 200);
  EXPECT_EQ(head.fields["content-length"], std::to_string(get.body.size()));
  EXPECT_EQ(head.fields["content-type"], "text/plain");
  EXPECT_EQ(get.body, "GET /x [] local");
}

TEST(HttpServer, SaysWhichMethodsAreAllowed) {
  TestServer server;
  server.AddEcho("GET", "/x/{id}");
  server.AddEcho("DELETE", "/x/{id}");
  server.AddEcho("POST", "/y");
  server.Listen();
  RawAnswer refused = Ask(server, "PUT", "/x/1");
  EXPECT_EQ(ProblemName(refused), "method-not-allowed");
  EXPECT_EQ(refused.status, 405);
  EXPECT_EQ(refused.fields["allow"], "GET, HEAD, DELETE, OPTIONS");
  RawAnswer options = Ask(server, "OPTIONS", "/x/1", "Origin: http://elsewhere.example\r\n");
  EXPECT_EQ(options.status, 204);
  EXPECT_EQ(options.fields["allow"], "GET, HEAD, DELETE, OPTIONS");
  EXPECT_EQ(Ask(server, "OPTIONS", "/y").fields["allow"], "POST, OPTIONS");
  EXPECT_EQ(Ask(server, "HEAD", "/y").status, 405);
  EXPECT_EQ(Ask(server, "OPTIONS", "/none").status, 404);
}

TEST(HttpServer, RefusesPathsThatAreNoPaths) {
  TestServer server;
  server.AddEcho("GET", "/x/{id}");
  server.Listen();
  for (const char* path : {"/x/%", "/x/%4", "/x/%zz", "/x/%00", "/x/%1f", "/x/%ff", "/x/%c0%af",
                           "/x/%ed%a0%80", "/x?q=%"}) {
    const RawAnswer answer = Ask(server, "GET", path);
    EXPECT_EQ(answer.status, 400) << path;
    EXPECT_EQ(ProblemName(answer), "malformed") << path;
  }
  for (const char* path : {"/", "/x", "/x/", "/x/1/", "/X/1", "/x/1/2", "/./x/1", "/x/../x/1"}) {
    EXPECT_EQ(Ask(server, "GET", path).status, 404) << path;
  }
}

TEST(HttpServer, KeepsAConnectionForFurtherRequests) {
  TestServer server;
  server.AddEcho("GET", "/{n}");
  server.AddEcho("POST", "/{n}");
  server.Listen();
  RawClient client(server);
  for (int n = 0; n < 20; ++n) {
    const std::string target = "/" + std::to_string(n);
    client.Send(n % 2 == 0 ? "GET " + target + " HTTP/1.1\r\nHost: localhost\r\n\r\n"
                           : "POST " + target +
                                 " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json"
                                 "\r\nContent-Length: 2\r\n\r\n{}");
    EXPECT_EQ(client.Read().body.find(n % 2 == 0 ? "GET /" : "POST /"), 0U);
  }
  client.Send("GET /last HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(client.Read().status, 200);
  EXPECT_TRUE(client.IsEnded());
  EXPECT_EQ(server.server->Counters().connections, 1U);
  EXPECT_EQ(server.server->Counters().openConnections, 0U);
}

TEST(HttpServer, AnswersAClientThatHasNothingMoreToSay) {
  TestServer server;
  server.AddEcho("GET", "/x");
  server.Listen();
  RawClient client(server);
  client.Send("GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
  client.EndSending();
  EXPECT_EQ(client.Read().status, 200);
  EXPECT_TRUE(client.IsEnded());
}

TEST(HttpServer, AnswersHttp10AndEndsTheConnection) {
  TestServer server;
  server.AddEcho("GET", "/x");
  server.Listen();
  RawClient client(server);
  client.Send("GET /x HTTP/1.0\r\nHost: localhost\r\n\r\n");
  EXPECT_NE(client.ReadToEnd().find("GET /x [] local"), std::string::npos);
}

TEST(HttpServer, TurnsExceptionsIntoAnswers) {
  TestServer server;
  server.Add("GET", "/problem", [](const HttpRequest&) -> HttpResponse {
    throw Problem("conflict", "\"Porch\" is taken", {{"/description", "is taken"}});
  });
  server.Add("GET", "/failure", [](const HttpRequest&) -> HttpResponse {
    throw controller::Failure("secret /var/lib/file");
  });
  server.Add("GET", "/other", [](const HttpRequest&) -> HttpResponse { throw std::bad_alloc(); });
  server.Listen();
  const RawAnswer problem = Ask(server, "GET", "/problem");
  EXPECT_EQ(problem.status, 409);
  EXPECT_EQ(
      problem.body,
      R"({"type":"urn:vexalink:problem:conflict","title":"The request conflicts with what is there",)"
      R"("status":409,"detail":"\"Porch\" is taken",)"
      R"("errors":[{"pointer":"/description","detail":"is taken"}]})");
  for (const char* path : {"/failure", "/other"}) {
    const RawAnswer failure = Ask(server, "GET", path);
    EXPECT_EQ(failure.status, 500);
    EXPECT_EQ(ProblemName(failure), "internal");
    EXPECT_EQ(failure.body.find("secret"), std::string::npos);
  }
  EXPECT_EQ(server.server->Counters().answers.at(500), 2U);
  EXPECT_EQ(server.server->Counters().answers.at(409), 1U);
}

namespace {

/// An entry whose answers are given by the test, later.
struct LateAnswers {
  explicit LateAnswers(TestServer& server) {
    HttpRoute route;
    route.method = "GET";
    route.path = "/late";
    route.handler = [this](const HttpRequest&, Respond respond) { waiting.push_back(respond); };
    server.server->Add(route);
  }
  std::vector<Respond> waiting;
};

constexpr const char* kAskLate = "GET /late HTTP/1.1\r\nHost: localhost\r\n\r\n";

}  // namespace

TEST(HttpServer, AnswersLaterAndOnlyOnce) {
  TestServer server;
  LateAnswers late(server);
  server.Listen();
  RawClient client(server);
  client.Send(kAskLate);
  EXPECT_TRUE(client.IsSilent(50));
  ASSERT_EQ(late.waiting.size(), 1U);
  late.waiting[0]({200, "text/plain", "first", {}, {}});
  late.waiting[0]({200, "text/plain", "second", {}, {}});
  EXPECT_EQ(client.Read().body, "first");
  client.Send(kAskLate);
  EXPECT_TRUE(client.IsSilent(50));
  late.waiting.at(1)({204, "", "", {}, {}});
  RawAnswer empty = client.Read();
  EXPECT_EQ(empty.status, 204);
  EXPECT_EQ(empty.fields.count("content-length"), 0U);
}

TEST(HttpServer, BearsAnAnswerToAClientThatHasGone) {
  TestServer server;
  LateAnswers late(server);
  server.Listen();
  {
    RawClient client(server);
    client.Send(kAskLate);
    EXPECT_TRUE(client.IsSilent(20));
  }
  for (int n = 0; n < 10; ++n) server.Turn();
  ASSERT_EQ(late.waiting.size(), 1U);
  late.waiting[0]({200, "text/plain", std::string(3000000, 'x'), {}, {}});
  RawClient next(server);
  next.Send(kAskLate);
  EXPECT_TRUE(next.IsSilent(20));
  EXPECT_EQ(server.server->Counters().openConnections, 1U);
}

TEST(HttpServer, BearsAnAnswerAfterItsOwnEnd) {
  std::vector<Respond> waiting;
  {
    TestServer server;
    LateAnswers late(server);
    server.Listen();
    RawClient client(server);
    client.Send(kAskLate);
    EXPECT_TRUE(client.IsSilent(20));
    waiting = late.waiting;
    server.server.reset();
  }
  ASSERT_EQ(waiting.size(), 1U);
  waiting[0]({200, "text/plain", "x", {}, {}});
}

TEST(HttpServer, AnswersWhereAHandlerForgetsTo) {
  TestServer server;
  LateAnswers late(server);
  server.Listen();
  RawClient client(server);
  client.Send(kAskLate);
  EXPECT_TRUE(client.IsSilent(20));
  late.waiting.clear();
  const RawAnswer answer = client.Read();
  EXPECT_EQ(answer.status, 500);
  EXPECT_EQ(ProblemName(answer), "internal");
}

TEST(HttpServer, SendsLargeAnswersWhole) {
  TestServer server;
  std::string large;
  for (int n = 0; n < 400000; ++n) large += std::to_string(n) + "\n";
  server.Add("GET", "/large", [&](const HttpRequest&) {
    return HttpResponse{200, "text/plain", large, {}, {}};
  });
  server.Listen();
  EXPECT_TRUE(Ask(server, "GET", "/large").body == large);
}

TEST(HttpServer, LeavesOutFieldsThatWouldForgeOthers) {
  TestServer server;
  server.Add("GET", "/x", [](const HttpRequest&) {
    return HttpResponse{200, "text/plain", "", {{"Location", "/a\r\nSet-Cookie: a=b"}}, {}};
  });
  server.Listen();
  RawAnswer answer = Ask(server, "GET", "/x");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.fields.count("location"), 0U);
  EXPECT_EQ(answer.fields.count("set-cookie"), 0U);
}

TEST(HttpServer, RefusesAnAddressThatIsTaken) {
  TestServer first;
  first.Listen();
  controller::HttpOptions options;
  options.listen = {{"127.0.0.1", first.port}};
  controller::HttpServer second(first.base.get(), options, first.tokens);
  try {
    second.Listen();
    FAIL() << "it listens";
  } catch (const controller::Failure& failure) {
    EXPECT_EQ(std::string(failure.what()), "listening on 127.0.0.1:" + std::to_string(first.port) +
                                               ": another program listens there; give another "
                                               "--listen");
  }
}
