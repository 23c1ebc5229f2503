// /occurrences: when events come, over a span of days.

#include <algorithm>
#include <limits>
#include <map>

#include "controller/LocalTimeText.h"
#include "controller/Printable.h"
#include "controller/api/ApiContext.h"
#include "controller/api/DayList.h"
#include "controller/api/EventFields.h"
#include "controller/api/EventJson.h"
#include "controller/api/EventProbe.h"
#include "controller/api/JsonText.h"
#include "controller/api/OccurrenceTime.h"

namespace controller {

namespace {

constexpr long kMostLimit = 10000;
constexpr long kUsualLimit = 1000;
constexpr int kMostYears = 10;
/// A week, where no end is given.
constexpr long kUsualDays = 6;

struct Wanted {
  DaySpan days;
  std::size_t limit = 0;
  unsigned long event = 0;
};

/// The same day so many years later; of 29 February the day after, where there is none.
DayFields YearsAfter(const DayFields& day, int years) {
  return DaysAfter({day.year + years, day.month, 1}, day.day - 1);
}

Wanted ReadWanted(const HttpRequest& request) {
  QueryReader query(request);
  Wanted wanted;
  wanted.days.from = query.Day("from").value_or(LocalDay(std::time(nullptr)));
  wanted.days.to =
      query.Day("to").value_or(std::min(DaysAfter(wanted.days.from, kUsualDays), kLastDayOfAll));
  wanted.limit =
      static_cast<std::size_t>(query.Whole("limit", 1, kMostLimit).value_or(kUsualLimit));
  wanted.event = static_cast<unsigned long>(
      query.Whole("event", 1, std::numeric_limits<long>::max()).value_or(0));
  query.NoOthers();
  const std::string to = DayText(wanted.days.to);
  if (wanted.days.to < wanted.days.from) {
    QueryReader::Refuse("to", to, DayText(wanted.days.from) + ", the first day, or a later one");
  }
  const DayFields last = YearsAfter(wanted.days.from, kMostYears);
  if (wanted.days.to > last) {
    QueryReader::Refuse("to", to, DayText(last) + " or earlier: ten years are listed at most");
  }
  return wanted;
}

struct Occurrence {
  const EventElement* event = nullptr;
  DayFields day;
  std::time_t time = 0;
};

/// Collects occurrences day by day until there are enough.
class Listing {
 public:
  Listing(House& house, const Wanted& wanted) : house_(house), wanted_(wanted) {}

  void Run() {
    for (const AskedSpan& span : SplitAtClockChanges(wanted_.days)) {
      if (wanted_.event != 0 ? !OfOne(span) : !OfAll(span)) return;
    }
  }
  bool IsTruncated() const { return truncated_; }
  const std::vector<Occurrence>& Found() const { return found_; }

 private:
  /// These answer whether there is room for more.
  bool OfOne(const AskedSpan& span);
  bool OfAll(const AskedSpan& span);
  bool Ask(const AskedSpan& span);
  bool Take(std::vector<Occurrence>& occurrences);
  const EventElement& EventOf(unsigned long id);

  House& house_;
  const Wanted& wanted_;
  std::map<unsigned long, EventElement> events_;
  std::vector<Occurrence> found_;
  bool truncated_ = false;
};

const EventElement& Listing::EventOf(unsigned long id) {
  const auto [known, isNew] = events_.emplace(id, EventElement());
  if (isNew) {
    if (auto found = LookForEvent(house_, id)) known->second = std::move(found->event);
  }
  return known->second;
}

bool Listing::OfOne(const AskedSpan& span) {
  const EventElement& event = EventOf(wanted_.event);
  EventProbe probe(house_, event);
  std::vector<Occurrence> occurrences;
  for (const ProbedOccurrence& found : probe.On(span.counts)) {
    occurrences.push_back({&event, found.day, found.time});
  }
  return Take(occurrences);
}

/// A few days first, and more at a time while there is room: a large house has thousands a day.
bool Listing::OfAll(const AskedSpan& span) {
  long days = 1;
  DayFields from = span.counts.from;
  DayFields asked = span.asked.from;
  while (from <= span.counts.to) {
    const DayFields to = std::min(DaysAfter(from, days - 1), span.counts.to);
    const std::size_t before = found_.size();
    if (!Ask({{asked, to}, {from, to}})) return false;
    if (found_.size() - before < wanted_.limit / 4) days *= 2;
    from = DaysAfter(to, 1);
    // Never from a day without a midnight: such a day is always the second of its span or later,
    // and a stretch that would begin with it begins a day earlier.
    asked = BeginsAtMidnight(from) ? from : to;
  }
  return true;
}

bool Listing::Ask(const AskedSpan& span) {
  std::vector<Occurrence> occurrences;
  const auto eventOf = [this](unsigned long id) -> const EventElement& { return EventOf(id); };
  for (const ListedTime& time : ListDays(house_.Scheduler(), span, eventOf)) {
    const EventElement& event = EventOf(time.event);
    occurrences.push_back(
        {&event, time.day,
         OccurrenceTime(event, time.day, time.hour, time.minute, house_.WhereItIs().place)});
  }
  return Take(occurrences);
}

bool Listing::Take(std::vector<Occurrence>& occurrences) {
  std::stable_sort(occurrences.begin(), occurrences.end(),
                   [](const Occurrence& a, const Occurrence& b) {
                     return a.day != b.day ? a.day < b.day : a.time < b.time;
                   });
  for (const Occurrence& occurrence : occurrences) {
    if (found_.size() == wanted_.limit) {
      truncated_ = true;
      return false;
    }
    found_.push_back(occurrence);
  }
  return true;
}

void AppendOccurrence(std::string& out, const Occurrence& occurrence) {
  const EventElement& event = *occurrence.event;
  out += "{\"event\":" + std::to_string(event.eventid) + ",\"description\":";
  AppendJsonString(out, event.description);
  out += ",\"date\":\"" + DayText(occurrence.day) + "\",\"time\":";
  AppendJsonMoment(out, occurrence.time);
  out += ",\"base\":";
  if (event.offset >= 0 && event.offset < static_cast<int>(kBaseNames.size())) {
    AppendJsonString(out, kBaseNames[static_cast<std::size_t>(event.offset)]);
  } else {
    out += "null";
  }
  out += '}';
}

void ListOccurrences(ApiContext& api, const HttpRequest& request, const Respond& respond) {
  const Wanted wanted = ReadWanted(request);
  if (wanted.event != 0) FindEvent(api.house, wanted.event);
  Listing listing(api.house, wanted);
  listing.Run();
  std::string body = "{\"occurrences\":";
  AppendJsonList(body, listing.Found(), AppendOccurrence);
  body += listing.IsTruncated() ? ",\"truncated\":true}" : ",\"truncated\":false}";
  respond(JsonAnswer(std::move(body)));
}

}  // namespace

void AddOccurrenceRoutes(Routes& routes, const SharedContext& api) {
  AddRoute(routes, "GET", "/occurrences", Role::kView, BodyKind::kNone,
           Handle(api, ListOccurrences));
}

}  // namespace controller
