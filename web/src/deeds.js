// What can be done to an event from anywhere on the page, each with its undo.

import * as api from './api.js';
import {addDays} from './dates.js';
import {button, h} from './dom.js';
import {house} from './house.js';
import {dateText, t} from './locale.js';
import {dialog, failed, holdThen, notice} from './notices.js';

const programmingPath = (id) => `/events/${id}/programming`;

/** Whether it went well; where not, it was said. */
async function tried(work) {
  try {
    await work();
    return true;
  } catch (error) {
    failed(error);
    return false;
  }
}

export function runNow(event) {
  holdThen(
    t('deed.running', event),
    t('deed.atOnce'),
    () =>
      tried(async () => {
        await api.post(`/events/${event.id}/run`, undefined, {keepalive: true});
        notice(t('deed.ran', event));
      }),
    () => notice(t('deed.calledOff', event)),
  );
}

/** Changes what keeps an event from acting; the undo puts back what was there. */
async function hold(event, change, text) {
  const before = house.events.get(event.id)?.programming ?? {};
  const back = Object.fromEntries(Object.keys(change).map((key) => [key, before[key] ?? null]));
  await tried(async () => {
    await api.patch(programmingPath(event.id), change);
    notice(text, {undo: () => api.patch(programmingPath(event.id), back)});
  });
}

export const skipNext = (event) => hold(event, {skip_next: true}, t('deed.skipped', event));
export const dontSkip = (event) => hold(event, {skip_next: false}, t('deed.notSkipped', event));

export const resume = (event) =>
  hold(event, {enabled: true, paused_until: null}, t('deed.resumed', event));

export async function pause(event) {
  const today = house.date();
  const choices = [
    [addDays(today, 1), t('pause.tomorrow')],
    [addDays(today, 7), t('pause.week')],
    ['off', t('pause.off')],
  ];
  const until = await dialog(
    t('pause.title', event),
    (close) => {
      const day = h('input', {
        type: 'date',
        min: addDays(today, 1),
        'aria-label': t('pause.untilDay'),
      });
      const form = h(
        'form',
        {
          class: 'row',
          onsubmit: (submit) => {
            submit.preventDefault();
            if (day.value) close(day.value);
          },
        },
        h('label', null, t('pause.untilDay'), ' ', day),
        h('button', {class: 'primary'}, t('pause.do')),
      );
      return [
        h('p', null, t('pause.what')),
        h(
          'div',
          {class: 'stack'},
          choices.map(([value, label], index) =>
            button(label, () => close(value), {autofocus: index === 0}),
          ),
        ),
        form,
      ];
    },
    'narrow',
  );
  if (!until) return;
  if (until === 'off') await hold(event, {enabled: false}, t('deed.off', event));
  else
    await hold(event, {paused_until: until}, t('deed.paused', {...event, date: dateText(until)}));
}

/** Deletes at once: it can be brought back. True where it went well. */
export const remove = (event) =>
  tried(async () => {
    await api.remove(`/events/${event.id}`);
    notice(t('deed.deleted', event), {undo: () => api.post(`/events/${event.id}/restore`)});
  });

/** The copy's id, or null. */
export async function duplicate(event) {
  const names = new Set([...house.events.values()].map(({description}) => description));
  let number = 2;
  while (names.has(`${event.description} ${number}`)) ++number;
  let copy = null;
  await tried(async () => {
    copy = await api.post(`/events/${event.id}/duplicate`, {
      description: `${event.description} ${number}`,
    });
    notice(t('deed.duplicated', copy), {undo: () => api.remove(`/events/${copy.id}`)});
  });
  return copy?.id ?? null;
}

export const press = (event, control) =>
  tried(async () => {
    await api.post(`/events/${event.id}/press`, {button: control});
    notice(t('deed.pressed', event));
  });

/** Replaces an event as a whole, with an undo. */
export const replaceEvent = (before, after, text) =>
  tried(async () => {
    const put = ({description, start, time, repeat}) =>
      api.put(`/events/${before.id}`, {
        description,
        start,
        time: timeToSend(time),
        repeat: repeat ?? null,
      });
    await put(after);
    notice(text, {undo: () => put(before)});
  });

/** Minutes say everything that `at` may say. */
export const timeToSend = ({base, minutes, spread}) => ({base, minutes, spread: spread ?? 0});
