// What one event is and what can be done to it, as a dialog: opened from today's list, from the
// calendar and from the list of events.

import * as deeds from './deeds.js';
import {wall, yearOf} from './dates.js';
import {button, h, icon} from './dom.js';
import {house} from './house.js';
import {longDate, shortDate, shortDateOfYear, t, timeText} from './locale.js';
import {dialog} from './notices.js';
import {sentence} from './sentence.js';

/** "Sat 21 Nov 16:02", with its year where that is not the present one. */
export function momentText(moment) {
  const {day, minutes} = wall(moment);
  const date = yearOf(day) === yearOf(house.date()) ? shortDate(day) : shortDateOfYear(day);
  return `${date} ${timeText(minutes)}`;
}

/** When an event comes next: today's with its random part, as soon as that is drawn. */
export function nextOf({id, next}) {
  const drawn = house.today.occurrences.find(
    ({event, state, planned, due}) =>
      event === id && state === 'pending' && due && Date.parse(planned) === Date.parse(next),
  );
  return drawn?.due ?? next;
}

/** What keeps an event from acting, in words; empty where nothing does. */
export function holdsText(event) {
  const {enabled, paused_until: until, skip_next: skip} = event.programming ?? {};
  if (enabled === false) return t('state.off');
  const texts = [];
  if (until && until > house.date()) texts.push(t('state.paused', {date: shortDate(until)}));
  if (skip) texts.push(t('state.skip'));
  if (house.project.away_until > house.date()) texts.push(t('state.away'));
  return texts.join(', ');
}

/** The name of the drawing for what an event's time is counted from. */
export const baseIcon = (base) => (base === 'sunrise' || base === 'sunset' ? base : 'clock');

/** Whether an event's pause or being switched off is what a click would end. */
export function isHeld(event) {
  const {enabled, paused_until: until} = event.programming ?? {};
  return enabled === false || Boolean(until && until > house.date());
}

/** [label, drawing, deed] of what is possible with an event. */
export function deedsOf(event) {
  return [
    [t('run'), 'run', () => deeds.runNow(event)],
    event.programming?.skip_next
      ? [t('unskip'), 'skip', () => deeds.dontSkip(event)]
      : [t('skip'), 'skip', () => deeds.skipNext(event)],
    isHeld(event)
      ? [t('resume'), 'resume', () => deeds.resume(event)]
      : [t('pause'), 'pause', () => deeds.pause(event)],
  ];
}

/**
 * Shows event `id`; `occurrence` {day, minutes} is the one that was pointed at, and `move` asks where
 * to put it.
 */
export async function showEvent(id, {occurrence, move} = {}) {
  const event = house.events.get(id);
  if (!event) return;
  const deed = await dialog(event.description, (close) => {
    const doing = (label, drawing, work, kind = '') =>
      button(label, () => close(work), {drawing, kind});
    const going = (label, path) =>
      h('a', {class: 'button', href: `#/${path}`, onclick: () => close()}, label);
    const holds = holdsText(event);
    return [
      h('p', {class: 'lead'}, icon(baseIcon(event.time?.base)), ' ', sentence(event, house.date())),
      occurrence &&
        h(
          'p',
          null,
          t('sheet.this', {
            date: longDate(occurrence.day),
            time: timeText(occurrence.minutes),
          }),
        ),
      h('p', null, event.next ? t('sheet.next', {when: momentText(nextOf(event))}) : t('sheet.never')),
      holds && h('p', {class: 'held'}, icon('held'), ' ', holds),
      h(
        'div',
        {class: 'row'},
        deedsOf(event).map(([label, drawing, work]) => doing(label, drawing, work)),
        move && !event.odd && doing(t('move'), 'shift', move),
      ),
      h(
        'footer',
        null,
        going(t('edit'), `events/${id}`),
        going(t('nav.programming'), `events/${id}/programming`),
        going(t('nav.journal'), `journal?event=${id}`),
        doing(t('duplicate'), 'plus', () => duplicateAndOpen(event)),
        doing(t('delete'), 'remove', () => deeds.remove(event), 'danger'),
      ),
    ];
  });
  await deed?.();
}

export async function duplicateAndOpen(event) {
  const copy = await deeds.duplicate(event);
  if (copy) location.hash = `#/events/${copy}`;
}
