// libcurl: loaded when it is first wanted, and the one that the headers describe.

#include "controller/Curl.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "Program.h"

namespace {

using controller::Curl;

bool IsMapped(const std::string& process, const std::string& library) {
  std::ifstream maps("/proc/" + process + "/maps");
  EXPECT_TRUE(maps.is_open()) << process;
  const std::string text{std::istreambuf_iterator<char>(maps), {}};
  EXPECT_NE(text.find("libc.so"), std::string::npos);
  return text.find(library) != std::string::npos;
}

TEST(CurlLibrary, IsLoadedOnceAndWorks) {
  const Curl& curl = Curl::Load();
  EXPECT_EQ(&curl, &Curl::Load());
  EXPECT_TRUE(IsMapped("self", "libcurl.so"));

  CURLU* const url = curl.url();
  ASSERT_EQ(curl.url_set(url, CURLUPART_URL, "http://127.0.0.1:7440/a", 0), CURLUE_OK);
  char* port = nullptr;
  ASSERT_EQ(curl.url_get(url, CURLUPART_PORT, &port, 0), CURLUE_OK);
  EXPECT_STREQ(port, "7440");
  curl.free(port);
  curl.url_cleanup(url);
}

TEST(CurlLibrary, IsNotInAControllerThatDoesNotWantIt) {
  Program serve({"serve"});
  ASSERT_TRUE(serve.WaitFor("next: event")) << serve.Err();
  EXPECT_FALSE(IsMapped(std::to_string(serve.Pid()), "libcurl.so"));
  EXPECT_EQ(serve.Stop(), 0);
}

}  // namespace
