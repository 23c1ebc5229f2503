// The stream of events, as it comes over a connection.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "controller/Failure.h"
#include "controller/cli/net/SseReader.h"

namespace {

using controller::Failure;
using controller::cli::SseEvent;
using controller::cli::SseReader;

struct Heard {
  std::vector<std::string> events;
  SseReader reader{[this](const SseEvent& event) {
    events.push_back(event.type + '|' + event.data + '|' + event.id);
  }};
};

const char* const kStream =
    "\xEF\xBB\xBF: hello\n"
    "retry: 250\n\n"
    "id: 1\nevent: journal\ndata: {\"a\":1}\n\n"
    ": heartbeat\n\n"
    "data:one\r\ndata:  two\r\nid: 2\r\n\r\n"
    "event: today\r\n\r\n"  // without data: nothing
    "data\rid\r\r"          // empty data, and no id any longer
    "unknown: x\nid: 4\ndata: last\n\n"
    "data: not complete\n";

TEST(SseReader, ReadsAStreamInPiecesOfAnySize) {
  const std::string stream = kStream;
  for (std::size_t size = 1; size < stream.size() + 2; ++size) {
    Heard heard;
    for (std::size_t begin = 0; begin < stream.size(); begin += size) {
      heard.reader.Feed(std::string_view(stream).substr(begin, size));
    }
    EXPECT_THAT(heard.events, testing::ElementsAre("journal|{\"a\":1}|1", "message|one\n two|2",
                                                   "message||", "message|last|4"))
        << size;
    EXPECT_EQ(heard.reader.LastId(), "4");
    EXPECT_EQ(heard.reader.Retry(), 250);
  }
}

TEST(SseReader, ForgetsWhatWasBegunButNotTheIdOnANewConnection) {
  Heard heard;
  heard.reader.Feed("id: 7\ndata: a\n\nid: 8\nevent: x\ndata: lost\nda");
  heard.reader.Restart();
  EXPECT_EQ(heard.reader.LastId(), "7");
  heard.reader.Feed("data: b\n\n");
  EXPECT_THAT(heard.events, testing::ElementsAre("message|a|7", "message|b|7"));
}

TEST(SseReader, TakesAnIdThatComesWithoutData) {
  Heard heard;
  heard.reader.Feed("id: 9\n\n");
  EXPECT_TRUE(heard.events.empty());
  EXPECT_EQ(heard.reader.LastId(), "9");
}

TEST(SseReader, DoesNotKeepALineOrAnEventWithoutEnd) {
  SseReader reader([](const SseEvent&) {}, 100);
  EXPECT_THROW(reader.Feed(std::string(101, 'x')), Failure);
  SseReader other([](const SseEvent&) {}, 100);
  EXPECT_THROW(
      {
        for (int i = 0; i < 60; ++i) other.Feed("data: x\n");
      },
      Failure);
}

TEST(SseReader, ReadsNoNonsenseAsATimeToWait) {
  Heard heard;
  heard.reader.Feed("retry: soon\nretry: -1\nretry: 99999999999999999999\nretry:\n\n");
  EXPECT_EQ(heard.reader.Retry(), std::nullopt);
}

}  // namespace
