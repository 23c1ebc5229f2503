#include <gtest/gtest.h>

#include "RawClient.h"

using controller::HttpOptions;

namespace {

/// Short, so that tests are; long enough for a slow machine to send a whole request in.
HttpOptions Impatient() {
  HttpOptions options;
  options.limits.idle = 700;
  options.limits.headTime = 300;
  options.limits.bodyTime = 300;
  options.limits.lingerTime = 300;
  return options;
}

}  // namespace

TEST(HttpLimits, EndIdleConnectionsWithoutAWord) {
  TestServer server(Impatient());
  server.AddEcho("GET", "/x");
  server.Listen();
  RawClient silent(server);
  EXPECT_EQ(silent.ReadToEnd(), "");
  RawClient client(server);
  client.Send("GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(client.Read().status, 200);
  EXPECT_EQ(client.ReadToEnd(), "");
}

TEST(HttpLimits, BearNoRequestThatTricklesIn) {
  TestServer server(Impatient());
  server.AddEcho("POST", "/x");
  server.Listen();
  for (const std::string& begin :
       {std::string("P"), std::string("POST /x HTTP/1.1\r\nHost: localhost\r\n"),
        std::string("POST /x HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
                    "Content-Length: 100\r\n\r\n"),
        std::string("POST /x HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
                    "Transfer-Encoding: chunked\r\n\r\n")}) {
    RawClient client(server);
    client.Send(begin);
    // A byte now and then does not buy more time.
    int sent = 0;
    while (sent < 200 && client.IsSilent(20)) {
      client.Send(begin.ends_with("chunked\r\n\r\n") ? "1\r\nx\r\n" : "x");
      ++sent;
    }
    EXPECT_LT(sent, 200) << begin;
    const RawAnswer answer = client.Read();
    EXPECT_EQ(answer.status, 408) << begin;
    EXPECT_EQ(ProblemName(answer), "timeout") << begin;
    EXPECT_TRUE(client.IsEnded());
  }
  EXPECT_EQ(server.handled, 0);
}

TEST(HttpLimits, DoNotHurryHandlers) {
  TestServer server(Impatient());
  std::vector<controller::Respond> waiting;
  controller::HttpRoute route;
  route.method = "GET";
  route.path = "/late";
  route.handler = [&](const controller::HttpRequest&, controller::Respond respond) {
    waiting.push_back(respond);
  };
  server.server->Add(route);
  server.Listen();
  RawClient client(server);
  client.Send("GET /late HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_TRUE(client.IsSilent(1500));
  ASSERT_EQ(waiting.size(), 1U);
  waiting[0]({200, "text/plain", "at last", {}, {}});
  EXPECT_EQ(client.Read().body, "at last");
}

TEST(HttpLimits, HoldForHeads) {
  TestServer server;
  server.AddEcho("GET", "/x");
  server.Listen();
  const auto target = [](std::size_t size) { return "/x?" + std::string(size - 3, 'a'); };
  EXPECT_EQ(Ask(server, "GET", target(4096)).status, 200);
  RawAnswer answer = Ask(server, "GET", target(4097));
  EXPECT_EQ(answer.status, 414);
  EXPECT_EQ(ProblemName(answer), "uri-too-long");
  EXPECT_EQ(Ask(server, "GET", target(100000)).status, 414);

  std::string fields;
  for (int n = 0; n < 63; ++n) fields += "X-" + std::to_string(n) + ": 1\r\n";
  EXPECT_EQ(Ask(server, "GET", "/x", fields).status, 200) << "64 with the host";
  answer = Ask(server, "GET", "/x", fields + "X-More: 1\r\n");
  EXPECT_EQ(answer.status, 431);
  EXPECT_EQ(ProblemName(answer), "headers-too-large");

  const std::string frame = "GET /x HTTP/1.1\r\nX-A: \r\nHost: localhost\r\n\r\n";
  EXPECT_EQ(
      Ask(server, "GET", "/x", "X-A: " + std::string(16384 - frame.size(), 'a') + "\r\n").status,
      200);
  EXPECT_EQ(
      Ask(server, "GET", "/x", "X-A: " + std::string(16385 - frame.size(), 'a') + "\r\n").status,
      431);
  EXPECT_EQ(Ask(server, "GET", "/x", "X-A: " + std::string(1000000, 'a') + "\r\n").status, 431);
}

TEST(HttpLimits, HoldForBodies) {
  TestServer server;
  controller::HttpRoute route;
  route.method = "POST";
  route.path = "/small";
  route.bodyLimit = 100;
  route.handler = [](const controller::HttpRequest& request, controller::Respond respond) {
    respond({200, "text/plain", std::to_string(request.body.size()), {}, {}});
  };
  server.server->Add(route);
  server.Listen();
  EXPECT_EQ(Ask(server, "POST", "/small", "", std::string(100, ' ')).body, "100");
  const RawAnswer answer = Ask(server, "POST", "/small", "", std::string(101, ' '));
  EXPECT_EQ(answer.status, 413);
  EXPECT_EQ(ProblemDetail(answer), "the body is too large; at most 100 bytes are taken here");
  const std::string head =
      "POST /small HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
      "Transfer-Encoding: chunked\r\n\r\n";
  RawClient good(server);
  good.Send(head + "32\r\n" + std::string(50, ' ') + "\r\n32\r\n" + std::string(50, ' ') +
            "\r\n0\r\n\r\n");
  EXPECT_EQ(good.Read().body, "100");
  for (const char* size : {"65", "ffffffff", "00000065"}) {
    RawClient bad(server);
    bad.Send(head + size + "\r\n");
    EXPECT_EQ(bad.Read().status, 413) << size;
  }
  RawClient slowly(server);
  slowly.Send(head + "32\r\n" + std::string(50, ' ') + "\r\n33\r\n");
  EXPECT_EQ(slowly.Read().status, 413);
}

TEST(HttpLimits, HoldForConnections) {
  HttpOptions options;
  options.limits.connections = 20;
  TestServer server(options);
  server.AddEcho("GET", "/x");
  server.Listen();
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int n = 0; n < 20; ++n) {
    clients.push_back(std::make_unique<RawClient>(server));
    clients.back()->Send("GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_EQ(clients.back()->Read().status, 200);
  }
  for (int n = 0; n < 5; ++n) {
    RawClient tooMany(server);
    const RawAnswer answer = tooMany.Read();
    EXPECT_EQ(answer.status, 429);
    EXPECT_EQ(ProblemName(answer), "too-many");
    EXPECT_TRUE(tooMany.IsEnded());
  }
  clients.pop_back();
  for (int n = 0; n < 5; ++n) server.Turn();
  EXPECT_EQ(Ask(server, "GET", "/x").status, 200);
}

TEST(HttpLimits, BoundWhatAClientMaySendAhead) {
  TestServer server;
  server.AddEcho("GET", "/x");
  server.Listen();
  RawClient client(server);
  std::string many;
  for (int n = 0; n < 20000; ++n) many += "GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n";
  client.Send(many);
  EXPECT_NE(client.ReadToEnd().find("urn:vexalink:problem:too-many"), std::string::npos);
  EXPECT_EQ(Ask(server, "GET", "/x").status, 200);
}
