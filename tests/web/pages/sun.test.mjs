// The sun over the year, and nights in which the clocks change.

import assert from 'node:assert/strict';
import test, {after, before} from 'node:test';

import {closeBrowser, open, openBrowser} from '../browser.mjs';
import {House} from '../house.mjs';

before(openBrowser);
after(closeBrowser);

async function withHouse(options, work) {
  const house = await House.start(options);
  try {
    await work(house);
  } finally {
    await house.stop();
  }
}

test('the curves step where the clocks change, and the slider reads them out', () =>
  withHouse({}, async (house) => {
    const page = await open(house, '#/sun?year=2027');
    await page.getByText(/28 Mar 2027: clocks \+1 h · 31 Oct 2027: clocks −1 h/).waitFor();
    const steps = await page.locator('path.curve.sunrise').getAttribute('d');
    assert.equal((steps.match(/H/g) ?? []).length, 2, 'two steps in a year');
    const slider = page.getByLabel('Day of the year');
    await slider.fill('0');
    const {sunrise, sunset} = await house.ask('GET', '/sun?date=2027-01-01');
    await page
      .locator('.readout')
      .getByText(`1 January 2027: sunrise ${sunrise.slice(11, 16)}, sunset ${sunset.slice(11, 16)}`)
      .waitFor();
    await page.done();
  }));

test('an event is drawn among the sun', () =>
  withHouse({}, async (house) => {
    const {id} = await house.ask('POST', '/events', {
      description: 'Blinds',
      start: '2027-01-01',
      time: {base: 'sunrise', minutes: 30},
      repeat: {unit: 'day', every: 7},
    });
    const page = await open(house, '#/sun?year=2027');
    await page.getByLabel('Show an event…').selectOption(String(id));
    await page.locator('.legend').getByText('Blinds (53×)').waitFor();
    assert.equal(await page.locator('.plot .trace circle').count(), 53);
    await page.getByRole('button', {name: 'Do not show Blinds'}).click();
    await page.locator('.plot .trace circle').first().waitFor({state: 'detached'});
    await page.done();
  }));

test('a name without a space, from right to left or not, stays within the picture of the sun', () =>
  withHouse({}, async (house) => {
    const ids = [];
    for (const description of ['W'.repeat(200), '\u202eturned']) {
      const {id} = await house.ask('POST', '/events', {
        description,
        time: {base: 'sunset', minutes: 0},
        repeat: {unit: 'day'},
      });
      ids.push(id);
    }
    const page = await open(house, `#/sun?events=${ids}`, {viewport: {width: 390, height: 844}});
    const readout = page.locator('.readout');
    await readout.getByText('WWWW').waitFor();
    assert.match(await readout.innerText(), /\u2068\u202eturned\u2069 \d\d:\d\d$/);
    const wider = await page.evaluate(
      () => document.documentElement.scrollWidth - document.documentElement.clientWidth,
    );
    assert.ok(wider <= 0, `${wider} pixels too wide`);
    await page.done();
  }));

test('polar days and nights are shown as what they are', () =>
  withHouse(
    {zone: 'Arctic/Longyearbyen', place: ['--latitude', '78.22', '--longitude', '15.65']},
    async (house) => {
      const page = await open(house, '#/sun?year=2027');
      await page
        .getByText(/the sun does not set on \d{3} days · the sun does not rise on \d{2,3} days/)
        .waitFor();
      await page.getByLabel('Day of the year').fill('170');
      await page.locator('.readout').getByText('the sun does not set').waitFor();
      await page.getByText('As a table').click();
      assert.ok((await page.getByRole('cell', {name: 'the sun does not rise'}).count()) >= 4);
      await page.done();
    },
  ));

test('the calendar marks the nights of clock changes', () =>
  withHouse({}, async (house) => {
    const page = await open(house, '#/calendar?view=month&date=2027-03-15');
    await page.locator('td[data-day="2027-03-28"]').getByText('clocks +1 h').waitFor();
    assert.equal(await page.locator('.clockchange').count(), 1);
    await page.goto(`${house.url}#/calendar?view=week&date=2027-10-31`);
    await page.locator('.head').getByText('clocks −1 h').waitFor();
    await page.done();
  }));
