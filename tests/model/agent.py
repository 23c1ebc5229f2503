"""The scheduler agent: event table, today's list, timer, commands, UI requests and persisted state.

`host` (see scheduler_model.py) records every operation that the agent calls on it and answers it.
"""

from typing import Dict, List, Optional

import clib
import event as event_model
from clib import SECONDS_PER_DAY, int32, make_time, strtol, uint32, uint64
from event import NO_DAY_LEFT, SUNRISE, SUNSET, Event, calculate_event_time
from xmltree import Node, parse

SOURCE_FILE = "vexalink_agent_scheduler/vxw/vexalink_agent_scheduler"
INTERFACE_ID = "7C2E51A0-3B9D-4e06-A8F1-9D44B0C7E315"
UNPERSISTED_DESCRIPTION = "hostcore_mediascan_event"
LOCATION_DEVICE, LATITUDE_VARIABLE, LONGITUDE_VARIABLE = 1, 1001, 1002


class Agent:
    """One agent, from its creation to `destroy`."""

    def __init__(self, host):
        self.host = host
        self.device_id = 0
        self.events: Dict[int, Event] = {}
        self.todays_events: List[Event] = []
        self.current_id = 0
        self.latitude = 0.0
        self.longitude = 0.0
        self.schedule_date = 0
        self.timer_id = 0
        self.registered = host.register_query(INTERFACE_ID) != 0

    def _assert(self, line: int) -> None:
        self.host.assert_write(SOURCE_FILE, line)

    def _table(self) -> List[Event]:
        """The table's events in ascending order of id."""
        return [self.events[key] for key in sorted(self.events)]

    # Life and persisted state -------------------------------------------------------------------

    def initialize(self, persisted: Optional[Node]) -> int:
        self.device_id = 2
        self.clear_all_events()
        self.current_id = 0
        if persisted is not None:
            self._load(persisted)
        self.host.vm_register_listener(LOCATION_DEVICE, LATITUDE_VARIABLE)
        self.host.vm_register_listener(LOCATION_DEVICE, LONGITUDE_VARIABLE)
        self.schedule_date = self.host.now
        self.calculate_todays_events(skip_past=True)
        self.timer_id = self.host.add_timer(1000, 17)
        return 0

    def _load(self, persisted: Node) -> None:
        if persisted.name == "events":  # the form that older controllers wrote
            self.current_id = self._load_events(persisted, 374)
            return
        if persisted.name != "event_data":
            return
        events = persisted.child("events")
        largest = self._load_events(events, 346) if events else 0
        if persisted.child("current_id"):
            self.current_id = persisted.ulong_of("current_id")
        self.current_id = max(self.current_id, largest)

    def _load_events(self, parent: Node, misnamed_line: int) -> int:
        largest = 0
        for child in parent.children:
            if child.name != "event":
                self._assert(misnamed_line)
            event = Event.from_xml(self.host, child, self.latitude, self.longitude)
            largest = max(largest, self.add_event(event, assign_new_id=False, register_button=True))
        return largest

    def get_persist_state(self) -> Node:
        root = Node("event_data")
        root.add("current_id", self.current_id)
        root.append(self.events_to_xml())
        return root

    def events_to_xml(self) -> Node:
        root = Node("events")
        for event in self._table():
            if event.description != UNPERSISTED_DESCRIPTION:
                root.append(event.to_xml())
        return root

    def clear_all_events(self) -> None:
        self.events.clear()
        self.todays_events.clear()

    def on_variable_changed(self, device: int, variable: int, value: str) -> None:
        if (device, variable) == (LOCATION_DEVICE, LATITUDE_VARIABLE):
            self.latitude = clib.strtod(value)
        if (device, variable) == (LOCATION_DEVICE, LONGITUDE_VARIABLE):
            self.longitude = clib.strtod(value)
        for event in self._table():
            event.latitude, event.longitude = self.latitude, self.longitude

    def destroy(self) -> None:
        self.clear_all_events()
        self.host.vm_unregister_listener(LOCATION_DEVICE, LATITUDE_VARIABLE)
        self.host.vm_unregister_listener(LOCATION_DEVICE, LONGITUDE_VARIABLE)
        if self.timer_id != 0:
            self.host.kill_timer(self.timer_id)
        if self.registered:
            self.host.unregister_query(INTERFACE_ID)

    # Event table --------------------------------------------------------------------------------

    def add_event(self, event: Event, assign_new_id: bool, register_button: bool) -> int:
        if assign_new_id:
            if event.eventid != 0:
                self._assert(107)
            if not self._is_duplicate(event):
                self.current_id = uint64(self.current_id + 1)
                event.eventid = self.current_id
        if event.eventid == 0:
            return 0
        if event.eventid in self.events:
            self._assert(116)
        if register_button:
            self._register_button(event)
        # The first record under an id stays; the new one is scheduled all the same.
        self.events.setdefault(event.eventid, event)
        if event.occurs_on_date(self.host.now):
            self.schedule_event(event, schedule_past=False)
        return event.eventid

    def _register_button(self, event: Event) -> None:
        if self.host.register_binding(event.eventid, event.description) < 0:
            self._assert(133)
        else:
            self.host.register_binding_class(event.eventid, "BUTTON_LINK")

    def add_event_xml(self, text: str, assign_new_id: bool, register_button: bool) -> int:
        event = event_model.parse_event(self.host, text, self.latitude, self.longitude)
        return 0 if event is None else self.add_event(event, assign_new_id, register_button)

    def _is_duplicate(self, candidate: Event) -> bool:
        return any(event.description == candidate.description for event in self._table())

    def remove_event(self, event_id: int, unregister_binding: bool) -> None:
        for index, event in enumerate(self.todays_events):
            if event.eventid == event_id:
                del self.todays_events[index]
                break
        event = self.events.get(event_id)
        if event is None:
            return
        if unregister_binding:
            self.host.unregister_binding(event_id)
        self.todays_events = [other for other in self.todays_events if other is not event]
        del self.events[event_id]

    def modify_event(self, text: str) -> int:
        root = parse(text)
        if root is None:
            return 0
        event_id = root.ulong_of("eventid")
        self.remove_event(event_id, unregister_binding=False)
        self.add_event_xml(text, assign_new_id=False, register_button=False)
        return event_id

    def get_event(self, event_id: int) -> Optional[Node]:
        event = self.events.get(event_id)
        return event.to_xml() if event else None

    # The interface that other drivers use -------------------------------------------------------

    def get_device_id(self) -> int:
        return self.device_id

    def add_daily_event(self, description: str, hour: int, minute: int) -> int:
        return self.add_every_x_days_event(description, 1, uint32(uint32(hour) * 60 + uint32(minute)))

    def add_every_x_days_event(self, description: str, days: int, minutes: int) -> int:
        event = Event.new_daily_event(self.host, description, days, minutes, self.latitude, self.longitude)
        return self.add_event(event, assign_new_id=True, register_button=False)

    def add_days_of_week_event(self, description: str, daymask: int, minutes: int) -> int:
        event = Event.new_days_of_week_event(self.host, description, daymask, minutes, self.latitude, self.longitude)
        return self.add_event(event, assign_new_id=True, register_button=False)

    def does_event_exist(self, event_id: int) -> bool:
        return uint64(event_id) in self.events

    def get_event_id_by_description(self, description: str) -> int:
        return next((event.eventid for event in self._table() if event.description == description), 0)

    def delete_event(self, event_id: int) -> None:
        self.remove_event(uint64(event_id), unregister_binding=False)

    # Today's schedule ---------------------------------------------------------------------------

    def events_on_date(self, date: int) -> List[Event]:
        return [event for event in self._table() if event.occurs_on_date(date)]

    def schedule_event(self, event: Event, schedule_past: bool) -> None:
        now = self.host.now
        instant = event.event_time(now)
        spread = event.randomize
        if spread > 0:
            instant += (clib.rand() % (2 * spread + 1) - spread) * 60
        if instant <= now and not schedule_past:
            return
        event.fire_time = instant
        index = 0
        while index < len(self.todays_events) and self.todays_events[index].fire_time <= instant:
            index += 1
        self.todays_events.insert(index, event)

    def calculate_todays_events(self, skip_past: bool) -> None:
        self.todays_events.clear()
        for event in self.events_on_date(self.host.now):
            self.schedule_event(event, schedule_past=not skip_past)

    def on_timer_expired(self, timer_id: int) -> None:
        if timer_id != self.timer_id:
            return
        now = self.host.now
        while self.todays_events and now >= self.todays_events[0].fire_time:
            self._fire(self.todays_events[0])
            del self.todays_events[0]
        # Field by field, not by calendar order: a clock set back from 10 March to 15 February counts too.
        if any(new > old for new, old in zip(clib.civil_day(now), clib.civil_day(self.schedule_date))):
            self.schedule_date = now
            self.calculate_todays_events(skip_past=False)
            self._dump_todays_events()

    def _fire(self, event: Event) -> None:
        self.host.fire_event(event.eventid)
        self.host.log_message(f"Scheduler Event {event.eventid}, {event.description}")
        if self.host.create_bind_message():
            for command in ("DO_PUSH", "DO_CLICK"):
                self.host.send_bound_call(event.eventid, command)

    def _dump_todays_events(self) -> None:
        year, month, day = clib.civil_day(self.schedule_date)
        self.host.log_message(f"SCHEDULE_TRACE:  For: {month}/{day}/{year}")
        for event in self.todays_events:
            hour, minute = clib.hour_minute(event.fire_time)
            self.host.log_message(
                f"SCHEDULE_TRACE:  Event: {event.eventid} ({event.description}) will fire at {hour}:{minute}")

    # Commands and UI requests -------------------------------------------------------------------

    def execute_command(self, name: str, params: Dict[str, str]) -> int:
        if name == "ADD_EVENT":
            event_id = self.add_event_xml(params.get("EVENT_XML", ""), assign_new_id=True, register_button=True)
            self._notify("event_added", event_id)
            self.host.dm_invalidate_state()
        elif name == "MODIFY_EVENT":
            event_id = self.modify_event(params.get("EVENT_XML", ""))
            self._notify("event_modified", event_id)
            self.host.dm_invalidate_state()
        elif name == "DELETE_EVENT":
            event_id = uint64(strtol(params.get("EVENT_ID", "")))
            self.remove_event(event_id, unregister_binding=True)
            if event_id != 0:
                node = Node("event_deleted")
                node.add("eventid", event_id)
                self.host.con_send_data_to_ui(node)
            self.host.dm_invalidate_state()
            self.host.em_remove_by_owner(event_id, 3)
        return 0

    def _notify(self, name: str, event_id: int) -> None:
        if event_id == 0:
            return
        node = Node(name)
        child = self.get_event(event_id)
        if child is not None:
            node.append(child)
        self.host.con_send_data_to_ui(node)

    def ui_request(self, name: str, params: Dict[str, str]) -> Optional[Node]:
        def number(key: str) -> int:
            return strtol(params.get(key, ""))

        if name == "GET_ALL_EVENTS":
            return self.events_to_xml()
        if name == "GET_EVENT":
            return self.get_event(uint64(number("EVENT_ID")))
        if name == "GET_EVENT_OCCURENCES":
            first, last = (make_time(int32(number(end + "_YEAR")), int32(number(end + "_MONTH")),
                                     int32(number(end + "_DAY")), 0, 0, 0, -1) for end in ("FROM", "TO"))
            return self._event_occurrences(first, last)
        if name == "GET_SUNRISE_SUNSET":
            return self._sunrise_sunset(int32(number("YEAR")), int32(number("MONTH")), int32(number("DAY")))
        return None

    def _event_occurrences(self, first: int, last: int) -> Node:
        root = Node("events")
        last_day = clib.civil_day(last)
        instant = first
        while clib.civil_day(instant) <= last_day:
            barren = min((event.barren_days(instant) for event in self._table()), default=NO_DAY_LEFT)
            if barren >= NO_DAY_LEFT:
                break
            if barren:
                instant += barren * SECONDS_PER_DAY
                continue
            for event in self.events_on_date(instant):
                node = root.add("event")
                node.add("eventid", event.eventid)
                node.add("description", event.description)
                event_model.write_time(node.add("event_time"), clib.civil_day(instant), event.event_time(instant))
            # Steps of 86400 s, not civil days: where the clocks go back a date is listed twice.
            instant += SECONDS_PER_DAY
        return root

    def _sunrise_sunset(self, year: int, month: int, day: int) -> Node:
        date = make_time(year, month, day, 0, 0, 0, -1)
        times = [("sunrise", self._sun_time(date, SUNRISE)), ("sunset", self._sun_time(date, SUNSET))]
        root = Node("sunrise_sunset")
        # The zone in force now, not on the requested date.
        root.add("timezone", clib.timezone_name(self.host.now))
        for name, instant in times:
            node = root.add(name)
            hour, minute = clib.hour_minute(instant)
            node.add("hour", hour)
            node.add("min", minute)
        return root

    def _sun_time(self, date: int, offset: int) -> int:
        return calculate_event_time(self.host, date, offset, 0, self.latitude, self.longitude)

    def event_time_today(self, offset: int, minutes: int) -> int:
        """The instant `minutes` after today's midnight, sunrise or sunset at the agent's site."""
        return calculate_event_time(self.host, self.host.now, offset, minutes, self.latitude, self.longitude)
