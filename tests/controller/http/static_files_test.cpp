#include <gtest/gtest.h>

#include "RawClient.h"
#include "controller/http/Digest.h"
#include "controller/http/StaticFiles.h"

using controller::AcceptsGzip;
using controller::Asset;

namespace {

constexpr Asset kFiles[] = {
    {"/assets/app-5f3a9c1d.js", "text/javascript; charset=utf-8", "let a = 1;", "", "\"a\"", true},
    {"/index.html", "text/html; charset=utf-8", "<!doctype html>", "squeezed", "\"i\"", false},
};

struct Page : TestServer {
  explicit Page(bool reachable = false) : TestServer({}, reachable) {
    controller::AddStaticFiles(*server, kFiles);
    Listen();
  }
};

}  // namespace

TEST(StaticFiles, AreServedWithTheirTypes) {
  Page server;
  for (const char* path : {"/", "/index.html"}) {
    RawAnswer page = Ask(server, "GET", path);
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.body, "<!doctype html>");
    EXPECT_EQ(page.fields["content-type"], "text/html; charset=utf-8");
    EXPECT_EQ(page.fields["cache-control"], "no-cache");
    EXPECT_EQ(page.fields["etag"], "\"i\"");
    EXPECT_EQ(page.fields["vary"], "Accept-Encoding");
    EXPECT_EQ(page.fields.count("content-encoding"), 0U);
  }
  RawAnswer script = Ask(server, "GET", "/assets/app-5f3a9c1d.js");
  EXPECT_EQ(script.fields["content-type"], "text/javascript; charset=utf-8");
  EXPECT_EQ(script.fields["cache-control"], "public, max-age=31536000, immutable");
}

TEST(StaticFiles, AreCompressedForThoseWhoTakeIt) {
  Page server;
  RawAnswer page = Ask(server, "GET", "/", "Accept-Encoding: gzip, deflate, br\r\n");
  EXPECT_EQ(page.body, "squeezed");
  EXPECT_EQ(page.fields["content-encoding"], "gzip");
  EXPECT_EQ(page.fields["etag"], "\"i-gz\"");
  RawAnswer script = Ask(server, "GET", "/assets/app-5f3a9c1d.js", "Accept-Encoding: gzip\r\n");
  EXPECT_EQ(script.body, "let a = 1;");
  EXPECT_EQ(script.fields.count("content-encoding"), 0U);
}

TEST(StaticFiles, AreNotSentToThoseWhoHaveThem) {
  Page server;
  RawAnswer known = Ask(server, "GET", "/", "If-None-Match: \"i\"\r\n");
  EXPECT_EQ(known.status, 304);
  EXPECT_EQ(known.fields["etag"], "\"i\"");
  EXPECT_EQ(known.fields.count("content-type"), 0U);
  EXPECT_EQ(Ask(server, "GET", "/", "If-None-Match: \"i-gz\"\r\n").status, 200);
  EXPECT_EQ(Ask(server, "GET", "/", "If-None-Match: \"i-gz\"\r\nAccept-Encoding: gzip\r\n").status,
            304);
}

TEST(StaticFiles, NeedNoToken) {
  Page server(/*reachable=*/true);
  EXPECT_EQ(Ask(server, "GET", "/").status, 200);
}

TEST(StaticFiles, LeadNowhereElse) {
  Page server;
  for (const char* path : {"/../etc/passwd", "/assets/../index.html", "/%2e%2e/index.html",
                           "/assets/..%2findex.html", "/assets", "/assets/", "/index.html/",
                           "/Index.html", "/./index.html", "/assets%2fapp-5f3a9c1d.js"}) {
    EXPECT_EQ(Ask(server, "GET", path).status, 404) << path;
  }
  EXPECT_EQ(Ask(server, "POST", "/index.html").status, 405);
}

TEST(AcceptEncoding, IsReadWithItsWeights) {
  for (const char* yes : {"gzip", "GZIP", "br, gzip", "gzip;q=0.5", "*", "br;q=1, *;q=0.1",
                          "x-gzip", " gzip ; q=1 ", "gzip;q=0.001", "*;q=0, gzip"}) {
    EXPECT_TRUE(AcceptsGzip(yes)) << yes;
  }
  for (const char* no : {"", "br", "gzip;q=0", "gzip; q=0.000", "identity", "*;q=0", "gzip;q=0, *",
                         "gzipped", "deflate, br"}) {
    EXPECT_FALSE(AcceptsGzip(no)) << no;
  }
}

TEST(Assets, HoldThePage) {
  bool hasIndex = false;
  for (const Asset& asset : controller::Assets()) {
    EXPECT_TRUE(asset.path.starts_with('/')) << asset.path;
    EXPECT_FALSE(asset.content.empty()) << asset.path;
    EXPECT_EQ(asset.tag, "\"" + controller::ContentHash(asset.content) + "\"") << asset.path;
    if (!asset.gzip.empty()) {
      EXPECT_LT(asset.gzip.size(), asset.content.size());
      EXPECT_TRUE(asset.gzip.starts_with("\x1f\x8b\x08")) << asset.path;
    }
    if (asset.path != "/index.html") continue;
    hasIndex = true;
    EXPECT_EQ(asset.mediaType, "text/html; charset=utf-8");
    EXPECT_FALSE(asset.immutable);
    EXPECT_TRUE(asset.content.starts_with("<!doctype html>") ||
                asset.content.starts_with("<!DOCTYPE html>"));
  }
  EXPECT_TRUE(hasIndex);
}
