#include "controller/http/Router.h"

#include <gtest/gtest.h>

#include "controller/Failure.h"
#include "controller/http/Problem.h"

using controller::HttpRoute;
using controller::Router;

namespace {

HttpRoute Route(const std::string& method, const std::string& path) {
  HttpRoute route;
  route.method = method;
  route.path = path;
  return route;
}

}  // namespace

TEST(Router, PrefersTheEarlierLiteral) {
  Router router;
  for (const char* path : {"/{a}/{b}", "/{a}/x", "/e/{b}", "/e/x"}) router.Add(Route("GET", path));
  const struct {
    std::vector<std::string> segments;
    const char* path;
  } rows[] = {{{"e", "x"}, "/e/x"},
              {{"e", "y"}, "/e/{b}"},
              {{"f", "x"}, "/{a}/x"},
              {{"f", "y"}, "/{a}/{b}"}};
  for (const auto& row : rows) {
    EXPECT_EQ(router.Find("GET", row.segments).route->path, row.path);
  }
  EXPECT_EQ(router.Find("GET", {"f", "y"}).parts.at("a"), "f");
  EXPECT_EQ(router.Find("HEAD", {"f", "y"}).parts.at("b"), "y");
}

TEST(Router, KeepsWhatItHasAnsweredWhileItGrows) {
  Router router;
  router.Add(Route("GET", "/a"));
  const HttpRoute* const route = router.Find("GET", {"a"}).route;
  for (int n = 0; n < 1000; ++n) {
    router.Add(Route("GET", "/a/" + std::to_string(n)));
    router.Add(Route("M" + std::to_string(n), "/a"));
  }
  EXPECT_EQ(route->path, "/a");
  EXPECT_EQ(router.Find("GET", {"a"}).route, route);
}

TEST(Router, RefusesTheSameEntryTwice) {
  Router router;
  router.Add(Route("GET", "/a/{x}"));
  router.Add(Route("PUT", "/a/{x}"));
  EXPECT_THROW(router.Add(Route("GET", "/a/{x}")), controller::Failure);
  EXPECT_THROW(router.Add(Route("GET", "a")), controller::Failure);
}

TEST(Router, TellsNoSuchPathFromNoSuchMethod) {
  Router router;
  router.Add(Route("PUT", "/a/{x}"));
  EXPECT_THROW(router.Find("PUT", {"a", ""}), controller::Problem);
  try {
    router.Find("GET", {"a", "b"});
    FAIL();
  } catch (const controller::Problem& problem) {
    EXPECT_EQ(problem.Name(), "method-not-allowed");
  }
  EXPECT_EQ(router.Allowed({"a", "b"}), "PUT, OPTIONS");
  EXPECT_EQ(router.Allowed({"b"}), "");
}
