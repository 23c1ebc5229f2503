#include <gtest/gtest.h>

#include "controller/http/Digest.h"
#include "controller/http/EntityTag.h"
#include "controller/http/Problem.h"

using controller::CheckIfMatch;
using controller::EntityTag;
using controller::HttpRequest;
using controller::IsKnownToClient;
using controller::Problem;

namespace {

HttpRequest With(const std::string& name, const std::string& value) {
  HttpRequest request;
  request.method = "GET";
  request.headers[name] = value;
  return request;
}

}  // namespace

TEST(Digest, IsThatOfTheStandard) {
  // FIPS 180-2, appendix B.
  EXPECT_EQ(controller::Sha256Hex("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(controller::Sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(EntityTag, TellsContentsApart) {
  EXPECT_EQ(EntityTag("abc"), "\"ba7816bf8f01cfea414140de5dae2223\"");
  EXPECT_NE(EntityTag("abc"), EntityTag("abd"));
}

TEST(EntityTag, IfMatchIsObeyed) {
  const struct {
    const char* field;
    const char* current;
    bool holds;
  } rows[] = {
      {"\"a\"", "\"a\"", true},
      {"\"b\"", "\"a\"", false},
      {"\"b\", \"a\"", "\"a\"", true},
      {"\"b\",\"a\" ,", "\"a\"", true},
      {"*", "\"a\"", true},
      {"*", "", false},
      {"\"a\"", "", false},
      {"W/\"a\"", "\"a\"", false},
      {"a", "\"a\"", false},
      {"", "\"a\"", false},
      {"\"x, \"a\"", "\"a\"", false},
      {"\"x,y\"", "\"x,y\"", true},
  };
  for (const auto& row : rows) {
    bool holds = true;
    try {
      CheckIfMatch(With("if-match", row.field), row.current);
    } catch (const Problem& problem) {
      EXPECT_EQ(problem.Status(), 412);
      holds = false;
    }
    EXPECT_EQ(holds, row.holds) << row.field << " against " << row.current;
  }
  EXPECT_NO_THROW(CheckIfMatch(HttpRequest(), ""));
}

TEST(EntityTag, IfNoneMatchIsObeyed) {
  EXPECT_TRUE(IsKnownToClient(With("if-none-match", "\"a\""), "\"a\""));
  EXPECT_TRUE(IsKnownToClient(With("if-none-match", "W/\"a\""), "\"a\""));
  EXPECT_TRUE(IsKnownToClient(With("if-none-match", "\"b\", W/\"a\""), "\"a\""));
  EXPECT_TRUE(IsKnownToClient(With("if-none-match", "*"), "\"a\""));
  EXPECT_FALSE(IsKnownToClient(With("if-none-match", "\"b\""), "\"a\""));
  EXPECT_FALSE(IsKnownToClient(With("if-none-match", "*"), ""));
  EXPECT_FALSE(IsKnownToClient(HttpRequest(), "\"a\""));
}

TEST(EntityTag, AnswersNotModifiedWithoutTheBody) {
  const controller::HttpResponse response{200, "application/json", "{}", {}, {}};
  const auto known = WithTag(With("if-none-match", "\"a\""), response, "\"a\"");
  EXPECT_EQ(known.status, 304);
  EXPECT_EQ(known.body, "");
  EXPECT_EQ(known.headers.at(0), (std::pair<std::string, std::string>("ETag", "\"a\"")));
  EXPECT_EQ(WithTag(With("if-none-match", "\"b\""), response, "\"a\"").status, 200);
  HttpRequest put = With("if-none-match", "\"a\"");
  put.method = "PUT";
  EXPECT_EQ(WithTag(put, response, "\"a\"").status, 200);
}
