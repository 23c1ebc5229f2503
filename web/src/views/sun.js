// Sunrise and sunset over a year as the house's clocks show them, and chosen events among them.

import * as api from '../api.js';
import {daysBetween, wall, yearOf} from '../dates.js';
import {h, iconButton, replace, s} from '../dom.js';
import {house} from '../house.js';
import {dateText, longDate, monthName, t, timeText} from '../locale.js';
import {failed} from '../notices.js';

const WIDE = 1000;
const HIGH = 460;
const LEFT = 52;
const TOP = 8;
const FOOT = 26;
const COLOURS = 5;

export function sun(root, {params}) {
  let year = Number(params.get('year')) || yearOf(house.date());
  const chosen = new Set((params.get('events') ?? '').split(',').map(Number).filter((id) => house.events.has(id)));
  const title = h('h1', {tabindex: '-1'});
  const plot = h('div', {class: 'plot', tabindex: '0', role: 'group', 'aria-label': t('nav.sun')});
  const slider = h('input', {type: 'range', min: 0, 'aria-label': t('sun.day'), oninput: () => point(Number(slider.value))});
  const readout = h('output', {class: 'readout', 'aria-live': 'polite'});
  const legend = h('div', {class: 'legend'});
  const changes = h('p', {class: 'muted'});
  const table = h('details', {class: 'card'});
  let days = [];
  let traces = [];

  const step = (by) => {
    year = Math.max(1971, Math.min(9998, year + by));
    history.replaceState(null, '', `#/sun${api.query({year, events: [...chosen].join(',')})}`);
    show();
  };
  root.append(h('div', {class: 'bar'}, title, h('div', {class: 'row'},
    iconButton(t('sun.previous'), 'previous', () => step(-1)), iconButton(t('sun.next'), 'next', () => step(1)))),
  h('p', {class: 'place muted'}), plot, h('div', {class: 'slide'}, slider), readout, changes, legend, table);

  async function show() {
    title.textContent = t('sun.title', {year});
    root.querySelector('.place').textContent = placeAndZone();
    try {
      const [ofYear, ...lists] = await Promise.all([house.sunOfYear(year),
        ...[...chosen].map((event) => api.occurrences(`${year}-01-01`, `${year}-12-31`, {event}))]);
      days = [...ofYear.values()];
      traces = [...chosen].map((id, index) => ({id, colour: index % COLOURS, occurrences: lists[index]}));
      draw();
    } catch (error) {
      failed(error);
    }
  }

  function draw() {
    slider.max = days.length - 1;
    const now = daysBetween(days[0].date, house.date());
    if (!slider.dataset.moved) slider.value = now >= 0 && now < days.length ? now : 0;
    replace(plot, picture(days, traces));
    changes.textContent = changesText(days);
    replace(table, h('summary', null, t('sun.table')), asTable(days));
    drawLegend();
    point(Number(slider.value), true);
    // Where it is wider than the screen, today is what one wants to see.
    plot.scrollLeft = Number(slider.value) / days.length * plot.scrollWidth - plot.clientWidth / 2;
  }

  function drawLegend() {
    const others = [...house.events.values()].filter(({id}) => !chosen.has(id));
    const pick = h('select', {'aria-label': t('sun.choose'), 'data-key': 'choose', onchange: () => {
      chosen.add(Number(pick.value));
      step(0);
    }}, h('option', {value: ''}, t('sun.choose')), others.map(({id, description}) => h('option', {value: id}, description)));
    replace(legend, traces.map(({id, colour, occurrences}) => h('span', {class: `trace colour${colour}`},
      h('i'), `${house.eventName(id)} (${t('sun.times', {n: occurrences.length})})`,
      iconButton(t('sun.without', {description: house.eventName(id)}), 'missed', () => {
        chosen.delete(id);
        step(0);
      }))), others.length > 0 && pick);
  }

  function point(index, quiet = false) {
    const day = days[index];
    if (!day) return;
    if (!quiet) slider.dataset.moved = '1';
    const x = xOf(index, days.length);
    const line = plot.querySelector('.pointer');
    line?.setAttribute('x1', x);
    line?.setAttribute('x2', x);
    const own = traces.flatMap(({id, occurrences}) => occurrences.filter(({date}) => date === day.date)
      .map(({time}) => `${house.eventName(id)} ${timeText(wall(time).minutes)}`));
    readout.textContent = [dayText(day), ...own].join(' · ');
    slider.setAttribute('aria-valuetext', readout.textContent);
  }

  plot.addEventListener('pointermove', (event) => {
    const box = plot.querySelector('svg')?.getBoundingClientRect();
    if (!box) return;
    const x = (event.clientX - box.left) / box.width * WIDE;
    const index = Math.floor((x - LEFT) / (WIDE - LEFT) * days.length);
    if (index < 0 || index >= days.length) return;
    slider.value = index;
    point(index);
  });
  show();
  return {title: t('nav.sun'), on: {project: show, events: show}};
}

function placeAndZone() {
  const {place, timezone} = house.project;
  return t('sun.place', {latitude: place.latitude, longitude: place.longitude, zone: timezone.name});
}

/** "21 Nov 2026: sunrise 7:33, sunset 16:02, 8 h 29 min of daylight" */
function dayText(day) {
  const date = longDate(day.date);
  if (day.polar) return t(`sun.polar.${day.polar}`, {date});
  const [rise, set] = [wall(day.sunrise).minutes, wall(day.sunset).minutes];
  const length = ((set - rise) + 1440) % 1440;
  return t('sun.of', {date, rise: timeText(rise), set: timeText(set), h: Math.floor(length / 60), m: length % 60});
}

/** What there is to say about the year: clock changes and polar days. */
function changesText(days) {
  const parts = [];
  days.forEach((day, index) => {
    const change = index ? day.offset - days[index - 1].offset : 0;
    if (change) parts.push(`${dateText(day.date)}: ${t(change > 0 ? 'clocks.forward' : 'clocks.back', {n: Math.abs(change)})}`);
  });
  for (const kind of ['day', 'night']) {
    const count = days.filter(({polar}) => polar === kind).length;
    if (count) parts.push(t(`sun.polarDays.${kind}`, {n: count}));
  }
  return parts.join(' · ') || t('sun.noChanges');
}

const xOf = (index, count) => LEFT + (index + 0.5) / count * (WIDE - LEFT);
const yOf = (minutes) => TOP + (1 - minutes / 1440) * (HIGH - TOP - FOOT);

function picture(days, traces) {
  const count = days.length;
  const bottom = yOf(0);
  const today = daysBetween(days[0].date, house.date());
  return s('svg', {viewBox: `0 0 ${WIDE} ${HIGH}`, role: 'img', 'aria-label': t('sun.picture', {year: yearOf(days[0].date)})},
    s('rect', {class: 'night', x: LEFT, y: TOP, width: WIDE - LEFT, height: bottom - TOP}),
    lightFields(days),
    s('g', {class: 'grid'}, [0, 3, 6, 9, 12, 15, 18, 21, 24].map((hour) => [
      s('line', {x1: LEFT, x2: WIDE, y1: yOf(hour * 60), y2: yOf(hour * 60)}),
      s('text', {x: LEFT - 6, y: yOf(hour * 60) + 4, 'text-anchor': 'end'}, hour === 24 ? '' : timeText(hour * 60)),
    ]), months(days)),
    ['sunrise', 'sunset'].map((name) => [s('path', {class: `curve ${name}`, d: curve(days, name)}), nameOn(days, name)]),
    traces.map(({colour, occurrences}) => s('g', {class: `trace colour${colour}`}, occurrences.map(({date, time}) =>
      s('circle', {cx: xOf(daysBetween(days[0].date, date), count).toFixed(1), cy: yOf(wall(time).minutes).toFixed(1), r: 2.6})))),
    today >= 0 && today < count && s('line', {class: 'today', x1: xOf(today, count), x2: xOf(today, count), y1: TOP, y2: bottom}),
    s('line', {class: 'pointer', x1: -9, x2: -9, y1: TOP, y2: bottom}));
}

/** The daylight as one field a run of days; over midnight it is in two pieces. */
function lightFields(days) {
  const step = (WIDE - LEFT) / days.length;
  const fields = [];
  days.forEach((day, index) => {
    const add = (from, to) => fields.push(
      `M${(LEFT + index * step).toFixed(2)} ${yOf(from).toFixed(1)}h${(step + 0.3).toFixed(2)}V${yOf(to).toFixed(1)}h${(-step - 0.3).toFixed(2)}z`);
    if (day.polar === 'night') return;
    if (day.polar === 'day') return add(0, 1440);
    const [rise, set] = [wall(day.sunrise).minutes, wall(day.sunset).minutes];
    if (rise < set) return add(rise, set);
    add(0, set);
    add(rise, 1440);
  });
  return s('path', {class: 'light', d: fields.join('')});
}

/** Says which curve it is, in February, where both are far from the clock changes. */
function nameOn(days, name) {
  const index = 45;
  if (days[index].polar) return null;
  const above = name === 'sunrise' ? 20 : -12;
  return s('text', {class: `name ${name}`, x: xOf(index, days.length), y: yOf(wall(days[index][name]).minutes) + above}, t(`say.${name}`));
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
    return [s('line', {x1: x, x2: x, y1: TOP, y2: yOf(0)}),
      s('text', {x: x + 4, y: HIGH - 8}, monthName(month, 'short'))];
  });
}

/** The same in numbers: the 1st and 15th of each month. */
function asTable(days) {
  const rows = days.filter(({date}) => ['01', '15'].includes(date.slice(8)));
  return h('table', {class: 'plain'},
    h('thead', null, h('tr', null, ['date', 'rise', 'set', 'offset'].map((key) => h('th', {scope: 'col'}, t(`sun.${key}`))))),
    h('tbody', null, rows.map((day) => h('tr', null, h('th', {scope: 'row'}, dateText(day.date)),
      day.polar ? h('td', {colspan: 2}, t(`sun.polarShort.${day.polar}`))
        : [day.sunrise, day.sunset].map((time) => h('td', null, timeText(wall(time).minutes))),
      h('td', null, `${day.offset / 60 >= 0 ? '+' : '−'}${Math.floor(Math.abs(day.offset) / 60)}:${String(Math.abs(day.offset) % 60).padStart(2, '0')}`)))));
}
