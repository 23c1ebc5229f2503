// Once, and not lost, whatever becomes of the controller and its clock.

#include <algorithm>
#include <ctime>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "DeskHouse.h"
#include "controller/LocalTimeText.h"

namespace controller {
namespace {

constexpr int kEvents = 12;

/// Some days of daily events, with restarts, rests, and clocks that are set, at random.
class Course {
 public:
  Course(unsigned seed, const char* zone);

  /// One thing that happens; where it is edited an event is moved besides.
  void Step(bool edited);
  /// What has been decided about an occurrence.
  const std::vector<std::string>& Of(unsigned long event, const DayFields& day) {
    return told_[{event, DayText(day).substr(5)}];
  }
  /// What has happened, for a failure to tell.
  const std::string& Text() const { return text_; }

 private:
  long Between(long least, long most) {
    return std::uniform_int_distribution<long>(least, most)(random_);
  }
  int AnyMinutes() { return static_cast<int>(Between(-200, 1700)); }
  void Gather();

  std::mt19937 random_;
  DeskHouse house_;
  std::map<std::pair<unsigned long, std::string>, std::vector<std::string>> told_;
  std::string text_;
};

Course::Course(unsigned seed, const char* zone)
    : random_(seed),
      house_("2024-03-25T12:00:00", zone),
      text_("seed " + std::to_string(seed) + '\n') {
  for (int n = 1; n <= kEvents; ++n) {
    const int spread = static_cast<int>(Between(0, 1) * Between(1, 200));
    CatchUp& catchUp =
        house_.programming[house_.Daily(std::to_string(n), AnyMinutes(), spread)].catchUp;
    catchUp.policy = static_cast<CatchUp::Policy>(Between(0, 2));
    catchUp.minutes = static_cast<int>(Between(1, 600));
  }
}

void Course::Step(bool edited) {
  const auto after = [](long seconds) {
    return MomentText(std::time(nullptr) + seconds).substr(0, 19);
  };
  const long kind = Between(0, 9);
  if (kind < 5) {
    const std::string until = after(Between(1, 6 * 3600));
    text_ += "run until " + until + '\n';
    house_.RunUntil(until);
  } else if (kind < 7) {
    const std::string until = after(Between(0, 1) * Between(1, 30 * 3600));
    text_ += "down until " + until + '\n';
    house_.RestartAt(until);
  } else {
    const std::string then = after((kind == 9 ? -1 : 1) * Between(61, 8 * 3600));
    text_ += "clock set to " + then + '\n';
    house_.RestartAt(then, "clock-jump");
  }
  if (edited) house_.Move(static_cast<unsigned long>(Between(1, kEvents)), AnyMinutes());
  Gather();
}

void Course::Gather() {
  // "7 fired timer 03-06 07:00"
  for (const std::string& decided : house_.Decided()) {
    std::istringstream words(decided);
    unsigned long event = 0;
    std::string outcome;
    std::string reason;
    std::string date;
    words >> event >> outcome >> reason >> date;
    told_[{event, date}].push_back(decided);
  }
}

void LiveThrough(unsigned seed, const char* zone, bool edited) {
  Course course(seed, zone);
  for (int step = 0; step < 60; ++step) course.Step(edited);
  const DayFields end = DaysAfter(LocalDay(std::time(nullptr)), -2);
  for (DayFields day = {2024, 3, 26}; day < end; day = DaysAfter(day, 1)) {
    for (unsigned long event = 1; event <= kEvents; ++event) {
      const auto& decisions = course.Of(event, day);
      const std::string which = "event " + std::to_string(event) + " of " + DayText(day);
      EXPECT_TRUE(edited || !decisions.empty()) << which << " was lost\n" << course.Text();
      const auto fired = std::count_if(
          decisions.begin(), decisions.end(),
          [](const std::string& decided) { return decided.find(" fired ") != std::string::npos; });
      EXPECT_LE(fired, 1) << which << '\n' << course.Text();
    }
  }
}

TEST(FiringCourse, OfRestartsAndClocksThatAreSetLosesNothingAndDoublesNothing) {
  for (unsigned seed = 1; seed <= 9 && !HasFailure(); ++seed) {
    LiveThrough(seed, seed % 2 == 0 ? "UTC0" : "CET-1CEST,M3.5.0,M10.5.0/3", seed % 3 == 0);
  }
}

}  // namespace
}  // namespace controller
