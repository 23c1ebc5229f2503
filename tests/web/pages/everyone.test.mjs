// For everyone: by keyboard alone, on a phone, in German, on either clock, light and dark, and by a
// screen reader as far as a checker can tell.

import assert from 'node:assert/strict';
import test, {after, before} from 'node:test';

import {closeBrowser, dayFromNow, findings, open, openBrowser, until} from '../browser.mjs';
import {House} from '../house.mjs';

let house;
let id;
before(async () => {
  await openBrowser();
  house = await House.start();
  const action = {if: {kind: 'time', is: 'night'}, hook: {url: 'http://127.0.0.1:9/'}};
  ({id} = await house.ask('POST', '/events', {
    description: 'Porch light at sunset',
    time: {base: 'sunset', minutes: 0},
    repeat: {unit: 'week', on: ['mon', 'tue', 'sat']},
    programming: {
      actions: [
        action,
        {command: {argv: ['/bin/true']}},
        {variable: {device: 1, variable: 2, value: '3'}},
      ],
    },
  }));
  await house.ask(
    'PATCH',
    `/events/${(await house.ask('GET', '/events')).events[0].id}/programming`,
    {paused_until: dayFromNow(3)},
  );
  await house.ask('POST', `/events/${id}/press`);
});
after(async () => {
  await closeBrowser();
  await house.stop();
});

/** Every view, and what shows that it is there. */
const views = () => ({
  'today': '.next .name',
  'calendar?view=month': '.month .chip',
  'calendar?view=week': '.column .chip',
  'calendar?view=day': '.column',
  'calendar?view=agenda': '.agendaday',
  'events': '.events > li',
  'events/new': '.occurrences li',
  [`events/${id}`]: '.occurrences li',
  [`events/${id}/programming`]: '.verdict strong',
  'sun': '.plot svg',
  'journal': '.entry',
  'project': '.backups li',
});

for (const colorScheme of ['light', 'dark']) {
  test(`the checker finds nothing in any view, ${colorScheme}`, async () => {
    const page = await open(house, '', {colorScheme});
    for (const [view, sign] of Object.entries(views())) {
      await page.goto(`${house.url}#/${view}`);
      await page.locator(sign).first().waitFor();
      assert.deepEqual(await findings(page), [], view);
    }
    await page.goto(`${house.url}#/events`);
    await page.getByRole('button', {name: 'More: Porch light at sunset'}).click();
    await page.getByRole('dialog').waitFor();
    assert.deepEqual(await findings(page), [], 'the dialog of an event');
    await page.done();
  });
}

for (const [width, locale] of [
  [360, 'en-GB'],
  [320, 'de-DE'],
]) {
  test(`a phone of ${width} pixels, ${locale}: no view scrolls sideways, the checker finds nothing`, async () => {
    const page = await open(house, '', {
      locale,
      viewport: {width, height: 740},
      hasTouch: true,
      isMobile: true,
    });
    for (const [view, sign] of Object.entries(views())) {
      await page.goto(`${house.url}#/${view}`);
      await page
        .locator(view.includes('month') ? '.month .dots' : sign)
        .first()
        .waitFor({state: 'attached'});
      const wider = await page.evaluate(
        () => document.documentElement.scrollWidth - document.documentElement.clientWidth,
      );
      assert.ok(wider <= 0, `${view} is ${wider} pixels too wide`);
      assert.deepEqual(await findings(page), [], view);
    }
    await page.done();
  });
}

test('on a phone a day is one tap away, and an event is one more', async () => {
  const page = await open(house, `#/calendar?view=month&date=${dayFromNow(7)}`, {
    viewport: {width: 360, height: 740},
    hasTouch: true,
    isMobile: true,
  });
  const {next} = await house.ask('GET', `/events/${id}`);
  await page.goto(`${house.url}#/calendar?view=month&date=${next.slice(0, 10)}`);
  await page.locator(`[data-key="day-${next.slice(0, 10)}"]`).tap();
  await page.locator(`[data-key="${next.slice(0, 10)}-${id}"]`).tap();
  await page.getByRole('dialog', {name: 'Porch light at sunset'}).waitFor();
  await page.done();
});

test('an event is added, moved and deleted by the keyboard alone', async () => {
  const page = await open(house, '#/today');
  const press = (...keys) =>
    keys.reduce((before, key) => before.then(() => page.keyboard.press(key)), Promise.resolve());
  const focused = () =>
    page.evaluate(() => document.activeElement.dataset.key ?? document.activeElement.id);
  const tabTo = async (key) => {
    for (let count = 0; count < 80; ++count) {
      if ((await focused()) === key) return;
      await press('Tab');
    }
    assert.fail(`Tab does not lead to ${key}`);
  };
  await press('Tab');
  assert.equal(await focused(), 'skip', 'the first thing is the way past the head');
  await press('Enter');
  assert.equal(await focused(), 'main');

  await page.goto(`${house.url}#/events/new`);
  await until(async () => (await focused()) === 'description', 'the name to be ready to type');
  await page.keyboard.type('Typed');
  await tabTo('repeats');
  await page.keyboard.type('once');
  await tabTo('at');
  await press('Control+a');
  await page.keyboard.type('21:15');
  await tabTo('start');
  await tabTo('save');
  await press('Enter');
  await page.getByRole('heading', {level: 1, name: 'Typed'}).waitFor();
  const added = await until(() => house.eventNamed('Typed'), 'the event');
  assert.equal(added.time.at, '21:15');

  const day = added.start;
  await page.goto(`${house.url}#/calendar?view=week&date=${day}`);
  await page.locator(`[data-key="${day}-${added.id}"]`).waitFor();
  await tabTo(`${day}-${added.id}`);
  await press('Enter');
  const dialog = page.getByRole('dialog', {name: 'Typed'});
  await dialog.waitFor();
  assert.ok(
    await page.evaluate(() => document.activeElement.closest('dialog') !== null),
    'the focus is in the dialog',
  );
  await dialog.getByRole('button', {name: 'Move…'}).focus();
  await press('Enter');
  const move = page.getByRole('dialog', {name: 'Move “Typed”'});
  await move.getByLabel('at', {exact: true}).focus();
  await press('Control+a');
  await page.keyboard.type('22:45');
  await press('Enter');
  await until(async () => (await house.eventNamed('Typed')).time.at === '22:45', 'the new time');

  await page.locator(`[data-key="${day}-${added.id}"]`).focus();
  await press('Enter');
  await dialog.waitFor();
  await press('Escape');
  await dialog.waitFor({state: 'detached'});
  assert.equal(await focused(), `${day}-${added.id}`, 'the focus goes back to where it was');
  await press('Enter');
  await dialog.getByRole('button', {name: 'Delete'}).focus();
  await press('Enter');
  await page.getByText('“Typed” was deleted').waitFor();
  assert.equal(await house.eventNamed('Typed'), undefined);
  await press('Control+z');
  await until(() => house.eventNamed('Typed'), 'the event to be back');
  await page.done();
});

test('midnight and noon are told apart on the clock of 12 hours', async () => {
  const page = await open(house, '#/events/new', {locale: 'en-US'});
  await page.getByLabel('Name').fill('Midnight');
  await page.getByLabel('Time of day').fill('12:00 AM');
  await page
    .locator('.preview .lead')
    .getByText(/^every day, at 12:00\sAM/)
    .waitFor();
  await page.getByRole('button', {name: 'Add event'}).click();
  await page.getByRole('heading', {level: 1, name: 'Midnight'}).waitFor();
  assert.equal((await house.eventNamed('Midnight')).time.at, '00:00');
  await page.getByLabel('Time of day').fill('12:00 PM');
  await page
    .locator('.preview .lead')
    .getByText(/^every day, at 12:00\sPM/)
    .waitFor();
  await page.getByRole('button', {name: 'Save'}).click();
  await until(async () => (await house.eventNamed('Midnight')).time.at === '12:00', 'noon');
  await page.getByLabel('Time of day').fill('00:00');
  await page
    .locator('.preview .lead')
    .getByText(/^every day, at 12:00\sAM/)
    .waitFor();
  await page.done();
});

test('and on the clock of 24 hours, which can be chosen', async () => {
  const page = await open(house, '#/project', {locale: 'en-US'});
  assert.match(await page.locator('#clock').innerText(), /[AP]M/);
  await page.getByLabel('Clock').selectOption('24');
  assert.match(await page.locator('#clock').innerText(), /^\d\d:\d\d$/);
  await page.goto(`${house.url}#/events/new`);
  await page.getByLabel('Time of day').fill('00:00');
  await page.locator('.preview .lead').getByText('every day, at 00:00').waitFor();
  await page.getByLabel('Time of day').fill('12:00 AM');
  await page.locator('.preview .lead').getByText('every day, at 00:00').waitFor();
  await page.getByLabel('Time of day').fill('24:00');
  await page.getByText('“24:00” is no time').waitFor();
  await page.done();
});

test('a week begins where it does here, or where it is chosen to', async () => {
  const first = (page) => page.locator('.month th').first().getAttribute('abbr');
  const british = await open(house, '#/calendar?view=month');
  await british.locator('.month').waitFor();
  assert.equal(await first(british), 'Monday');
  await british.done();
  const american = await open(house, '#/calendar?view=month', {locale: 'en-US'});
  await american.locator('.month').waitFor();
  assert.equal(await first(american), 'Sunday');
  await american.goto(`${house.url}#/project`);
  await american.getByLabel('A week begins on').selectOption('6');
  await american.goto(`${house.url}#/calendar?view=month`);
  await american.locator('.month').waitFor();
  assert.equal(await first(american), 'Saturday');
  await american.done();
});

test('a German browser is spoken to in German, in every view', async () => {
  const page = await open(house, '', {locale: 'de-DE'});
  assert.equal(await page.locator('html').getAttribute('lang'), 'de');
  for (const [view, sign] of Object.entries(views())) {
    await page.goto(`${house.url}#/${view}`);
    await page.locator(sign).first().waitFor();
    assert.deepEqual(await findings(page), [], view);
  }
  await page.goto(`${house.url}#/events/${id}`);
  await page
    .locator('.preview .lead')
    .getByText('jede Woche am Montag, Dienstag und Samstag, bei Sonnenuntergang')
    .waitFor();
  await page.goto(`${house.url}#/project`);
  await page.getByLabel('Sprache').selectOption('en');
  await page.getByRole('link', {name: 'Today'}).waitFor();
  await page.done();
});

test('light and dark follow the system, unless one is chosen', async () => {
  const page = await open(house, '#/project', {colorScheme: 'dark'});
  const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const dark = await ground();
  await page.getByLabel('Colours').selectOption('light');
  const light = await ground();
  assert.notEqual(light, dark);
  await page.reload();
  await page.waitForSelector('html[data-ready]');
  assert.equal(await ground(), light, 'the choice is kept');
  await page.done();
});

test('without scripts there is the agenda', async () => {
  const page = await open(house, '', {javaScriptEnabled: false, ready: false});
  await page.waitForURL(/\/agenda$/);
  await page.getByText('Porch light at sunset').first().waitFor();
  await page.done();
});
