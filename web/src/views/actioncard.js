// One action: what starts it, on which condition, what it does, and how it went when it was tried out.

import * as api from '../api.js';
import {button, choice, h, icon, iconButton, replace} from '../dom.js';
import {hasText, t} from '../locale.js';
import {actionFields, fresh, sendable, TYPES, typeOf} from './actionfields.js';
import {conditionBuilder} from './condition.js';

const TRIGGERS = ['event', 'push', 'click'];
const line = (...children) => h('div', {class: 'line'}, children);

/**
 * `index` is its place among `count`, `key` what it is known by while the page lasts, `event` whose it
 * is. `touched()`: it has changed; `redraw()`: it has another form; `move(by)`, `remove()`.
 */
export function actionCard(action, {index, count, key, event, touched, redraw, move, remove}) {
  const pointer = `/actions/${index}`;
  const outcome = h('div', {class: 'outcome', role: 'status'});
  const test = (click) => tryOut(action, event, outcome, click.currentTarget);
  return h(
    'li',
    {'class': 'card', 'data-pointer': pointer},
    line(
      triggerChoice(action, key, touched),
      delayInput(action, pointer, touched),
      h(
        'span',
        {class: 'end'},
        index > 0 && iconButton(t('prog.up'), 'up', () => move(-1), {'data-key': `${key}-up`}),
        index < count - 1 &&
          iconButton(t('prog.down'), 'down', () => move(1), {'data-key': `${key}-down`}),
        iconButton(t('prog.remove'), 'remove', remove, {'data-key': `${key}-remove`}),
      ),
    ),
    h('div', {class: 'line top'}, t('prog.if'), condition(action, touched)),
    line(t('prog.do'), typeChoice(action, key, touched, redraw)),
    actionFields(action, pointer, touched),
    h('p', {class: 'error', hidden: true}),
    h(
      'div',
      {class: 'row'},
      button(t('prog.test'), test, {'drawing': 'run', 'data-key': `${key}-test`}),
    ),
    outcome,
  );
}

function triggerChoice(action, key, touched) {
  const options = TRIGGERS.map((on) => [on, t(`prog.on.${on}`)]);
  const choose = (on) => {
    action.on = on;
    touched();
  };
  const rest = {'aria-label': t('prog.onLabel'), 'data-key': `${key}-on`};
  return choice(options, action.on ?? 'event', choose, rest);
}

function delayInput(action, pointer, touched) {
  const seconds = h('input', {
    'type': 'number',
    'class': 'number',
    'min': 0,
    'max': 86400,
    'value': action.delay ?? 0,
    'aria-label': t('prog.delayLabel'),
    'data-pointer': `${pointer}/delay`,
    'oninput': () => {
      action.delay = Number(seconds.value);
      touched();
    },
  });
  return [t('prog.after'), seconds, t('prog.seconds')];
}

const condition = (action, touched) =>
  conditionBuilder(action.if ?? null, (wanted) => {
    if (wanted) action.if = wanted;
    else delete action.if;
    touched();
  });

function typeChoice(action, key, touched, redraw) {
  const options = TYPES.map((type) => [type, t(`prog.type.${type}`)]);
  const choose = (type) => {
    delete action[typeOf(action)];
    action[type] = fresh(type);
    touched();
    redraw();
  };
  const rest = {'aria-label': t('prog.typeLabel'), 'data-key': `${key}-type`};
  return choice(options, typeOf(action), choose, rest);
}

/** Does it now, and shows in `place` what came of it. */
async function tryOut(action, event, place, control) {
  if (control.getAttribute('aria-disabled')) return;
  control.setAttribute('aria-disabled', 'true');
  replace(place, h('p', {class: 'muted'}, t('prog.testing')));
  try {
    drawOutcome(place, await api.post('/actions/test', {action: sendable(action), event}));
  } catch (error) {
    const details = (error.errors ?? []).map(
      ({pointer, detail}) => `${pointer.replace(/^\/action/, '')} ${detail}`,
    );
    replace(place, h('p', {class: 'error'}, details.join('; ') || error.message));
  } finally {
    control.removeAttribute('aria-disabled');
  }
}

function drawOutcome(place, {outcome, detail, output, milliseconds}) {
  const well = outcome === 'done';
  const said = hasText(`outcome.${outcome}`) ? t(`outcome.${outcome}`) : outcome;
  const text = [said, detail && `: ${detail}`, milliseconds != null && ` (${milliseconds} ms)`];
  replace(
    place,
    h(
      'p',
      {class: `state ${well ? 'fired' : 'missed'}`},
      icon(well ? 'done' : 'missed'),
      ' ',
      text,
    ),
    output && h('pre', {tabindex: '0'}, output),
  );
}
