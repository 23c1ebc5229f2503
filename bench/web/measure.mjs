// How long the page takes on this machine: its first content, and a month of 1,000 events.
//
//   VEXALINK_PROGRAM=build/release/bin/vexalink VEXALINK_NODE_MODULES=build/release/tests/web/node_modules
//     node bench/web/measure.mjs
//
// The modules are those of the tests: tests/web/run.sh modules. Prints the median and the worst of ten.

import {closeBrowser, open, openBrowser} from '../../tests/web/browser.mjs';
import {House} from '../../tests/web/house.mjs';

const ROUNDS = 10;
const EVENTS = 1000;
const WEEKDAYS = ['sun', 'mon', 'tue', 'wed', 'thu', 'fri', 'sat'];

/** A house's worth of rules: some by the sun, some daily, most of them weekly. */
function manyEvents() {
  return Array.from({length: EVENTS}, (_, index) => ({
    description: `Event number ${index}`,
    start: '2026-01-01',
    time:
      index % 4
        ? {base: 'clock', minutes: (index * 37) % 1440}
        : {base: index % 8 ? 'sunset' : 'sunrise', minutes: (index % 120) - 60},
    repeat:
      index % 10 === 0
        ? {unit: 'day', every: 1 + (index % 7)}
        : {unit: 'week', on: [WEEKDAYS[index % 7], WEEKDAYS[(index + 3) % 7]]},
  }));
}

const median = (numbers) => [...numbers].sort((a, b) => a - b)[Math.floor(numbers.length / 2)];
const report = (what, numbers, limit) =>
  console.log(
    `${what.padEnd(46)} ${median(numbers).toFixed(0).padStart(6)} ms ${Math.max(...numbers)
      .toFixed(0)
      .padStart(6)} ms   ${limit}`,
  );

/** When the browser has painted something of the page, and when today's list is there. */
async function firstContent(house) {
  const [paints, lists] = [[], []];
  for (let round = 0; round < ROUNDS; ++round) {
    const page = await open(house, '#/today');
    await page.locator('.next .name').waitFor();
    const [paint, list] = await page.evaluate(() =>
      ['first-contentful-paint', 'ready'].map(
        (name) => performance.getEntriesByName(name)[0].startTime,
      ),
    );
    paints.push(paint);
    lists.push(list);
    await page.done();
  }
  return {paints, lists};
}

/** From asking for another month until it is painted; and how much of that is the page's own work. */
async function months(house) {
  const page = await open(house, '#/calendar?view=month&date=2026-11-15');
  await page.locator('.month .chip').first().waitFor();
  const numbers = [];
  for (let round = 0; round < ROUNDS; ++round) {
    numbers.push(
      await page.evaluate(
        () =>
          new Promise((resolve) => {
            const stage = document.querySelector('.stage');
            const begun = performance.now();
            new MutationObserver((_, observer) => {
              observer.disconnect();
              const {responseEnd} = performance
                .getEntriesByType('resource')
                .filter(({name}) => name.includes('/occurrences'))
                .at(-1);
              requestAnimationFrame(() =>
                setTimeout(() =>
                  resolve({all: performance.now() - begun, own: performance.now() - responseEnd}),
                ),
              );
            }).observe(stage, {childList: true});
            performance.clearResourceTimings();
            document.querySelector('.bar [aria-label="Later"]').click();
          }),
      ),
    );
  }
  await page.done();
  return numbers;
}

await openBrowser();
const fresh = await House.start();
const house = await House.start({arguments: ['--empty']});
try {
  const first = await firstContent(fresh);
  for (const event of manyEvents()) await house.ask('POST', '/events', event);
  const {paints, lists} = await firstContent(house);
  const numbers = await months(house);
  console.log(`${''.padEnd(46)} ${'median'.padStart(9)} ${'worst'.padStart(9)}   limit`);
  report('first content', [...first.paints, ...paints], '300 ms');
  report("today's list, of 7 events", first.lists, '300 ms');
  report(`today's list, of ${EVENTS} events`, lists, '');
  report(
    `another month of ${EVENTS} events, painted`,
    numbers.map(({all}) => all),
    '',
  );
  report(
    '  of that the page itself',
    numbers.map(({own}) => own),
    '200 ms',
  );
} finally {
  await closeBrowser();
  await fresh.stop();
  await house.stop();
}
