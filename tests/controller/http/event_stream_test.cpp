#include <chrono>
#include <gtest/gtest.h>

#include "RawClient.h"
#include "controller/http/EventStream.h"

using controller::EventStream;
using controller::EventStreamLimits;
using controller::HttpRequest;

namespace {

struct Streaming : TestServer {
  explicit Streaming(const EventStreamLimits& limits = {}, controller::HttpOptions options = {},
                     bool reachable = false)
      : TestServer(std::move(options), reachable),
        stream(
            base.get(),
            [this](const HttpRequest& request) {
              return server->IsStillAllowed(request, controller::Role::kView);
            },
            limits) {
    server->Add(stream.Route("/stream"));
    AddEcho("GET", "/x");
    Listen();
  }
  // Its connections end before the stream does.
  ~Streaming() { server.reset(); }

  EventStream stream;
};

std::string AskStream(const std::string& more = "", const std::string& target = "/stream") {
  return "GET " + target + " HTTP/1.1\r\nHost: localhost\r\n" + more + "\r\n";
}

/// What a client has received, without the head and what the chunks put between.
std::string Payload(const std::string& received) {
  std::size_t at = received.find("\r\n\r\n") + 4;
  std::string payload;
  while (at < received.size()) {
    const std::size_t end = received.find("\r\n", at);
    if (end == std::string::npos) break;
    const std::size_t size = std::stoul(received.substr(at, end - at), nullptr, 16);
    payload += received.substr(end + 2, size);
    at = end + 2 + size + 2;
  }
  return payload;
}

/// Waits until the client listens.
void Begin(RawClient& client, const std::string& request) {
  client.Send(request);
  EXPECT_TRUE(client.ReadUntil("retry: 3000\n"));
  EXPECT_TRUE(client.ReadUntil("\n\n"));
}

std::string LastIdIn(const std::string& received) {
  const std::size_t at = received.rfind("id: ") + 4;
  return received.substr(at, received.find('\n', at) - at);
}

}  // namespace

TEST(EventStream, TellsEverybodyWhatHappens) {
  Streaming server;
  RawClient first(server);
  RawClient second(server);
  Begin(first, AskStream());
  Begin(second, AskStream());
  EXPECT_EQ(server.stream.Clients(), 2U);
  server.stream.Publish("journal", R"({"id":1})");
  server.stream.Publish("today", "{\"date\":\n\"2026-11-21\"}");
  const std::string epoch = server.stream.LatestId().substr(0, server.stream.LatestId().find('-'));
  const std::string told = "id: " + epoch + "-1\nevent: journal\ndata: {\"id\":1}\n\nid: " + epoch +
                           "-2\nevent: today\ndata: {\"date\":\ndata: \"2026-11-21\"}\n\n";
  for (RawClient* client : {&first, &second}) {
    EXPECT_TRUE(client->ReadUntil("2026-11-21\"}\n\n\r\n"));
    EXPECT_EQ(Payload(client->Received()), "retry: 3000\nid: " + epoch + "-0\n\n" + told);
    EXPECT_NE(client->Received().find("Content-Type: text/event-stream\r\n"), std::string::npos);
    EXPECT_NE(client->Received().find("Cache-Control: no-store\r\n"), std::string::npos);
  }
  EXPECT_EQ(server.stream.Published(), 2U);
}

TEST(EventStream, BringsWhatWasMissed) {
  Streaming server;
  for (int n = 1; n <= 5; ++n) server.stream.Publish("journal", std::to_string(n));
  const std::string id = server.stream.LatestId();
  const std::string third = id.substr(0, id.size() - 1) + "3";
  const std::string missed = "id: " + id.substr(0, id.size() - 1) +
                             "4\nevent: journal\ndata: 4\n\nid: " + id +
                             "\nevent: journal\ndata: 5\n\n";
  RawClient byField(server);
  Begin(byField, AskStream("Last-Event-ID: " + third + "\r\n"));
  EXPECT_TRUE(byField.ReadUntil("data: 5\n\n"));
  EXPECT_EQ(Payload(byField.Received()), "retry: 3000\nid: " + third + "\n\n" + missed)
      << "where it breaks off in between nothing is passed over";
  RawClient byQuery(server);
  Begin(byQuery, AskStream("", "/stream?last_event_id=" + third));
  EXPECT_TRUE(byQuery.ReadUntil("data: 5\n\n"));
  RawClient both(server);
  Begin(both, AskStream("Last-Event-ID: " + id + "\r\n", "/stream?last_event_id=" + third));
  server.stream.Publish("journal", "6");
  EXPECT_TRUE(both.ReadUntil("data: 6\n\n"));
  EXPECT_EQ(both.Received().find("data: 5"), std::string::npos) << "the field counts more";
}

TEST(EventStream, RefusesParametersThatItDoesNotKnow) {
  Streaming server;
  for (const auto& [query, why] :
       {std::pair("?since=1", "is not known here; there is last_event_id"),
        std::pair("?last_event_id=1&last_event_id=2", "give the parameter")}) {
    RawClient client(server);
    client.Send(AskStream("", std::string("/stream") + query));
    EXPECT_TRUE(client.ReadUntil(why)) << client.Received();
    EXPECT_EQ(client.Received().substr(0, 12), "HTTP/1.1 400") << query;
  }
  EXPECT_EQ(server.stream.Clients(), 0U);
}

TEST(EventStream, SaysSoWhereItDoesNotKnowWhatWasMissed) {
  EventStreamLimits limits;
  limits.events = 10;
  Streaming server(limits);
  for (int n = 1; n <= 30; ++n) server.stream.Publish("journal", std::to_string(n));
  const std::string id = server.stream.LatestId();
  const std::string epoch = id.substr(0, id.find('-'));
  for (const std::string& unknown :
       {epoch + "-19", epoch + "-0", epoch + "-31", epoch + "-", epoch + "-x", epoch + "-1x",
        epoch + "--1", std::string("1-30"), std::string("nonsense"), epoch,
        epoch + "-99999999999999999999999"}) {
    RawClient client(server);
    Begin(client, AskStream("Last-Event-ID: " + unknown + "\r\n"));
    EXPECT_TRUE(client.ReadUntil("event: reset\ndata: {}\n\n")) << unknown;
    EXPECT_EQ(LastIdIn(client.Received()), id) << unknown;
    EXPECT_EQ(client.Received().find("event: journal"), std::string::npos) << unknown;
  }
  RawClient oldest(server);
  Begin(oldest, AskStream("Last-Event-ID: " + epoch + "-20\r\n"));
  EXPECT_TRUE(oldest.ReadUntil("data: 30\n\n"));
  EXPECT_NE(oldest.Received().find("data: 21\n"), std::string::npos);
  EXPECT_EQ(oldest.Received().find("reset"), std::string::npos);
}

TEST(EventStream, KeepsABoundedAmount) {
  EventStreamLimits limits;
  limits.bytes = 10000;
  Streaming server(limits);
  const std::string id = server.stream.LatestId();
  for (int n = 0; n < 5; ++n) server.stream.Publish("journal", std::string(4000, 'x'));
  RawClient client(server);
  Begin(client, AskStream("Last-Event-ID: " + id + "\r\n"));
  EXPECT_TRUE(client.ReadUntil("event: reset"));
  server.stream.Publish("journal", std::string(20000, 'y'));
  EXPECT_TRUE(client.ReadUntil("yyy\n\n")) << "too large to be kept, but told";
}

TEST(EventStream, BeatsWhileNothingHappens) {
  EventStreamLimits limits;
  limits.heartbeat = 50;
  Streaming server(limits);
  RawClient client(server);
  Begin(client, AskStream());
  for (int n = 0; n < 3; ++n) EXPECT_TRUE(client.ReadUntil(": heartbeat\n\n"));
  EXPECT_EQ(server.stream.Published(), 0U);
}

TEST(EventStream, OutlivesTheTimesOfOtherConnections) {
  controller::HttpOptions options;
  options.limits.idle = options.limits.headTime = options.limits.bodyTime = 50;
  Streaming server({}, options);
  RawClient client(server);
  Begin(client, AskStream());
  EXPECT_TRUE(client.IsSilent(300));
  server.stream.Publish("journal", "1");
  EXPECT_TRUE(client.ReadUntil("data: 1\n\n"));
}

TEST(EventStream, ForgetsClientsThatGo) {
  Streaming server;
  {
    RawClient client(server);
    Begin(client, AskStream());
    EXPECT_EQ(server.stream.Clients(), 1U);
  }
  for (int n = 0; n < 100 && server.stream.Clients() > 0; ++n) server.Turn();
  EXPECT_EQ(server.stream.Clients(), 0U);
  EXPECT_EQ(server.server->Counters().openConnections, 0U);
  server.stream.Publish("journal", "1");
}

TEST(EventStream, DropsAClientThatDoesNotRead) {
  EventStreamLimits limits;
  limits.unread = 100000;
  Streaming server(limits);
  RawClient lazy(server);
  RawClient busy(server);
  Begin(lazy, AskStream());
  Begin(busy, AskStream());
  // The system takes some megabytes before it lets us know.
  int told = 0;
  while (server.stream.Dropped() == 0 && told < 5000) {
    server.stream.Publish("journal", std::string(20000, 'x'));
    ++told;
    EXPECT_TRUE(busy.ReadUntil("-" + std::to_string(told) + "\nevent: journal"));
  }
  EXPECT_EQ(server.stream.Dropped(), 1U);
  EXPECT_EQ(server.stream.Clients(), 1U);
  EXPECT_TRUE(lazy.IsEnded());
  server.stream.Publish("journal", "\"still\"");
  EXPECT_TRUE(busy.ReadUntil("\"still\""));
}

TEST(EventStream, TakesNoMoreClientsThanItCan) {
  EventStreamLimits limits;
  limits.clients = 3;
  Streaming server(limits);
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int n = 0; n < 3; ++n) {
    clients.push_back(std::make_unique<RawClient>(server));
    Begin(*clients.back(), AskStream());
  }
  const RawAnswer refused = Ask(server, "GET", "/stream");
  EXPECT_EQ(refused.status, 429);
  EXPECT_EQ(ProblemName(refused), "too-many");
  clients.pop_back();
  for (int n = 0; n < 100 && server.stream.Clients() > 2; ++n) server.Turn();
  RawClient again(server);
  Begin(again, AskStream());
}

TEST(EventStream, DropsWhatItsClientsSay) {
  Streaming server;
  RawClient client(server);
  Begin(client, AskStream());
  client.Send("GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
  client.Send(std::string(3000000, 'x'));
  server.stream.Publish("journal", "1");
  EXPECT_TRUE(client.ReadUntil("data: 1\n\n"));
  EXPECT_EQ(server.handled, 0);
}

TEST(EventStream, AnswersHeadAndOldClients) {
  Streaming server;
  RawAnswer head = Ask(server, "HEAD", "/stream");
  EXPECT_EQ(head.status, 200);
  EXPECT_EQ(head.fields["content-type"], "text/event-stream");
  EXPECT_EQ(server.stream.Clients(), 0U);
  RawClient old(server);
  old.Send("GET /stream HTTP/1.0\r\nHost: localhost\r\n\r\n");
  EXPECT_TRUE(old.ReadUntil("retry"));
  server.stream.Publish("journal", "1");
  EXPECT_TRUE(old.ReadUntil("data: 1\n\n"));
  EXPECT_EQ(old.Received().find("chunked"), std::string::npos);
}

TEST(EventStream, EndsForThoseWhoseTokenWasTakenAway) {
  EventStreamLimits limits;
  limits.heartbeat = 50;
  Streaming server(limits, {}, /*reachable=*/true);
  server.tokens.owners["t1"] = {"ada", controller::Role::kView};
  server.tokens.owners["t2"] = {"bob", controller::Role::kView};
  RawClient ada(server);
  RawClient bob(server);
  Begin(ada, AskStream("Authorization: Bearer t1\r\n"));
  Begin(bob, AskStream("Authorization: Bearer t2\r\n"));
  server.tokens.owners.erase("t1");
  EXPECT_TRUE(ada.IsEnded());
  server.stream.Publish("journal", "1");
  EXPECT_TRUE(bob.ReadUntil("data: 1\n\n"));
}

TEST(EventStream, EndsInOrderWithTheServer) {
  auto server = std::make_unique<Streaming>();
  RawClient client(*server);
  Begin(client, AskStream());
  server->stream.Publish("journal", "1");
  EXPECT_TRUE(client.ReadUntil("data: 1\n\n"));
  server->server.reset();
  EXPECT_EQ(server->stream.Clients(), 0U);
  EXPECT_TRUE(client.IsEnded());
}

TEST(EventStream, TellsTwoHundredClientsAtOnce) {
  Streaming server;
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int n = 0; n < 200; ++n) {
    clients.push_back(std::make_unique<RawClient>(server));
    clients.back()->Send(AskStream());
  }
  for (const auto& client : clients) EXPECT_TRUE(client->ReadUntil("retry: 3000\n"));
  ASSERT_EQ(server.stream.Clients(), 200U);
  const std::string row(500, 'x');
  const auto before = std::chrono::steady_clock::now();
  for (int n = 0; n < 10; ++n) server.stream.Publish("journal", row);
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - before;
  // A tenth of a millisecond is usual; what is held off meanwhile are the scheduler's ticks.
  EXPECT_LT(took.count() / 10, 50);
  for (const auto& client : clients) EXPECT_TRUE(client->ReadUntil("-10\nevent: journal"));
}
