// All events, to find one: by its name, in the order of what comes next.

import {button, h, icon, iconButton, replace} from '../dom.js';
import {house} from '../house.js';
import {t} from '../locale.js';
import {sentence} from '../sentence.js';
import {baseIcon, deedsOf, holdsText, momentText, nextOf, showEvent} from '../sheet.js';

const ROWS = 100;

export function events(root) {
  let shown = ROWS;
  let order = 'next';
  const search = h('input', {
    type: 'search',
    'aria-label': t('events.search'),
    placeholder: t('events.search'),
    oninput: () => {
      shown = ROWS;
      draw();
    },
  });
  const sorts = h('div', {class: 'segments', role: 'group', 'aria-label': t('events.order')});
  const count = h('p', {class: 'muted', role: 'status'});
  const list = h('ul', {class: 'events'});
  const more = h('p');
  root.append(
    h(
      'div',
      {class: 'bar'},
      h('h1', {tabindex: '-1'}, t('nav.events')),
      search,
      sorts,
      h('a', {class: 'button primary', href: '#/events/new'}, icon('plus'), t('new')),
    ),
    count,
    list,
    more,
  );

  const orders = {
    next: (a, b) =>
      Date.parse(a.next ?? '9999-12-31') - Date.parse(b.next ?? '9999-12-31') || a.id - b.id,
    name: (a, b) => a.description.localeCompare(b.description),
  };

  function draw() {
    replace(
      sorts,
      Object.keys(orders).map((name) =>
        h(
          'button',
          {
            type: 'button',
            'data-key': `order-${name}`,
            'aria-pressed': String(name === order),
            onclick: () => {
              order = name;
              draw();
            },
          },
          t(`events.by.${name}`),
        ),
      ),
    );
    const wanted = search.value.trim().toLowerCase();
    const found = [...house.events.values()]
      .filter(({description}) => description.toLowerCase().includes(wanted))
      .sort(orders[order]);
    count.textContent = t('events.count', {n: found.length, all: house.events.size});
    replace(list, found.slice(0, shown).map(row));
    replace(
      more,
      found.length > shown &&
        button(t('calendar.more', {n: found.length - shown}), () => {
          shown += ROWS;
          draw();
        }),
      house.events.size === 0 && t('events.none'),
    );
  }
  draw();
  return {title: t('nav.events'), on: {events: draw, today: draw, project: draw}};
}

function row(event) {
  const {id, description, next, programming} = event;
  const holds = holdsText(event);
  return h(
    'li',
    {class: next ? '' : 'over'},
    icon(baseIcon(event.time?.base)),
    h(
      'div',
      {class: 'what'},
      h('a', {href: `#/events/${id}`, 'data-key': `event-${id}`}, description),
      h('small', null, sentence(event, house.date())),
      holds && h('small', {class: 'held'}, holds),
    ),
    h(
      'div',
      {class: 'when'},
      next ? momentText(nextOf(event)) : t('events.over'),
      h('small', null, t('events.actions', {n: programming?.actions ?? 0})),
    ),
    h(
      'span',
      {class: 'quick'},
      deedsOf(event).map(([label, drawing, deed]) =>
        iconButton(t('deed.on', {deed: label, description}), drawing, deed, {
          'data-key': `event-${id}-${drawing}-${label}`,
        }),
      ),
    ),
    iconButton(t('deed.on', {deed: t('more'), description}), 'more', () => showEvent(id), {
      'data-key': `event-${id}-more`,
    }),
  );
}
