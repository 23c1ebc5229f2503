// An event while it is being written: what the form's controls hold, and the event that they say.

import {
  dayOfMonth,
  LAST_DAY,
  nthOfMonth,
  readClock,
  weekdayOf,
  WEEKDAYS,
} from './dates.js';
import {dateText, numberText, t, timeText} from './locale.js';

/** As much as the controller takes. */
export const MOST = {every: 1000000, minutes: 1440, spread: 720};

/** On the day before its date, on it, and on the day after. */
const CLOCK_DAYS = ['eve', 'clock', 'morrow'];

/** What the controls show for an event of the API. */
export function draftOf({description = '', start, time, repeat}) {
  const clock = time.base === 'clock';
  const ofDay = clock ? ((time.minutes % 1440) + 1440) % 1440 : 1140;
  const size = Math.abs(clock ? 30 : time.minutes);
  const {week, last} = nthOfMonth(start);
  return {
    description,
    start,
    base: clock ? (CLOCK_DAYS[Math.floor(time.minutes / 1440) + 1] ?? 'clock') : 'sun',
    at: timeText(ofDay),
    sun: clock ? 'sunset' : time.base,
    minutes: String(size),
    side: clock || time.minutes < 0 ? 'before' : 'after',
    spread: String(time.spread ?? 0),
    repeats: Boolean(repeat),
    every: String(repeat?.every ?? 1),
    unit: repeat?.unit ?? 'day',
    on: new Set(repeat?.on ?? [weekdayOf(start)]),
    byWeekday: Boolean(repeat?.nth),
    nthWeek: String(repeat?.nth?.week ?? (week > 4 || last ? 'last' : week)),
    nthDay: repeat?.nth?.weekday ?? weekdayOf(start),
    ends: Boolean(repeat?.until),
    until: repeat?.until ?? '',
  };
}

/** One that may be asked for as it stands: every day at the next full hour. */
export function newDraft({day, minutes}, params) {
  const asked = readClock(params.get('at'));
  const hour = Math.min(1380, Math.ceil((minutes + 1) / 60) * 60);
  return draftOf({
    start: params.get('start') ?? day,
    repeat: {unit: 'day', every: 1},
    time: {base: 'clock', minutes: asked ?? hour, spread: 0},
  });
}

const whole = (text) => (/^\s*\d{1,9}\s*$/.test(text) ? Number(text) : null);

/** {event, errors}: what to send, and [{pointer, detail}] of what cannot be read. */
export function read(draft) {
  const errors = [];
  const number = (name, pointer, min, max) => {
    const value = whole(draft[name]);
    if (value !== null && value >= min && value <= max) return value;
    const detail = t('form.notNumber', {text: draft[name], min, max: numberText(max)});
    errors.push({pointer, detail});
    return null;
  };
  const date = (name, pointer) => {
    const day = draft[name];
    const [min, max] = ['1970-01-01', LAST_DAY];
    if (!day) errors.push({pointer, detail: t('form.noDate')});
    else if (day < min || day > max) {
      const range = {min: dateText(min), max: dateText(max)};
      errors.push({pointer, detail: t('form.noYear', range)});
    }
    return day;
  };
  const event = {
    description: draft.description.trim(),
    start: date('start', '/start'),
    time: readTime(draft, number, errors),
  };
  if (!event.description) errors.push({pointer: '/description', detail: t('form.noName')});
  event.repeat = draft.repeats ? readRepeat(draft, number, date, errors) : null;
  return {event, errors};
}

function readTime(draft, number, errors) {
  const spread = number('spread', '/time/spread', 0, MOST.spread);
  if (draft.base === 'sun') {
    const size = number('minutes', '/time/minutes', 0, MOST.minutes);
    return {base: draft.sun, minutes: draft.side === 'before' && size !== 0 ? -size : size, spread};
  }
  const minutes = readClock(draft.at);
  if (minutes === null)
    errors.push({pointer: '/time/at', detail: t('form.notTime', {text: draft.at})});
  return {base: 'clock', minutes: minutes + 1440 * (CLOCK_DAYS.indexOf(draft.base) - 1), spread};
}

function readRepeat(draft, number, date, errors) {
  const repeat = {unit: draft.unit, every: number('every', '/repeat/every', 1, MOST.every)};
  if (draft.unit === 'week') {
    repeat.on = WEEKDAYS.filter((day) => draft.on.has(day));
    if (repeat.on.length === 0) errors.push({pointer: '/repeat/on', detail: t('form.noDays')});
  } else if (draft.unit !== 'day' && draft.byWeekday) {
    const week = draft.nthWeek === 'last' ? 'last' : Number(draft.nthWeek);
    repeat.nth = {week, weekday: draft.nthDay};
  }
  if (draft.ends) {
    repeat.until = date('until', '/repeat/until');
    if (repeat.until && repeat.until < draft.start) {
      const detail = t('form.endsBefore', {date: dateText(draft.start)});
      errors.push({pointer: '/repeat/until', detail});
    }
  }
  return repeat;
}

/** "day 21", for months; the day of the start is what is meant. */
export const startDay = (draft) => (draft.start ? dayOfMonth(draft.start) : '');
