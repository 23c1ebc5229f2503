#include <CLI/CLI.hpp>

#include "controller/Printable.h"
#include "controller/cli/commands/ClientCommands.h"
#include "controller/cli/commands/Session.h"
#include "controller/cli/show/Fields.h"
#include "controller/cli/show/MomentText.h"
#include "controller/cli/show/Table.h"

namespace controller::cli {

namespace {

struct SunLine : ClientOptions {
  std::string day = "today";
  std::optional<int> year;
};

/// A moment's or a time's "HH:MM".
std::string TimeText(const Json& object, const char* name) {
  const std::string text = ShownField(object, name);
  const std::size_t begin = text.find('T');
  return begin == std::string::npos ? text : text.substr(begin + 1, 5);
}

std::string PolarText(const Json& day) {
  const std::string polar = ShownField(day, "polar");
  if (polar == "day") return "the sun does not set";
  return polar == "night" ? "the sun does not rise" : "";
}

std::string PlaceText(const Json& place) {
  if (!place.is_object()) return place.is_string() ? place.get<std::string>() : "";
  std::string text = ShownField(place, "latitude") + ", " + ShownField(place, "longitude");
  if (FlagField(place, "guessed", false)) text += " (guessed from the time zone)";
  return text;
}

void WriteDay(const Session& session, const Json& day) {
  Fields fields;
  fields.Add("date", LongDayText(ShownField(day, "date")));
  fields.Add("sunrise", TimeText(day, "sunrise"));
  fields.Add("sunset", TimeText(day, "sunset"));
  const std::string polar = PolarText(day);
  if (!polar.empty()) {
    fields.Add("polar", polar + "; the times are those of the nearest day that has them");
  }
  if (day.contains("place")) fields.Add("place", PlaceText(day["place"]));
  fields.Write(session.terminal);
}

void WriteYear(const Session& session, const Json& year) {
  Table table({{"DATE"}, {"SUNRISE"}, {"SUNSET"}, {""}});
  for (const Json& day : year.at("days")) {
    table.Add({LongDayText(ShownField(day, "date")), TimeText(day, "sunrise"),
               TimeText(day, "sunset"), PolarText(day)});
  }
  table.Write(session.terminal);
}

int Sun(const SunLine& line, Session& session) {
  const Json answer =
      line.year ? session.api.Get("/sun/year", {{"year", std::to_string(*line.year)}})
                : session.api.Get("/sun", {{"date", ParseDay("DATE", line.day, session.Today())}});
  if (session.json) {
    session.WriteJson(answer);
  } else if (line.year) {
    WriteYear(session, answer);
  } else {
    WriteDay(session, answer);
  }
  return 0;
}

}  // namespace

void AddSunCommand(CLI::App& app, CommandRun& run) {
  const auto line = std::make_shared<SunLine>();
  CLI::App* command = AddClientCommand(app, run, "sun", "Show when the sun rises and sets", line,
                                       [line](Session& session) { return Sun(*line, session); });
  auto* day = command->add_option("DATE", line->day, "Default: today");
  command->add_option("--year", line->year, "Every day of a year")
      ->type_name("YEAR")
      ->excludes(day);
  command->footer(ClientExitStatuses());
}

}  // namespace controller::cli
