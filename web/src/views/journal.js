// What happened, the newest first, with filters; from a row to its event.

import * as api from '../api.js';
import {wall} from '../dates.js';
import {button, h, icon, replace} from '../dom.js';
import {house} from '../house.js';
import {hasText, shortDate, t, timeText} from '../locale.js';
import {failed} from '../notices.js';

const KINDS = ['fired', 'held', 'missed', 'action', 'change', 'clock', 'controller'];
const PAGE = 100;
const WAIT_MS = 200;
const TRIGGERS = /^(event|push|click)(, (event|push|click))*$/;
const ICONS = {
  fired: 'done',
  held: 'held',
  missed: 'missed',
  action: 'run',
  change: 'events',
  clock: 'clock',
  controller: 'project',
};

export function journal(root, {params}) {
  const wanted = {
    kind: params.getAll('kind').filter((kind) => KINDS.includes(kind)),
    event: params.get('event') ?? '',
    from: params.get('from') ?? '',
    to: params.get('to') ?? '',
    q: params.get('q') ?? '',
  };
  const filters = h('form', {
    class: 'filters',
    role: 'search',
    'aria-label': t('journal.filters'),
    onsubmit: (event) => event.preventDefault(),
  });
  const count = h('p', {class: 'muted', role: 'status'});
  const list = h('ol', {class: 'journal'});
  const more = h('p');
  root.append(h('h1', {tabindex: '-1'}, t('nav.journal')), filters, count, list, more);
  let rows = [];
  let next = null;
  let asked = null;
  let timer = null;

  const eventList = () => [
    ['', t('journal.allEvents')],
    ...[...house.events.values()]
      .sort((a, b) => a.description.localeCompare(b.description))
      .map(({id, description}) => [id, description]),
  ];

  function drawFilters() {
    const options = eventList();
    // What is gone from the schedule is still in the journal.
    if (wanted.event && !house.events.has(Number(wanted.event)))
      options.push([wanted.event, t('journal.event', {id: wanted.event})]);
    const input = (name, type, label) =>
      h(
        'label',
        null,
        label,
        ' ',
        h('input', {
          type,
          value: wanted[name],
          'data-key': name,
          oninput: (event) => {
            wanted[name] = event.target.value;
            changed();
          },
        }),
      );
    replace(
      filters,
      h(
        'fieldset',
        {class: 'line'},
        h('legend', {class: 'unseen'}, t('journal.kinds')),
        KINDS.map((kind) =>
          h(
            'label',
            {class: 'pill'},
            h('input', {
              type: 'checkbox',
              checked: wanted.kind.includes(kind),
              'data-key': `kind-${kind}`,
              onchange: (event) => {
                wanted.kind = KINDS.filter((one) =>
                  one === kind ? event.target.checked : wanted.kind.includes(one),
                );
                changed();
              },
            }),
            h('span', null, t(`kind.${kind}`)),
          ),
        ),
      ),
      h(
        'div',
        {class: 'line'},
        h(
          'label',
          null,
          t('journal.of'),
          ' ',
          h(
            'select',
            {
              'data-key': 'event',
              onchange: (event) => {
                wanted.event = event.target.value;
                changed();
              },
            },
            options.map(([id, label]) =>
              h('option', {value: id, selected: String(id) === wanted.event}, label),
            ),
          ),
        ),
        input('from', 'date', t('journal.from')),
        input('to', 'date', t('journal.to')),
        input('q', 'search', t('journal.text')),
        button(
          t('journal.clear'),
          () => {
            Object.assign(wanted, {kind: [], event: '', from: '', to: '', q: ''});
            drawFilters();
            changed();
          },
          {kind: 'small', 'data-key': 'clear'},
        ),
      ),
    );
  }

  function changed() {
    history.replaceState(null, '', `#/journal${api.query(wanted)}`);
    clearTimeout(timer);
    timer = setTimeout(read, WAIT_MS);
  }

  async function read(before) {
    asked?.abort();
    asked = new AbortController();
    try {
      const answer = await api.get(`/journal${api.query({...wanted, before, limit: PAGE})}`, {
        signal: asked.signal,
      });
      rows = before ? rows.concat(answer.rows) : answer.rows;
      next = answer.next;
      draw();
    } catch (error) {
      failed(error);
    }
  }

  function draw() {
    count.textContent = rows.length
      ? t(next ? 'journal.newest' : 'journal.count', {n: rows.length})
      : t('journal.none');
    let day = null;
    replace(
      list,
      rows.map((row) => {
        const date = wall(row.at).day;
        const head =
          date !== day &&
          h('li', {class: 'daybreak'}, h('h2', null, shortDate(date), ' ', date.slice(0, 4)));
        day = date;
        return [head, line(row)];
      }),
    );
    replace(more, next && button(t('journal.older'), () => read(next), {'data-key': 'older'}));
  }

  function fresh(row) {
    if (!matches(row, wanted)) return;
    // The same row may come again after a gap.
    if (rows.some(({id}) => id === row.id)) return;
    rows = [row, ...rows].sort((a, b) => b.id - a.id);
    draw();
  }

  drawFilters();
  read();
  return {
    title: t('nav.journal'),
    on: {
      journal: fresh,
      replaced: () => read(),
      events: () => {
        if (!filters.contains(document.activeElement)) drawFilters();
      },
    },
    end: () => {
      clearTimeout(timer);
      asked?.abort();
    },
  };
}

/** Whether a row that has just come is one of those that are shown. */
export function matches(row, {kind, event, from, to, q}) {
  if (kind.length && !kind.includes(row.kind)) return false;
  if (event && String(row.event) !== event) return false;
  const {day} = wall(row.at);
  if ((from && day < from) || (to && day > to)) return false;
  return (
    !q || `${row.description ?? ''}\n${row.text ?? ''}`.toLowerCase().includes(q.toLowerCase())
  );
}

function line(row) {
  const {kind, event, description, reason, actor, outcome, text, planned, drawn} = row;
  const here = house.events.has(event);
  // What a firing started has rows of its own.
  const onlyTriggers = kind === 'fired' && TRIGGERS.test(text);
  const why = reason && (hasText(`reason.${reason}`) ? t(`reason.${reason}`) : reason);
  const what = outcome && (hasText(`outcome.${outcome}`) ? t(`outcome.${outcome}`) : outcome);
  const details = [
    planned && t('journal.planned', {time: timeText(wall(planned).minutes)}),
    drawn && t('journal.drawn', {n: drawn > 0 ? `+${drawn}` : `−${-drawn}`}),
    actor && (actor === 'local' ? t('journal.local') : t('journal.by', {actor})),
  ]
    .filter(Boolean)
    .join(', ');
  return h(
    'li',
    {class: `entry ${kind} ${outcome && outcome !== 'done' ? 'notdone' : ''}`},
    h(
      'time',
      {datetime: row.at},
      timeText(wall(row.at).minutes),
      h('small', null, `:${String(wall(row.at).seconds).padStart(2, '0')}`),
    ),
    icon(ICONS[kind] ?? 'events'),
    h(
      'div',
      {class: 'what'},
      h(
        'span',
        {class: 'headline'},
        h('span', {class: `kind ${kind}`}, t(`kind.${kind}`)),
        event
          ? [
              ' ',
              here
                ? h(
                    'a',
                    {href: `#/events/${event}`, 'data-key': `row-${row.id}`},
                    description || t('journal.event', {id: event}),
                  )
                : h('span', null, description || t('journal.event', {id: event})),
            ]
          : null,
        (what || why) && [
          event ? ': ' : ' ',
          h('span', {class: 'why'}, [what, why].filter(Boolean).join(', ')),
        ],
      ),
      details && h('small', null, details),
      text && !onlyTriggers && h('p', {class: 'text'}, text),
      (row.before || row.after) && difference(row),
    ),
  );
}

/** What a change changed: before and after, where there is either. */
function difference({before, after}) {
  const shown = (value) => (typeof value === 'string' ? value : JSON.stringify(value, null, 1));
  return h(
    'details',
    null,
    h('summary', null, t('journal.change')),
    h(
      'div',
      {class: 'diff'},
      before &&
        h(
          'div',
          null,
          h('h3', null, t('journal.before')),
          h('pre', {tabindex: '0'}, shown(before)),
        ),
      after &&
        h('div', null, h('h3', null, t('journal.after')), h('pre', {tabindex: '0'}, shown(after))),
    ),
  );
}
