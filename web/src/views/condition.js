// Builds a condition by choosing, says it in words, and tells whether it holds now and why.

import * as api from '../api.js';
import {clockText, readClock, WEEKDAYS} from '../dates.js';
import {choice, h, icon, replace} from '../dom.js';
import {monthName, t, timeText, weekdayName, weekOrder} from '../locale.js';
import {
  becauseText,
  conditionText,
  fieldsOf,
  FORMS,
  freshCondition,
  KINDS,
  trimmed,
} from './conditions.js';

const WAIT_MS = 250;
const AGAIN_MS = 20000;

/** `condition` or null; `onChange(condition)` with another. `pointer` is where errors are shown. */
export function conditionBuilder(condition, onChange) {
  let current = condition;
  const controls = h('div', {class: 'line'});
  const verdict = h('p', {class: 'verdict', role: 'status'});
  let timer = null;

  const set = (next) => {
    current = next;
    verdict.removeAttribute('aria-live');
    onChange(current);
    draw();
    clearTimeout(timer);
    timer = setTimeout(test, WAIT_MS);
  };
  const change = (name, value) => set({...current, [name]: value});

  function draw() {
    replace(
      controls,
      choice(
        [['', t('if.always')], ...KINDS.map((kind) => [kind, t(`if.kind.${kind}`)])],
        current?.kind ?? '',
        (kind) => set(kind ? freshCondition(kind) : null),
        {'aria-label': t('if.label'), 'data-key': 'if-kind'},
      ),
      current &&
        current.kind !== 'leap' &&
        choice(
          FORMS[current.kind].is.map((is) => [is, t(`is.${is}`)]),
          current.is,
          (is) => set(trimmed({...FORMS[current.kind].fresh(), ...current, is})),
          {'aria-label': t('if.isLabel'), 'data-key': 'if-is'},
        ),
      current &&
        fieldsOf(current.kind, current.is).map((name) => [
          name === 'to' && t('if.and'),
          control(name, current[name]),
        ]),
    );
  }

  function control(name, value) {
    const rest = {'aria-label': t(`if.field.${name}`), 'data-key': `if-${name}`};
    const number = (min, max) =>
      h('input', {
        type: 'number',
        class: 'number',
        min,
        max,
        value,
        ...rest,
        onchange: (event) => change(name, Number(event.target.value)),
      });
    if (name === 'side')
      return choice(
        [
          ['before', t('form.before')],
          ['after', t('form.after')],
        ],
        value,
        (side) => change('side', side),
        rest,
      );
    if (name === 'of')
      return choice(
        [
          ['sunrise', t('say.sunrise')],
          ['sunset', t('say.sunset')],
        ],
        value,
        (of) => change('of', of),
        rest,
      );
    if (name === 'minutes') return [number(0, 1440), t('form.minutes')];
    if (name === 'months')
      return pills(name, value, [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12], (month) =>
        monthName(month, 'short'),
      );
    if (name === 'days') {
      return current.kind === 'weekday'
        ? pills(
            name,
            value,
            weekOrder().map((index) => WEEKDAYS[index]),
            (day) => weekdayName(WEEKDAYS.indexOf(day), 'short'),
          )
        : numberList(value, rest);
    }
    switch (current.kind) {
      case 'time':
        return h('input', {
          class: 'time',
          size: 9,
          value: timeText(readClock(value) ?? 0),
          ...rest,
          onchange: (event) => {
            const minutes = readClock(event.target.value);
            if (minutes === null) event.target.setAttribute('aria-invalid', 'true');
            else change(name, clockText(minutes));
          },
        });
      case 'weekday':
        return choice(
          WEEKDAYS.map((day, index) => [day, weekdayName(index)]),
          value,
          (day) => change(name, day),
          rest,
        );
      case 'month':
        return choice(
          [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12].map((month) => [month, monthName(month)]),
          value,
          (month) => change(name, Number(month)),
          rest,
        );
      case 'date':
        return h('input', {
          type: 'date',
          value,
          ...rest,
          onchange: (event) => change(name, event.target.value),
        });
      case 'day':
        return number(1, 31);
      default:
        return number(1, 9999);
    }
  }

  const pills = (name, chosen, values, label) =>
    h(
      'fieldset',
      {class: 'line'},
      h('legend', {class: 'unseen'}, t(`if.field.${name}`)),
      values.map((value) =>
        h(
          'label',
          {class: 'pill'},
          h('input', {
            type: 'checkbox',
            checked: chosen.includes(value),
            'data-key': `if-${name}-${value}`,
            onchange: (event) =>
              change(
                name,
                values.filter((one) =>
                  one === value ? event.target.checked : chosen.includes(one),
                ),
              ),
          }),
          h('span', null, label(value)),
        ),
      ),
    );

  /** "1, 15, 31" */
  const numberList = (value, rest) =>
    h('input', {
      value: value.join(', '),
      size: 12,
      ...rest,
      onchange: (event) => {
        const days = event.target.value
          .split(/[\s,;]+/)
          .filter(Boolean)
          .map(Number);
        if (days.length && days.every((day) => Number.isInteger(day) && day >= 1 && day <= 31))
          change('days', days);
        else event.target.setAttribute('aria-invalid', 'true');
      },
    });

  async function test() {
    const asked = current;
    if (!asked) return replace(verdict);
    try {
      const {result, because} = await api.post('/conditions/test', {condition: asked});
      if (asked !== current) return;
      verdict.className = `verdict ${result}`;
      replace(
        verdict,
        icon(result ? 'done' : 'missed'),
        ' ',
        conditionText(asked),
        ' — ',
        h('strong', null, t(result ? 'if.trueNow' : 'if.falseNow')),
        ', ',
        t('if.because', {why: becauseText(asked, because)}),
      );
    } catch (error) {
      if (asked !== current) return;
      verdict.className = 'verdict error';
      replace(verdict, error.message);
    }
  }
  // What holds now may not in a minute; not read out each time.
  const again = setInterval(() => {
    if (!verdict.isConnected) return clearInterval(again);
    if (document.hidden || !current) return;
    verdict.setAttribute('aria-live', 'off');
    test();
  }, AGAIN_MS);
  draw();
  test();
  return h('div', {class: 'condition'}, controls, verdict);
}
