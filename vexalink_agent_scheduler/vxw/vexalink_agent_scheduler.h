#pragma once

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "host/VxBaseDriver.h"
#include "vexalink_agent_scheduler/vxw/IAgentScheduler.h"
#include "vexalink_agent_scheduler/vxw/LocalTime.h"
#include "vexalink_agent_scheduler/vxw/RuleTable.h"
#include "vexalink_agent_scheduler/vxw/ScheduledEvent.h"
#include "vexalink_agent_scheduler/vxw/TodaysIndex.h"

/// The scheduler agent: keeps a table of events, works out which happen today and when, and on the
/// tick of one timer fires what has come due. The whole face that the controller sees.
///
/// Invariants: no event is stored under id 0, and the key of each equals its `eventid`;
/// `todaysEvents` is sorted by `next_fire`, those of one time in the order in which they were
/// scheduled, and points only to records that live in the table or among those set aside.
///
/// From the driver's thread only, one call at a time.
class vexalink_agent_scheduler : public VxBaseDriver, public IAgentScheduler {
 public:
  /// A new agent, owned by the caller; see VxCreateFunc.
  static IDriver* Create(IInstanceManager& manager);
  explicit vexalink_agent_scheduler(IInstanceManager& manager);

  // The driver. Frame and state:

  /// Knows `kAgentSchedulerIid`, to the letter.
  int QueryInterface(const std::string& iid, void** out) override;
  ~vexalink_agent_scheduler() override;
  unsigned long GetDeviceId() const override;
  /// Takes up a persisted schedule: an "event_data" element, or "events" as older controllers wrote
  /// it; one of another name is ignored, and an event that cannot be read is dropped. Always 0.
  int Initialize(unsigned long deviceId, VxXML::INode& config, VxXML::INode* persisted) override;
  /// "event_data" with "current_id" and "events".
  vx::auto_com<VxXML::INode> GetPersistState(unsigned long flags) override;

  // Commands, conditions and requests:

  /// "ADD_EVENT", "MODIFY_EVENT" (both "EVENT_XML") and "DELETE_EVENT" ("EVENT_ID"). Always 0.
  int ExecuteCommand(const ICmdMessage& message, ICmdReturn* result, unsigned long sender) override;
  /// "IF_TIME", "IF_TODAY", "IF_DATE", "IF_MONTH", "IF_YEAR" and "IF_LEAP", with operands in
  /// "CONDITIONAL_XML" (or "TIME_XML"); false for what cannot be evaluated.
  bool TestCondition(const ICondMessage& message, unsigned long* reserved) override;
  /// "GET_ALL_EVENTS", "GET_EVENT", "GET_EVENT_OCCURENCES" and "GET_SUNRISE_SUNSET".
  vx::auto_com<VxXML::INode> UIRequest(const ICmdMessage& message) override;
  /// Takes up the site's latitude (device 1, variable 1001) and longitude (1002), in degrees.
  /// Today's list stays as it is until it is next worked out.
  void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                         const std::string& value) override;
  /// Fires what has come due, and at a change of the local date works out the new day.
  void OnTimerExpired(unsigned long timerId, long reserved) override;

  // Other drivers, see IAgentScheduler:

  unsigned long AddDailyEvent(const std::string& description, unsigned int hour,
                              unsigned int minute) override;
  unsigned long AddEveryXDaysEvent(const std::string& description, unsigned int days,
                                   unsigned int minutes) override;
  unsigned long AddDaysOfWeekEvent(const std::string& description, unsigned int daymask,
                                   unsigned int minutes) override;
  bool DoesEventExist(unsigned long id) override;
  unsigned long GetEventIdByDescription(const std::string& description) override;
  void DeleteEvent(unsigned long id) override;

  // The event table:

  /// Adds `event` to the table and, if it is still to fire today, to today's list; returns its id.
  /// `assignNewId` gives it the next id unless its description is taken, `registerButton` registers
  /// its button binding. Takes ownership in every case, also when it answers 0: `event` is null, or
  /// ends up without an id. A record whose id is taken does not enter the table, but fires today.
  unsigned long AddEvent(Event* event, bool assignNewId, bool registerButton);
  /// The same from the text of an event element; 0 where it does not parse.
  unsigned long AddEvent(const std::string& xml, bool assignNewId, bool registerButton);
  /// Whether an event of the table has the same description, byte for byte.
  bool IsDuplicateEvent(const Event* event) const;
  /// Deletes an event, and its button binding too if asked; an unknown id is ignored.
  void DeleteEvent(unsigned long id, bool unregisterBinding);
  /// Replaces the event whose id the element carries; returns that id. What the element cannot
  /// replace is gone all the same.
  unsigned long ModifyEvent(const std::string& xml);
  /// The event's element, or null.
  vx::auto_com<VxXML::INode> GetEvent(unsigned long id) const;
  /// "events": all events in the order of their ids, but for the controller's own media scan.
  vx::auto_com<VxXML::INode> EventsToXml() const;
  /// Deletes every event. Bindings, listeners, the timer and `currentId` stay.
  void ClearAllEvents();

  // Today's schedule and occurrences:

  /// Fills `out` with the events that happen on the local date of `date`, in the order of their
  /// ids.
  void GetEventsOnDate(VxTime date, std::list<Event*>* out) const;
  /// Works out when `event` fires today, spread included, and puts it into today's list behind
  /// those of the same time. A time that is not in the future is left out unless `schedulePast`.
  void ScheduleEvent(Event* event, bool schedulePast);
  /// Builds today's list anew.
  void CalculateTodaysEvents(bool skipPast);
  /// Writes today's list to the log.
  void DumpTodaysEvents();
  /// "events": what happens on each local day from `from` to `to`, both included, day by day and
  /// within a day in the order of the ids. Days are stepped through by 86400 seconds.
  vx::auto_com<VxXML::INode> GetEventOccurences(VxTime from, VxTime to) const;
  /// The instant of a time base and a minute offset on the present day at the agent's site.
  VxTime CalculateEventTime(Scheduler::OFFSET_TYPE offset, int minutes) const;

 private:
  // Frame and state
  unsigned long LoadEvents(const VxXML::INode& parent, int wrongNameLine);
  // Commands and requests
  void ExecuteAddEvent(const ICmdMessage& message);
  void ExecuteModifyEvent(const ICmdMessage& message);
  void ExecuteDeleteEvent(const ICmdMessage& message);
  vx::auto_com<VxXML::INode> AnswerOccurrences(const ICmdMessage& message) const;
  vx::auto_com<VxXML::INode> AnswerSunriseSunset(const ICmdMessage& message) const;
  // Event table
  void RegisterButton(const Event& event);
  unsigned long LowestIdOf(std::string_view description) const;
  void RemoveFirstFromToday(unsigned long id);
  // Today's schedule
  bool SetFireTime(Event& event, bool schedulePast) const;
  void Fire(const Event& event);
  bool DayHasChanged(VxTime now) const;
  void ForgetZoneEachMinute(VxTime now);

  AutoQueryInstanceRegisterer queryRegisterer;
  std::map<unsigned long, Event*> events;  // owned
  std::list<Event*> todaysEvents;          // still to fire today; not owned
  unsigned long currentId = 0;             // the last id handed out
  double latitude = 0;                     // degrees, host variable 1001
  double longitude = 0;                    // degrees, host variable 1002
  VxTime scheduleDate;                     // when todaysEvents was last worked out
  unsigned long timerId = 0;               // 0 while no timer is armed

  // Records that were added under an id that was taken: not in the table, but scheduled.
  std::multimap<unsigned long, std::unique_ptr<Event>> setAside;
  // The descriptions in the table with their ids, so that neither is looked for by a walk. Each
  // views the text of its event, which does not change while the event is in the table.
  std::set<std::pair<std::string_view, unsigned long>> descriptions;
  TodaysIndex todaysIndex{todaysEvents};
  mutable RuleTable rules;  // of the events in the table
  local_time::SameDay sameDay;
  std::time_t zoneForgotten = 0;  // the minute in which kept days were last forgotten
};
