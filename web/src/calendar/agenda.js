// The days to come as a list.

import {h, icon} from '../dom.js';
import {house} from '../house.js';
import {longDate, t, timeText} from '../locale.js';
import {baseIcon} from '../sheet.js';
import {clockChangeMark, stateOf} from './chip.js';

const ROWS_A_DAY = 60;

export function agenda(context) {
  const {days, suns} = context;
  const sections = [...days]
    .filter(([day, occurrences]) => occurrences.length || clockChangeMark(day, suns))
    .map(([day, occurrences]) => section(day, occurrences, context));
  return sections.length ? sections : h('p', {class: 'empty'}, t('calendar.empty'));
}

function section(day, occurrences, {suns, open}) {
  const list = h('ol', {class: 'timeline'});
  const show = (count) => {
    list.replaceChildren(...occurrences.slice(0, count).map((occurrence) => row(occurrence, open)));
    if (occurrences.length <= count) return;
    list.append(
      h(
        'li',
        null,
        h(
          'button',
          {type: 'button', class: 'link', onclick: () => show(Infinity)},
          t('calendar.more', {n: occurrences.length - count}),
        ),
      ),
    );
  };
  show(ROWS_A_DAY);
  return h(
    'section',
    {class: day === house.date() ? 'agendaday today' : 'agendaday', 'aria-label': longDate(day)},
    h('h2', null, longDate(day), ' ', clockChangeMark(day, suns)),
    list,
  );
}

function row(occurrence, open) {
  const {event, description, day, base, minutes} = occurrence;
  const state = stateOf(occurrence);
  return h(
    'li',
    {class: `occurrence ${state ?? ''}`},
    h('time', null, timeText(minutes)),
    icon(baseIcon(base)),
    h(
      'div',
      {class: 'what'},
      h(
        'button',
        {
          type: 'button',
          class: 'link',
          'data-key': `${day}-${event}`,
          onclick: () => open(occurrence),
        },
        description,
      ),
    ),
    state &&
      h('span', {class: `state ${state}`}, icon(state), h('span', null, t(`state.${state}`))),
  );
}
