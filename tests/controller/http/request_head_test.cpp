#include <gtest/gtest.h>

#include "controller/http/RequestHead.h"
#include "controller/http/UrlText.h"

using controller::ParseAuthority;
using controller::ParseQuery;
using controller::ParseRequestHead;
using controller::PathSegments;
using controller::PercentDecoded;
using controller::RequestHead;

TEST(RequestHead, HoldsWhatWasSaid) {
  const RequestHead head = ParseRequestHead(
      "PUT /api/v1/a%20b?x=1&y=%C3%A4&x=2 HTTP/1.1\r\nHost: House.Local:7440\r\nAccept: a\r\n"
      "X-Tabs:\t 1 \t\r\naccept: b\r\nContent-Length: 7\r\nContent-Type: application/json\r\n\r\n",
      {});
  EXPECT_EQ(head.method, "PUT");
  EXPECT_EQ(head.target, "/api/v1/a%20b?x=1&y=%C3%A4&x=2");
  EXPECT_EQ(head.path, "/api/v1/a%20b");
  EXPECT_EQ(head.query, (controller::QueryFields{{"x", "1"}, {"y", "\xc3\xa4"}, {"x", "2"}}));
  EXPECT_EQ(head.authority, "house.local:7440");
  EXPECT_EQ(head.fields.at("accept"), "a, b");
  EXPECT_EQ(head.fields.at("x-tabs"), "1");
  EXPECT_EQ(head.length, 7U);
  EXPECT_EQ(head.minorVersion, 1);
}

TEST(PercentDecoding, IsExact) {
  EXPECT_EQ(PercentDecoded("a%2fB%2Fc"), "a/B/c");
  EXPECT_EQ(PercentDecoded("a+b"), "a+b");
  EXPECT_EQ(PercentDecoded("a+b%2B", /*plusIsSpace=*/true), "a b+");
  EXPECT_EQ(PercentDecoded("%25%32%35"), "%25") << "once, not twice";
  for (const char* wrong : {"%", "%a", "%g0", "%0g", "a%", "%0", "%00", "%0a", "%7f", "%c2%85",
                            "%80", "%c0%80", "%f4%90%80%80"}) {
    EXPECT_EQ(PercentDecoded(wrong), std::nullopt) << wrong;
  }
}

TEST(PathSegments, AreDecodedOneByOne) {
  using Segments = std::vector<std::string>;
  EXPECT_EQ(PathSegments("/"), Segments{""});
  EXPECT_EQ(PathSegments("/a/b%2Fc/"), (Segments{"a", "b/c", ""}));
  EXPECT_EQ(PathSegments("a"), std::nullopt);
  EXPECT_EQ(PathSegments(""), std::nullopt);
}

TEST(Query, KeepsOrderAndRepetition) {
  EXPECT_EQ(ParseQuery("b=2&a&b=1=1&&=x"),
            (controller::QueryFields{{"b", "2"}, {"a", ""}, {"b", "1=1"}, {"", "x"}}));
  EXPECT_EQ(ParseQuery(""), controller::QueryFields{});
  EXPECT_EQ(ParseQuery("a=%f"), std::nullopt);
}

TEST(AuthorityText, IsAHostWithOrWithoutAPort) {
  EXPECT_EQ(ParseAuthority("A.b:80")->host, "a.b");
  EXPECT_EQ(ParseAuthority("A.b:80")->port, 80U);
  EXPECT_EQ(ParseAuthority("a")->port, std::nullopt);
  EXPECT_EQ(ParseAuthority("[FE80::1]:1")->host, "fe80::1");
  for (const char* wrong : {"", ":80", "a:", "a:123456", "a:-1", "a b", "a/b", "[::1", "[]", "[1]",
                            "[::1]x", "a:80:80", "\xc3\xa4", ".", "[::1%eth0]"}) {
    EXPECT_EQ(ParseAuthority(wrong), std::nullopt) << wrong;
  }
}
