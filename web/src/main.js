// The page: its head, the way between its views, and what keeps them up with the house.

import * as api from './api.js';
import {offsetOf, offsetText, wall} from './dates.js';
import {button, h, icon, replace} from './dom.js';
import {house} from './house.js';
import {longDate, onSettings, readSettings, t, timeText} from './locale.js';
import {dialog, failed, reached, undo} from './notices.js';
import {placeText} from './place.js';
import {today} from './views/today.js';

const NAV = ['today', 'calendar', 'events', 'sun', 'journal', 'project'];
const TOPICS = ['project', 'events', 'today', 'journal', 'saving', 'connection', 'replaced'];
// Today comes with the page; the others are fetched when they are wanted, or when there is time.
const ROUTES = [
  [/^today$/, async () => today],
  [/^calendar$/, async () => (await import('./views/calendar.js')).calendar],
  [/^events$/, async () => (await import('./views/events.js')).events],
  [/^events\/new$/, async () => (await import('./views/event.js')).newEvent],
  [/^events\/(\d+)$/, async () => (await import('./views/event.js')).event],
  [
    /^events\/(\d+)\/programming$/,
    async () => (await import('./views/programming.js')).programming,
  ],
  [/^sun$/, async () => (await import('./views/sun.js')).sun],
  [/^journal$/, async () => (await import('./views/journal.js')).journal],
  [/^project$/, async () => (await import('./views/project.js')).project],
];

const START_AGAIN_MS = 5000;

const main = document.getElementById('main');
let view = null;
let shownHash = null;
let wantedRoute = null;
/** The view that is wanted could not be fetched. */
let unfetched = false;

/** "#/calendar?view=week" as its view, path and parameters. */
function routeOf(hash) {
  const [path, search = ''] = hash.replace(/^#\/?/, '').split('?');
  for (const [pattern, load] of ROUTES) {
    const parts = pattern.exec(path);
    if (parts) return {load, path, id: Number(parts[1]), params: new URLSearchParams(search)};
  }
  return {load: ROUTES[0][1], path: 'today', params: new URLSearchParams()};
}

async function navigate() {
  const wanted = location.hash;
  if (view?.leaves && !(await view.leaves())) return history.replaceState(null, '', shownHash);
  shownHash = wanted;
  await show(true);
}

async function show(focus) {
  const route = routeOf(location.hash);
  wantedRoute = route;
  const make = await route.load().catch(() => {
    unfetched = true;
    throw new api.ApiError(0, {detail: t('error.offline')});
  });
  if (route !== wantedRoute) return; // Somebody was quicker than the network.
  unfetched = false;
  view?.end?.();
  main.replaceChildren();
  view = make(main, route);
  document.title = `${view.title} – ${house.name()}`;
  drawNav(route.path.split('/')[0]);
  if (focus && !view.focused) {
    main.querySelector('h1')?.focus({preventScroll: true});
    scrollTo(0, 0);
  }
}

/** The controller is back. A browser may have noted for good that a view cannot be had. */
async function fetchAgain() {
  if (!unfetched) return;
  await show(true).catch((error) => {
    if (unfetched) location.reload();
    else throw error;
  });
}

function drawNav(current) {
  replace(
    document.getElementById('nav'),
    NAV.map((name) =>
      h(
        'a',
        {href: `#/${name}`, 'data-key': name, 'aria-current': name === current ? 'page' : null},
        icon(name),
        h('span', null, t(`nav.${name}`)),
      ),
    ),
  );
}

/** What a wrong zone or place would show in. */
function drawHead() {
  const {place, timezone, away_until: away} = house.project;
  document.getElementById('name').textContent = house.name();
  const {sun: ofDay} = house;
  const sunText = ofDay?.polar
    ? [h('span', null, t(`head.polar.${ofDay.polar}`))]
    : ofDay && [
        h(
          'span',
          {class: 'rise'},
          icon('sunrise'),
          h('span', {class: 'unseen'}, t('say.sunrise')),
          ' ',
          timeText(wall(ofDay.sunrise).minutes),
        ),
        h(
          'span',
          {class: 'set'},
          icon('sunset'),
          h('span', {class: 'unseen'}, t('say.sunset')),
          ' ',
          timeText(wall(ofDay.sunset).minutes),
        ),
      ];
  replace(
    document.getElementById('facts'),
    h('span', {class: 'now'}, h('time', {id: 'clock'})),
    h('span', {class: 'zone'}, `${timezone.name} · ${offsetText(offsetOf(house.project.now))}`),
    h(
      'a',
      {class: 'place', href: '#/project', 'data-key': 'place'},
      icon('place'),
      placeText(place),
      place.guessed ? ` (${t('head.guessed')})` : '',
    ),
    sunText,
    away > house.date() &&
      h('a', {class: 'away', href: '#/project', 'data-key': 'away'}, t('state.away')),
  );
  tick();
}

function tick() {
  const clock = document.getElementById('clock');
  if (!clock) return;
  const {day, minutes} = house.wallNow();
  const text = timeText(minutes);
  if (clock.textContent === text && clock.dateTime.startsWith(day)) return;
  clock.textContent = text;
  clock.dateTime = `${day}T${text}`;
  clock.title = longDate(day);
}

/** Whether the page can be believed: the connection, and whether changes reach the disk. */
function drawConnection() {
  const {connection, saving} = house;
  const state = document.getElementById('connection');
  state.className = connection;
  replace(state, h('i', {'aria-hidden': 'true'}), h('span', null, t(`connection.${connection}`)));
  const alarm = document.getElementById('alarm');
  const texts = [
    connection === 'lost' && t('alarm.lost'),
    saving.ok === false && t('alarm.saving', {why: saving.why ?? ''}),
  ].filter(Boolean);
  alarm.hidden = texts.length === 0;
  if (alarm.textContent !== texts.join(' ')) alarm.textContent = texts.join(' ');
}

const askForToken = () =>
  dialog(
    t('token.title'),
    (close) => {
      const input = h('input', {
        type: 'password',
        autocomplete: 'off',
        autofocus: true,
        'aria-label': t('token.label'),
      });
      return h(
        'form',
        {
          onsubmit: (submit) => {
            submit.preventDefault();
            close(input.value.trim());
          },
        },
        h('p', null, t('token.text')),
        input,
        h('footer', null, h('button', {class: 'primary'}, t('token.do'))),
      );
    },
    'narrow',
  ).then((text) => {
    if (text) api.setToken(text);
    return text || null;
  });

function keys(event) {
  if (event.defaultPrevented || document.querySelector('dialog[open]')) return;
  const writing = event.target.closest?.('input, textarea, select');
  if ((event.ctrlKey || event.metaKey) && event.key === 'z' && !writing && undo())
    event.preventDefault();
}

function listen() {
  for (const topic of TOPICS) {
    house.addEventListener(topic, ({detail}) => {
      try {
        view?.on[topic]?.(detail);
      } catch (error) {
        failed(error);
      }
    });
  }
  house.addEventListener('project', drawHead);
  house.addEventListener('connection', () => {
    if (house.connection === 'live') {
      reached();
      fetchAgain().catch(failed);
    }
    drawConnection();
  });
  house.addEventListener('saving', drawConnection);
  onSettings(() => {
    drawFrame();
    show(false).catch(failed);
  });
  addEventListener('hashchange', () => navigate().catch(failed));
  addEventListener('keydown', keys);
  // Not by its address: that names the view.
  document.getElementById('skip').addEventListener('click', (click) => {
    click.preventDefault();
    main.focus();
  });
  addEventListener('beforeunload', (leaving) => {
    if (view?.dirty?.()) leaving.preventDefault();
  });
  setInterval(tick, 1000);
}

/** The words of the page's frame, which index.html leaves out. */
function drawFrame() {
  document.getElementById('skip').textContent = t('skipToMain');
  document.getElementById('nav').setAttribute('aria-label', t('nav'));
  document.getElementById('facts').setAttribute('aria-label', t('head'));
  drawHead();
  drawConnection();
}

/** What there is to say where the house cannot be read; what will pass is tried again by itself. */
function drawFailure(error) {
  const waiting = error.kind === 'not-ready';
  const passes = waiting || error.status === 0;
  if (passes) setTimeout(() => start().catch(failed), START_AGAIN_MS);
  const again = button(t('start.again'), () => location.reload(), {
    'kind': 'primary',
    'data-key': 'again',
  });
  replace(
    main,
    h('h1', {tabindex: '-1'}, t(waiting ? 'start.waiting' : 'start.failed')),
    h(
      'div',
      {class: 'card stack'},
      h('p', {class: waiting ? 'lead' : 'error'}, error.message),
      passes && h('p', {class: 'muted'}, t('start.byItself')),
      h('div', {class: 'row'}, again),
    ),
  );
}

async function start() {
  try {
    await house.start();
  } catch (error) {
    return drawFailure(error);
  }
  listen();
  drawFrame();
  shownHash = location.hash;
  await show(false);
  document.documentElement.dataset.ready = '';
  performance.mark('ready');
  // So that the other views are there at once, also while the controller is away.
  (globalThis.requestIdleCallback ?? setTimeout)(() =>
    ROUTES.forEach(([, load]) => load().catch(() => {})),
  );
}

readSettings();
api.onUnauthorized(askForToken);
start().catch(failed);
