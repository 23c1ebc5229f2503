// Sunrise and sunset over a year as the house's clocks show them, and chosen events among them.

import * as api from '../api.js';
import {daysBetween, wall, yearOf} from '../dates.js';
import {h, iconButton, replace} from '../dom.js';
import {house} from '../house.js';
import {dateText, isolated, longDate, t, timeText} from '../locale.js';
import {failed} from '../notices.js';
import {indexAt, picture, xOf} from './sunplot.js';

const COLOURS = 5;
const FIRST_YEAR = 1971;
const LAST_YEAR = 9998;

export function sun(root, {params}) {
  const within = (wanted) => Math.max(FIRST_YEAR, Math.min(LAST_YEAR, wanted));
  let year = within(Math.trunc(Number(params.get('year'))) || yearOf(house.date()));
  const chosen = new Set(
    (params.get('events') ?? '')
      .split(',')
      .map(Number)
      .filter((id) => house.events.has(id)),
  );
  const title = h('h1', {tabindex: '-1'});
  const plot = h('div', {class: 'plot', tabindex: '0', role: 'group', 'aria-label': t('nav.sun')});
  const slider = h('input', {
    type: 'range',
    min: 0,
    'aria-label': t('sun.day'),
    oninput: () => point(Number(slider.value)),
  });
  const readout = h('output', {class: 'readout', 'aria-live': 'polite'});
  const legend = h('div', {class: 'legend'});
  const changes = h('p', {class: 'muted'});
  const table = h('details', {class: 'card'});
  const width = matchMedia('(max-width: 40em)');
  let days = [];
  let traces = [];

  const step = (by) => {
    year = within(year + by);
    history.replaceState(null, '', `#/sun${api.query({year, events: [...chosen].join(',')})}`);
    show();
  };
  root.append(
    h(
      'div',
      {class: 'bar'},
      title,
      h(
        'div',
        {class: 'row'},
        iconButton(t('sun.previous'), 'previous', () => step(-1)),
        iconButton(t('sun.next'), 'next', () => step(1)),
      ),
    ),
    h('p', {class: 'place muted'}),
    plot,
    h('div', {class: 'slide'}, slider),
    readout,
    changes,
    legend,
    table,
  );

  async function show() {
    title.textContent = t('sun.title', {year});
    root.querySelector('.place').textContent = placeAndZone();
    for (const id of chosen) if (!house.events.has(id)) chosen.delete(id);
    try {
      const [ofYear, ...lists] = await Promise.all([
        house.sunOfYear(year),
        ...[...chosen].map((event) => api.occurrences(`${year}-01-01`, `${year}-12-31`, {event})),
      ]);
      days = [...ofYear.values()];
      traces = [...chosen].map((id, index) => ({
        id,
        colour: index % COLOURS,
        occurrences: lists[index],
      }));
      draw();
    } catch (error) {
      failed(error);
    }
  }

  function draw() {
    slider.max = days.length - 1;
    const now = daysBetween(days[0].date, house.date());
    if (!slider.dataset.moved) slider.value = now >= 0 && now < days.length ? now : 0;
    replace(plot, picture(days, traces, width.matches));
    changes.textContent = changesText(days);
    replace(table, h('summary', null, t('sun.table')), asTable(days));
    drawLegend();
    point(Number(slider.value), true);
  }

  function drawLegend() {
    const others = [...house.events.values()].filter(({id}) => !chosen.has(id));
    const pick = h(
      'select',
      {
        'aria-label': t('sun.choose'),
        'data-key': 'choose',
        onchange: () => {
          chosen.add(Number(pick.value));
          step(0);
        },
      },
      h('option', {value: ''}, t('sun.choose')),
      others.map(({id, description}) => h('option', {value: id}, description)),
    );
    replace(
      legend,
      traces.map(({id, colour, occurrences}) =>
        h(
          'span',
          {class: `trace colour${colour}`},
          h('i'),
          h('bdi', null, house.eventName(id)),
          ` (${t('sun.times', {n: occurrences.length})})`,
          iconButton(t('sun.without', {description: house.eventName(id)}), 'missed', () => {
            chosen.delete(id);
            step(0);
          }),
        ),
      ),
      others.length > 0 && pick,
    );
  }

  function point(index, quiet = false) {
    const day = days[index];
    if (!day) return;
    if (!quiet) slider.dataset.moved = '1';
    const x = xOf(index, days.length);
    const line = plot.querySelector('.pointer');
    line?.setAttribute('x1', x);
    line?.setAttribute('x2', x);
    const own = traces.flatMap(({id, occurrences}) =>
      occurrences
        .filter(({date}) => date === day.date)
        .map(({time}) => `${isolated(house.eventName(id))} ${timeText(wall(time).minutes)}`),
    );
    readout.textContent = [dayText(day), ...own].join(' · ');
    slider.setAttribute('aria-valuetext', readout.textContent);
  }

  plot.addEventListener('pointermove', (event) => {
    const box = plot.querySelector('svg')?.getBoundingClientRect();
    if (!box) return;
    const index = indexAt((event.clientX - box.left) / box.width, days.length);
    if (index < 0 || index >= days.length) return;
    slider.value = index;
    point(index);
  });
  const redraw = () => days.length && draw();
  width.addEventListener('change', redraw);
  show();
  return {
    title: t('nav.sun'),
    on: {project: show, events: show},
    end: () => width.removeEventListener('change', redraw),
  };
}

function placeAndZone() {
  const {place, timezone} = house.project;
  return t('sun.place', {
    latitude: place.latitude,
    longitude: place.longitude,
    zone: timezone.name,
  });
}

/** "21 Nov 2026: sunrise 7:33, sunset 16:02, 8 h 29 min of daylight" */
function dayText(day) {
  const date = longDate(day.date);
  if (day.polar) return t(`sun.polar.${day.polar}`, {date});
  const [rise, set] = [wall(day.sunrise).minutes, wall(day.sunset).minutes];
  const length = (set - rise + 1440) % 1440;
  return t('sun.of', {
    date,
    rise: timeText(rise),
    set: timeText(set),
    h: Math.floor(length / 60),
    m: length % 60,
  });
}

/** What there is to say about the year: clock changes and polar days. */
function changesText(days) {
  const parts = [];
  days.forEach((day, index) => {
    const change = index ? day.offset - days[index - 1].offset : 0;
    if (change)
      parts.push(
        `${dateText(day.date)}: ${t(change > 0 ? 'clocks.forward' : 'clocks.back', {n: Math.abs(change)})}`,
      );
  });
  for (const kind of ['day', 'night']) {
    const count = days.filter(({polar}) => polar === kind).length;
    if (count) parts.push(t(`sun.polarDays.${kind}`, {n: count}));
  }
  return parts.join(' · ') || t('sun.noChanges');
}

/** The same in numbers: the 1st and 15th of each month. */
function asTable(days) {
  const rows = days.filter(({date}) => ['01', '15'].includes(date.slice(8)));
  return h(
    'table',
    {class: 'plain'},
    h(
      'thead',
      null,
      h(
        'tr',
        null,
        ['date', 'rise', 'set', 'offset'].map((key) => h('th', {scope: 'col'}, t(`sun.${key}`))),
      ),
    ),
    h(
      'tbody',
      null,
      rows.map((day) =>
        h(
          'tr',
          null,
          h('th', {scope: 'row'}, dateText(day.date)),
          day.polar
            ? h('td', {colspan: 2}, t(`sun.polarShort.${day.polar}`))
            : [day.sunrise, day.sunset].map((time) => h('td', null, timeText(wall(time).minutes))),
          h(
            'td',
            null,
            `${day.offset / 60 >= 0 ? '+' : '−'}${Math.floor(Math.abs(day.offset) / 60)}:${String(Math.abs(day.offset) % 60).padStart(2, '0')}`,
          ),
        ),
      ),
    ),
  );
}
