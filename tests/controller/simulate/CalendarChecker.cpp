#include "CalendarChecker.h"

#include <regex>
#include <set>

#include "controller/Utf8.h"

namespace {

class Reader {
 public:
  ReadCalendar Read(const std::string& stream) {
    for (const std::string& line : Unfolded(stream)) Take(line);
    if (!open_.empty()) Fault("\"" + open_.back() + "\" is not ended");
    if (!ended_) Fault("no calendar");
    if (components_ == 0) Fault("the calendar holds no component");
    for (const char* name : {"VERSION", "PRODID"}) {
      if (!calendar_.head.contains(name)) Fault(std::string("no ") + name);
    }
    return std::move(calendar_);
  }

 private:
  void Fault(const std::string& what) { calendar_.faults.push_back(what); }

  std::vector<std::string> Unfolded(const std::string& stream) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    while (at < stream.size()) {
      const std::size_t end = stream.find("\r\n", at);
      if (end == std::string::npos) {
        Fault("the last line has no line end");
        break;
      }
      const std::string line = stream.substr(at, end - at);
      at = end + 2;
      if (line.empty()) Fault("an empty line");
      if (line.size() > 75) Fault("a line of " + std::to_string(line.size()) + " octets");
      if (line.find_first_of("\r\n") != std::string::npos) Fault("a bare line end");
      CheckText(line);
      if (!line.empty() && (line[0] == ' ' || line[0] == '\t')) {
        if (lines.empty()) Fault("begins with a folded line");
        if (!lines.empty()) lines.back() += line.substr(1);
      } else {
        lines.push_back(line);
      }
    }
    return lines;
  }

  // Each line for itself: folding divides no character.
  void CheckText(const std::string& line) {
    for (std::size_t at = 0; at < line.size();) {
      const controller::Utf8Char character = controller::DecodeUtf8(line, at);
      if (!character.valid) Fault("no UTF-8: " + line);
      const bool control =
          (character.code < 0x20 && character.code != '\t') || character.code == 0x7F;
      if (character.valid && control) Fault("a control character: " + line);
      at += character.length;
    }
  }

  void Take(const std::string& line) {
    static const std::regex form("([A-Z0-9-]+)(;[^:]*)?:(.*)");
    std::smatch match;
    if (!std::regex_match(line, match, form)) return Fault("no property: " + line);
    const std::string name = match[1];
    const std::string value = match[3];
    if (name == "BEGIN") return Begin(value);
    if (name == "END") return End(value);
    if (open_.empty()) return Fault(name + " outside of the calendar");
    if (open_.back() == "VCALENDAR") Put(calendar_.head, name, value);
    if (open_.back() == "VEVENT") Put(calendar_.events.back(), name, value);
  }

  void Begin(const std::string& name) {
    if (open_.empty() != (name == "VCALENDAR")) Fault(name + " does not belong there");
    if (ended_) Fault("two calendars");
    if (open_.size() == 1) ++components_;
    if (name == "VEVENT") calendar_.events.emplace_back();
    open_.push_back(name);
  }

  void End(const std::string& name) {
    if (open_.empty() || open_.back() != name) return Fault("END:" + name + " without its BEGIN");
    open_.pop_back();
    if (name == "VCALENDAR") ended_ = true;
    if (name == "VEVENT") CheckEvent(calendar_.events.back());
  }

  void Put(std::map<std::string, std::string>& into, const std::string& name,
           const std::string& value) {
    if (!into.emplace(name, Text(value)).second) Fault(name + " twice");
  }

  std::string Text(const std::string& value) {
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
      if (value[at] == ';' || value[at] == ',') Fault("not escaped: " + value);
      if (value[at] != '\\') {
        text += value[at];
        continue;
      }
      const char next = ++at < value.size() ? value[at] : '\0';
      if (std::string("\\;,nN").find(next) == std::string::npos) Fault("no escape: " + value);
      text += next == 'n' || next == 'N' ? '\n' : next;
    }
    return text;
  }

  void CheckEvent(const std::map<std::string, std::string>& event) {
    static const std::regex utc("[0-9]{8}T[0-2][0-9][0-5][0-9][0-6][0-9]Z");
    for (const char* name : {"UID", "DTSTAMP", "DTSTART"}) {
      const auto found = event.find(name);
      if (found == event.end()) {
        Fault(std::string("an entry without ") + name);
      } else if (name != std::string("UID") && !std::regex_match(found->second, utc)) {
        Fault(std::string(name) + " is no UTC time: " + found->second);
      } else if (name == std::string("UID") && !uids_.insert(found->second).second) {
        Fault("a second entry with UID " + found->second);
      }
    }
  }

  ReadCalendar calendar_;
  std::vector<std::string> open_;
  std::set<std::string> uids_;
  int components_ = 0;
  bool ended_ = false;
};

}  // namespace

ReadCalendar ReadCalendarText(const std::string& stream) { return Reader().Read(stream); }
