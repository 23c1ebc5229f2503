#pragma once

#include <optional>
#include <string>
#include <vector>

#include "controller/ProjectStore.h"

namespace controller {

/// An event that is gone, as the scheduler told it, and what it did.
struct DeletedEvent {
  unsigned long event = 0;
  std::string xml;
  /// As `ProgrammingText` writes it.
  std::string programming;
};

/// What was deleted last under each number, kept in the project so that it can be brought back; the
/// last thousand. All of these throw a `Failure` where the database does.
class DeletedEvents {
 public:
  static void Write(ProjectStore& store, const DeletedEvent& deleted);
  static std::optional<DeletedEvent> Find(ProjectStore& store, unsigned long event);
  static std::vector<DeletedEvent> All(ProjectStore& store);
  static void Erase(ProjectStore& store, unsigned long event);
};

}  // namespace controller
