// Today: what fired, what is next, what was held back or missed and why.

import * as api from '../api.js';
import {addDays, wall} from '../dates.js';
import {button, h, icon, iconButton, replace, s} from '../dom.js';
import {house} from '../house.js';
import {durationText, longDate, shortDate, t, timeText} from '../locale.js';
import {sentence} from '../sentence.js';
import {baseIcon, deedsOf, holdsText, momentText, nextOf, showEvent} from '../sheet.js';

const SOON_DAYS = 7;
const SOON_ROWS = 6;
/** How high dots stand in the band, and what keeps two apart. */
const LEVELS = ['62%', '36%', '87%'];
const DOT_MINUTES = 16;

export function today(root) {
  const next = h('section', {class: 'card next', 'aria-labelledby': 'next-title'});
  const band = h('div', {class: 'band'});
  const list = h('ol', {class: 'timeline'});
  const soon = h('ol', {class: 'timeline'});
  const count = h('p', {class: 'muted'});
  root.append(
    h('h1', {tabindex: '-1'}, t('today.title')),
    h('p', {class: 'date'}),
    next,
    h(
      'section',
      {'aria-labelledby': 'list-title'},
      h('h2', {id: 'list-title'}, t('today.list')),
      count,
      band,
      list,
    ),
    h(
      'section',
      {'aria-labelledby': 'soon-title'},
      h('h2', {id: 'soon-title'}, t('today.soon')),
      soon,
    ),
  );

  const draw = () => {
    root.querySelector('.date').textContent = longDate(house.date());
    drawNext(next);
    replace(band, dayBand());
    replace(list, house.today.occurrences.map(row));
    count.textContent = countsText();
  };
  const drawSoon = async () => {
    const from = addDays(house.date(), 1);
    const {occurrences} = await api.get(
      `/occurrences${api.query({
        from,
        to: addDays(from, SOON_DAYS - 1),
        limit: 1000,
      })}`,
    );
    occurrences.sort((a, b) => Date.parse(a.time) - Date.parse(b.time));
    replace(
      soon,
      occurrences.slice(0, SOON_ROWS).map(soonRow),
      occurrences.length === 0 && h('li', {class: 'empty'}, t('today.noneSoon')),
    );
  };
  let shownDate = house.date();
  const tick = () => {
    drawCountdown(next);
    if (house.date() === shownDate) return;
    shownDate = house.date();
    draw();
    drawSoon().catch(() => {});
  };
  const timer = setInterval(tick, 1000);
  draw();
  drawSoon().catch(() => {});
  return {
    title: t('today.title'),
    on: {
      today: draw,
      project: () => {
        draw();
        drawSoon().catch(() => {});
      },
      events: () => {
        draw();
        drawSoon().catch(() => {});
      },
    },
    end: () => clearInterval(timer),
  };
}

/** When an occurrence will be or was, as well as it is known. */
const whenOf = (occurrence) => occurrence.due ?? occurrence.planned;

function nextUp() {
  const pending = house.today.occurrences.filter(
    ({state, event}) => state === 'pending' && house.events.has(event),
  );
  if (pending.length) {
    const first = pending.reduce((a, b) => (Date.parse(whenOf(b)) < Date.parse(whenOf(a)) ? b : a));
    return {event: house.events.get(first.event), at: whenOf(first)};
  }
  const coming = [...house.events.values()]
    .filter(({next}) => next)
    .sort((a, b) => Date.parse(a.next) - Date.parse(b.next))[0];
  return coming && {event: coming, at: nextOf(coming)};
}

function drawNext(card) {
  const coming = nextUp();
  const title = h('h2', {id: 'next-title'}, t('today.next'));
  if (!coming) {
    return replace(
      card,
      title,
      h('p', {class: 'lead'}, t('today.nothingNext')),
      h('a', {class: 'button primary', href: '#/events/new'}, icon('plus'), t('new')),
    );
  }
  const {event, at} = coming;
  const holds = holdsText(event);
  replace(
    card,
    title,
    h(
      'p',
      {class: 'name'},
      h('a', {href: `#/events/${event.id}`, 'data-key': 'next-name'}, event.description),
    ),
    h('p', {class: 'lead'}, icon(baseIcon(event.time?.base)), ' ', sentence(event, house.date())),
    h(
      'p',
      {class: 'count', 'data-at': at},
      h('time', {datetime: at}, momentText(at)),
      h('span', {class: 'countdown', role: 'timer'}),
    ),
    holds && h('p', {class: 'held'}, icon('held'), ' ', holds),
    h(
      'div',
      {class: 'row'},
      deedsOf(event).map(([label, drawing, deed]) =>
        button(label, deed, {drawing, 'data-key': `next-${drawing}-${label}`}),
      ),
    ),
  );
  drawCountdown(card);
}

function drawCountdown(card) {
  const line = card.querySelector('[data-at]');
  if (!line) return;
  const seconds = house.secondsUntil(line.dataset.at);
  line.querySelector('.countdown').textContent =
    seconds > 0 ? t('today.in', {duration: durationText(seconds)}) : t('today.now');
}

function countsText() {
  const counts = {fired: 0, pending: 0, held: 0, missed: 0};
  for (const {state} of house.today.occurrences) ++counts[state];
  const parts = Object.entries(counts)
    .filter(([, n]) => n)
    .map(([state, n]) => t(`count.${state}`, {n}));
  return parts.join(' · ') || t('today.none');
}

function row(occurrence) {
  const {event: id, description, base, state, planned, drawn} = occurrence;
  const event = house.events.get(id);
  const {minutes} = wall(whenOf(occurrence));
  const key = `today-${id}-${planned}`;
  const holds = event && state === 'pending' ? holdsText(event) : '';
  const spread = event?.time?.spread;
  return h(
    'li',
    {class: `occurrence ${state}`},
    h('time', {datetime: whenOf(occurrence)}, timeText(minutes)),
    icon(baseIcon(base)),
    h(
      'div',
      {class: 'what'},
      event
        ? h(
            'button',
            {type: 'button', class: 'link', 'data-key': key, onclick: () => showEvent(id)},
            description,
          )
        : h('span', null, description),
      drawn == null &&
        spread > 0 &&
        state === 'pending' &&
        h('small', null, t('today.undrawn', {n: spread})),
      drawn
        ? h(
            'small',
            null,
            t(drawn < 0 ? 'today.drawnEarly' : 'today.drawnLate', {
              n: Math.abs(drawn),
              time: timeText(wall(planned).minutes),
            }),
          )
        : null,
      holds && h('small', {class: 'held'}, holds),
    ),
    h('span', {class: `state ${state}`}, icon(state), h('span', null, stateText(occurrence))),
    event &&
      state === 'pending' &&
      h(
        'span',
        {class: 'quick'},
        deedsOf(event).map(([label, drawing, deed]) =>
          iconButton(t('deed.on', {deed: label, description}), drawing, deed, {
            'data-key': `${key}-${drawing}`,
          }),
        ),
      ),
  );
}

/** "held back: paused" */
function stateText({state, reason}) {
  if (!reason || reason === 'timer' || state === 'pending') return t(`state.${state}`);
  return t('state.because', {state: t(`state.${state}`), reason: t(`reason.${reason}`)});
}

function soonRow({event: id, description, date, time, base}) {
  const {day = date, minutes} = wall(time);
  return h(
    'li',
    {class: 'occurrence'},
    h('time', {datetime: time}, h('small', null, shortDate(day)), timeText(minutes)),
    icon(baseIcon(base)),
    h(
      'div',
      {class: 'what'},
      h(
        'button',
        {
          type: 'button',
          class: 'link',
          'data-key': `soon-${id}-${date}`,
          onclick: () => showEvent(id, {occurrence: {day, minutes}}),
        },
        description,
      ),
    ),
  );
}

/** Where each stands in the band, so that none hides another as long as there is room. */
function stacked(occurrences) {
  const last = LEVELS.map(() => -Infinity);
  return occurrences
    .map((one) => ({state: one.state, minutes: wall(whenOf(one)).minutes}))
    .sort((a, b) => a.minutes - b.minutes)
    .map((dot) => {
      const free = last.findIndex((minutes) => dot.minutes - minutes >= DOT_MINUTES);
      const level = free < 0 ? last.indexOf(Math.min(...last)) : free;
      last[level] = dot.minutes;
      return {...dot, level};
    });
}

/** The day from midnight to midnight: light by the sun, now, and what occurs. */
function dayBand() {
  const x = (minutes) => `${((minutes / 1440) * 100).toFixed(2)}%`;
  const sun = house.sun;
  const light = [0, 1440];
  if (sun && !sun.polar) light.splice(0, 2, wall(sun.sunrise).minutes, wall(sun.sunset).minutes);
  const dark = sun?.polar === 'night';
  const now = house.wallNow().minutes;
  return s(
    'svg',
    {class: 'dayband', role: 'img', 'aria-label': t('today.band')},
    s('rect', {class: 'night', width: '100%', height: '100%', rx: 4}),
    !dark &&
      light[0] < light[1] &&
      s('rect', {class: 'light', x: x(light[0]), width: x(light[1] - light[0]), height: '100%'}),
    [6, 12, 18].map((hour) => [
      s('line', {class: 'hour', x1: x(hour * 60), x2: x(hour * 60), y1: 0, y2: '100%'}),
      s('text', {x: x(hour * 60), dx: 3, y: 11}, timeText(hour * 60)),
    ]),
    stacked(house.today.occurrences).map(({state, minutes, level}) =>
      s('circle', {class: `dot ${state}`, cx: x(minutes), cy: LEVELS[level], r: 5}),
    ),
    s('line', {class: 'now', x1: x(now), x2: x(now), y1: 0, y2: '100%'}),
  );
}
