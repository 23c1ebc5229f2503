// What the controller warns of in a preview, in the page's own words. It says on which day and why in
// English; the days and times of that are put into the page's language and clock.

import {dayOf, readClock} from '../dates.js';
import {dateText, hasText, t, timeText} from '../locale.js';

const MONTHS =
  'January February March April May June July August September October November December'.split(' ');

/** "{day}" and "{other}" stand for a day, "{at}" and "{then}" for a time. */
const SAID = {
  'passed': '{day} has passed, or its time has',
  'today-passed': 'its time has passed today',
  'last-passed': 'its last day, {day}, has passed',
  'none-between': 'none of its days lies between {day} and its last day, {other}',
  'starts-late':
    'it starts on {day}, and without an end it ends on {other} already; give it an end',
  'after-midnight':
    "on {day} its time lies after midnight, where that day's list ends: it comes only where what was missed is caught up",
  'maybe-after-midnight':
    "on {day} its time may lie after midnight, where that day's list ends: it then comes only where what was missed is caught up",
  'at-midnight':
    "on {day} its time lies before midnight, where that day's list begins: it comes at midnight instead",
  'maybe-at-midnight':
    "on {day} its time may lie before midnight, where that day's list begins: it then comes at midnight instead",
  'left-out':
    'on {day} there is no {at}, because the clocks are put forward; it comes at {then}',
  'twice':
    'on {day} {at} comes twice, because the clocks are put back; it comes the first time',
  'drifts-to':
    'the scheduler counts days in 24 hours, also where a clock change makes one longer or shorter: it comes on {day} and not on {other}',
  'drifts-more':
    'the scheduler counts days in 24 hours, also where a clock change makes one longer or shorter: it comes on {day}',
  'drifts-less':
    'the scheduler counts days in 24 hours, also where a clock change makes one longer or shorter: it does not come on {day}',
  'ends':
    "without an end it ends on {day}, where the scheduler's calendar does; give it an end to go on",
};

const PARTS = {
  day: `(?<day>\\d{1,2} [A-Z][a-z]+ \\d{4})`,
  other: `(?<other>\\d{1,2} [A-Z][a-z]+ \\d{4})`,
  at: `(?<at>\\d\\d:\\d\\d)`,
  then: `(?<then>\\d\\d:\\d\\d)`,
};

const patterns = Object.entries(SAID).map(([key, text]) => [
  key,
  new RegExp(`^${text.replace(/\{(\w+)\}/g, (whole, name) => PARTS[name])}$`),
]);

/** "28 March 2027" as the page writes it. */
function localDay(text) {
  const [day, month, year] = text.split(' ');
  const ms = Date.UTC(Number(year), MONTHS.indexOf(month), Number(day));
  return Number.isNaN(ms) ? text : dateText(dayOf(ms));
}

const localPart = (name, text) =>
  name === 'day' || name === 'other' ? localDay(text) : timeText(readClock(text));

/** The warning {code, text} in words. */
export function warningText({code, text}) {
  for (const [key, pattern] of patterns) {
    const found = pattern.exec(text);
    if (!found) continue;
    const parts = Object.entries(found.groups ?? {}).map(([name, part]) => [
      name,
      localPart(name, part),
    ]);
    return t(`warning.${key}`, Object.fromEntries(parts));
  }
  // One that is newer than this page.
  return hasText(`warning.${code}`) ? t(`warning.${code}`) : text;
}
