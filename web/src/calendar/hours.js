// A week or a day as columns of hours, the nights shaded by the sun.

import {addDays, dayOfMonth, wall} from '../dates.js';
import {h, icon} from '../dom.js';
import {house} from '../house.js';
import {longDate, t, timeText, weekdayNameOf} from '../locale.js';
import {chip, clockChangeMark} from './chip.js';

export const HOUR_PX = 44;
const CHIP_MINUTES = 32; // as high as a chip is
const LANES = {week: 3, day: 8, narrow: 3};

const top = (minutes) => `${(minutes * HOUR_PX / 60).toFixed(1)}px`;

export function hours(context) {
  const {from, to, narrow} = context;
  const list = [];
  for (let day = from; day <= to; day = addDays(day, 1)) list.push(day);
  const single = list.length === 1;
  const lanes = single ? (narrow ? LANES.narrow : LANES.day) : (narrow ? 1 : LANES.week);
  const earliest = Math.min(...[...context.days.values()].flat().map(({minutes}) => minutes), 480);
  const begin = list.includes(house.date()) ? Math.min(house.wallNow().minutes - 120, 960) : earliest - 30;
  return h('div', {class: `hours ${single ? 'single' : 'seven'}`},
    h('div', {class: 'heads'}, h('span', {class: 'corner'}), list.map((day) => head(day, context))),
    h('div', {class: 'scroll', tabindex: '0', role: 'region', 'aria-label': t('calendar.hours'),
      'data-scroll': String(begin * HOUR_PX / 60)},
    h('div', {class: 'columns', style: {height: top(1440)}},
      h('div', {class: 'ruler', 'aria-hidden': 'true'}, hourMarks()),
      list.map((day) => column(day, lanes, context)))));
}

function head(day, {suns, go}) {
  const isToday = day === house.date();
  return h('div', {class: isToday ? 'head today' : 'head'},
    h('button', {type: 'button', class: 'daynumber', 'data-key': `day-${day}`,
      'aria-current': isToday ? 'date' : null, onclick: () => go('day', day)},
    h('span', {'aria-hidden': 'true'}, weekdayNameOf(day, 'short'), ' ', String(dayOfMonth(day))),
    h('span', {class: 'unseen'}, longDate(day))),
    clockChangeMark(day, suns));
}

function hourMarks() {
  const marks = [];
  for (let hour = 1; hour < 24; ++hour) {
    marks.push(h('span', {style: {top: top(hour * 60)}}, timeText(hour * 60).replace(':00', '')));
  }
  return marks;
}

function column(day, lanes, {days, suns, open}) {
  const blocks = arranged(days.get(day) ?? [], lanes);
  const element = h('section', {class: 'column', 'data-day': day, 'data-hours': '',
    'aria-label': longDate(day)},
  daylight(suns.get(day)),
  day === house.date() && h('div', {class: 'nowline', 'aria-hidden': 'true',
    style: {top: top(house.wallNow().minutes)}}),
  blocks.map((block) => placed(block, open, day)));
  return element;
}

/** The light of the day as a lighter field, with its sun at both ends. */
function daylight(sun) {
  if (!sun) return null;
  if (sun.polar) return h('div', {class: sun.polar === 'day' ? 'light' : 'none', 'aria-hidden': 'true', style: {top: 0, height: '100%'}});
  const rise = wall(sun.sunrise).minutes;
  const set = wall(sun.sunset).minutes;
  return [
    rise < set && h('div', {class: 'light', 'aria-hidden': 'true', style: {top: top(rise), height: top(set - rise)}}),
    h('div', {class: 'sunline sunrise', 'aria-hidden': 'true', style: {top: top(rise)}}, icon('sunrise')),
    h('div', {class: 'sunline sunset', 'aria-hidden': 'true', style: {top: top(set)}}, icon('sunset')),
  ];
}

function placed({occurrence, minutes, lane, of, more}, open, day) {
  const style = {top: top(Math.min(minutes, 1440 - CHIP_MINUTES)),
    left: `calc(${lane} / ${of} * 100%)`, width: `calc(100% / ${of} - 2px)`};
  if (!more) {
    const element = chip(occurrence, open);
    Object.assign(element.style, style);
    return element;
  }
  return h('a', {class: 'chip more', style, href: `#/calendar?view=agenda&date=${day}`,
    'data-key': `more-${day}-${minutes}`}, t('calendar.more', {n: more}),
  h('span', {class: 'unseen'}, ` ${longDate(day)} ${timeText(minutes)}`));
}

/**
 * Places side by side what would cover each other, in at most `lanes`; of a crowd the last place says
 * how many more there are.
 */
export function arranged(occurrences, lanes) {
  const blocks = [];
  for (let index = 0; index < occurrences.length;) {
    const crowd = [];
    const ends = [];
    let until = -1;
    while (index < occurrences.length && (crowd.length === 0 || occurrences[index].minutes < until)) {
      const occurrence = occurrences[index++];
      let lane = ends.findIndex((end) => end <= occurrence.minutes);
      if (lane < 0) lane = ends.length;
      ends[lane] = occurrence.minutes + CHIP_MINUTES;
      until = Math.max(until, ends[lane]);
      crowd.push({occurrence, minutes: occurrence.minutes, lane});
    }
    blocks.push(...fitted(crowd, ends.length, lanes));
  }
  return blocks;
}

function fitted(crowd, used, lanes) {
  if (used <= lanes) return crowd.map((block) => ({...block, of: used}));
  // One that is alone in a lane too many is better shown than counted, so the last lane goes too.
  const kept = crowd.filter(({lane}) => lane < lanes - 1).map((block) => ({...block, of: lanes}));
  const rest = crowd.filter(({lane}) => lane >= lanes - 1);
  const result = [...kept];
  for (let index = 0; index < rest.length;) {
    const {minutes} = rest[index];
    let count = 0;
    while (index < rest.length && rest[index].minutes < minutes + CHIP_MINUTES) {
      ++count;
      ++index;
    }
    result.push({minutes, lane: lanes - 1, of: lanes, more: count});
  }
  return result;
}
