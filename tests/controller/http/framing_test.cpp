#include <gtest/gtest.h>
#include <random>

#include "RawClient.h"

namespace {

constexpr const char* kHost = "Host: localhost\r\n";
const std::string kPost =
    "POST /x HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n";

struct Echo : TestServer {
  explicit Echo(controller::HttpOptions options = {}) : TestServer(std::move(options)) {
    for (const char* method : {"GET", "POST", "PUT", "PATCH", "DELETE"}) AddEcho(method, "/x");
    Listen();
  }
};

std::string Get(const std::string& more) {
  return std::string("GET /x HTTP/1.1\r\n") + kHost + more + "\r\n";
}

}  // namespace

/// What might hide one request in another: no part of it may be worked, and nobody but this server
/// may write the answer.
TEST(RequestFraming, RefusesWhatMightBeReadInTwoWays) {
  const std::string hidden = "GET /x HTTP/1.1\r\nHost: localhost\r\n\r\n";
  const struct {
    const char* why;
    std::string bytes;
  } rows[] = {
      {"both lengths", kPost + "Content-Length: 4\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"},
      {"both lengths, other order",
       kPost + "Transfer-Encoding: chunked\r\nContent-Length: 4\r\n\r\n0\r\n\r\n"},
      {"two different lengths", kPost + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}"},
      {"two equal lengths", kPost + "Content-Length: 2\r\nContent-Length: 2\r\n\r\n{}"},
      {"a list of lengths", kPost + "Content-Length: 2, 2\r\n\r\n{}"},
      {"a signed length", kPost + "Content-Length: +2\r\n\r\n{}"},
      {"a negative length", kPost + "Content-Length: -2\r\n\r\n{}"},
      {"a hexadecimal length", kPost + "Content-Length: 0x2\r\n\r\n{}"},
      {"a length with a fraction", kPost + "Content-Length: 2.0\r\n\r\n{}"},
      {"no digits", kPost + "Content-Length: \r\n\r\n{}"},
      {"a length beyond 64 bits", kPost + "Content-Length: 18446744073709551618\r\n\r\n{}"},
      {"a length split by a space", kPost + "Content-Length: 1 2\r\n\r\n{}"},
      {"space before the colon", kPost + "Content-Length : 2\r\n\r\n{}"},
      {"tab before the colon", kPost + "Content-Length\t: 2\r\n\r\n{}"},
      {"space before the name", "GET /x HTTP/1.1\r\n Host: localhost\r\n\r\n"},
      {"folded field", Get("X-A: 1\r\n 2\r\n")},
      {"folded with a tab", Get("X-A: 1\r\n\t2\r\n")},
      {"folded first field", "GET /x HTTP/1.1\r\n\tHost: localhost\r\n\r\n"},
      {"unknown coding", kPost + "Transfer-Encoding: gzip\r\n\r\n" + hidden},
      {"two codings", kPost + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n"},
      {"chunked is not last", kPost + "Transfer-Encoding: chunked, identity\r\n\r\n0\r\n\r\n"},
      {"chunked twice", kPost + "Transfer-Encoding: chunked, chunked\r\n\r\n0\r\n\r\n"},
      {"two coding fields",
       kPost + "Transfer-Encoding: chunked\r\nTransfer-Encoding: identity\r\n\r\n0\r\n\r\n"},
      {"coding with a parameter", kPost + "Transfer-Encoding: chunked;a=b\r\n\r\n0\r\n\r\n"},
      {"coding with a byte before it", kPost + "Transfer-Encoding: \x0b"
                                               "chunked\r\n\r\n0\r\n\r\n"},
      {"chunked in HTTP/1.0",
       "POST /x HTTP/1.0\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"},
      {"a body on GET", Get("Content-Length: 38\r\n") + hidden},
      {"a body on HEAD",
       std::string("HEAD /x HTTP/1.1\r\n") + kHost + "Content-Length: 38\r\n\r\n" + hidden},
      {"a body on DELETE",
       std::string("DELETE /x HTTP/1.1\r\n") + kHost + "Content-Length: 38\r\n\r\n" + hidden},
      {"chunks on OPTIONS", std::string("OPTIONS /x HTTP/1.1\r\n") + kHost +
                                "Transfer-Encoding: chunked\r\n\r\n" + hidden},
      {"an unknown method with a body",
       std::string("BREW /x HTTP/1.1\r\n") + kHost + "Content-Length: 38\r\n\r\n" + hidden},
      {"TRACE", std::string("TRACE /x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"CONNECT", std::string("CONNECT localhost:80 HTTP/1.1\r\n") + kHost + "\r\n"},
      {"a method in lower case", std::string("get /x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"bare LF after the request line", "GET /x HTTP/1.1\nHost: localhost\r\n\r\n"},
      {"bare LF after a field", "GET /x HTTP/1.1\r\nHost: localhost\n\r\n"},
      {"bare LF everywhere", "GET /x HTTP/1.1\nHost: localhost\n\n"},
      {"bare CR in a field", Get("X-A: 1\rX-B: 2\r\n")},
      {"CR CR LF", "GET /x HTTP/1.1\r\r\nHost: localhost\r\n\r\n"},
      {"an empty line first", "\r\n" + Get("")},
      {"a NUL in a field", Get(std::string("X-A: 1\0 2\r\n", 11))},
      {"a NUL in a name", Get(std::string("X\0A: 1\r\n", 8))},
      {"a field without a colon", Get("X-A\r\n")},
      {"a field without a name", Get(": 1\r\n")},
      {"a name with a bracket", Get("X(A): 1\r\n")},
      {"no host", "GET /x HTTP/1.1\r\n\r\n"},
      {"two hosts", Get("Host: localhost\r\n")},
      {"an empty host", "GET /x HTTP/1.1\r\nHost: \r\n\r\n"},
      {"a host with a path", "GET /x HTTP/1.1\r\nHost: localhost/x\r\n\r\n"},
      {"a host with a name of a user", "GET /x HTTP/1.1\r\nHost: a@localhost\r\n\r\n"},
      {"a host with a port too large", "GET /x HTTP/1.1\r\nHost: localhost:65536\r\n\r\n"},
      {"two spaces before the address", std::string("GET  /x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"a space in the address", std::string("GET /x /y HTTP/1.1\r\n") + kHost + "\r\n"},
      {"a tab in the request line", std::string("GET\t/x\tHTTP/1.1\r\n") + kHost + "\r\n"},
      {"no version", std::string("GET /x\r\n") + kHost + "\r\n"},
      {"something after the version", std::string("GET /x HTTP/1.1 \r\n") + kHost + "\r\n"},
      {"a version in lower case", std::string("GET /x http/1.1\r\n") + kHost + "\r\n"},
      {"HTTP/0.9", "GET /x\r\n\r\n"},
      {"HTTP/1.2", std::string("GET /x HTTP/1.2\r\n") + kHost + "\r\n"},
      {"HTTP/2", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"},
      {"no slash", std::string("GET x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"two slashes", std::string("GET //x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"two slashes and a bracket", std::string("GET //[x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"an asterisk", std::string("OPTIONS * HTTP/1.1\r\n") + kHost + "\r\n"},
      {"a fragment", std::string("GET /x#a HTTP/1.1\r\n") + kHost + "\r\n"},
      {"a byte beyond ASCII", std::string("GET /x\xc3\xa4 HTTP/1.1\r\n") + kHost + "\r\n"},
      {"another scheme", std::string("GET ftp://localhost/x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"an address that is none", std::string("GET http://[::1/x HTTP/1.1\r\n") + kHost + "\r\n"},
      {"another expectation", kPost + "Expect: 200-ok\r\nContent-Length: 2\r\n\r\n{}"},
  };
  for (const auto& row : rows) {
    Echo server;
    RawClient client(server);
    client.Send(row.bytes);
    const std::string all = client.ReadToEnd();
    EXPECT_EQ(server.handled, 0) << row.why;
    EXPECT_TRUE(all.starts_with("HTTP/1.1 4") || all.starts_with("HTTP/1.1 5")) << row.why << all;
    EXPECT_NE(all.find("urn:vexalink:problem:"), std::string::npos) << row.why << ": " << all;
    EXPECT_EQ(all.find("}HTTP/1.1 "), std::string::npos) << row.why << ": " << all;
  }
}

TEST(RequestFraming, RefusesOddChunks) {
  const struct {
    const char* why;
    std::string body;
  } rows[] = {
      {"an extension", "2;a=b\r\n{}\r\n0\r\n\r\n"},
      {"a space after the size", "2 \r\n{}\r\n0\r\n\r\n"},
      {"a space before the size", " 2\r\n{}\r\n0\r\n\r\n"},
      {"0x", "0x2\r\n{}\r\n0\r\n\r\n"},
      {"a sign", "+2\r\n{}\r\n0\r\n\r\n"},
      {"a negative size", "-2\r\n{}\r\n0\r\n\r\n"},
      {"no size", "\r\n{}\r\n0\r\n\r\n"},
      {"nine digits", "000000002\r\n{}\r\n0\r\n\r\n"},
      {"bare LF after the size", "2\n{}\r\n0\r\n\r\n"},
      {"bare LF after the chunk", "2\r\n{}\n0\r\n\r\n"},
      {"a chunk longer than its size", "2\r\n{ }\r\n0\r\n\r\n"},
      {"no digit at all", "zz\r\n{}\r\n0\r\n\r\n"},
      {"a trailer", "2\r\n{}\r\n0\r\nX-A: 1\r\n\r\n"},
      {"a trailer with a length", "2\r\n{}\r\n0\r\nContent-Length: 5\r\n\r\n"},
      {"a wrong end", "2\r\n{}\r\n0\r\nX\r\n"},
      {"two CR", "2\r\r\n{}\r\n0\r\n\r\n"},
  };
  for (const auto& row : rows) {
    Echo server;
    RawClient client(server);
    client.Send(kPost + "Transfer-Encoding: chunked\r\n\r\n" + row.body);
    const std::string all = client.ReadToEnd();
    EXPECT_TRUE(all.starts_with("HTTP/1.1 400 ")) << row.why << ": " << all;
    EXPECT_NE(all.find("urn:vexalink:problem:malformed"), std::string::npos) << row.why;
    EXPECT_EQ(server.handled, 0) << row.why;
  }
}

TEST(RequestFraming, TakesBodiesInEveryCut) {
  const std::string fixed = kPost + "Content-Length: 11\r\n\r\n{\"a\": \"b\" }";
  const std::string chunked =
      kPost + "transfer-encoding: Chunked\r\n\r\n3\r\n{\"a\r\n0008\r\n\": \"b\" }\r\n0\r\n\r\n";
  for (const std::string& request : {fixed, chunked}) {
    for (const std::size_t piece : {1UL, 2UL, 7UL, 64UL, 4096UL}) {
      Echo server;
      RawClient client(server);
      const std::string twice = request + request;
      for (std::size_t at = 0; at < twice.size(); at += piece) {
        client.Send(std::string_view(twice).substr(at, piece));
      }
      for (int n = 0; n < 2; ++n) {
        EXPECT_EQ(client.Read().body, "POST /x [{\"a\": \"b\" }] local") << piece;
      }
    }
  }
}

TEST(RequestFraming, AnswersRequestsThatWereSentAtOnceInTheirOrder) {
  Echo server;
  RawClient client(server);
  std::string all;
  for (int n = 0; n < 30; ++n) {
    all += "GET /x?n=" + std::to_string(n) + " HTTP/1.1\r\nHost: localhost\r\n\r\n";
    if (n % 3 == 0) all += "GET /none HTTP/1.1\r\nHost: localhost\r\n\r\n";
  }
  // 40 of them would be too many at once, but they are read as fast as they come.
  client.Send(all.substr(0, all.size() / 2));
  client.Read();
  client.Send(all.substr(all.size() / 2));
  int next = 0;
  for (int n = 1; n < 40; ++n) {
    const RawAnswer answer = client.Read();
    if (answer.status == 404) continue;
    ++next;
    EXPECT_EQ(answer.body.find("GET /x n="), 0U);
  }
  EXPECT_EQ(server.handled, 30);
}

TEST(RequestFraming, TakesAnAddressWithItsHost) {
  Echo server;
  RawClient client(server);
  client.Send("GET http://LOCALHOST:1/x?a=1 HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(client.Read().body, "GET /x a=1 [] local");
  RawClient other(server);
  other.Send("GET http://evil.example/x HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(ProblemName(other.Read()), "forbidden");
}

TEST(RequestFraming, SaysGoOnToThoseWhoAsk) {
  Echo server;
  RawClient client(server);
  client.Send(kPost + "Expect: 100-continue\r\nContent-Length: 2\r\n\r\n");
  EXPECT_TRUE(client.ReadUntil("100 Continue\r\n\r\n"));
  client.Send("{}");
  EXPECT_EQ(client.Read().body, "POST /x [{}] local");
}

TEST(RequestFraming, RefusesBeforeItTakesTheBody) {
  Echo server;
  RawClient client(server);
  client.Send(kPost + "Expect: 100-continue\r\nContent-Length: 1048577\r\n\r\n");
  const RawAnswer answer = client.Read();
  EXPECT_EQ(ProblemName(answer), "too-large");
  EXPECT_TRUE(client.IsEnded());
  EXPECT_EQ(client.Received(), "");
}

/// Bytes made by chance, and good requests spoilt by chance: an answer of ours or the end of the
/// connection, and a server that goes on.
TEST(RequestFraming, BearsAnything) {
  std::mt19937 chance(20261121);
  const auto pick = [&](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(chance);
  };
  const std::string good[] = {
      Get("X-A: 1\r\n"), kPost + "Content-Length: 2\r\n\r\n{}",
      kPost + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n",
      "HEAD /x?a=b%20c HTTP/1.1\r\nHost: 127.0.0.1:80\r\nAccept: */*\r\n\r\n",
      kPost + "Expect: 100-continue\r\nContent-Length: 2\r\n\r\n{}"};
  const std::string bits[] = {"\r\n",
                              "\n",
                              "\r",
                              " ",
                              ":",
                              "\t",
                              std::string(1, '\0'),
                              "%",
                              "0",
                              "-",
                              "chunked",
                              "Content-Length: 5\r\n",
                              "\xff",
                              "HTTP/1.1",
                              "http://",
                              "//"};
  Echo server;
  for (int n = 0; n < 3000; ++n) {
    std::string text;
    for (std::size_t requests = pick(3) + 1; requests > 0; --requests) text += good[pick(5)];
    for (std::size_t changes = pick(4); changes > 0; --changes) {
      const std::size_t at = pick(text.size());
      switch (pick(4)) {
        case 0:
          text.erase(at, pick(8) + 1);
          break;
        case 1:
          text.insert(at, bits[pick(16)]);
          break;
        case 2:
          text[at] = static_cast<char>(pick(256));
          break;
        default:
          text.insert(at, text.substr(pick(text.size()), pick(40)));
      }
    }
    RawClient client(server);
    const std::size_t cut = pick(text.size() + 1);
    client.Send(std::string_view(text).substr(0, cut));
    client.Send(std::string_view(text).substr(cut));
    client.EndSending();
    const std::string all = client.ReadToEnd();
    EXPECT_EQ(all.find("<HTML>"), std::string::npos) << text << "\n-> " << all;
    EXPECT_TRUE(all.empty() || all.starts_with("HTTP/1.")) << text << "\n-> " << all;
    EXPECT_EQ(all.find("urn:vexalink:problem:internal"), std::string::npos) << text;
  }
  EXPECT_EQ(Ask(server, "GET", "/x").status, 200);
  EXPECT_EQ(server.server->Counters().openConnections, 1U);
}
