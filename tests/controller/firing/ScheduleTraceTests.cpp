#include <gtest/gtest.h>

#include "controller/firing/ScheduleTrace.h"

namespace controller {
namespace {

TEST(ScheduleTrace, IsReadFromTheLog) {
  ScheduleTraceReader reader;
  EXPECT_FALSE(reader.Take());
  reader.Read("Scheduler Event 1, Porch");
  reader.Read("SCHEDULE_TRACE:  For: 3/6/2024");
  reader.Read("SCHEDULE_TRACE:  Event: 7 (Porch) will fire at 7:5");
  reader.Read("Scheduler Event 1, Porch");
  reader.Read("SCHEDULE_TRACE:  Event: 12 (a (b) will fire at 1:2) will fire at 23:59");
  const auto trace = reader.Take();
  ASSERT_TRUE(trace);
  EXPECT_EQ(trace->day, (DayFields{2024, 3, 6}));
  ASSERT_EQ(trace->entries.size(), 2u);
  EXPECT_EQ(trace->entries[0].event, 7u);
  EXPECT_EQ(trace->entries[0].hour, 7);
  EXPECT_EQ(trace->entries[0].minute, 5);
  EXPECT_EQ(trace->entries[1].event, 12u) << "a name may look like the rest of a line";
  EXPECT_EQ(trace->entries[1].hour, 23);
  EXPECT_FALSE(reader.Take()) << "it was taken";
}

TEST(ScheduleTrace, IsNotForgedByWhatIsNoTrace) {
  ScheduleTraceReader reader;
  for (const char* line : {"SCHEDULE_TRACE:  For: ", "SCHEDULE_TRACE:  For: 3/6",
                           "SCHEDULE_TRACE:  For: a/b/c", "SCHEDULE_TRACE:  For: 3/6/2024 and more",
                           "SCHEDULE_TRACE:  Event: 7 (Porch) will fire at 7:5", ""}) {
    reader.Read(line);
    EXPECT_FALSE(reader.Take()) << line;
  }
  reader.Read("SCHEDULE_TRACE:  For: 3/6/2024");
  reader.Read("SCHEDULE_TRACE:  Event: x (Porch) will fire at 7:5");
  reader.Read("SCHEDULE_TRACE:  Event: 7 (Porch) will fire at 7");
  reader.Read("SCHEDULE_TRACE:  Event: 7 (Porch)");
  const auto trace = reader.Take();
  ASSERT_TRUE(trace);
  EXPECT_TRUE(trace->entries.empty());
}

}  // namespace
}  // namespace controller
