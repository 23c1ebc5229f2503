import assert from 'node:assert/strict';
import {readdir, readFile} from 'node:fs/promises';
import {join} from 'node:path';
import test from 'node:test';
import {fileURLToPath} from 'node:url';

import {draftOf, read} from '../../../web/src/draft.js';
import {house} from '../../../web/src/house.js';
import {choose, t, timeText} from '../../../web/src/locale.js';
import {sentence} from '../../../web/src/sentence.js';
import {strings} from '../../../web/src/strings.js';
import {becauseText, conditionText} from '../../../web/src/views/conditions.js';

const SOURCES = fileURLToPath(new URL('../../../web/src/', import.meta.url));

async function sources(folder = SOURCES) {
  const entries = await readdir(folder, {withFileTypes: true});
  const texts = await Promise.all(
    entries.map((entry) =>
      entry.isDirectory()
        ? sources(join(folder, entry.name))
        : entry.name === 'strings.js'
          ? ''
          : readFile(join(folder, entry.name), 'utf8'),
    ),
  );
  return texts.join('\n');
}

test('both languages have the same texts', () => {
  assert.deepEqual(Object.keys(strings.de).sort(), Object.keys(strings.en).sort());
});

test('each text has the same gaps in both languages', () => {
  const gaps = (text) => (typeof text === 'string' ? (text.match(/\{\w+\}/g) ?? []).sort() : null);
  for (const key of Object.keys(strings.en)) {
    const [en, de] = [gaps(strings.en[key]), gaps(strings.de[key])];
    if (en && de) assert.deepEqual(de, en, key);
  }
});

test('every text that the page asks for is there, and every text is asked for', async () => {
  const source = await sources();
  const whole = new Set([...source.matchAll(/\bt\('([\w.-]+)'/g)].map((match) => match[1]));
  for (const [, first, second] of source.matchAll(/\bt\([^'`]*? \? '([\w.-]+)' : '([\w.-]+)'/g))
    whole.add(first).add(second);
  for (const key of whole) assert.ok(key in strings.en, `there is no text "${key}"`);
  // Some are put together: t(`state.${state}`).
  const stems = [...source.matchAll(/`([\w.]+\.)\$\{/g)].map((match) => match[1]);
  const unused = Object.keys(strings.en).filter(
    (key) => !whole.has(key) && !stems.some((stem) => key.startsWith(stem)),
  );
  assert.deepEqual(unused, []);
});

const daily = (time) => ({
  description: 'Porch',
  start: '2026-11-01',
  time,
  repeat: {unit: 'day', every: 1},
});
const today = '2026-11-21';

test('a rule reads like a sentence', () => {
  choose('language', 'en');
  choose('clock', '24');
  choose('week', '1');
  const noon = {base: 'clock', minutes: 720, spread: 0};
  const rows = [
    [
      daily({base: 'sunset', minutes: -30, spread: 10}),
      'every day, 30 minutes before sunset, give or take 10 minutes',
    ],
    [daily({base: 'sunrise', minutes: 0, spread: 0}), 'every day, at sunrise'],
    [daily({base: 'sunrise', minutes: 1, spread: 0}), 'every day, 1 minute after sunrise'],
    [daily({base: 'clock', minutes: -30, spread: 0}), 'every day, at 23:30 the day before'],
    [daily({base: 'clock', minutes: 1470, spread: 0}), 'every day, at 00:30 the day after'],
    [
      {...daily(noon), repeat: {unit: 'week', every: 1, on: ['sun', 'mon', 'fri']}},
      'every week on Monday, Friday and Sunday, at 12:00',
    ],
    [{...daily(noon), repeat: {unit: 'month', every: 1}}, 'every month on the 1st, at 12:00'],
    [
      {...daily(noon), start: '2026-11-22', repeat: {unit: 'month', every: 1}},
      'every month on the 22nd, at 12:00, from 22 Nov 2026',
    ],
    [
      {...daily(noon), repeat: {unit: 'year', every: 1, nth: {week: 'last', weekday: 'sun'}}},
      'every year on the last Sunday in November, at 12:00',
    ],
  ];
  for (const [event, said] of rows)
    assert.equal(
      sentence(event, today).replace('Nov 22, 2026', '22 Nov 2026').replace(', and', ' and'),
      said,
    );
});

test('in German too', () => {
  choose('language', 'de');
  const event = {
    ...daily({base: 'sunset', minutes: -30, spread: 10}),
    repeat: {unit: 'week', every: 2, on: ['mon', 'fri'], until: '2027-03-31'},
  };
  assert.equal(
    sentence(event, today),
    'alle 2 Wochen am Montag und Freitag, 30 Minuten vor Sonnenuntergang, ' +
      'plus/minus 10 Minuten, ab 1. Nov. 2026, bis 31. März 2027',
  );
  choose('language', 'en');
});

test('midnight and noon on both clocks', () => {
  choose('clock', '12');
  assert.deepEqual(
    [0, 1, 719, 720, 1439].map(timeText).map((text) => text.replace(/\s/, ' ')),
    ['12:00 AM', '12:01 AM', '11:59 AM', '12:00 PM', '11:59 PM'],
  );
  choose('clock', '24');
  assert.deepEqual([0, 720, 1439].map(timeText), ['00:00', '12:00', '23:59']);
});

test('what a form shows of an event says the same event again', () => {
  const rules = [
    null,
    {unit: 'day', every: 2},
    {unit: 'week', every: 2, on: ['mon', 'fri'], until: '2027-03-31'},
    {unit: 'month', every: 1},
    {unit: 'month', every: 3, nth: {week: 'last', weekday: 'sun'}},
    {unit: 'year', every: 1, nth: {week: 2, weekday: 'tue'}},
  ];
  const times = [
    {base: 'clock', minutes: 0, spread: 0},
    {base: 'clock', minutes: 1439, spread: 720},
    {base: 'clock', minutes: -1, spread: 0},
    {base: 'clock', minutes: -1440, spread: 0},
    {base: 'clock', minutes: 1440, spread: 0},
    {base: 'clock', minutes: 2879, spread: 0},
    {base: 'sunset', minutes: -30, spread: 10},
    {base: 'sunrise', minutes: 0, spread: 0},
    {base: 'sunrise', minutes: 1440, spread: 0},
  ];
  for (const clock of ['12', '24']) {
    choose('clock', clock);
    for (const repeat of rules) {
      for (const time of times) {
        const event = {description: 'Porch', start: '2026-11-21', time, repeat};
        assert.deepEqual(read(draftOf(event)), {event, errors: []});
      }
    }
  }
});

test('what cannot be read is said at its field', () => {
  const draft = {
    ...draftOf(daily({base: 'clock', minutes: 600, spread: 0})),
    description: ' ',
    at: 'evening',
    spread: 'x',
    every: '',
    start: '',
  };
  assert.deepEqual(
    read(draft)
      .errors.map(({pointer}) => pointer)
      .sort(),
    ['/description', '/repeat/every', '/start', '/time/at', '/time/spread'],
  );
  const weekly = {
    ...draftOf(daily({base: 'clock', minutes: 600, spread: 0})),
    unit: 'week',
    on: new Set(),
  };
  assert.deepEqual(read(weekly).errors, [{pointer: '/repeat/on', detail: t('form.noDays')}]);
});

test('a condition with a list says what of it decides', () => {
  choose('language', 'en');
  const rows = [
    [{kind: 'month', is: 'ne', months: [12, 1, 2]}, 'the month is neither December nor January nor February'],
    [{kind: 'month', is: 'ne', months: [12]}, 'the month is not December'],
    [{kind: 'day', is: 'gt', days: [15, 2]}, 'the day of the month is after the 2nd'],
    [{kind: 'day', is: 'le', days: [2, 15]}, 'the day of the month is the 15th or before'],
    [
      {kind: 'weekday', is: 'gt', days: ['sat', 'sun']},
      'the weekday is after Sunday, in a week from Sunday on',
    ],
    [{kind: 'weekday', is: 'eq', days: ['sat']}, 'the weekday is Saturday'],
  ];
  for (const [condition, said] of rows) assert.equal(conditionText(condition), said);
});

test('why a condition holds is said by the clock of the page, with the seconds that decide', () => {
  house.project = {now: '2026-11-21T17:00:00+01:00'};
  house.sun = {polar: null, sunrise: '2026-11-21T07:37:00+01:00', sunset: '2026-11-21T16:07:00+01:00'};
  choose('clock', '12');
  const plain = (text) => text.replace(/\s/g, ' ');
  const after = {kind: 'time', is: 'gt'};
  assert.equal(plain(becauseText(after, 'it is 12:00:31')), 'it is 12:00:31 PM');
  const sunny = plain(becauseText({kind: 'time', is: 'day'}, 'it is 00:05'));
  assert.equal(sunny, 'it is 12:05 AM, the sun rises at 7:37 AM and sets at 4:07 PM');
  choose('clock', '24');
  assert.equal(becauseText(after, 'it is 12:00:31'), 'it is 12:00:31');
});

test('a name that is written from right to left does not turn the text around it', () => {
  choose('language', 'en');
  const arabic = '\u0625\u0636\u0627\u0621\u0629';
  assert.equal(t('deed.ran', {description: arabic}), `“\u2068${arabic}\u2069” was run`);
  assert.equal(t('deed.ran', {description: '\u202eodd'}), '“\u2068\u202eodd\u2069” was run');
  assert.equal(t('deed.ran', {description: 'Porch'}), '“Porch” was run');
});
