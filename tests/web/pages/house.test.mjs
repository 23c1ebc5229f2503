// The house itself: its place, being away, schedules in and out, backups, tokens.

import assert from 'node:assert/strict';
import {readFile} from 'node:fs/promises';
import test, {after, before} from 'node:test';

import {closeBrowser, dayFromNow, findings, open, openBrowser, until} from '../browser.mjs';
import {House} from '../house.mjs';

let house;
before(async () => {
  await openBrowser();
  house = await House.start();
});
after(async () => {
  await closeBrowser();
  await house.stop();
});

test('the place is typed, and the sun in the head follows', async () => {
  const page = await open(house, '#/project');
  const rise = page.locator('#facts .rise');
  const before = await rise.innerText();
  await page.getByLabel('Latitude and longitude').fill('38.72, -9.14');
  await page.getByRole('button', {name: 'Set place'}).click();
  await page.locator('#facts').getByText('38.72° N, 9.14° W').waitFor();
  await until(async () => (await rise.innerText()) !== before, 'another sunrise');
  assert.deepEqual((await house.ask('GET', '/project')).place, {
    latitude: 38.72,
    longitude: -9.14,
    guessed: false,
  });
  await page.getByRole('button', {name: 'Undo'}).click();
  await page.locator('#facts').getByText('52.52° N').waitFor();
  await page.done();
});

test('the place is that of a city', async () => {
  const page = await open(house, '#/project');
  const city = page.getByLabel('Near the city of');
  await city.focus();
  await page.locator('#cities option').nth(100).waitFor({state: 'attached'});
  await city.fill('Sydney');
  await city.press('Tab');
  assert.match(
    await page.getByLabel('Latitude and longitude').inputValue(),
    /^-33\.8\d*, 151\.2\d*$/,
  );
  await page.getByRole('button', {name: 'Set place'}).click();
  await page
    .locator('#facts')
    .getByText(/33\.8\d° S, 151\.2\d° E/)
    .waitFor();
  const typed = page.getByLabel('Latitude and longitude');
  for (const name of ['york', 'são paulo']) {
    await city.fill(name);
    await city.press('Tab');
    await until(
      async () => /^(40\.7|-23\.5)\d*, -(74|46)/.test(await typed.inputValue()),
      `the point of ${name}`,
    );
  }
  const before = await typed.inputValue();
  await city.fill('Atlantis');
  await city.press('Tab');
  await page.getByText('“Atlantis” is not among the cities').waitFor();
  assert.equal(await city.getAttribute('aria-invalid'), 'true');
  assert.equal(await typed.inputValue(), before);
  assert.deepEqual(await findings(page), []);
  await page.done();
});

test('the page goes by the clock of the house, wherever it is looked at', async () => {
  const far = await House.start({
    zone: 'Pacific/Auckland',
    place: ['--latitude', '-36.85', '--longitude', '174.76'],
  });
  try {
    // Two days may be begun there, seen from Honolulu.
    const page = await open(far, '#/today', {timezoneId: 'Pacific/Honolulu'});
    const now = async () => (await far.ask('GET', '/project')).now;
    await until(
      async () => (await page.locator('#clock').innerText()) === (await now()).slice(11, 16),
      "the house's time in the head",
    );
    const day = (await now()).slice(0, 10);
    const title = new Intl.DateTimeFormat('en-GB', {dateStyle: 'full', timeZone: 'UTC'}).format(
      new Date(`${day}T12:00:00Z`),
    );
    assert.equal(
      (await page.locator('.date').innerText()).replace(',', ''),
      title.replace(',', ''),
    );
    const {id} = await far.ask('POST', '/events', {
      description: 'There',
      start: day,
      time: {base: 'clock', at: '23:45'},
    });
    await page.goto(`${far.url}#/calendar?view=day`);
    await page
      .locator(`.column[data-day="${day}"] [data-key="${day}-${id}"]`)
      .getByText('23:45')
      .waitFor();
    await page.done();
  } finally {
    await far.stop();
  }
});

test('what is no place is said, and nothing changes', async () => {
  const {place} = await house.ask('GET', '/project');
  const page = await open(house, '#/project');
  await page.getByLabel('Latitude and longitude').fill('somewhere');
  await page.getByRole('button', {name: 'Set place'}).click();
  await page.getByRole('alert').getByText('“somewhere” is no place; write 52.52, 13.405').waitFor();
  assert.deepEqual((await house.ask('GET', '/project')).place, place);
  await page.done();
});

test('the house goes away and comes back', async () => {
  const page = await open(house, '#/project');
  await page.getByLabel('Away until').fill(dayFromNow(5));
  await page.getByRole('button', {name: 'Go away'}).click();
  await page.locator('#facts .away').waitFor();
  assert.equal((await house.ask('GET', '/project')).away_until, dayFromNow(5));
  await page.getByRole('button', {name: 'Back again'}).click();
  await page.locator('#facts .away').waitFor({state: 'detached'});
  assert.equal((await house.ask('GET', '/project')).away_until, null);
  await page.done();
});

test('the house has a name', async () => {
  const page = await open(house, '#/project');
  await page.getByLabel('Name of the house').fill('<b>Ada & Ben’s</b>');
  await page.getByRole('button', {name: 'Save', exact: true}).click();
  await page.locator('#name').getByText('<b>Ada & Ben’s</b>').waitFor();
  await page.done();
});

test('a schedule goes out as a file and comes in again, after a look at it', async () => {
  await house.ask('POST', '/events', {
    description: 'Exported',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  const page = await open(house, '#/project');
  const [download] = await Promise.all([
    page.waitForEvent('download'),
    page.getByRole('button', {name: 'Save as a file'}).click(),
  ]);
  const xml = await readFile(await download.path(), 'utf8');
  assert.match(xml, /Exported/);
  const {total} = await house.ask('GET', '/events');
  await house.ask('DELETE', `/events/${(await house.eventNamed('Exported')).id}`);

  await page
    .getByLabel('File')
    .setInputFiles({name: 'schedule.xml', mimeType: 'application/xml', buffer: Buffer.from(xml)});
  await page.getByText(`${total} would be kept`).waitFor();
  assert.equal(await house.eventNamed('Exported'), undefined, 'a look changes nothing');
  await page.getByRole('button', {name: 'Import', exact: true}).click();
  await page.getByText('The schedule was imported').waitFor();
  assert.ok(await house.eventNamed('Exported'));
  await page.locator('.backups li').first().waitFor();
  await page.done();
});

test('what is no schedule is refused', async () => {
  const page = await open(house, '#/project', {expects: /status of 4\d\d/});
  await page.getByLabel('File').setInputFiles({
    name: 'letter.xml',
    mimeType: 'application/xml',
    buffer: Buffer.from('Dear Ada'),
  });
  await page
    .locator('.card')
    .filter({hasText: 'Import'})
    .locator('.error')
    .filter({hasText: /\w/})
    .waitFor();
  await page.done();
});

test('a schedule is put aside and restored', async () => {
  const page = await open(house, '#/project');
  await page.getByRole('button', {name: 'Put aside now'}).click();
  await page.getByText('The schedule was put aside').waitFor();
  await house.ask('POST', '/events', {
    description: 'Later',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  await page.locator('[data-key=restore-1]').click();
  await page
    .getByRole('dialog', {name: 'Restore a backup?'})
    .getByRole('button', {name: 'Restore'})
    .click();
  await page.getByText('The backup was restored').waitFor();
  assert.equal(await house.eventNamed('Later'), undefined);
  await page.goto(`${house.url}#/events`);
  await page.getByRole('link', {name: 'Later'}).waitFor({state: 'detached'});
  await page.done();
});
