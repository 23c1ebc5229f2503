// Conditions: what kinds there are, what each is compared with, and how it is said in words.

import {readClock, wall, WEEKDAYS} from '../dates.js';
import {house} from '../house.js';
import {dateText, listText, monthName, t, timeText, weekdayName} from '../locale.js';

export const KINDS = ['time', 'weekday', 'day', 'date', 'month', 'year', 'leap'];

/** How each kind may be compared, and what a fresh one compares with. */
export const FORMS = {
  time: {
    is: ['day', 'night', 'within', 'between', 'gt', 'ge', 'lt', 'le', 'eq', 'ne'],
    fresh: () => ({
      minutes: 30,
      side: 'before',
      of: 'sunset',
      from: '22:00',
      to: '06:00',
      time: '12:00',
    }),
  },
  weekday: {
    is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'],
    fresh: () => ({days: ['sat', 'sun'], from: 'mon', to: 'fri'}),
  },
  day: {
    is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'],
    fresh: () => ({days: [1], from: 1, to: 15}),
  },
  date: {
    is: ['between', 'eq', 'ne', 'gt', 'ge', 'lt', 'le'],
    fresh: () => ({date: house.date(), from: house.date(), to: house.date()}),
  },
  month: {
    is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'],
    fresh: () => ({months: [12], from: 11, to: 3}),
  },
  year: {
    is: ['eq', 'ne', 'between', 'gt', 'ge', 'lt', 'le'],
    fresh: () => {
      const year = Number(house.date().slice(0, 4));
      return {year, from: year, to: year + 1};
    },
  },
  leap: {is: [], fresh: () => ({})},
};

/** The fields that a condition of this kind and comparison has, in the order of the API. */
export function fieldsOf(kind, is) {
  if (kind === 'leap') return [];
  if (is === 'between') return ['from', 'to'];
  if (is === 'within') return ['minutes', 'side', 'of'];
  if (is === 'day' || is === 'night') return [];
  return {
    time: ['time'],
    weekday: ['days'],
    day: ['days'],
    date: ['date'],
    month: ['months'],
    year: ['year'],
  }[kind];
}

export function freshCondition(kind) {
  return trimmed({kind, is: FORMS[kind].is[0], ...FORMS[kind].fresh()});
}

export function trimmed(all) {
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
    return t('if.within', {
      n: condition.minutes,
      side: t(`form.${condition.side}`),
      sun: t(`say.${condition.of}`),
    });
  }
  const say = said[kind];
  if (is === 'between')
    return t('if.between', {subject, from: say(condition.from), to: say(condition.to)});
  const list = condition.days ?? condition.months;
  if (!list) return t(`if.${is}`, {subject, what: say(condition.time ?? condition.date ?? condition.year)});
  const texts = counted(kind, is, list).map(say);
  if (is === 'ne' && list.length > 1) {
    return t('if.neither', {subject, what: texts.join(` ${t('if.nor')} `)});
  }
  const text = t(`if.${is}`, {subject, what: listText(texts, 'disjunction')});
  return kind === 'weekday' && is !== 'eq' && is !== 'ne' ? t('if.inWeek', {text}) : text;
}

/** Those of a list that decide: it is enough to be beyond any of them, so the least or the greatest. */
function counted(kind, is, list) {
  if (is === 'eq' || is === 'ne') return list;
  const order = kind === 'weekday' ? WEEKDAYS : [...list].sort((a, b) => a - b);
  const inOrder = order.filter((one) => list.includes(one));
  return is === 'gt' || is === 'ge' ? inOrder.slice(0, 1) : inOrder.slice(-1);
}

/** Why it is so, in the page's own words; the moment is the controller's. */
export function becauseText({kind, is}, because) {
  const {day} = house.wallNow();
  const today = new Date(`${day}T00:00:00Z`);
  switch (kind) {
    case 'time': {
      const [, clock, seconds = ''] = /(\d\d:\d\d)(:\d\d)?$/.exec(because) ?? [];
      const minutes = readClock(clock) ?? house.wallNow().minutes;
      const time = timeText(minutes).replace(/:\d\d/, `$&${seconds}`);
      const {polar, sunrise, sunset} = house.sun ?? {polar: 'unknown'};
      if (!['day', 'night', 'within'].includes(is) || polar) return t('because.time', {time});
      const [rise, set] = [sunrise, sunset].map((moment) => timeText(wall(moment).minutes));
      return t('because.sun', {time, rise, set});
    }
    case 'weekday':
      return t('because.today', {what: weekdayName(today.getUTCDay())});
    case 'month':
      return t('because.is', {what: monthName(today.getUTCMonth() + 1)});
    case 'year':
    case 'leap':
      return t('because.is', {what: day.slice(0, 4)});
    default:
      return t('because.today', {what: dateText(day)});
  }
}
