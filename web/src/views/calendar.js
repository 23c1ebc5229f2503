// The calendar by month, week, day and as an agenda, of the scheduler's own listing.

import * as api from '../api.js';
import {agenda} from '../calendar/agenda.js';
import {askMove} from '../calendar/askmove.js';
import {dragging} from '../calendar/drag.js';
import {hours} from '../calendar/hours.js';
import {month} from '../calendar/month.js';
import {
  addDays,
  addMonths,
  FIRST_DAY,
  firstOfMonth,
  isDay,
  LAST_DAY,
  startOfWeek,
  wall,
} from '../dates.js';
import {button, h, icon, iconButton, replace} from '../dom.js';
import {house} from '../house.js';
import {firstWeekday, longDate, monthText, rangeText, t} from '../locale.js';
import {failed} from '../notices.js';
import {showEvent} from '../sheet.js';

const KINDS = ['month', 'week', 'day', 'agenda'];
const AGENDA_DAYS = 30;
const KEPT = 'vexalink-calendar';

/** The days that a kind of calendar shows around one. */
function rangeOf(kind, day) {
  switch (kind) {
    case 'month': {
      const from = startOfWeek(firstOfMonth(day), firstWeekday());
      const end = addDays(firstOfMonth(addMonths(day, 1)), -1);
      return [from, addDays(startOfWeek(end, firstWeekday()), 6)];
    }
    case 'week': {
      const from = startOfWeek(day, firstWeekday());
      return [from, addDays(from, 6)];
    }
    case 'agenda':
      return [day, addDays(day, AGENDA_DAYS - 1)];
    default:
      return [day, day];
  }
}

const within = (day) => (day < FIRST_DAY ? FIRST_DAY : day > LAST_DAY ? LAST_DAY : day);

function stepped(kind, day, by) {
  switch (kind) {
    case 'month':
      return addMonths(firstOfMonth(day), by);
    case 'week':
      return addDays(day, 7 * by);
    case 'agenda':
      return addDays(day, AGENDA_DAYS * by);
    default:
      return addDays(day, by);
  }
}

function titleOf(kind, day) {
  const [from, to] = rangeOf(kind, day);
  if (kind === 'month') return monthText(day);
  if (kind === 'day') return longDate(day);
  return rangeText(from, to);
}

/** "phone" shows less of a day. */
const isNarrow = () => matchMedia('(max-width: 40em)').matches;

const isTouched = () => matchMedia('(pointer: coarse)').matches;

export function calendar(root, {params}) {
  const kept = sessionStorage.getItem(KEPT);
  let kind =
    KINDS.find((one) => one === params.get('view')) ??
    KINDS.find((one) => one === kept) ??
    (isNarrow() ? 'agenda' : 'month');
  let day = isDay(params.get('date')) ? within(params.get('date')) : house.date();
  let asked = null;

  const title = h('h1', {tabindex: '-1', 'aria-live': 'polite'});
  const tabs = h('div', {class: 'segments', role: 'group', 'aria-label': t('calendar.view')});
  const stage = h('div', {class: 'stage'});
  const hint = h('p', {class: 'hint muted'}, t(isTouched() ? 'calendar.hintTouch' : 'calendar.hint'));
  const go = (newKind, newDay) => {
    kind = newKind;
    day = within(newDay);
    sessionStorage.setItem(KEPT, kind);
    history.replaceState(null, '', `#/calendar${api.query({view: kind, date: day})}`);
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
        iconButton(t('calendar.previous'), 'previous', () => go(kind, stepped(kind, day, -1))),
        button(t('calendar.today'), () => go(kind, house.date())),
        iconButton(t('calendar.next'), 'next', () => go(kind, stepped(kind, day, 1))),
      ),
      tabs,
      h('a', {class: 'button primary', href: '#/events/new'}, icon('plus'), t('new')),
    ),
    stage,
    hint,
  );

  /** What was moved by its keys: the focus goes with it. */
  let followed = null;
  const drag = dragging(stage, async (occurrence, target, byKey) => {
    followed = byKey ? `${target.date}-${occurrence.event}` : null;
    if (!(await askMove(occurrence, target))) followed = null;
  });
  const open = (occurrence) =>
    showEvent(occurrence.event, {
      occurrence,
      move: () => askMove(occurrence, null),
    });

  async function show() {
    title.textContent = titleOf(kind, day);
    replace(
      tabs,
      KINDS.map((one) =>
        h(
          'button',
          {
            type: 'button',
            'data-key': `view-${one}`,
            'aria-pressed': String(one === kind),
            onclick: () => go(one, day),
          },
          t(`calendar.${one}`),
        ),
      ),
    );
    const [from, to] = rangeOf(kind, day).map(within);
    asked?.abort();
    asked = new AbortController();
    const {signal} = asked;
    try {
      const [list, suns] = await Promise.all([
        api.occurrences(from, to, {signal}),
        house.sunOfDays(from, to),
      ]);
      if (signal.aborted) return;
      const context = {
        from,
        to,
        day,
        suns,
        days: byDay(from, to, list),
        open,
        go,
        narrow: isNarrow(),
      };
      const scroll = stage.querySelector('.scroll')?.scrollTop;
      replace(stage, {month, week: hours, day: hours, agenda}[kind](context));
      hint.hidden = !stage.querySelector('[data-drag]');
      afterDrawing(scroll);
      follow();
    } catch (error) {
      failed(error);
    }
  }

  function afterDrawing(scroll) {
    const box = stage.querySelector('.scroll');
    if (!box) return;
    box.scrollTop = scroll ?? Math.max(0, Number(box.dataset.scroll));
  }

  function follow() {
    const chip = followed && stage.querySelector(`[data-key="${CSS.escape(followed)}"]`);
    if (!chip || document.querySelector('dialog[open]')) return;
    followed = null;
    chip.focus();
  }

  let waiting = null;
  const soon = () => {
    if (drag.active()) return;
    clearTimeout(waiting);
    waiting = setTimeout(show, 60);
  };
  const width = matchMedia('(max-width: 40em)');
  width.addEventListener('change', soon);
  show();
  return {
    title: t('nav.calendar'),
    on: {events: soon, today: soon, project: soon, replaced: soon},
    end: () => {
      asked?.abort();
      clearTimeout(waiting);
      drag.end();
      width.removeEventListener('change', soon);
    },
  };
}

/**
 * A map of each day to its occurrences in the order of their times. `date` is the day by which the
 * rule counts, `day` that on which it happens: minutes may lead over midnight.
 */
function byDay(from, to, list) {
  const days = new Map();
  for (let day = from; day <= to; day = addDays(day, 1)) days.set(day, []);
  for (const {event, description, date, time, base} of list) {
    const {day, minutes} = wall(time);
    days.get(day ?? date)?.push({event, description, date, day: day ?? date, base, minutes});
  }
  for (const occurrences of days.values()) {
    occurrences.sort((a, b) => a.minutes - b.minutes || a.event - b.event);
  }
  return days;
}
