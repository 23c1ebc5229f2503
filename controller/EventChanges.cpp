#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "controller/EventChecks.h"
#include "controller/NumberText.h"
#include "controller/Printable.h"

namespace controller {

namespace {

/// An element that an event may have: where it stands, and what it is.
struct Known {
  std::string_view parent;
  std::string_view name;
  enum class Kind { kContainer, kNumber, kDatePart, kText, kAnswer } kind;
};

/// The parts of a date are compared as one; answers are written by the scheduler and never read.
constexpr Known kKnown[] = {
    {"event", "eventid", Known::Kind::kNumber},
    {"event", "buttonbindingid", Known::Kind::kAnswer},
    {"event", "description", Known::Kind::kText},
    {"event", "start", Known::Kind::kContainer},
    {"event", "next_occurence", Known::Kind::kAnswer},
    {"event", "repeat", Known::Kind::kContainer},
    {"start", "offset", Known::Kind::kNumber},
    {"start", "offset_minutes", Known::Kind::kNumber},
    {"start", "start_date", Known::Kind::kContainer},
    {"start", "randomize", Known::Kind::kNumber},
    {"start_date", "start_day", Known::Kind::kDatePart},
    {"start_date", "start_month", Known::Kind::kDatePart},
    {"start_date", "start_year", Known::Kind::kDatePart},
    {"start_date", "start_period", Known::Kind::kNumber},
    {"start_date", "start_weekday", Known::Kind::kNumber},
    {"repeat", "frequency", Known::Kind::kNumber},
    {"repeat", "rate", Known::Kind::kNumber},
    {"repeat", "daymask", Known::Kind::kNumber},
    {"repeat", "end_date", Known::Kind::kContainer},
    {"end_date", "end_month", Known::Kind::kDatePart},
    {"end_date", "end_day", Known::Kind::kDatePart},
    {"end_date", "end_year", Known::Kind::kDatePart},
};

const Known* Find(std::string_view parent, std::string_view name) {
  for (const Known& known : kKnown) {
    if (known.parent == parent && known.name == name) return &known;
  }
  return nullptr;
}

void Changed(Findings& findings, std::string text) {
  Add(findings, Finding::Kind::kChanged, std::move(text));
}

/// Reports a leaf whose text is no plain number, with the number that it counts as.
bool ReportForm(const VxXML::INode& given, const std::string& countsAs, Findings& findings) {
  const std::string text = given.GetText();
  const NumberForm form = FormOf(text);
  if (form == NumberForm::kNumber || (form == NumberForm::kEmpty && countsAs == "0")) return false;
  Changed(findings,
          std::string(given.GetName()) + " is " + Quoted(text) + ", which counts as " + countsAs);
  return true;
}

void CompareNumber(const VxXML::INode& given, const VxXML::INode& stored, Findings& findings) {
  const std::string name(given.GetName());
  const std::string kept = stored.GetText(name);
  const std::string text = given.GetText();
  if (ReportForm(given, kept, findings) || FormOf(text) == NumberForm::kEmpty) return;
  if (std::to_string(std::stoll(std::string(Trimmed(text)))) == kept) return;
  const bool onlyWeekly = name == "daymask" && stored.GetInt("frequency") != 2;
  Changed(findings, name + " " + Quoted(text) + " becomes " + kept +
                        (onlyWeekly ? ", because only a weekly event has weekdays" : ""));
}

class Walk {
 public:
  explicit Walk(Findings& findings) : findings_(findings) {}

  void Compare(const VxXML::INode& given, const VxXML::INode& stored) {
    std::set<std::string_view> seen;
    for (const VxXML::INode* child = given.GetFirstChild(); child != nullptr;
         child = child->GetNextSibling()) {
      const Known* known = Find(given.GetName(), child->GetName());
      if (known == nullptr) {
        Changed(findings_, "the element " + Quoted(child->GetName()) + " in " +
                               Quoted(given.GetName()) + " means nothing here and is not kept");
      } else if (!seen.insert(known->name).second) {
        Changed(findings_, "a second " + Quoted(known->name) + " does not count and is not kept");
      } else {
        CompareKnown(*known, *child, stored);
      }
    }
  }

 private:
  void CompareKnown(const Known& known, const VxXML::INode& given, const VxXML::INode& stored) {
    switch (known.kind) {
      case Known::Kind::kContainer:
        return CompareContainer(given, stored.GetChild(known.name));
      case Known::Kind::kNumber:
        return CompareNumber(given, stored, findings_);
      case Known::Kind::kDatePart:
        ReportForm(given, std::to_string(given.GetInt()), findings_);
        return;
      default:
        return;
    }
  }

  void CompareContainer(const VxXML::INode& given, const VxXML::INode* stored) {
    if (stored != nullptr) return Compare(given, *stored);
    if (given.IsEmpty()) return;
    Changed(findings_,
            std::string(given.GetName()) + " is not kept, because its event does not repeat");
  }

  Findings& findings_;
};

void CompareDays(const char* what, const DayFields& given, const DayFields& stored,
                 const std::string& why, Findings& findings) {
  if (given == stored) return;
  Changed(findings, std::string(what) + " " + DayText(given) + " becomes " + DayText(stored) + why);
}

/// Without a start date the scheduler takes the first day of its calendar.
bool HasStartDate(const VxXML::INode& given) {
  const VxXML::INode* start = given.GetChild("start");
  const VxXML::INode* date = start == nullptr ? nullptr : start->GetChild("start_date");
  return date != nullptr && !date->IsEmpty();
}

}  // namespace

void CheckChanges(const VxXML::INode& given, const VxXML::INode& stored, Findings& findings) {
  Walk(findings).Compare(given, stored);
  const EventElement before = ReadEventElement(given);
  const EventElement after = ReadEventElement(stored);
  if (!HasStartDate(given)) {
    Changed(findings, "it has no start date; that becomes " + DayText(after.start));
  } else {
    CompareDays("start date", before.start, after.start,
                before.start_period == 0 ? ", because there is no such day"
                                         : ", the day that start_period and start_weekday name",
                findings);
  }
  if (before.end && after.end) {
    CompareDays("end date", *before.end, *after.end, ", because there is no such day", findings);
  }
}

}  // namespace controller
