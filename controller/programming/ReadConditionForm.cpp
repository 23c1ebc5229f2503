// Conditions read from JSON: every range is checked here, so that what comes out can hold.

#include <algorithm>

#include "controller/json/ObjectReader.h"
#include "controller/json/ShownJson.h"
#include "controller/programming/ConditionForm.h"

namespace controller {

namespace {

using Is = ConditionForm::Is;
using Kind = ConditionForm::Kind;
using Need = ObjectReader::Need;
using nlohmann::json;

constexpr int kMinutesPerDay = 1440;
constexpr int kFirstYear = 1970;
constexpr int kLastYear = 9999;

// In the order of the enumerations.
const std::vector<std::string> kKindWords = {"time",  "weekday", "day", "date",
                                             "month", "year",    "leap"};
const std::vector<std::string> kIsWords = {"between", "eq", "ne",  "gt",    "ge",
                                           "lt",      "le", "day", "night", "within"};
constexpr std::size_t kComparators = 7;  // what "is" may be for every kind

// What the entries of a list and the ends of a range are, for the kinds that count.
struct Counted {
  const char* list;
  int least;
  int most;
  const char* what;
};

Counted CountedBy(Kind kind) {
  if (kind == Kind::kWeekday) return {"days", 1, 7, "\"sun\" to \"sat\""};
  if (kind == Kind::kMonth) return {"months", 1, 12, "a whole number, 1 to 12"};
  return {"days", 1, 31, "a whole number, 1 to 31"};
}

// Reads the fields of one condition that follow from its kind and its "is".
class FormReader {
 public:
  FormReader(const json& value, const std::string& pointer, FieldErrors& errors)
      : errors_(errors), fields_(value, pointer, errors) {}

  void Read() {
    const auto kind = fields_.Word("kind", Need::kDemanded, kKindWords);
    if (!kind) return;
    form_.kind = static_cast<Kind>(*kind);
    if (form_.kind != Kind::kLeap && !ReadIs()) return;
    ReadOperands();
    fields_.NoOthers();
  }

  const ConditionForm& Form() const { return form_; }

 private:
  bool ReadIs() {
    std::vector<std::string> words = kIsWords;
    if (form_.kind != Kind::kTime) words.resize(kComparators);
    const auto is = fields_.Word("is", Need::kDemanded, words);
    if (!is) return false;
    form_.is = static_cast<Is>(*is);
    return true;
  }

  void ReadOperands() {
    switch (form_.kind) {
      case Kind::kTime:
        return ReadTime();
      case Kind::kDate:
        return ReadDate();
      case Kind::kYear:
        return ReadYear();
      case Kind::kLeap:
        return;
      default:
        return form_.is == Is::kBetween ? ReadSpan() : ReadList();
    }
  }

  void ReadTime() {
    if (form_.is == Is::kDaylight || form_.is == Is::kNight) return;
    if (form_.is == Is::kWithin) return ReadWithin();
    if (form_.is == Is::kBetween) {
      form_.from = fields_.TimeOfDay("from", Need::kDemanded).value_or(0);
      form_.to = fields_.TimeOfDay("to", Need::kDemanded).value_or(0);
      return;
    }
    const auto time = fields_.TimeOfDay("time", Need::kDemanded);
    // The scheduler compares with no time before 00:01.
    if (time == 0) fields_.Complain("time", "is \"00:00\"; give 00:01 to 23:59");
    form_.from = time.value_or(0);
  }

  void ReadWithin() {
    form_.minutes =
        static_cast<int>(fields_.Whole("minutes", Need::kDemanded, 0, kMinutesPerDay).value_or(0));
    form_.before = fields_.Word("side", Need::kDemanded, {"before", "after"}) == 0u;
    form_.sunrise = fields_.Word("of", Need::kDemanded, {"sunrise", "sunset"}) == 0u;
  }

  void ReadDate() {
    if (form_.is != Is::kBetween) {
      form_.fromDate = fields_.Day("date", Need::kDemanded).value_or(DayFields{});
      return;
    }
    const auto from = fields_.Day("from", Need::kDemanded);
    const auto to = fields_.Day("to", Need::kDemanded);
    if (from && to && *to < *from) {
      fields_.Complain(
          "to", "is \"" + DayText(*to) + "\"; give a date not before \"from\", " + DayText(*from));
    }
    form_.fromDate = from.value_or(DayFields{});
    form_.toDate = to.value_or(DayFields{});
  }

  int Year(const char* name) {
    return static_cast<int>(
        fields_.Whole(name, Need::kDemanded, kFirstYear, kLastYear).value_or(0));
  }

  void ReadYear() {
    form_.from = Year(form_.is == Is::kBetween ? "from" : "year");
    if (form_.is != Is::kBetween) return;
    form_.to = Year("to");
    if (form_.from > 0 && form_.to > 0 && form_.to < form_.from) {
      fields_.Complain("to", "is " + std::to_string(form_.to) +
                                 "; give a year not before \"from\", " +
                                 std::to_string(form_.from));
    }
  }

  std::optional<int> End(const char* name, const Counted& counted) {
    if (form_.kind == Kind::kWeekday) {
      const auto weekday = fields_.Word(name, Need::kDemanded, WeekdayWords());
      if (!weekday) return std::nullopt;
      return static_cast<int>(*weekday) + 1;
    }
    const auto number = fields_.Whole(name, Need::kDemanded, counted.least, counted.most);
    if (!number) return std::nullopt;
    return static_cast<int>(*number);
  }

  void ReadSpan() {
    const Counted counted = CountedBy(form_.kind);
    const auto from = End("from", counted);
    const auto to = End("to", counted);
    if (!from || !to) return;
    form_.from = *from;
    form_.to = *to;
    if (*to >= *from || form_.kind == Kind::kMonth) return;
    const bool byWeekday = form_.kind == Kind::kWeekday;
    fields_.Complain("to", byWeekday ? "leads over the week's end, which is Saturday; give a list: "
                                       "\"is\": \"eq\", \"days\""
                                     : "leads over the month's end; give a list: \"is\": \"eq\", "
                                       "\"days\"");
  }

  void ReadList() {
    const Counted counted = CountedBy(form_.kind);
    const json* list = fields_.Value(counted.list, Need::kOptional);
    const std::string wanted = std::string("a list, each entry ") + counted.what;
    if (list == nullptr) {
      fields_.Complain(counted.list, "is missing; give " + wanted);
    } else if (!list->is_array() || list->empty()) {
      fields_.Complain(counted.list, "is " + ShownJson(*list) + "; give " + wanted);
    } else {
      ReadEntries(*list, counted);
    }
  }

  void ReadEntries(const json& list, const Counted& counted) {
    for (std::size_t i = 0; i < list.size(); ++i) {
      const std::string pointer = fields_.PointerTo(counted.list) + '/' + std::to_string(i);
      const std::optional<int> entry = Entry(list[i], counted);
      if (!entry) {
        errors_.push_back({pointer, "is " + ShownJson(list[i]) + "; give " + counted.what});
      } else if (std::count(form_.list.begin(), form_.list.end(), *entry) != 0) {
        errors_.push_back({pointer, "is " + ShownJson(list[i]) + " again; give each once"});
      } else {
        form_.list.push_back(*entry);
      }
    }
  }

  std::optional<int> Entry(const json& value, const Counted& counted) const {
    if (form_.kind == Kind::kWeekday) {
      const auto* text = value.get_ptr<const std::string*>();
      if (text == nullptr) return std::nullopt;
      const auto& words = WeekdayWords();
      const auto found = std::find(words.begin(), words.end(), *text);
      if (found == words.end()) return std::nullopt;
      return static_cast<int>(found - words.begin()) + 1;
    }
    FieldErrors ignored;
    const json holder = {{"entry", value}};
    const auto number = ObjectReader(holder, "", ignored)
                            .Whole("entry", Need::kDemanded, counted.least, counted.most);
    if (!number) return std::nullopt;
    return static_cast<int>(*number);
  }

  FieldErrors& errors_;
  ObjectReader fields_;
  ConditionForm form_;
};

nlohmann::ordered_json EndJson(Kind kind, int end) {
  if (kind == Kind::kTime) return ClockText(end);
  if (kind == Kind::kWeekday) return WeekdayWords()[static_cast<std::size_t>(end - 1)];
  return end;
}

void AddBetween(const ConditionForm& form, nlohmann::ordered_json& made) {
  if (form.kind == Kind::kDate) {
    made["from"] = DayText(form.fromDate);
    made["to"] = DayText(form.toDate);
    return;
  }
  made["from"] = EndJson(form.kind, form.from);
  made["to"] = EndJson(form.kind, form.to);
}

void AddOperand(const ConditionForm& form, nlohmann::ordered_json& made) {
  if (form.kind == Kind::kTime) {
    made["time"] = ClockText(form.from);
  } else if (form.kind == Kind::kDate) {
    made["date"] = DayText(form.fromDate);
  } else if (form.kind == Kind::kYear) {
    made["year"] = form.from;
  } else {
    auto& list = made[CountedBy(form.kind).list] = nlohmann::ordered_json::array();
    for (const int entry : form.list) list.push_back(EndJson(form.kind, entry));
  }
}

}  // namespace

std::optional<ConditionForm> ReadConditionForm(const json& value, const std::string& pointer,
                                               FieldErrors& errors) {
  const std::size_t before = errors.size();
  FormReader reader(value, pointer, errors);
  reader.Read();
  if (errors.size() != before) return std::nullopt;
  return reader.Form();
}

nlohmann::ordered_json ConditionFormJson(const ConditionForm& form) {
  nlohmann::ordered_json made;
  made["kind"] = kKindWords[static_cast<std::size_t>(form.kind)];
  if (form.kind == Kind::kLeap) return made;
  made["is"] = kIsWords[static_cast<std::size_t>(form.is)];
  if (form.is == Is::kBetween) {
    AddBetween(form, made);
  } else if (form.is == Is::kWithin) {
    made["minutes"] = form.minutes;
    made["side"] = form.before ? "before" : "after";
    made["of"] = form.sunrise ? "sunrise" : "sunset";
  } else if (form.is != Is::kDaylight && form.is != Is::kNight) {
    AddOperand(form, made);
  }
  return made;
}

const std::vector<std::string>& WeekdayWords() {
  static const std::vector<std::string> words = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
  return words;
}

}  // namespace controller
