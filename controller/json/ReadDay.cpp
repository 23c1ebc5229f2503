// Days and times of day as a JSON document writes them.

#include <string_view>

#include "controller/json/ObjectReader.h"
#include "controller/json/ShownJson.h"

namespace controller {

using nlohmann::json;

namespace {

constexpr int kFirstYear = 1970;

// Whether `text` has a digit where `form` has 0, and `form`'s own character elsewhere.
bool HasForm(std::string_view text, std::string_view form) {
  if (text.size() != form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    if (form[i] == '0' ? !isDigit : text[i] != form[i]) return false;
  }
  return true;
}

int Digits(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (const char digit : text.substr(at, count)) number = number * 10 + (digit - '0');
  return number;
}

constexpr std::string_view kDayForm = "0000-00-00";

}  // namespace

int DaysOfMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && isLeap ? 29 : kDays[month - 1];
}

std::optional<DayFields> ReadDay(const std::string& text) {
  if (!HasForm(text, kDayForm)) return std::nullopt;
  const DayFields day{Digits(text, 0, 4), Digits(text, 5, 2), Digits(text, 8, 2)};
  if (day.year < kFirstYear || day.day < 1 || day.day > DaysOfMonth(day.year, day.month)) {
    return std::nullopt;
  }
  return day;
}

std::optional<DayFields> ObjectReader::Day(const char* name, Need need) {
  const char* const what = "a date such as \"2026-11-21\"";
  const json* value = Find(name, need, what);
  if (value == nullptr) return std::nullopt;
  const auto* text = value->get_ptr<const std::string*>();
  const std::optional<DayFields> day = text == nullptr ? std::nullopt : ReadDay(*text);
  if (day) return day;
  std::string wanted = what;
  if (text != nullptr && HasForm(*text, kDayForm)) {
    wanted = Digits(*text, 0, 4) < kFirstYear ? "a year from 1970 to 9999"
                                              : "a day that the calendar has";
  }
  Complain(name, "is " + ShownJson(*value) + "; give " + wanted);
  return std::nullopt;
}

std::optional<int> ObjectReader::TimeOfDay(const char* name, Need need) {
  const char* const what = "a time \"HH:MM\", 00:00 to 23:59";
  const json* value = Find(name, need, what);
  if (value == nullptr) return std::nullopt;
  const auto* text = value->get_ptr<const std::string*>();
  if (text != nullptr && HasForm(*text, "00:00")) {
    const int hour = Digits(*text, 0, 2);
    const int minute = Digits(*text, 3, 2);
    if (hour < 24 && minute < 60) return hour * 60 + minute;
  }
  Complain(name, "is " + ShownJson(*value) + "; give " + what);
  return std::nullopt;
}

}  // namespace controller
