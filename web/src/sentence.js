// An event in words, "every 2 weeks on Monday and Friday, 30 minutes before sunset".

import {dayOfMonth, monthOf, nthOfMonth, weekdayIndex, WEEKDAYS} from './dates.js';
import {
  dateText,
  dayAndMonth,
  listText,
  longDate,
  monthName,
  t,
  timeText,
  weekdayName,
  weekOrder,
} from './locale.js';

/** "at 19:30", "30 minutes before sunset", with the random part. */
export function timeSentence(time) {
  const base = time.base === 'clock' ? clockSentence(time.minutes) : sunSentence(time);
  return time.spread > 0 ? `${base}, ${t('say.spread', {n: time.spread})}` : base;
}

function clockSentence(minutes) {
  const said = t('say.at', {time: timeText(minutes)});
  if (minutes < 0) return `${said} ${t('say.dayBefore')}`;
  return minutes > 1439 ? `${said} ${t('say.dayAfter')}` : said;
}

function sunSentence({base, minutes}) {
  const sun = t(`say.${base}`);
  if (minutes === 0) return t('say.atSun', {sun});
  return t(minutes < 0 ? 'say.beforeSun' : 'say.afterSun', {n: Math.abs(minutes), sun});
}

/** "third Saturday", "last Sunday" */
export const nthText = ({week, weekday}) =>
  t('say.nth', {nth: t(`nth.${week}`), weekday: weekdayName(WEEKDAYS.indexOf(weekday))});

function repeatSentence(repeat, start) {
  const every = t('say.every', {unit: repeat.unit, n: repeat.every});
  switch (repeat.unit) {
    case 'week': {
      const days = weekOrder().filter((index) => repeat.on?.includes(WEEKDAYS[index]));
      if (days.length === 7 && repeat.every === 1) return t('say.every', {unit: 'day', n: 1});
      return `${every} ${t('say.onDays', {days: listText(days.map((index) => weekdayName(index)))})}`;
    }
    case 'month':
      return `${every} ${
        repeat.nth
          ? t('say.onNth', {nth: nthText(repeat.nth)})
          : t('say.onDayOfMonth', {day: dayOfMonth(start)})
      }`;
    case 'year':
      return `${every} ${
        repeat.nth
          ? t('say.onNthOf', {nth: nthText(repeat.nth), month: monthName(monthOf(start))})
          : t('say.onDate', {date: dayAndMonth(start)})
      }`;
    default:
      return every;
  }
}

/**
 * The whole of it. `today` decides whether the first day is worth a word: where days, weeks, months
 * or years are left out it always is, because they are counted from there.
 */
export function sentence(event, today) {
  if (event.odd) return t('say.odd');
  if (!event.repeat) {
    return t('say.once', {date: longDate(event.start), time: timeSentence(event.time)});
  }
  const parts = [repeatSentence(event.repeat, event.start), timeSentence(event.time)];
  if (event.start > today || event.repeat.every > 1) {
    parts.push(t('say.from', {date: dateText(event.start)}));
  }
  if (event.repeat.until) parts.push(t('say.until', {date: dateText(event.repeat.until)}));
  return parts.join(', ');
}

/** What `start` may mean as "the third Saturday": the choices for the form, at most two. */
export function nthChoices(start) {
  const {week, last} = nthOfMonth(start);
  const weekday = WEEKDAYS[weekdayIndex(start)];
  const choices = week <= 4 ? [{week, weekday}] : [];
  return last ? [...choices, {week: 'last', weekday}] : choices;
}
