// One occurrence as it stands in a calendar, and what there is to say about a day.

import {addDays, clockText} from '../dates.js';
import {h, icon} from '../dom.js';
import {house} from '../house.js';
import {t, timeText} from '../locale.js';
import {baseIcon} from '../sheet.js';

const MOVING_KEYS = ['Left', 'Right', 'Up', 'Down'].map((way) => `Shift+Arrow${way}`).join(' ');

/** What became of an occurrence, or what keeps it from acting: a name of a state, or null. */
export function stateOf({event, date, day}) {
  if (date === house.today.date) {
    const known = house.today.occurrences.find((one) => one.event === event);
    if (known && known.state !== 'pending') return known.state;
  }
  if (day < house.date()) return null;
  return house.heldOn(date, event) ? 'held' : null;
}

/** A button that opens its event and can be dragged. */
export function chip(occurrence, open) {
  const {event, description, day, base, minutes} = occurrence;
  const state = stateOf(occurrence);
  const past = day < house.date() ? ' past' : '';
  const odd = house.events.get(event)?.odd;
  // " PM" may be left out where there is little room.
  const [, clock, half] = /^(\S+)(.*)$/.exec(timeText(minutes));
  const element = h(
    'button',
    {
      type: 'button',
      class: `chip ${baseIcon(base)}${state ? ` ${state}` : ''}${past}`,
      'data-key': `${day}-${event}`,
      title: `${timeText(minutes)} ${description}`,
      'data-drag': odd ? null : '',
      'aria-keyshortcuts': odd ? null : MOVING_KEYS,
      onclick: () => open(occurrence),
    },
    icon(baseIcon(base)),
    h(
      'time',
      {datetime: `${day}T${clockText(minutes)}`},
      clock,
      half && h('span', {class: 'half'}, half),
    ),
    h('span', {class: 'name'}, description),
    base !== 'clock' && h('span', {class: 'unseen'}, t(`chip.${base}`)),
    state && h('span', {class: 'unseen'}, t(`state.${state}`)),
  );
  element.occurrence = occurrence;
  return element;
}

/** By how many minutes the clocks change in the night that leads to `day`; 0: they do not. */
export function clockChange(day, suns) {
  const now = suns.get(day);
  const before = suns.get(addDays(day, -1));
  return now && before ? now.offset - before.offset : 0;
}

/** "clocks +1 h" where they change, else null. */
export function clockChangeMark(day, suns) {
  const change = clockChange(day, suns);
  if (change === 0) return null;
  const text = t(change > 0 ? 'clocks.forward' : 'clocks.back', {n: Math.abs(change)});
  return h('span', {class: 'clockchange', title: text}, icon('shift'), h('span', null, text));
}
