#pragma once

#include <string>

/// What the scheduler agent offers to other drivers. Ask the instance manager for it under
/// `kAgentSchedulerIid` each time it is needed (`FindQuery`); it belongs to the agent and goes with
/// it. From the driver's thread only, and not from inside a call that the agent makes.
///
/// Ids are never 0: an operation that answers an id answers 0 when it could not do what was asked.
class IAgentScheduler {
 public:
  /// The agent's number at its controller.
  virtual unsigned long GetDeviceId() const = 0;

  /// Adds an event that fires every day at `hour`:`minute`, local time, from today on. 0 where an
  /// event of that description exists.
  virtual unsigned long AddDailyEvent(const std::string& description, unsigned int hour,
                                      unsigned int minute) = 0;
  /// Adds an event that fires every `days` days, the first time today, `minutes` after local
  /// midnight. Mind the difference to `AddDailyEvent`: the minutes are of the day, not of an hour.
  virtual unsigned long AddEveryXDaysEvent(const std::string& description, unsigned int days,
                                           unsigned int minutes) = 0;
  /// Adds an event that fires on the weekdays of `daymask` (bit 0 = Sunday .. bit 6 = Saturday),
  /// `minutes` after local midnight.
  virtual unsigned long AddDaysOfWeekEvent(const std::string& description, unsigned int daymask,
                                           unsigned int minutes) = 0;

  /// Whether the table holds an event with this id.
  virtual bool DoesEventExist(unsigned long id) = 0;
  /// The lowest id of an event with exactly this description, 0 where there is none.
  virtual unsigned long GetEventIdByDescription(const std::string& description) = 0;
  /// Deletes an event; an unknown id is ignored. A button binding of that id stays registered.
  virtual void DeleteEvent(unsigned long id) = 0;

 protected:
  ~IAgentScheduler() = default;
};

/// The identifier under which the agent publishes the interface; compared to the letter.
inline constexpr char kAgentSchedulerIid[] = "7C2E51A0-3B9D-4e06-A8F1-9D44B0C7E315";
