// How things are said here: language, clock of 12 or 24 hours, first day of the week, light or dark.
// Each follows the browser unless it was chosen on the page; the choice is kept in the browser.

import {clockText, dayMs, weekdayIndex} from './dates.js';
import {strings} from './strings.js';

const KEY = 'vexalink-settings';
const CHOICES = {
  language: ['auto', 'en', 'de'],
  clock: ['auto', '12', '24'],
  week: ['auto', '0', '1', '6'],
  theme: ['auto', 'light', 'dark'],
};
const chosen = {};
const changed = new EventTarget();

export function readSettings() {
  let kept = {};
  try {
    kept = JSON.parse(localStorage.getItem(KEY) ?? '{}') ?? {};
  } catch {
    // A browser that keeps nothing, or what is kept is damaged: everything follows the browser.
  }
  for (const [name, values] of Object.entries(CHOICES)) {
    chosen[name] = values.includes(kept[name]) ? kept[name] : 'auto';
  }
  apply();
}

export const setting = (name) => chosen[name] ?? 'auto';

export function choose(name, value) {
  chosen[name] = value;
  try {
    localStorage.setItem(KEY, JSON.stringify(chosen));
  } catch {
    // It then lasts as long as the page.
  }
  apply();
  changed.dispatchEvent(new Event('change'));
}

export const onSettings = (listener) => changed.addEventListener('change', listener);

const browserLocale = () => globalThis.navigator?.language ?? 'en';

/** "en" or "de" */
export function language() {
  if (setting('language') !== 'auto') return setting('language');
  const wanted = globalThis.navigator?.languages ?? ['en'];
  const known = wanted.map((tag) => tag.slice(0, 2)).find((tag) => strings[tag]);
  return known ?? 'en';
}

/** For dates and numbers: the browser's own region where it speaks the page's language. */
function locale() {
  const spoken = language();
  return browserLocale().startsWith(spoken) ? browserLocale() : spoken;
}

export function hours12() {
  if (setting('clock') !== 'auto') return setting('clock') === '12';
  return (
    new Intl.DateTimeFormat(browserLocale(), {hour: 'numeric'}).resolvedOptions().hour12 === true
  );
}

/** 0 for Sunday. */
export function firstWeekday() {
  if (setting('week') !== 'auto') return Number(setting('week'));
  try {
    const place = new Intl.Locale(browserLocale());
    const info = place.getWeekInfo?.() ?? place.weekInfo;
    if (info) return info.firstDay % 7;
    return ['US', 'CA', 'JP', 'IL', 'BR', 'MX', 'IN', 'ZA'].includes(place.maximize().region)
      ? 0
      : 1;
  } catch {
    return 1;
  }
}

function apply() {
  const root = globalThis.document?.documentElement;
  if (!root) return;
  root.lang = language();
  root.dataset.clock = hours12() ? '12' : '24';
  if (setting('theme') === 'auto') delete root.dataset.theme;
  else root.dataset.theme = setting('theme');
}

/** A text of the page in its language; `{name}` stands for what `values` has under it. */
export function t(key, values = {}) {
  const text = strings[language()][key] ?? strings.en[key];
  if (text === undefined) throw new Error(`there is no text "${key}"`);
  if (typeof text === 'function') return text(values);
  return text.replace(/\{(\w+)\}/g, (whole, name) => isolated(values[name]) ?? whole);
}

/** A name that is written from right to left, or turns what follows it, keeps to itself. */
export const isolated = (value) =>
  /[\u0590-\u08ff\u200e\u200f\u202a-\u202e\u2066-\u2069\ufb1d-\ufdff\ufe70-\ufefc]/.test(value)
    ? `\u2068${value}\u2069`
    : value;

/** Whether there is a text under `key`. */
export const hasText = (key) => strings.en[key] !== undefined;

const formats = new Map();

function formatOf(options) {
  const key = locale() + JSON.stringify(options);
  if (!formats.has(key)) {
    formats.set(key, new Intl.DateTimeFormat(locale(), {...options, timeZone: 'UTC'}));
  }
  return formats.get(key);
}

const format = (day, options) => formatOf(options).format(dayMs(day));

/** "21 Nov 2026" */
export const dateText = (day) => format(day, {day: 'numeric', month: 'short', year: 'numeric'});
/** "16–22 Nov 2026" */
export const rangeText = (from, to) =>
  formatOf({day: 'numeric', month: 'short', year: 'numeric'}).formatRange(dayMs(from), dayMs(to));
/** "Saturday, 21 November 2026" */
export const longDate = (day) =>
  format(day, {weekday: 'long', day: 'numeric', month: 'long', year: 'numeric'});
/** "Sat 21 Nov" */
export const shortDate = (day) => format(day, {weekday: 'short', day: 'numeric', month: 'short'});
/** "Sat 21 Nov 2026" */
export const shortDateOfYear = (day) =>
  format(day, {weekday: 'short', day: 'numeric', month: 'short', year: 'numeric'});
/** "21 November" */
export const dayAndMonth = (day) => format(day, {day: 'numeric', month: 'long'});
/** "November 2026" */
export const monthText = (day) => format(day, {month: 'long', year: 'numeric'});
/** "November"; 1..12 */
export const monthName = (month, style = 'long') =>
  format(`2026-${String(month).padStart(2, '0')}-01`, {month: style});
/** "Saturday" or "Sat"; 0 is Sunday. 4 January 1970 was one. */
export const weekdayName = (index, style = 'long') =>
  format(`1970-01-${String(4 + index).padStart(2, '0')}`, {weekday: style});
export const weekdayNameOf = (day, style) => weekdayName(weekdayIndex(day), style);

/** The weekdays as they stand in a week here: 0..6 beginning with the first. */
export const weekOrder = () => [0, 1, 2, 3, 4, 5, 6].map((index) => (index + firstWeekday()) % 7);

/** "07:05" or "7:05 AM", of minutes after midnight. */
export function timeText(minutes) {
  const ofDay = ((minutes % 1440) + 1440) % 1440;
  if (!hours12()) return clockText(ofDay);
  const hour = Math.floor(ofDay / 60);
  return `${hour % 12 || 12}:${String(ofDay % 60).padStart(2, '0')} ${hour < 12 ? 'AM' : 'PM'}`;
}

/** "a, b and c" */
export function listText(items, type = 'conjunction') {
  return new Intl.ListFormat(locale(), {type}).format(items);
}

/** A number with the language's point. */
export const numberText = (number, digits = 2) =>
  new Intl.NumberFormat(language(), {maximumFractionDigits: digits}).format(number);

/** "1 h 5 min", "4:05 min" below an hour, for what is so many seconds away. */
export function durationText(seconds) {
  const whole = Math.max(0, Math.floor(seconds));
  if (whole >= 2 * 86400) return t('days', {n: Math.floor(whole / 86400)});
  if (whole >= 3600) {
    return t('hours', {h: Math.floor(whole / 3600), m: Math.floor((whole % 3600) / 60)});
  }
  return t('countdown', {m: Math.floor(whole / 60), s: String(whole % 60).padStart(2, '0')});
}
