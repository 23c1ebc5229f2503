// What the page says beside its views: notices with an undo, and dialogs.

import {button, freshId, h, icon, iconButton} from './dom.js';
import {t} from './locale.js';

const PLAIN_MS = 8000;
const UNDO_MS = 30000;
const RUN_HOLD_S = 4;
const SHOWN = 4;

const shelf = () => document.getElementById('notices');
let undoLatest = null;

/** Undoes what the latest notice that offers it is about; false where there is none. */
export function undo() {
  if (!undoLatest) return false;
  undoLatest();
  return true;
}

/**
 * Says `text` for a while, longer as long as somebody points at it. `undo` is offered as a button
 * and taken once. One that `waits` for an answer stays until it is closed: `choices` are its buttons.
 * Answers with what takes the notice away.
 */
export function notice(text, {kind = 'plain', undo: takeBack, choices, waits = false} = {}) {
  let timer;
  const element = h('div', {class: `notice ${kind}`});
  const close = () => {
    clearTimeout(timer);
    if (undoLatest === once) undoLatest = null;
    if (element.contains(document.activeElement)) document.querySelector('main h1')?.focus();
    element.remove();
  };
  const once =
    takeBack &&
    (async () => {
      close();
      try {
        await takeBack();
      } catch (error) {
        failed(error);
      }
    });
  element.append(
    ...[
      kind === 'bad' && icon('warning'),
      h('p', null, text),
      choices,
      once && !waits && button(t('undo'), once, {kind: 'small', 'data-key': 'undo'}),
      !waits && iconButton(t('dismiss'), 'missed', close),
    ]
      .flat()
      .filter(Boolean),
  );
  const wait = () => {
    clearTimeout(timer);
    timer = setTimeout(close, once ? UNDO_MS : PLAIN_MS);
  };
  const fades = kind !== 'bad' && !waits;
  if (fades) {
    for (const name of ['pointerenter', 'focusin'])
      element.addEventListener(name, () => clearTimeout(timer));
    for (const name of ['pointerleave', 'focusout']) element.addEventListener(name, wait);
  }
  shelf().append(element);
  // What is still to be answered stays, whatever comes.
  const others = [...shelf().querySelectorAll('.notice:not(.waiting)')];
  for (const old of others.slice(0, -SHOWN)) old.remove();
  if (once) undoLatest = once;
  if (fades) wait();
  return close;
}

/** What stands on the shelf because the controller could not be reached. */
const offline = new Map();

/** Says what went wrong, once for as long as it stands there. */
export function failed(error) {
  if (error.name === 'AbortError') return;
  const unreached = error.status === 0;
  offline.get(error.message)?.();
  const close = notice(error.message, {kind: 'bad'});
  if (unreached) offline.set(error.message, close);
}

/** The controller can be reached again: that it could not is over. */
export function reached() {
  for (const close of offline.values()) close();
  offline.clear();
}

/**
 * Does `work` after a few seconds, or at once where that is chosen, unless it is called off meanwhile;
 * `calledOff()` then. `text` says that it has not been done yet.
 */
export function holdThen(text, atOnce, work, calledOff) {
  let left = RUN_HOLD_S;
  let over = false;
  const finish = (doIt) => {
    if (over) return;
    over = true;
    clearInterval(timer);
    removeEventListener('pagehide', now);
    close();
    (doIt ? work : calledOff)();
  };
  const now = () => finish(true);
  const not = () => finish(false);
  // Whoever leaves the page has not called it off.
  addEventListener('pagehide', now);
  // Not read out each second.
  const count = h('span', {'class': 'seconds', 'aria-hidden': 'true'}, String(left));
  const close = notice(text, {
    kind: 'waiting',
    undo: not,
    waits: true,
    choices: [
      count,
      button(atOnce, now, {'kind': 'small', 'data-key': 'at-once'}),
      button(t('cancel'), not, {'kind': 'small', 'data-key': 'undo'}),
    ],
  });
  const timer = setInterval(() => {
    count.textContent = String(--left);
    if (left <= 0) now();
  }, 1000);
}

/**
 * A dialog that has to be answered; resolves with what `close(answer)` is given, undefined where it
 * is dismissed. `fill(close)` answers with what stands in it.
 */
export function dialog(title, fill, kind = '') {
  return new Promise((resolve) => {
    const before = document.activeElement;
    const key = before?.closest?.('[data-key]')?.dataset.key;
    const id = freshId('title');
    let answer;
    const close = (value) => {
      answer = value;
      element.close();
    };
    const element = h(
      'dialog',
      {class: kind, 'aria-labelledby': id},
      h(
        'header',
        null,
        h('h2', {id, tabindex: '-1'}, title),
        iconButton(t('close'), 'missed', () => close()),
      ),
      fill(close),
    );
    element.addEventListener('close', () => {
      element.remove();
      giveFocusBack(before, key);
      resolve(answer);
    });
    // Its own edge is part of it; and a selection that is dragged out of it ends outside.
    const beside = ({target, clientX: x, clientY: y}) => {
      const {left, right, top, bottom} = element.getBoundingClientRect();
      return target === element && (x < left || x > right || y < top || y > bottom);
    };
    let begunBeside = false;
    element.addEventListener('pointerdown', (event) => (begunBeside = beside(event)));
    element.addEventListener('click', (event) => begunBeside && beside(event) && close());
    document.body.append(element);
    element.showModal();
    element.querySelector('[autofocus]')?.focus();
  });
}

/** Back to where it was; the list may have been drawn anew meanwhile. */
function giveFocusBack(before, key) {
  if (document.querySelector('dialog[open]')) return;
  const same = key && document.querySelector(`main [data-key="${CSS.escape(key)}"]`);
  const target = before?.isConnected ? before : same || document.querySelector('main h1');
  target?.focus();
}

/** Asks before something that cannot be undone; true where it is wanted. */
export const confirmed = (title, text, yes) =>
  dialog(
    title,
    (close) => [
      h('p', null, text),
      h(
        'footer',
        null,
        button(t('cancel'), () => close(false)),
        button(yes, () => close(true), {kind: 'primary', autofocus: true}),
      ),
    ],
    'narrow',
  ).then(Boolean);
