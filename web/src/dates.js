// Civil days and times of day as the house has them. A day is its text, "2026-11-21"; the browser's
// own time zone never comes in, because the house may stand elsewhere.

const DAY_MS = 86400000;
export const WEEKDAYS = ['sun', 'mon', 'tue', 'wed', 'thu', 'fri', 'sat'];
export const FIRST_DAY = '1970-01-02';
export const LAST_DAY = '9999-12-31';

const pad = (number, width = 2) => String(number).padStart(width, '0');

/** Milliseconds of a day's midnight in UTC; NaN where the text is no day. */
export function dayMs(day) {
  const parts = /^(\d{4})-(\d\d)-(\d\d)$/.exec(day ?? '');
  if (!parts) return NaN;
  const ms = Date.UTC(+parts[1], +parts[2] - 1, +parts[3]);
  return dayOf(ms) === day ? ms : NaN;
}

export const isDay = (day) => !Number.isNaN(dayMs(day));

export function dayOf(ms) {
  const date = new Date(ms);
  return `${pad(date.getUTCFullYear(), 4)}-${pad(date.getUTCMonth() + 1)}-${pad(date.getUTCDate())}`;
}

export const addDays = (day, count) => dayOf(dayMs(day) + count * DAY_MS);
export const daysBetween = (from, to) => Math.round((dayMs(to) - dayMs(from)) / DAY_MS);
export const weekdayIndex = (day) => new Date(dayMs(day)).getUTCDay();
export const weekdayOf = (day) => WEEKDAYS[weekdayIndex(day)];
export const yearOf = (day) => +day.slice(0, 4);
export const monthOf = (day) => +day.slice(5, 7);
export const dayOfMonth = (day) => +day.slice(8, 10);
export const firstOfMonth = (day) => `${day.slice(0, 7)}-01`;

export function daysInMonth(day) {
  return new Date(Date.UTC(yearOf(day), monthOf(day), 0)).getUTCDate();
}

/** The same day so many months on, or the last of that month where it has no such day. */
export function addMonths(day, count) {
  const first = dayOf(Date.UTC(yearOf(day), monthOf(day) - 1 + count, 1));
  return addDays(first, Math.min(dayOfMonth(day), daysInMonth(first)) - 1);
}

/** The day on or before `day` with which its week begins; `first` is 0 for Sunday. */
export const startOfWeek = (day, first) => addDays(day, -((weekdayIndex(day) - first + 7) % 7));

/** Which of its weekday in its month a day is, 1..5, and whether it is the last. */
export function nthOfMonth(day) {
  const number = dayOfMonth(day);
  return {week: Math.ceil(number / 7), last: number + 7 > daysInMonth(day)};
}

/**
 * The wall clock that a moment's text shows: its day, minutes after midnight and seconds. A bare
 * "15:23" has no day. Null where the text is neither.
 */
export function wall(text) {
  const parts = /^(?:(\d{4}-\d\d-\d\d)[T ])?(\d\d):(\d\d)(?::(\d\d))?/.exec(text ?? '');
  if (!parts) return null;
  return {day: parts[1] ?? null, minutes: +parts[2] * 60 + +parts[3], seconds: +(parts[4] ?? 0)};
}

/** Minutes from UTC at the end of a moment's text; 0 where it has none. */
export function offsetOf(text) {
  const parts = /([+-])(\d\d):(\d\d)$/.exec(text ?? '');
  if (!parts) return 0;
  return (parts[1] === '-' ? -1 : 1) * (+parts[2] * 60 + +parts[3]);
}

/** "UTC+01:00" */
export function offsetText(minutes) {
  const size = Math.abs(minutes);
  return `UTC${minutes < 0 ? '−' : '+'}${pad(Math.floor(size / 60))}:${pad(size % 60)}`;
}

/** "07:05", as the API takes it; of 0..1439 minutes. */
export const clockText = (minutes) => `${pad(Math.floor(minutes / 60))}:${pad(minutes % 60)}`;

/**
 * Minutes after midnight of what somebody typed: "7", "7:30", "0730", "7.30 pm", "12:00 AM", "noon".
 * Null where it is no time of day.
 */
export function readClock(text) {
  const typed = (text ?? '')
    .trim()
    .toLowerCase()
    .replace(/[\u00a0\u202f]/g, ' ');
  if (/^(noon|mittag|12 uhr mittags)$/.test(typed)) return 720;
  if (/^(midnight|mitternacht)$/.test(typed)) return 0;
  const parts = /^(\d{1,2})(?:[:.]?(\d\d))?\s*(?:(a|p)\.?\s?m?\.?|uhr|h)?$/.exec(typed);
  if (!parts) return null;
  let hour = +parts[1];
  const minute = +(parts[2] ?? 0);
  if (minute > 59) return null;
  if (parts[3]) {
    if (hour < 1 || hour > 12) return null;
    hour = (hour % 12) + (parts[3] === 'p' ? 12 : 0);
  }
  return hour > 23 ? null : hour * 60 + minute;
}
