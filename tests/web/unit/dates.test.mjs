import assert from 'node:assert/strict';
import test from 'node:test';

import * as dates from '../../../web/src/dates.js';

test('a time of day is read as people write it', () => {
  const rows = [
    ['7:30', 450],
    ['07:30', 450],
    ['0730', 450],
    ['7.30', 450],
    ['19:30', 1170],
    ['7', 420],
    ['7:30 pm', 1170],
    ['7:30pm', 1170],
    ['7 PM', 1140],
    ['7:30 p.m.', 1170],
    ['7:30\u202fPM', 1170],
    ['12:00 AM', 0],
    ['12:00 PM', 720],
    ['12 am', 0],
    ['12:30 am', 30],
    ['00:00', 0],
    ['0:00', 0],
    ['noon', 720],
    ['midnight', 0],
    ['Mittag', 720],
    ['Mitternacht', 0],
    ['19 Uhr', 1140],
    ['23:59', 1439],
  ];
  for (const [text, minutes] of rows) assert.equal(dates.readClock(text), minutes, text);
});

test('what is no time of day is not taken for one', () => {
  for (const text of [
    '',
    '24:00',
    '7:60',
    '13 pm',
    '0 am',
    '0:30 pm',
    'evening',
    '7:3',
    '1:2:3',
    '-1',
    '7:30 xm',
    null,
  ]) {
    assert.equal(dates.readClock(text), null, String(text));
  }
});

test('days are counted without a clock', () => {
  assert.equal(dates.addDays('2026-03-28', 1), '2026-03-29');
  assert.equal(dates.addDays('2026-03-29', 1), '2026-03-30', 'a day of 23 hours in Berlin');
  assert.equal(dates.addDays('2024-02-28', 1), '2024-02-29');
  assert.equal(dates.addDays('2026-01-01', -1), '2025-12-31');
  assert.equal(dates.daysBetween('2026-10-24', '2026-10-26'), 2);
  assert.equal(dates.addMonths('2026-01-31', 1), '2026-02-28', 'February has no 31st');
  assert.equal(dates.addMonths('2026-01-15', -1), '2025-12-15');
  assert.equal(dates.addMonths('2026-11-30', 3), '2027-02-28');
});

test('what is no day is not taken for one', () => {
  for (const text of ['2026-02-29', '2026-13-01', '2026-00-10', '2026-1-1', '', undefined]) {
    assert.equal(dates.isDay(text), false, String(text));
  }
  assert.ok(dates.isDay('2024-02-29'));
});

test('a week begins where it is said to', () => {
  // 21 November 2026 is a Saturday.
  assert.equal(dates.weekdayOf('2026-11-21'), 'sat');
  assert.equal(dates.startOfWeek('2026-11-21', 1), '2026-11-16');
  assert.equal(dates.startOfWeek('2026-11-21', 0), '2026-11-15');
  assert.equal(dates.startOfWeek('2026-11-21', 6), '2026-11-21');
});

test('the place of a day among its weekdays of the month', () => {
  assert.deepEqual(dates.nthOfMonth('2026-11-07'), {week: 1, last: false});
  assert.deepEqual(dates.nthOfMonth('2026-11-21'), {week: 3, last: false});
  assert.deepEqual(dates.nthOfMonth('2026-11-28'), {week: 4, last: true});
  assert.deepEqual(dates.nthOfMonth('2026-11-29'), {week: 5, last: true});
});

test('the wall clock is taken from the text of a moment, whatever zone this is', () => {
  assert.deepEqual(dates.wall('2026-11-21T16:04:09+01:00'), {
    day: '2026-11-21',
    minutes: 964,
    seconds: 9,
  });
  assert.deepEqual(dates.wall('16:04'), {day: null, minutes: 964, seconds: 0});
  assert.equal(dates.wall('soon'), null);
  assert.equal(dates.offsetOf('2026-11-21T16:04:09+01:00'), 60);
  assert.equal(dates.offsetOf('2026-11-21T16:04:09-03:30'), -210);
  assert.equal(dates.offsetText(-210), 'UTC−03:30');
});
