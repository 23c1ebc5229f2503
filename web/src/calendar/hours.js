// A week or a day as columns of hours, the nights shaded by the sun.

import {addDays, dayOfMonth, wall} from '../dates.js';
import {h, icon} from '../dom.js';
import {house} from '../house.js';
import {longDate, t, timeText, weekdayNameOf} from '../locale.js';
import {chip, clockChangeMark} from './chip.js';

export const HOUR_PX = 44;
const CHIP_MINUTES = 32; // as high as a chip is
const PUSHED_MINUTES = 48;
const LANES = {week: 2, day: 6, narrow: 2};
/** Below midnight, for what is pushed there. */
const FOOT_MINUTES = 84;

const top = (minutes) => `${((minutes * HOUR_PX) / 60).toFixed(1)}px`;

export function hours(context) {
  const {from, to, narrow} = context;
  const list = [];
  for (let day = from; day <= to; day = addDays(day, 1)) list.push(day);
  const single = list.length === 1;
  const lanes = single ? (narrow ? LANES.narrow : LANES.day) : narrow ? 1 : LANES.week;
  const earliest = Math.min(...[...context.days.values()].flat().map(({minutes}) => minutes), 480);
  const begin = list.includes(house.date())
    ? Math.min(house.wallNow().minutes - 120, 960)
    : earliest - 30;
  return h(
    'div',
    {class: `hours ${single ? 'single' : 'seven'}`},
    h(
      'div',
      {class: 'heads'},
      h('span', {class: 'corner'}),
      list.map((day) => head(day, context)),
    ),
    h(
      'div',
      {
        class: 'scroll',
        tabindex: '0',
        role: 'region',
        'aria-label': t('calendar.hours'),
        'data-scroll': String((begin * HOUR_PX) / 60),
      },
      h(
        'div',
        {class: 'columns', style: {height: top(1440 + FOOT_MINUTES)}},
        h('div', {class: 'ruler', 'aria-hidden': 'true'}, hourMarks()),
        list.map((day) => column(day, lanes, context)),
      ),
    ),
  );
}

function head(day, {suns, go}) {
  const isToday = day === house.date();
  return h(
    'div',
    {class: isToday ? 'head today' : 'head'},
    h(
      'button',
      {
        type: 'button',
        class: 'daynumber',
        'data-key': `day-${day}`,
        'aria-current': isToday ? 'date' : null,
        onclick: () => go('day', day),
      },
      h('span', {'aria-hidden': 'true'}, weekdayNameOf(day, 'short')),
      h('span', {'aria-hidden': 'true'}, String(dayOfMonth(day))),
      h('span', {class: 'unseen'}, longDate(day)),
    ),
    clockChangeMark(day, suns),
  );
}

function hourMarks() {
  const marks = [];
  for (let hour = 1; hour <= 24; ++hour) {
    marks.push(h('span', {style: {top: top(hour * 60)}}, timeText(hour * 60).replace(':00', '')));
  }
  return marks;
}

function column(day, lanes, {days, suns, open}) {
  const blocks = arranged(days.get(day) ?? [], lanes);
  const element = h(
    'section',
    {class: 'column', 'data-day': day, 'data-hours': '', 'aria-label': longDate(day)},
    daylight(suns.get(day)),
    day === house.date() &&
      h('div', {
        class: 'nowline',
        'aria-hidden': 'true',
        style: {top: top(house.wallNow().minutes)},
      }),
    blocks.map((block) => placed(block, open, day)),
  );
  return element;
}

/** The light of the day as a lighter field, with its sun at both ends. */
function daylight(sun) {
  if (!sun) return null;
  if (sun.polar)
    return h('div', {
      class: sun.polar === 'day' ? 'light' : 'none',
      'aria-hidden': 'true',
      style: {top: 0, height: '100%'},
    });
  const rise = wall(sun.sunrise).minutes;
  const set = wall(sun.sunset).minutes;
  return [
    rise < set &&
      h('div', {
        class: 'light',
        'aria-hidden': 'true',
        style: {top: top(rise), height: top(set - rise)},
      }),
    h(
      'div',
      {class: 'sunline sunrise', 'aria-hidden': 'true', style: {top: top(rise)}},
      icon('sunrise'),
    ),
    h(
      'div',
      {class: 'sunline sunset', 'aria-hidden': 'true', style: {top: top(set)}},
      icon('sunset'),
    ),
  ];
}

function placed({occurrence, minutes, lane, of, more}, open, day) {
  const style = {
    top: top(minutes),
    left: `calc(${lane} / ${of} * 100%)`,
    width: `calc(100% / ${of} - 2px)`,
  };
  if (!more) {
    const element = chip(occurrence, open);
    Object.assign(element.style, style);
    if (of > 1) element.classList.add('tight');
    return element;
  }
  return h(
    'a',
    {
      class: 'chip more',
      style,
      href: `#/calendar?view=agenda&date=${day}`,
      'data-key': `more-${day}-${minutes}`,
    },
    t('calendar.more', {n: more}),
    h('span', {class: 'unseen'}, ` ${longDate(day)} ${timeText(minutes)}`),
  );
}

/**
 * Places what would cover each other: one below the other as long as none is pushed far from its time,
 * else side by side in at most `lanes`. Of a crowd that is too much even so, the last lane says how
 * many more there are. Answers with blocks: `minutes` is where one begins, in lane `lane` of `of`.
 */
export function arranged(occurrences, lanes) {
  const blocks = [];
  for (let begin = 0; begin < occurrences.length;) {
    const crowd = crowdFrom(occurrences, begin, lanes);
    blocks.push(...crowd.blocks);
    begin = crowd.end;
  }
  return blocks;
}

/** The next of them that touch each other, in as few lanes as will do: {blocks, end}. */
function crowdFrom(occurrences, begin, lanes) {
  for (let of = 1; of <= lanes; ++of) {
    const crowd = packed(occurrences, begin, of, of);
    if (crowd.rest.length === 0) return crowd;
  }
  const crowd = packed(occurrences, begin, lanes, lanes - 1);
  return {blocks: [...crowd.blocks, ...counted(crowd.rest, lanes)], end: crowd.end};
}

/**
 * Fills the first `used` of `of` lanes until one comes that touches none before it. `rest` are those
 * that would have been pushed too far.
 */
function packed(occurrences, begin, of, used) {
  const ends = Array(used).fill(-1);
  const blocks = [];
  const rest = [];
  let index = begin;
  let until = Infinity;
  for (
    ;
    index < occurrences.length && (index === begin || occurrences[index].minutes < until);
    ++index
  ) {
    const occurrence = occurrences[index];
    const lane = ends.indexOf(Math.min(...ends));
    const minutes = Math.max(occurrence.minutes, ends[lane] ?? 0);
    if (lane < 0 || minutes - occurrence.minutes > PUSHED_MINUTES) {
      rest.push(occurrence);
    } else {
      ends[lane] = minutes + CHIP_MINUTES;
      blocks.push({occurrence, minutes, lane, of});
    }
    until = Math.max(...ends, ...rest.slice(-1).map((one) => one.minutes + CHIP_MINUTES));
  }
  return {blocks, rest, end: index};
}

/** What found no place, as the numbers of what is there; one alone is shown after all. */
function counted(rest, of) {
  const blocks = [];
  for (let index = 0; index < rest.length;) {
    const {minutes} = rest[index];
    const first = index;
    while (index < rest.length && rest[index].minutes < minutes + CHIP_MINUTES) ++index;
    const more = index - first;
    blocks.push(
      more === 1
        ? {occurrence: rest[first], minutes, lane: of - 1, of}
        : {minutes, lane: of - 1, of, more},
    );
  }
  return blocks;
}
