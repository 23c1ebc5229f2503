// What the controller warns of is said in the page's own words, whatever its language.

import assert from 'node:assert/strict';
import test, {after, before} from 'node:test';

import {choose} from '../../../web/src/locale.js';
import {warningText} from '../../../web/src/views/warnings.js';
import {dayFromNow} from '../browser.mjs';
import {House} from '../house.mjs';

let house;
before(async () => {
  house = await House.start({arguments: ['--empty']});
});
after(() => house.stop());

const clock = (minutes, spread = 0) => ({base: 'clock', minutes, spread});
const daily = (more = {}) => ({unit: 'day', ...more});

/** The warnings of an event that begins on `start`. */
async function warnings(time, repeat, start = dayFromNow(1)) {
  const body = {description: 'x', start, time, repeat};
  return (await house.ask('POST', '/preview', body)).warnings;
}

/** What is said, and how often its code is said by a text that the page knows. */
async function saidOf(time, repeat, start) {
  const all = await warnings(time, repeat, start);
  assert.ok(all.length > 0, 'nothing is warned of');
  return all.map((one) => {
    const said = warningText(one);
    assert.notEqual(said, one.text, `"${one.text}" is not known to the page`);
    return said;
  });
}

const rows = [
  ['Es kommt nie: der', clock(600), null, '2020-02-03'],
  ['Es kommt nie: sein letzter Tag', clock(600), daily({until: '2020-02-09'}), '2020-02-03'],
  ['Es kommt nie: ohne Ende endet es', clock(600), daily(), '2050-01-01'],
  ['es kommt stattdessen um Mitternacht', clock(-300), daily()],
  ['dann kommt es um Mitternacht', clock(10, 60), daily()],
  ['dann kommt es nur, wo Verpasstes nachgeholt wird', clock(1430, 60), daily()],
  ['endet: es kommt nur, wo Verpasstes nachgeholt wird', clock(1740), daily()],
  ['weil die Uhren vorgestellt werden; es kommt um 03:30', clock(150), daily(), '2027-03-26'],
  ['weil die Uhren zurückgestellt werden', clock(150), daily(), '2027-10-29'],
  ['Tage werden zu 24 Stunden gezählt', clock(600), daily({every: 2}), '2027-03-21'],
  ['Ohne Ende endet es am 18. Jan. 2038', clock(600), {unit: 'year', every: 3}],
];

for (const [said, ...event] of rows) {
  test(`in German: ${said}`, async () => {
    choose('language', 'de');
    choose('clock', '24');
    const texts = await saidOf(...event);
    assert.ok(
      texts.some((text) => text.includes(said)),
      texts.join('\n'),
    );
  });
}

test('in English by the clock of 12 hours', async () => {
  choose('language', 'en');
  choose('clock', '12');
  const [said] = await saidOf(clock(150), daily(), '2027-03-26');
  assert.match(said, /^On .*28.* there is no 2:30\sAM, .*; it comes at 3:30\sAM\.$/);
});
