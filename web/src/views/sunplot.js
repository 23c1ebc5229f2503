// The picture of a year: days from left to right, the hours of the house's clocks from below.

import {daysBetween, wall, yearOf} from '../dates.js';
import {s} from '../dom.js';
import {house} from '../house.js';
import {monthName, t, timeText} from '../locale.js';

const SIZES = {
  wide: {width: 1000, height: 460, left: 52, month: 'short'},
  // As high as it is wide, for letters that can be read there.
  narrow: {width: 420, height: 380, left: 46, month: 'narrow'},
};
const LETTER = 8.5;
const TOP = 8;
const FOOT = 26;

let size = SIZES.wide;

/** Where a day stands in the picture that was drawn last. */
export const xOf = (index, count) => size.left + ((index + 0.5) / count) * (size.width - size.left);
const yOf = (minutes) => TOP + (1 - minutes / 1440) * (size.height - TOP - FOOT);

/** The year as a picture: night and day, the curves, and the occurrences of `traces`. */
export function picture(days, traces, narrow) {
  size = narrow ? SIZES.narrow : SIZES.wide;
  const {width: WIDE, height: HIGH, left: LEFT} = size;
  const count = days.length;
  const bottom = yOf(0);
  const today = daysBetween(days[0].date, house.date());
  return s(
    'svg',
    {
      viewBox: `0 0 ${WIDE} ${HIGH}`,
      role: 'img',
      'aria-label': t('sun.picture', {year: yearOf(days[0].date)}),
    },
    s('rect', {class: 'night', x: LEFT, y: TOP, width: WIDE - LEFT, height: bottom - TOP}),
    lightFields(days),
    s(
      'g',
      {class: 'grid'},
      [0, 3, 6, 9, 12, 15, 18, 21, 24].map((hour) => [
        s('line', {x1: LEFT, x2: WIDE, y1: yOf(hour * 60), y2: yOf(hour * 60)}),
        s(
          'text',
          {x: LEFT - 6, y: yOf(hour * 60) + 4, 'text-anchor': 'end'},
          hour === 24 ? '' : timeText(hour * 60).replace(':00 ', ' '),
        ),
      ]),
      months(days),
    ),
    ['sunrise', 'sunset'].map((name) => [
      s('path', {class: `curve ${name}`, d: curve(days, name)}),
      nameOn(days, name),
    ]),
    traces.map(({colour, occurrences}) =>
      s(
        'g',
        {class: `trace colour${colour}`},
        occurrences.map(({date, time}) =>
          s('circle', {
            cx: xOf(daysBetween(days[0].date, date), count).toFixed(1),
            cy: yOf(wall(time).minutes).toFixed(1),
            r: 2.6,
          }),
        ),
      ),
    ),
    today >= 0 &&
      today < count &&
      s('line', {
        class: 'today',
        x1: xOf(today, count),
        x2: xOf(today, count),
        y1: TOP,
        y2: bottom,
      }),
    s('line', {class: 'pointer', x1: -9, x2: -9, y1: TOP, y2: bottom}),
  );
}

/** The daylight as one field a run of days; over midnight it is in two pieces. */
function lightFields(days) {
  const LEFT = size.left;
  const step = (size.width - LEFT) / days.length;
  const fields = [];
  days.forEach((day, index) => {
    const add = (from, to) =>
      fields.push(
        `M${(LEFT + index * step).toFixed(2)} ${yOf(from).toFixed(1)}h${(step + 0.3).toFixed(2)}V${yOf(to).toFixed(1)}h${(-step - 0.3).toFixed(2)}z`,
      );
    if (day.polar === 'night') return;
    if (day.polar === 'day') return add(0, 1440);
    const [rise, set] = [wall(day.sunrise).minutes, wall(day.sunset).minutes];
    if (rise < set) return add(rise, set);
    add(0, set);
    add(rise, 1440);
  });
  return s('path', {class: 'light', d: fields.join('')});
}

/** Says which curve it is, beside it: where it has room, if that can be before the clocks change. */
function nameOn(days, name) {
  const text = t(`say.${name}`);
  const part = (text.length * LETTER) / (size.width - size.left);
  const span = Math.ceil(part * days.length);
  const free = (from) => days.slice(from, from + span).every((day) => !day.polar && day[name]);
  const index = [10, 45, 80, 200, 280].find(free);
  if (index === undefined) return null;
  const heights = days.slice(index, index + span).map((day) => yOf(wall(day[name]).minutes));
  return s(
    'text',
    {
      class: `name ${name}`,
      x: xOf(index, days.length),
      y: name === 'sunrise' ? Math.max(...heights) + 18 : Math.min(...heights) - 8,
    },
    text,
  );
}

/** A step where the clocks change, a gap where there is no such time. */
function curve(days, name) {
  let path = '';
  let last = null;
  days.forEach((day, index) => {
    if (day.polar || !day[name]) {
      last = null;
      return;
    }
    const minutes = wall(day[name]).minutes;
    const [x, y] = [xOf(index, days.length), yOf(minutes)].map((number) => number.toFixed(1));
    const jumped = last !== null && Math.abs(minutes - last.minutes) > 600; // past midnight, not a step
    if (last === null || jumped) path += `M${x} ${y}`;
    else path += last.offset !== day.offset ? `H${x}V${y}` : `L${x} ${y}`;
    last = {minutes, offset: day.offset};
  });
  return path;
}

function months(days) {
  return [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12].map((month) => {
    const first = `${days[0].date.slice(0, 4)}-${String(month).padStart(2, '0')}-01`;
    const x = xOf(daysBetween(days[0].date, first) - 0.5, days.length);
    return [
      s('line', {x1: x, x2: x, y1: TOP, y2: yOf(0)}),
      s('text', {x: x + 4, y: size.height - 8}, monthName(month, size.month)),
    ];
  });
}

/** Which day stands at a part of the picture's width. */
export const indexAt = (part, count) =>
  Math.floor(((part * size.width - size.left) / (size.width - size.left)) * count);
