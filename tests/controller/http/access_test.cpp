#include <gtest/gtest.h>

#include "RawClient.h"
#include "controller/Failure.h"

using controller::HttpOptions;
using controller::ListenAddress;
using controller::ParseListenAddress;
using controller::Role;

namespace {

struct Guarded : TestServer {
  explicit Guarded(bool reachable) : TestServer(WithName(), reachable) {
    AddEcho("GET", "/view", Role::kView);
    AddEcho("POST", "/operate", Role::kOperate);
    AddEcho("DELETE", "/edit", Role::kEdit);
    controller::HttpRoute page;
    page.method = "GET";
    page.path = "/";
    page.open = true;
    page.handler = [](const controller::HttpRequest& request, controller::Respond respond) {
      respond({200, "text/plain", "page for [" + request.actor + "]", {}, {}});
    };
    server->Add(page);
    tokens.owners = {{"v1", {"viewer", Role::kView}},
                     {"o1", {"operator", Role::kOperate}},
                     {"e1", {"editor", Role::kEdit}}};
    Listen();
  }

  static HttpOptions WithName() {
    HttpOptions options;
    options.allowedHosts = {"House.Local", "vexalink.example:8443"};
    return options;
  }
};

}  // namespace

TEST(Access, KnowsItselfByTheseNamesOnly) {
  Guarded server(/*reachable=*/false);
  for (const char* host : {"localhost", "LocalHost:7440", "127.0.0.1", "127.0.0.1:80", "[::1]:7440",
                           "house.local", "house.local:80", "HOUSE.LOCAL.", "vexalink.example"}) {
    EXPECT_EQ(Ask(server, "GET", "/view", std::string("Host: ") + host + "\r\n").status, 200)
        << host;
  }
  for (const char* host : {"evil.example", "localhost.evil.example", "evil-localhost", "127.0.0.2",
                           "192.168.1.5", "[::2]", "127.1", "2130706433", "0.0.0.0"}) {
    const RawAnswer answer = Ask(server, "GET", "/view", std::string("Host: ") + host + "\r\n");
    EXPECT_EQ(answer.status, 403) << host;
    EXPECT_EQ(ProblemName(answer), "forbidden") << host;
    EXPECT_NE(ProblemDetail(answer).find("--allow-host"), std::string::npos);
  }
  EXPECT_EQ(server.handled, 9);
}

TEST(Access, LetsNoOtherSitesPageChangeAnything) {
  Guarded server(/*reachable=*/false);
  const struct {
    const char* fields;
    int status;
  } rows[] = {
      {"", 200},
      {"Sec-Fetch-Site: same-origin\r\n", 200},
      {"Sec-Fetch-Site: none\r\n", 200},
      {"Sec-Fetch-Site: same-site\r\n", 403},
      {"Sec-Fetch-Site: cross-site\r\n", 403},
      {"Sec-Fetch-Site: \r\n", 403},
      {"Origin: http://localhost\r\n", 200},
      {"Origin: HTTP://LOCALHOST\r\n", 200},
      {"Origin: https://localhost\r\n", 200},
      {"Origin: http://localhost:7440\r\n", 403},
      {"Origin: http://127.0.0.1\r\n", 403},
      {"Origin: null\r\n", 403},
      {"Origin: http://evil.example\r\n", 403},
      {"Origin: http://localhost.evil.example\r\n", 403},
      {"Origin: \r\n", 403},
      {"Sec-Fetch-Site: same-origin\r\nOrigin: http://evil.example\r\n", 403},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Ask(server, "POST", "/operate", row.fields, "{}").status, row.status) << row.fields;
    EXPECT_EQ(Ask(server, "DELETE", "/edit", row.fields).status, row.status) << row.fields;
    EXPECT_EQ(Ask(server, "GET", "/view", row.fields).status, 200) << row.fields;
  }
  EXPECT_EQ(
      Ask(server, "POST", "/operate", "Host: house.local:80\r\nOrigin: http://house.local:80\r\n")
          .status,
      200);
}

TEST(Access, AsksForATokenWhereOthersCanReachIt) {
  Guarded server(/*reachable=*/true);
  EXPECT_TRUE(server.server->NeedsToken());
  RawAnswer none = Ask(server, "GET", "/view");
  EXPECT_EQ(none.status, 401);
  EXPECT_EQ(ProblemName(none), "unauthorized");
  EXPECT_EQ(none.fields["www-authenticate"], "Bearer");
  for (const char* wrong :
       {"Bearer x", "Bearer", "Bearer ", "Basic v1", "v1", "Bearer v1 v1", ""}) {
    const std::string field = std::string("Authorization: ") + wrong + "\r\n";
    EXPECT_EQ(Ask(server, "GET", "/view", field).status, 401) << wrong;
    EXPECT_EQ(Ask(server, "POST", "/operate", field, "{}").status, 401) << wrong;
  }
  EXPECT_EQ(server.handled, 0);
  EXPECT_EQ(Ask(server, "GET", "/").body, "page for []");
}

TEST(Access, LetsEachTokenDoWhatItsRoleAllows) {
  Guarded server(/*reachable=*/true);
  const struct {
    const char* token;
    int view, operate, edit;
  } rows[] = {{"v1", 200, 403, 403}, {"o1", 200, 200, 403}, {"e1", 200, 200, 200}};
  for (const auto& row : rows) {
    const std::string field = std::string("authorization: bearer ") + row.token + "\r\n";
    EXPECT_EQ(Ask(server, "GET", "/view", field).status, row.view) << row.token;
    EXPECT_EQ(Ask(server, "HEAD", "/view", field).status, row.view) << row.token;
    EXPECT_EQ(Ask(server, "POST", "/operate", field, "{}").status, row.operate) << row.token;
    EXPECT_EQ(Ask(server, "DELETE", "/edit", field).status, row.edit) << row.token;
  }
  EXPECT_EQ(ProblemDetail(Ask(server, "DELETE", "/edit", "Authorization: Bearer o1\r\n")),
            "this needs the role edit; the token of \"operator\" has the role operate");
  // Only who is known to sit at this computer may say who they are.
  EXPECT_EQ(
      Ask(server, "GET", "/view", "Authorization: Bearer v1\r\nVexalink-Actor: cli:ada\r\n").body,
      "GET /view [] viewer");
}

TEST(Access, TakesATokenAlsoWhereNoneIsNeeded) {
  Guarded server(/*reachable=*/false);
  EXPECT_FALSE(server.server->NeedsToken());
  EXPECT_EQ(Ask(server, "GET", "/view", "Authorization: Bearer v1\r\n").body,
            "GET /view [] viewer");
  EXPECT_EQ(Ask(server, "DELETE", "/edit", "Authorization: Bearer v1\r\n").status, 403);
  EXPECT_EQ(Ask(server, "GET", "/view", "Authorization: Bearer x\r\n").status, 401);
}

TEST(Access, TakesNamesOfLocalClientsThatCanBeShown) {
  Guarded server(/*reachable=*/false);
  const std::string longest(64, 'a');
  for (const std::string& name :
       {std::string("cli:ada"), std::string("web"), longest, std::string("cli:j\xc3\xb6rg")}) {
    EXPECT_EQ(Ask(server, "GET", "/view", "Vexalink-Actor: " + name + "\r\n").body,
              "GET /view [] " + name);
  }
  for (const std::string& name :
       {std::string(), longest + "a", std::string("a\xff"), std::string("a\xc2\x85")}) {
    EXPECT_EQ(Ask(server, "GET", "/view", "Vexalink-Actor: " + name + "\r\n").status, 400) << name;
  }
}

TEST(Access, RefusesNamesThatAreNone) {
  HttpOptions options;
  options.allowedHosts = {"http://house.local"};
  EXPECT_THROW(TestServer server(options), controller::Failure);
}

TEST(Access, LooksAtTheMediaTypeOfBodies) {
  TestServer server;
  server.AddEcho("POST", "/x");
  server.Listen();
  const struct {
    const char* fields;
    int status;
  } rows[] = {
      {"Content-Type: application/json\r\n", 200},
      {"Content-Type: Application/JSON; charset=UTF-8\r\n", 200},
      {"Content-Type: application/json;charset=\"utf-8\"\r\n", 200},
      {"Content-Type: application/json; charset=latin1\r\n", 415},
      {"Content-Type: text/plain\r\n", 415},
      {"Content-Type: application/x-www-form-urlencoded\r\n", 415},
      {"Content-Type: multipart/form-data; boundary=a\r\n", 415},
      {"Content-Type: application/jsonx\r\n", 415},
      {"Content-Type:\r\n", 415},
      {"Content-Type: application/json\r\nContent-Encoding: gzip\r\n", 415},
      {"Content-Type: application/json\r\nContent-Encoding: identity\r\n", 200},
  };
  for (const auto& row : rows) {
    const RawAnswer answer = Ask(server, "POST", "/x", row.fields, "{}");
    EXPECT_EQ(answer.status, row.status) << row.fields;
    EXPECT_EQ(ProblemName(answer), row.status == 200 ? "" : "unsupported-media-type");
  }
  EXPECT_EQ(Ask(server, "POST", "/x").status, 200) << "without a body there is no type to look at";
}

TEST(ListenAddress, IsReadAsPeopleWriteIt) {
  const struct {
    const char* text;
    const char* read;
    bool loopback;
  } rows[] = {{"127.0.0.1:7440", "127.0.0.1:7440", true},
              {"127.0.0.1", "127.0.0.1:7440", true},
              {"127.9.9.9:1", "127.9.9.9:1", true},
              {"localhost:0", "127.0.0.1:0", true},
              {"[::1]:80", "[::1]:80", true},
              {"[0:0:0:0:0:0:0:1]", "[::1]:7440", true},
              {"[::]:80", "[::]:80", false},
              {"*:80", "0.0.0.0:80", false},
              {"*", "0.0.0.0:7440", false},
              {"0.0.0.0:65535", "0.0.0.0:65535", false},
              {"192.168.1.5:7440", "192.168.1.5:7440", false}};
  for (const auto& row : rows) {
    const ListenAddress read = ParseListenAddress("--listen", row.text);
    EXPECT_EQ(read.Text(), row.read) << row.text;
    EXPECT_EQ(read.IsLoopback(), row.loopback) << row.text;
  }
  for (const char* wrong :
       {"", ":7440", "house.local:80", "127.0.0.1:", "127.0.0.1:65536", "1.2.3:80", "127.0.0.1:x",
        "::1", "[::1", "*x", "127.0.0.1:80:80", "127.0.0.1 "}) {
    try {
      ParseListenAddress("--listen", wrong);
      ADD_FAILURE() << wrong << " was taken";
    } catch (const controller::Failure& failure) {
      EXPECT_EQ(
          std::string(failure.what()),
          "--listen is \"" + std::string(wrong) +
              "\"; give an address and a port, 127.0.0.1:7440, [::1]:7440 or *:7440 for example");
      EXPECT_EQ(failure.Status(), controller::ExitStatus::kBadInput);
    }
  }
}
