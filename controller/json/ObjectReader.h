#pragma once

#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controller/EventElement.h"
#include "controller/json/FieldErrors.h"

namespace controller {

/// Reads the fields of one JSON object, notes what is wrong with each, and, at the end, which
/// fields nobody asked for. A field that is missing, or null, is no error unless it is demanded;
/// one that is wrong reads like a missing one. The value and the errors must outlive it.
class ObjectReader {
 public:
  enum class Need { kOptional, kDemanded };

  /// A value that is no object is an error, and has no fields.
  ObjectReader(const nlohmann::json& value, std::string pointer, FieldErrors& errors);

  /// Whether the value has fields at all.
  bool IsObject() const { return value_.is_object(); }
  /// Whether the field is there; null counts.
  bool Has(const char* name) const;
  /// Whether the field is there and null; it is then no unknown field.
  bool IsNull(const char* name);

  /// UTF-8 text of `least` to `most` characters without control characters; `lines`: line ends and
  /// tabs are welcome.
  std::optional<std::string> Text(const char* name, Need need, std::size_t least, std::size_t most,
                                  bool lines = false);
  /// A whole number (1.0 is one), `least` to `most`.
  std::optional<long> Whole(const char* name, Need need, long least, long most);
  /// A finite number.
  std::optional<double> Number(const char* name, Need need, double least, double most);
  std::optional<bool> Flag(const char* name, Need need = Need::kOptional);
  /// The position in `words` of the text that the field holds.
  std::optional<std::size_t> Word(const char* name, Need need,
                                  const std::vector<std::string>& words);
  /// A civil day "2026-11-21" that exists, in the years 1970 to 9999.
  std::optional<DayFields> Day(const char* name, Need need);
  /// "HH:MM", 00:00 to 23:59, in minutes after midnight.
  std::optional<int> TimeOfDay(const char* name, Need need);

  /// The value of a field, whatever it is, for the caller to read: its pointer is `PointerTo`.
  const nlohmann::json* Value(const char* name, Need need = Need::kOptional);
  std::string PointerTo(const char* name) const;
  /// Notes an error with a field of this object.
  void Complain(const char* name, const std::string& detail);

  /// Notes every field that has not been asked for. The last call.
  void NoOthers();

 private:
  const nlohmann::json* Find(const char* name, Need need, const std::string& what);

  const nlohmann::json& value_;
  std::string pointer_;
  FieldErrors& errors_;
  std::set<std::string> known_;
};

/// The days of a month of the proleptic Gregorian calendar; 0 for a month outside 1..12.
int DaysOfMonth(int year, int month);
/// "2026-11-21" where such a day exists, in the years 1970 to 9999.
std::optional<DayFields> ReadDay(const std::string& text);

}  // namespace controller
