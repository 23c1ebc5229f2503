// What dragging an occurrence elsewhere makes of its event.

import {
  addDays,
  addMonths,
  dayOfMonth,
  daysBetween,
  daysInMonth,
  firstOfMonth,
  monthOf,
  nthOfMonth,
  startOfWeek,
  weekdayOf,
  yearOf,
} from './dates.js';

/**
 * The event, moved. `from` and `to` are {date, minutes}, wall clock. `how`: "every" shifts the whole
 * rule; "start" makes it begin at the new place. `byClock` makes a clock time of one that follows
 * the sun; without it the sun's minutes move by as much as the time did.
 */
export function moved(event, from, to, how, byClock = false) {
  const {description, time, repeat} = event;
  return {
    description,
    start: movedStart(event, from, to, how),
    time: movedTime(time, from, to, byClock),
    repeat: repeat ? movedRepeat(repeat, from.date, to.date) : null,
  };
}

function movedStart({start, repeat}, from, to, how) {
  if (how === 'start' || !repeat) return to.date;
  switch (repeat.unit) {
    // Its weekdays are named by the rule, and weeks begin on Sunday: only whole weeks count.
    case 'week':
      return repeat.every === 1
        ? start
        : addDays(start, daysBetween(startOfWeek(from.date, 0), startOfWeek(to.date, 0)));
    case 'month':
      return inMonth(
        addMonths(firstOfMonth(start), monthsBetween(from.date, to.date)),
        dayOfMonth(to.date),
        repeat.every,
      );
    case 'year':
      return inMonth(
        addMonths(
          firstOfMonth(start),
          12 * (yearOf(to.date) - yearOf(from.date)) + monthOf(to.date) - monthOf(start),
        ),
        dayOfMonth(to.date),
        12 * repeat.every,
      );
    default:
      return addDays(start, daysBetween(from.date, to.date));
  }
}

const monthsBetween = (from, to) => 12 * (yearOf(to) - yearOf(from)) + monthOf(to) - monthOf(from);

/** That day of the month, or of the next by `step` that has it. */
function inMonth(first, day, step) {
  while (daysInMonth(first) < day && yearOf(first) < 9999) first = addMonths(first, step);
  return addDays(first, day - 1);
}

function movedTime(time, from, to, byClock) {
  if (from.minutes === to.minutes && !byClock) return {...time};
  if (time.base === 'clock' || byClock) {
    // A time on the day before or after its date stays on that side.
    const side = time.base === 'clock' ? Math.floor(time.minutes / 1440) * 1440 : 0;
    return {base: 'clock', minutes: side + to.minutes, spread: time.spread};
  }
  const minutes = time.minutes + to.minutes - from.minutes;
  return {...time, minutes: Math.max(-1440, Math.min(1440, minutes))};
}

function movedRepeat(repeat, from, to) {
  const result = {...repeat};
  if (repeat.unit === 'week') {
    const others = repeat.on.filter((day) => day !== weekdayOf(from));
    result.on = [...new Set([...others, weekdayOf(to)])];
  } else if (repeat.nth) {
    const {week, last} = nthOfMonth(to);
    const asLast = week > 4 || (last && repeat.nth.week === 'last');
    result.nth = {week: asLast ? 'last' : week, weekday: weekdayOf(to)};
  }
  if (result.until && result.until < to) delete result.until;
  return result;
}
