import assert from 'node:assert/strict';
import {readFile} from 'node:fs/promises';
import test from 'node:test';

import {arranged} from '../../../web/src/calendar/hours.js';
import {EventCutter} from '../../../web/src/stream.js';
import {matches} from '../../../web/src/views/journal.js';
import {readPlace} from '../../../web/src/place.js';

test('a stream is cut into its events wherever it breaks', () => {
  const text =
    ': hello\n\nid: 1\nevent: today\ndata: {"a":1}\n\n: heartbeat\n\nid: 2\r\nevent: journal\r\ndata: {\r\ndata: "b":2}\r\n\r\n';
  const wanted = [
    {id: '1', event: 'today', data: '{"a":1}'},
    {id: '2', event: 'journal', data: '{\n"b":2}'},
  ];
  for (let size = 1; size <= text.length; ++size) {
    const cutter = new EventCutter();
    const events = [];
    for (let begin = 0; begin < text.length; begin += size)
      events.push(...cutter.take(text.slice(begin, begin + size)));
    assert.deepEqual(events, wanted, `in pieces of ${size}`);
  }
});

const at = (...minutes) => minutes.map((one, event) => ({event, minutes: one}));

test('occurrences that would cover each other stand one below the other', () => {
  const blocks = arranged(at(600, 610, 700), 3);
  assert.deepEqual(
    blocks.map(({minutes, lane, of}) => [minutes, lane, of]),
    [
      [600, 0, 1],
      [632, 0, 1],
      [700, 0, 1],
    ],
  );
});

test('where they would be pushed too far they stand side by side', () => {
  const blocks = arranged(at(600, 600, 600, 610, 620), 3);
  assert.deepEqual(
    blocks.map(({of}) => of),
    [2, 2, 2, 2, 2],
  );
  for (const {occurrence, minutes} of blocks) {
    assert.ok(minutes >= occurrence.minutes && minutes - occurrence.minutes <= 48);
  }
  for (const one of blocks) {
    for (const other of blocks) {
      assert.ok(
        one === other || one.lane !== other.lane || Math.abs(one.minutes - other.minutes) >= 32,
        'none covers another',
      );
    }
  }
});

test('a crowd ends where its lanes do', () => {
  const blocks = arranged(at(600, 600, 600, 700), 2);
  assert.deepEqual(
    blocks.map(({of}) => of),
    [2, 2, 2, 1],
  );
});

test('of a crowd the last place counts the rest, and none is lost', () => {
  for (const lanes of [1, 2, 3, 6]) {
    const blocks = arranged(at(...Array.from({length: 50}, (_, index) => 600 + index)), lanes);
    const shown = blocks.filter(({more}) => !more).length;
    const counted = blocks.reduce((sum, {more = 0}) => sum + more, 0);
    assert.equal(shown + counted, 50);
    assert.ok(counted > 0);
    for (const {lane, of} of blocks) assert.ok(lane < of && of <= lanes);
  }
});

test('a place is read in the ways people write it', () => {
  const rows = [
    ['52.52, 13.405', 52.52, 13.405],
    ['52,52; 13,405', 52.52, 13.405],
    ['-33.87 151.21', -33.87, 151.21],
    ['33.87° S, 151.21° E', -33.87, 151.21],
    ['51.5 N 0.12 W', 51.5, -0.12],
    ['0,0', 0, 0],
    ['90, -180', 90, -180],
    ['52.5 N, 13.4 O', 52.5, 13.4],
  ];
  for (const [text, latitude, longitude] of rows)
    assert.deepEqual(readPlace(text), {latitude, longitude}, text);
  assert.deepEqual(readPlace('52°31′12″N 13° 24\' E'), {latitude: 52.52, longitude: 13.4});
  assert.deepEqual(readPlace('33°51.5′S, 151°12′E'), {latitude: -33.858333, longitude: 151.2});
  for (const text of ['', 'Berlin', '91, 0', '0, 181', '52.52', '1, 2, 3'])
    assert.equal(readPlace(text), null, text);
});

test('a row that has just come obeys the filters', () => {
  const row = {
    kind: 'fired',
    event: 7,
    at: '2026-11-21T16:04:00+01:00',
    description: 'Porch',
    text: '',
  };
  const all = {kind: [], event: '', from: '', to: '', q: ''};
  assert.ok(matches(row, all));
  assert.ok(
    matches(row, {
      ...all,
      kind: ['held', 'fired'],
      event: '7',
      from: '2026-11-21',
      to: '2026-11-21',
      q: 'PORCH',
    }),
  );
  for (const wrong of [
    {kind: ['held']},
    {event: '8'},
    {from: '2026-11-22'},
    {to: '2026-11-20'},
    {q: 'garden'},
  ]) {
    assert.equal(matches(row, {...all, ...wrong}), false, JSON.stringify(wrong));
  }
});

test('the browser is told beforehand of the modules that the first view needs, and of no other', async () => {
  const web = new URL('../../../web/', import.meta.url);
  const needed = new Set();
  const follow = async (name) => {
    if (needed.has(name)) return;
    needed.add(name);
    const text = await readFile(new URL(name, web), 'utf8');
    for (const [, other] of text.matchAll(/^import[^;]*? from '([^']+)';/gms)) {
      await follow(new URL(other, new URL(name, web)).href.slice(web.href.length));
    }
  };
  await follow('src/main.js');
  const told = [
    ...(await readFile(new URL('index.html', web), 'utf8')).matchAll(
      /modulepreload" href="([^"]+)"/g,
    ),
  ].map((match) => match[1]);
  needed.delete('src/main.js');
  assert.deepEqual(told, [...needed].sort());
});
