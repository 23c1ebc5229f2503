#pragma once

#include <map>

#include "controller/ProjectStore.h"
#include "controller/programming/Programming.h"

namespace controller {

/// What each event does, kept in the project. In memory it is always the latest; who changes it
/// also writes it.
class ProgrammingTable {
 public:
  /// Reads all; a row that cannot be read is told in the log, left where it is, and its event is
  /// held back (not enabled) until somebody says anew what it does.
  explicit ProgrammingTable(ProjectStore& store);

  const Programming& Of(unsigned long eventId) const;
  void Set(unsigned long eventId, Programming programming);
  void Drop(unsigned long eventId) { known_.erase(eventId); }
  const std::map<unsigned long, Programming>& All() const { return known_; }

  /// These throw a `Failure` where the database does. Plain programming needs no row.
  static void Write(ProjectStore& store, unsigned long eventId, const Programming& programming);
  static void Erase(ProjectStore& store, unsigned long eventId);

 private:
  std::map<unsigned long, Programming> known_;
};

/// As it is kept, and back; throws a `Failure` where the text is not of that form.
std::string ProgrammingText(const Programming& programming);
Programming ReadProgrammingText(const std::string& text);

}  // namespace controller
