import assert from 'node:assert/strict';
import test from 'node:test';

import {moved} from '../../../web/src/moves.js';

const clock = (minutes, spread = 0) => ({base: 'clock', minutes, spread});
const event = (time, repeat, start = '2026-11-02') => ({description: 'Porch', start, time, repeat});
const at = (date, minutes) => ({date, minutes});

test('what comes once goes where it was dropped', () => {
  const after = moved(
    event(clock(600), null, '2026-11-21'),
    at('2026-11-21', 600),
    at('2026-11-24', 660),
    'start',
  );
  assert.deepEqual(after, {
    description: 'Porch',
    start: '2026-11-24',
    time: clock(660),
    repeat: null,
  });
});

test('another time on the same day is another time for all', () => {
  const before = event(clock(600, 10), {unit: 'day', every: 3});
  const after = moved(before, at('2026-11-05', 600), at('2026-11-05', 615), 'every');
  assert.deepEqual(after, {...before, time: clock(615, 10)});
});

test('each third day shifts as a whole', () => {
  const after = moved(
    event(clock(600), {unit: 'day', every: 3}),
    at('2026-11-05', 600),
    at('2026-11-06', 600),
    'every',
  );
  assert.equal(after.start, '2026-11-03');
});

test('moving the start makes it begin there', () => {
  const after = moved(
    event(clock(600), {unit: 'day', every: 3}),
    at('2026-11-05', 600),
    at('2026-11-06', 600),
    'start',
  );
  assert.equal(after.start, '2026-11-06');
});

test('of the weekdays only the one that was taken moves', () => {
  const before = event(clock(600), {unit: 'week', every: 1, on: ['mon', 'fri']});
  const after = moved(before, at('2026-11-09', 600), at('2026-11-10', 600), 'every');
  assert.deepEqual(after.repeat.on.sort(), ['fri', 'tue']);
  assert.equal(after.start, before.start);
});

test('two weekdays that meet become one', () => {
  const after = moved(
    event(clock(600), {unit: 'week', every: 1, on: ['mon', 'fri']}),
    at('2026-11-09', 600),
    at('2026-11-13', 600),
    'every',
  );
  assert.deepEqual(after.repeat.on, ['fri']);
});

test('each second week keeps its turn within the week, and changes it into the next', () => {
  const before = event(clock(600), {unit: 'week', every: 2, on: ['mon']}, '2026-11-07');
  const within = moved(before, at('2026-11-16', 600), at('2026-11-17', 600), 'every');
  assert.equal(
    within.start,
    '2026-11-07',
    'the start is a Saturday: a day on would be another week',
  );
  const next = moved(before, at('2026-11-16', 600), at('2026-11-24', 600), 'every');
  assert.equal(next.start, '2026-11-14');
});

test('the day of the month is the day on which it was dropped', () => {
  const before = event(clock(600), {unit: 'month', every: 1}, '2026-01-21');
  assert.equal(
    moved(before, at('2026-11-21', 600), at('2026-11-25', 600), 'every').start,
    '2026-01-25',
  );
  assert.equal(
    moved(before, at('2026-11-21', 600), at('2026-12-02', 600), 'every').start,
    '2026-02-02',
  );
  // Dropped on a 31st: February has none, so it begins in March.
  const late = event(clock(600), {unit: 'month', every: 1}, '2026-02-21');
  assert.equal(
    moved(late, at('2026-12-21', 600), at('2026-12-31', 600), 'every').start,
    '2026-03-31',
  );
});

test('the day of the year moves with its month', () => {
  const before = event(clock(600), {unit: 'year', every: 1}, '2020-05-30');
  assert.equal(
    moved(before, at('2026-05-30', 600), at('2026-06-02', 600), 'every').start,
    '2020-06-02',
  );
});

test('the third Saturday becomes the fourth Sunday, the last stays the last', () => {
  const third = event(clock(600), {unit: 'month', every: 1, nth: {week: 3, weekday: 'sat'}});
  assert.deepEqual(moved(third, at('2026-11-21', 600), at('2026-11-22', 600), 'every').repeat.nth, {
    week: 4,
    weekday: 'sun',
  });
  const last = event(clock(600), {unit: 'month', every: 1, nth: {week: 'last', weekday: 'sat'}});
  assert.deepEqual(moved(last, at('2026-11-28', 600), at('2026-11-27', 600), 'every').repeat.nth, {
    week: 'last',
    weekday: 'fri',
  });
  assert.deepEqual(
    moved(third, at('2026-11-21', 600), at('2026-11-30', 600), 'every').repeat.nth,
    {week: 'last', weekday: 'mon'},
    'there is no fifth Monday in every month',
  );
});

test('what follows the sun goes on following it, by as much more or less', () => {
  const before = event({base: 'sunset', minutes: -30, spread: 5}, {unit: 'day', every: 1});
  const sunset = at('2026-11-21', 934);
  assert.deepEqual(moved(before, sunset, at('2026-11-21', 919), 'every').time, {
    base: 'sunset',
    minutes: -45,
    spread: 5,
  });
  assert.deepEqual(moved(before, sunset, at('2026-11-21', 919), 'every', true).time, clock(919, 5));
  assert.deepEqual(
    moved(before, sunset, at('2026-11-22', 934), 'every').time,
    before.time,
    'another day is no other time',
  );
  assert.equal(
    moved(
      event({base: 'sunset', minutes: -1400, spread: 0}, null),
      at('2026-11-21', 900),
      at('2026-11-21', 0),
      'start',
    ).time.minutes,
    -1440,
  );
});

test('a time on the day after its date stays there', () => {
  const after = moved(
    event(clock(1500), {unit: 'day', every: 1}),
    at('2026-11-21', 60),
    at('2026-11-21', 90),
    'every',
  );
  assert.equal(after.time.minutes, 1530);
});

test('an end before the new place is given up', () => {
  const before = event(clock(600), {unit: 'day', every: 1, until: '2026-11-22'});
  assert.equal(
    moved(before, at('2026-11-21', 600), at('2026-11-25', 600), 'start').repeat.until,
    undefined,
  );
  assert.equal(
    moved(before, at('2026-11-21', 600), at('2026-11-22', 600), 'start').repeat.until,
    '2026-11-22',
  );
});
