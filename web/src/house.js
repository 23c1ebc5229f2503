// What the page knows of the house, kept up with it. Views read it and listen for its topics:
// "project", "events", "today", "journal" (detail: the row), "saving", "connection", "replaced".

import {get, query} from './api.js';
import {addDays, offsetOf, wall, yearOf} from './dates.js';
import {Stream} from './stream.js';

const QUARTER_MS = 900000;
const TODAY_WAIT_MS = 150;

/** All events, by id. */
async function readEvents() {
  const events = new Map();
  for (;;) {
    const answer = await get(`/events${query({offset: events.size, limit: 1000})}`);
    for (const event of answer.events) events.set(event.id, event);
    if (events.size >= answer.total || answer.events.length === 0) return events;
  }
}

class House extends EventTarget {
  project = null;
  /** By id. */
  events = new Map();
  today = {date: '', occurrences: []};
  /** Of today, as GET /sun answers. */
  sun = null;
  saving = {ok: true};
  /** "connecting", "live", "lost" */
  connection = 'connecting';
  #ahead = 0;
  #years = new Map();
  #stale = new Set();
  #waiting = new Map();

  async load() {
    await Promise.all([this.#readProject(), this.#readEvents(), this.#readToday()]);
  }

  async start() {
    await this.load();
    new Stream({
      onEvent: (name, data) => this.#heard(name, data),
      onState: (state) => {
        // What changed between the first look and the first listening was not told.
        if (this.connection === 'connecting' && state === 'live') this.#lookAgain();
        this.connection = state;
        this.tell('connection');
      },
      onGap: () => this.#readAgain(),
    }).start();
    this.#keepTime();
    document.addEventListener('visibilitychange', () => {
      if (!document.hidden) this.#readProject().catch(() => {});
    });
  }

  /** Clocks are changed on a quarter of an hour: then the offset may have become another. */
  #keepTime() {
    const wait = QUARTER_MS - (this.nowMs() % QUARTER_MS) + 500;
    setTimeout(() => {
      this.#readProject().catch(() => {});
      this.#keepTime();
    }, wait);
  }

  /** Tells of what has become another since it was read, and of nothing else. */
  #lookAgain() {
    const same = (one, other) => JSON.stringify(one) === JSON.stringify(other);
    const look = async () => {
      const [events, today] = await Promise.all([readEvents(), get('/today')]);
      if (!same([...events], [...this.events])) {
        this.events = events;
        this.tell('events');
      }
      if (!same(today, this.today)) {
        this.today = today;
        this.tell('today');
      }
    };
    look().catch(() => {});
  }

  tell(topic, detail) {
    this.dispatchEvent(new CustomEvent(topic, {detail}));
  }

  /** What it is called; it may have no name. */
  name() {
    return this.project.name || 'Vexalink';
  }

  /** The house's present moment, in milliseconds of the epoch. */
  nowMs() {
    return Date.now() + this.#ahead;
  }

  /** The wall clock of the house: {day, minutes, seconds}. */
  wallNow() {
    const shifted = this.nowMs() + offsetOf(this.project.now) * 60000;
    return wall(new Date(shifted).toISOString());
  }

  date() {
    return this.wallNow().day;
  }

  eventName(id) {
    return this.events.get(id)?.description;
  }

  /** Seconds until a moment of RFC 3339; negative once it is over. */
  secondsUntil(moment) {
    return (Date.parse(moment) - this.nowMs()) / 1000;
  }

  /** Whether something keeps an event from acting on a day: "away", "disabled", "paused" or null. */
  heldOn(day, eventId) {
    const programming = this.events.get(eventId)?.programming;
    if (programming?.enabled === false) return 'disabled';
    if (this.project.away_until && day < this.project.away_until) return 'away';
    return programming?.paused_until && day < programming.paused_until ? 'paused' : null;
  }

  /** The sun of a year: a map of days; asked once as long as the place stays. */
  sunOfYear(year) {
    if (!this.#years.has(year)) {
      const answer = get(`/sun/year${query({year})}`).then(
        ({days}) => new Map(days.map((day) => [day.date, day])),
      );
      answer.catch(() => this.#years.delete(year));
      this.#years.set(year, answer);
    }
    return this.#years.get(year);
  }

  /** The sun of each day from the day before `from` to `to`. */
  async sunOfDays(from, to) {
    const days = new Map();
    for (let year = yearOf(addDays(from, -1)); year <= yearOf(to); ++year) {
      if (year < 1970) continue;
      for (const [day, sun] of await this.sunOfYear(year)) days.set(day, sun);
    }
    return days;
  }

  async #readProject() {
    const asked = Date.now();
    const [project, sun, {saving}] = await Promise.all([
      get('/project'),
      get('/sun'),
      get('/status'),
    ]);
    const at = (asked + Date.now()) / 2;
    if (
      JSON.stringify(project.place) !== JSON.stringify(this.project?.place) ||
      project.timezone.name !== this.project?.timezone.name
    ) {
      this.#years.clear();
    }
    this.project = project;
    // Half a second, because `now` has whole ones.
    const ahead = Date.parse(project.now) + 500 - at;
    if (Math.abs(ahead - this.#ahead) > 1000) this.#ahead = ahead;
    this.sun = sun;
    this.saving = saving;
    this.tell('saving');
    this.tell('project');
  }

  async #readEvents() {
    this.events = await readEvents();
    this.tell('events');
  }

  async #readToday() {
    this.today = await get('/today');
    this.tell('today');
  }

  #readAgain() {
    this.#later('all', async () => {
      this.#years.clear();
      await this.load();
      this.tell('replaced');
    });
  }

  /** Once for all that comes within a moment; what fails is tried by the next that comes. */
  #later(name, work) {
    if (this.#waiting.has(name)) return;
    this.#waiting.set(
      name,
      setTimeout(() => {
        this.#waiting.delete(name);
        work().catch(() => {});
      }, TODAY_WAIT_MS),
    );
  }

  #heard(name, data) {
    switch (name) {
      case 'event':
        if (data.change === 'deleted') this.events.delete(data.id);
        else this.events.set(data.id, data.event);
        return this.tell('events', data);
      case 'programming':
        return this.#programmed(data);
      case 'journal':
        return this.#journalled(data);
      // Not what came along: after a gap it may be old, and its clock with it.
      case 'project':
        return this.#later('project', () => this.#readProject());
      case 'today':
        return this.#later('today', async () => {
          await this.#readToday();
          if (this.sun?.date !== this.date()) await this.#readProject();
        });
      case 'saving':
        this.saving = data;
        return this.tell('saving');
    }
  }

  #programmed({event: id, programming}) {
    const event = this.events.get(id);
    if (event) {
      const {enabled, paused_until, skip_next, actions} = programming;
      const count = Array.isArray(actions) ? actions.length : actions;
      this.events.set(id, {
        ...event,
        programming: {enabled, paused_until, skip_next, actions: count},
      });
    }
    this.tell('events', {change: 'programming', id});
  }

  #journalled(row) {
    this.tell('journal', row);
    if (!['fired', 'held', 'missed'].includes(row.kind)) return;
    this.#later('today', () => this.#readToday());
    // What an event's next occurrence is has moved on.
    if (row.event) this.#stale.add(row.event);
    this.#later('next', async () => {
      const ids = [...this.#stale];
      this.#stale.clear();
      if (ids.length > 10) return this.#readEvents();
      for (const id of ids.filter((one) => this.events.has(one))) {
        this.events.set(id, await get(`/events/${id}`));
      }
      this.tell('events');
    });
  }
}

export const house = new House();
