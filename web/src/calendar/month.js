// A month as a table, a week in each row.

import {addDays, dayOfMonth, monthOf} from '../dates.js';
import {h} from '../dom.js';
import {house} from '../house.js';
import {longDate, t, weekdayName, weekOrder} from '../locale.js';
import {chip, clockChangeMark} from './chip.js';

const CHIPS_A_DAY = 4;

export function month(context) {
  const {from, to, day, narrow} = context;
  const rows = [];
  for (let week = from; week <= to; week = addDays(week, 7)) {
    rows.push(
      h(
        'tr',
        null,
        [0, 1, 2, 3, 4, 5, 6].map((offset) => cell(addDays(week, offset), monthOf(day), context)),
      ),
    );
  }
  return h(
    'table',
    {class: 'month'},
    h('caption', {class: 'unseen'}, t('calendar.caption')),
    h(
      'thead',
      null,
      h(
        'tr',
        null,
        weekOrder().map((index) =>
          h(
            'th',
            {scope: 'col', abbr: weekdayName(index)},
            weekdayName(index, narrow ? 'narrow' : 'short'),
          ),
        ),
      ),
    ),
    h('tbody', null, rows),
  );
}

function cell(date, shownMonth, {days, suns, open, go, narrow}) {
  const occurrences = days.get(date) ?? [];
  const isToday = date === house.date();
  const classes = [monthOf(date) === shownMonth ? '' : 'other', isToday ? 'today' : ''];
  const number = h(
    'button',
    {
      type: 'button',
      class: 'daynumber',
      'data-key': `day-${date}`,
      'aria-current': isToday ? 'date' : null,
      onclick: () => go('day', date),
    },
    h('span', {'aria-hidden': 'true'}, String(dayOfMonth(date))),
    h(
      'span',
      {class: 'unseen'},
      t('calendar.openDay', {date: longDate(date), n: occurrences.length}),
    ),
  );
  return h(
    'td',
    {class: classes.join(' ').trim() || null, 'data-day': date},
    h('div', {class: 'dayhead'}, number, clockChangeMark(date, suns)),
    narrow ? dots(occurrences) : chips(occurrences, date, open, go),
  );
}

function chips(occurrences, date, open, go) {
  const shown =
    occurrences.length > CHIPS_A_DAY + 1 ? occurrences.slice(0, CHIPS_A_DAY) : occurrences;
  const rest = occurrences.length - shown.length;
  return [
    shown.map((occurrence) => chip(occurrence, open)),
    rest > 0 &&
      h(
        'button',
        {
          type: 'button',
          class: 'morechips',
          'data-key': `more-${date}`,
          onclick: () => go('day', date),
        },
        t('calendar.more', {n: rest}),
        h('span', {class: 'unseen'}, ` ${longDate(date)}`),
      ),
  ];
}

/** Where there is no room for words: how many, and of what kind. */
function dots(occurrences) {
  if (occurrences.length === 0) return null;
  return h(
    'div',
    {class: 'dots', 'aria-hidden': 'true'},
    occurrences.slice(0, 6).map(({base}) => h('i', {class: base})),
    occurrences.length > 6 && h('small', null, `+${occurrences.length - 6}`),
  );
}
