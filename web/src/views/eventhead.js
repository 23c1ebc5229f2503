// What an event's pages have in common: their head, and what is asked when somebody else was quicker
// or something typed would be lost.

import {button, h, icon, replace} from '../dom.js';
import {house} from '../house.js';
import {t} from '../locale.js';
import {confirmed} from '../notices.js';
import {holdsText, momentText, nextOf} from '../sheet.js';

export const askLeave = () => confirmed(t('leave.title'), t('leave.text'), t('leave.yes'));

/** The head of event `id`, with the way between its pages; `page` is the one that is shown. */
export function eventHead(id, page) {
  const element = h('div', {class: 'eventhead'});
  const tab = (name, path, label) => {
    const current = page === name ? 'page' : null;
    const href = `#/events/${id}${path}`;
    return h('a', {href, 'data-key': `tab-${name}`, 'aria-current': current}, label);
  };
  const draw = () => {
    const event = house.events.get(id);
    if (!event) return replace(element, h('h1', {tabindex: '-1'}, t('event.gone')));
    const holds = holdsText(event);
    const next = event.next ? t('sheet.next', {when: momentText(nextOf(event))}) : t('sheet.never');
    replace(
      element,
      h('h1', {tabindex: '-1'}, event.description),
      h('p', {class: 'muted'}, next),
      holds && h('p', {class: 'held'}, icon('held'), ' ', holds),
      h(
        'nav',
        {'class': 'segments', 'aria-label': t('event.pages')},
        tab('when', '', t('form.when')),
        tab('programming', '/programming', t('nav.programming')),
        h('a', {href: `#/journal?event=${id}`}, t('nav.journal')),
      ),
    );
  };
  draw();
  return {element, draw};
}

/** Says in `body` that there is another version by now; `read` shows it. */
export function tellOfClash(body, read) {
  if (body.querySelector('.clash')) return;
  body.prepend(
    h(
      'div',
      {class: 'card hint clash', role: 'status'},
      h('p', null, t('clash.seen')),
      button(t('clash.theirs'), read, {kind: 'small'}),
    ),
  );
}

/**
 * Sends by `send(tag)`, which obeys the version `tag`; where that is not the present one, asks whether
 * to replace it. Null where it is not to be.
 */
export async function sendOverOthers(tag, send) {
  try {
    return await send(tag);
  } catch (error) {
    if (error.status !== 412) throw error;
    if (!(await confirmed(t('clash.title'), t('clash.text'), t('clash.mine')))) return null;
    return send(undefined);
  }
}
