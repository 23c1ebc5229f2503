// Asks what moving an occurrence is to mean, and does it.

import * as api from '../api.js';
import {addDays, daysBetween, isDay, readClock} from '../dates.js';
import {replaceEvent, timeToSend} from '../deeds.js';
import {freshId, h, replace} from '../dom.js';
import {house} from '../house.js';
import {longDate, shortDate, t, timeText} from '../locale.js';
import {moved} from '../moves.js';
import {dialog, failed} from '../notices.js';
import {sentence} from '../sentence.js';

/**
 * `target` {date, minutes} is where it was dropped; null: that is asked too. Whether it was moved.
 */
export async function askMove(occurrence, target) {
  const event = house.events.get(occurrence.event);
  if (!event || event.odd) return false;
  // Nothing to ask: it comes once, and by the clock.
  if (
    target &&
    !event.repeat &&
    (event.time.base === 'clock' || occurrence.minutes === target.minutes)
  ) {
    return apply(event, afterMove(event, occurrence, target, 'start'));
  }
  const after = await dialog(t('move.title', event), (close) =>
    form(event, occurrence, target, close),
  );
  return Boolean(after) && apply(event, after);
}

/** Where it happens and the day by which its rule counts may be a day apart; they stay so. */
function afterMove(event, occurrence, target, how, byClock) {
  const apart = daysBetween(occurrence.day, occurrence.date);
  return moved(
    event,
    occurrence,
    {date: addDays(target.date, apart), minutes: target.minutes},
    how,
    byClock,
  );
}

const apply = (event, after) =>
  replaceEvent(
    event,
    after,
    t('move.done', {
      description: event.description,
      sentence: sentence(after, house.date()),
    }),
  );

function form(event, from, target, close) {
  const date = h('input', {type: 'date', value: target?.date ?? from.day, required: true});
  const time = h('input', {
    value: timeText((target ?? from).minutes),
    size: 9,
    required: true,
    autocomplete: 'off',
  });
  const how = radios('how', [
    ['every', t('move.every')],
    ['start', t('move.start')],
  ]);
  const follows = event.time.base !== 'clock';
  const by =
    follows &&
    radios('by', [
      ['sun', t(`move.by.${event.time.base}`)],
      ['clock', t('move.byClock')],
    ]);
  const result = h('div', {class: 'preview', 'aria-live': 'polite'});
  const save = h('button', {class: 'primary', 'data-key': 'save'}, t('move.do'));

  const chosen = () => {
    const minutes = readClock(time.value);
    if (!isDay(date.value) || minutes === null) return null;
    return afterMove(
      event,
      from,
      {date: date.value, minutes},
      event.repeat ? how.value() : 'start',
      follows && by.value() === 'clock',
    );
  };
  let asked = null;
  const preview = async () => {
    asked?.abort();
    asked = new AbortController();
    const after = chosen();
    save.disabled = !after;
    if (!after) return replace(result, h('p', {class: 'error'}, t('move.noTime')));
    try {
      const body = {...after, time: timeToSend(after.time), id: event.id};
      const answer = await api.post('/preview', body, {signal: asked.signal});
      replace(
        result,
        h('p', {class: 'lead'}, sentence(answer.event, house.date())),
        h(
          'p',
          null,
          t('move.then', {
            days: answer.occurrences
              .slice(0, 4)
              .map((one) => shortDate(one.date))
              .join(' · '),
          }),
        ),
      );
    } catch (error) {
      if (error.name === 'AbortError') return;
      save.disabled = true;
      replace(result, h('p', {class: 'error'}, error.message));
    }
  };
  const element = h(
    'form',
    {
      onsubmit: (submit) => {
        submit.preventDefault();
        const after = chosen();
        if (after) close(after);
      },
      oninput: preview,
    },
    h('p', null, t('move.from', {date: longDate(from.day), time: timeText(from.minutes)})),
    h(
      'div',
      {class: 'row'},
      h('label', null, t('move.to'), ' ', date),
      h('label', null, t('move.at'), ' ', time),
    ),
    event.repeat && how.group(t('move.what')),
    follows && by.group(t('move.time')),
    result,
    h('footer', null, h('button', {type: 'button', onclick: () => close()}, t('cancel')), save),
  );
  preview().catch(failed);
  return element;
}

function radios(stem, options) {
  const name = freshId(stem);
  const inputs = options.map(([value], index) =>
    h('input', {type: 'radio', name, value, checked: index === 0}),
  );
  return {
    value: () => inputs.find((input) => input.checked).value,
    group: (legend) =>
      h(
        'fieldset',
        null,
        h('legend', null, legend),
        options.map(([, label], index) => h('label', {class: 'radio'}, inputs[index], ' ', label)),
      ),
  };
}
