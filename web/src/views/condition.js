// Builds a condition by choosing, says it in words, and tells whether it holds now and why.

import * as api from '../api.js';
import {readClock, clockText, WEEKDAYS} from '../dates.js';
import {choice, h, icon, replace} from '../dom.js';
import {house} from '../house.js';
import {dateText, language, listText, monthName, t, timeText, weekdayName, weekOrder} from '../locale.js';

const WAIT_MS = 250;
const KINDS = ['time', 'weekday', 'day', 'date', 'month', 'year', 'leap'];

/** How each kind may be compared, and what a fresh one compares with. */
const FORMS = {
  time: {is: ['day', 'night', 'within', 'between', 'gt', 'ge', 'lt', 'le', 'eq', 'ne'],
    fresh: () => ({minutes: 30, side: 'before', of: 'sunset', from: '22:00', to: '06:00', time: '12:00'})},
  weekday: {is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'],
    fresh: () => ({days: ['sat', 'sun'], from: 'mon', to: 'fri'})},
  day: {is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'], fresh: () => ({days: [1], from: 1, to: 15})},
  date: {is: ['between', 'eq', 'ne', 'gt', 'ge', 'lt', 'le'],
    fresh: () => ({date: house.date(), from: house.date(), to: house.date()})},
  month: {is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'], fresh: () => ({months: [12], from: 11, to: 3})},
  year: {is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'], fresh: () => {
    const year = Number(house.date().slice(0, 4));
    return {year, from: year, to: year + 1};
  }},
  leap: {is: [], fresh: () => ({})},
};

/** The fields that a condition of this kind and comparison has, in the order of the API. */
function fieldsOf(kind, is) {
  if (kind === 'leap') return [];
  if (is === 'between') return ['from', 'to'];
  if (is === 'within') return ['minutes', 'side', 'of'];
  if (is === 'day' || is === 'night') return [];
  return {time: ['time'], weekday: ['days'], day: ['days'], date: ['date'], month: ['months'], year: ['year']}[kind];
}

function freshCondition(kind) {
  return trimmed({kind, is: FORMS[kind].is[0], ...FORMS[kind].fresh()});
}

function trimmed(all) {
  const result = {kind: all.kind};
  if (all.kind !== 'leap') result.is = all.is;
  for (const name of fieldsOf(all.kind, all.is)) result[name] = all[name];
  return result;
}

const said = {
  time: (text) => timeText(readClock(text) ?? 0),
  weekday: (name) => weekdayName(WEEKDAYS.indexOf(name)),
  day: (number) => t('if.dayNumber', {n: number}),
  date: dateText,
  month: (number) => monthName(number),
  year: String,
};

/** "the time is between 22:00 and 02:00" */
export function conditionText(condition) {
  const {kind, is} = condition;
  if (kind === 'leap') return t('if.leap');
  const subject = t(`if.subject.${kind}`);
  if (is === 'day' || is === 'night') return t(`if.${is}`);
  if (is === 'within') {
    return t('if.within', {n: condition.minutes, side: t(`form.${condition.side}`), sun: t(`say.${condition.of}`)});
  }
  const say = said[kind];
  if (is === 'between') return t('if.between', {subject, from: say(condition.from), to: say(condition.to)});
  const what = condition.days ?? condition.months ?? [condition.time ?? condition.date ?? condition.year];
  return t(`if.${is}`, {subject, what: listText(what.map(say), 'disjunction')});
}

/** Why it is so, in the page's own language: the controller says it in English. */
function becauseText({kind, is}, because) {
  if (language() === 'en') return because;
  const {day, minutes} = house.wallNow();
  const today = new Date(`${day}T00:00:00Z`);
  switch (kind) {
    case 'time': return ['day', 'night', 'within'].includes(is) && !house.sun.polar
      ? t('because.sun', {time: timeText(minutes), rise: timeText(readClock(house.sun.sunrise.slice(11, 16))),
        set: timeText(readClock(house.sun.sunset.slice(11, 16)))})
      : t('because.time', {time: timeText(minutes)});
    case 'weekday': return t('because.is', {what: weekdayName(today.getUTCDay())});
    case 'month': return t('because.is', {what: monthName(today.getUTCMonth() + 1)});
    case 'year': case 'leap': return t('because.is', {what: day.slice(0, 4)});
    default: return t('because.is', {what: dateText(day)});
  }
}

/** `condition` or null; `onChange(condition)` with another. `pointer` is where errors are shown. */
export function conditionBuilder(condition, onChange) {
  let current = condition;
  const controls = h('div', {class: 'line'});
  const verdict = h('p', {class: 'verdict', role: 'status'});
  let timer = null;

  const set = (next) => {
    current = next;
    onChange(current);
    draw();
    clearTimeout(timer);
    timer = setTimeout(test, WAIT_MS);
  };
  const change = (name, value) => set({...current, [name]: value});

  function draw() {
    replace(controls,
      choice([['', t('if.always')], ...KINDS.map((kind) => [kind, t(`if.kind.${kind}`)])], current?.kind ?? '',
        (kind) => set(kind ? freshCondition(kind) : null), {'aria-label': t('if.label'), 'data-key': 'if-kind'}),
      current && current.kind !== 'leap' && choice(FORMS[current.kind].is.map((is) => [is, t(`is.${is}`)]), current.is,
        (is) => set(trimmed({...FORMS[current.kind].fresh(), ...current, is})),
        {'aria-label': t('if.isLabel'), 'data-key': 'if-is'}),
      current && fieldsOf(current.kind, current.is).map((name) => [
        name === 'to' && t('if.and'), control(name, current[name])]));
  }

  function control(name, value) {
    const rest = {'aria-label': t(`if.field.${name}`), 'data-key': `if-${name}`};
    const number = (min, max) => h('input', {type: 'number', class: 'number', min, max, value, ...rest,
      onchange: (event) => change(name, Number(event.target.value))});
    if (name === 'side') return choice([['before', t('form.before')], ['after', t('form.after')]], value, (side) => change('side', side), rest);
    if (name === 'of') return choice([['sunrise', t('say.sunrise')], ['sunset', t('say.sunset')]], value, (of) => change('of', of), rest);
    if (name === 'minutes') return [number(0, 1440), t('form.minutes')];
    if (name === 'months') return pills(name, value, [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12], (month) => monthName(month, 'short'));
    if (name === 'days') {
      return current.kind === 'weekday'
        ? pills(name, value, weekOrder().map((index) => WEEKDAYS[index]), (day) => weekdayName(WEEKDAYS.indexOf(day), 'short'))
        : numberList(value, rest);
    }
    switch (current.kind) {
      case 'time': return h('input', {class: 'time', size: 9, value: timeText(readClock(value) ?? 0), ...rest, onchange: (event) => {
        const minutes = readClock(event.target.value);
        if (minutes === null) event.target.setAttribute('aria-invalid', 'true');
        else change(name, clockText(minutes));
      }});
      case 'weekday': return choice(WEEKDAYS.map((day, index) => [day, weekdayName(index)]), value, (day) => change(name, day), rest);
      case 'month': return choice([1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12].map((month) => [month, monthName(month)]), value,
        (month) => change(name, Number(month)), rest);
      case 'date': return h('input', {type: 'date', value, ...rest, onchange: (event) => change(name, event.target.value)});
      case 'day': return number(1, 31);
      default: return number(1, 9999);
    }
  }

  const pills = (name, chosen, values, label) => h('fieldset', {class: 'line'},
    h('legend', {class: 'unseen'}, t(`if.field.${name}`)),
    values.map((value) => h('label', {class: 'pill'}, h('input', {type: 'checkbox', checked: chosen.includes(value),
      'data-key': `if-${name}-${value}`, onchange: (event) => change(name, values.filter((one) =>
        (one === value ? event.target.checked : chosen.includes(one))))}), h('span', null, label(value)))));

  /** "1, 15, 31" */
  const numberList = (value, rest) => h('input', {value: value.join(', '), size: 12, ...rest, onchange: (event) => {
    const days = event.target.value.split(/[\s,;]+/).filter(Boolean).map(Number);
    if (days.length && days.every((day) => Number.isInteger(day) && day >= 1 && day <= 31)) change('days', days);
    else event.target.setAttribute('aria-invalid', 'true');
  }});

  async function test() {
    const asked = current;
    if (!asked) return replace(verdict);
    try {
      const {result, because} = await api.post('/conditions/test', {condition: asked});
      if (asked !== current) return;
      verdict.className = `verdict ${result}`;
      replace(verdict, icon(result ? 'done' : 'missed'), ' ', conditionText(asked), ' — ',
        h('strong', null, t(result ? 'if.trueNow' : 'if.falseNow')), ', ', t('if.because', {why: becauseText(asked, because)}));
    } catch (error) {
      if (asked !== current) return;
      verdict.className = 'verdict error';
      replace(verdict, error.message);
    }
  }
  draw();
  test();
  return h('div', {class: 'condition'}, controls, verdict);
}

