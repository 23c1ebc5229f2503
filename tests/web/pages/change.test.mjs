// What one does most: add an event, see it, move it, hold it back, delete it; each with its undo.

import assert from 'node:assert/strict';
import test, {after, before} from 'node:test';

import {closeBrowser, dayFromNow, findings, open, openBrowser, until} from '../browser.mjs';
import {House} from '../house.mjs';

before(openBrowser);
after(closeBrowser);

async function withHouse(work, options) {
  const house = await House.start(options);
  try {
    await work(house);
  } finally {
    await house.stop();
  }
}

const daily = (description, minutes, more = {}) => ({
  description,
  start: dayFromNow(0),
  time: {base: 'clock', minutes},
  repeat: {unit: 'day'},
  ...more,
});

test('the first start shows where the house stands, and what comes next', () =>
  withHouse(async (house) => {
    const page = await open(house);
    const facts = page.locator('#facts');
    await facts.getByText('Europe/Berlin').waitFor();
    await facts.getByText(/52\.52° N, 13\.4\d* E|52\.52° N, 13\.41° E/).waitFor();
    await page.locator('#connection.live').waitFor();
    const {sunrise} = await house.ask('GET', `/sun?date=${dayFromNow(0)}`);
    assert.match(await facts.locator('.rise').innerText(), new RegExp(sunrise.slice(11, 16)));
    assert.equal(await page.locator('h1').innerText(), 'Today');
    await page.locator('.next .name').waitFor();
    const {events} = await house.ask('GET', '/events');
    await page.getByRole('navigation', {name: 'Pages'}).getByRole('link', {name: 'Events'}).click();
    await page.locator('.events > li').nth(events.length - 1).waitFor();
    assert.equal(await page.locator('.events > li').count(), events.length);
    await page.done();
  }));

test('an event is added by the form, and is seen in the calendar', () =>
  withHouse(async (house) => {
    const page = await open(house, '#/events/new');
    await page.getByLabel('Name').fill('Porch');
    await page.getByLabel('Days, weeks, months or years').selectOption('week');
    await page.getByLabel('Every how many').fill('2');
    for (const day of ['Monday', 'Friday']) await page.getByRole('checkbox', {name: day}).check();
    const chosen = new Set(['mon', 'fri']);
    for (const box of await page.locator('.pill input:checked').all()) {
      if (!chosen.has((await box.getAttribute('data-key')).slice(3))) await box.uncheck();
    }
    await page.getByLabel('By the clock or by the sun').selectOption('sun');
    await page.getByLabel('How many minutes', {exact: true}).fill('30');
    await page.getByLabel('Before or after').selectOption('before');
    await page.getByLabel('Give or take how many minutes').fill('10');
    await page.getByLabel('Whether it ends').selectOption('yes');
    await page.getByLabel('Last day').fill(dayFromNow(120));
    const lead = page.locator('.preview .lead');
    await lead
      .getByText(
        /^every 2 weeks on Monday and Friday, 30 minutes before sunset, give or take 10 minutes, from .*, until /,
      )
      .waitFor();
    assert.equal(await page.locator('.preview .occurrences li').count(), 10);
    await page.getByRole('button', {name: 'Add event'}).click();
    await page.getByRole('heading', {level: 1, name: 'Porch'}).waitFor();
    const event = await house.eventNamed('Porch');
    assert.deepEqual(event.repeat, {
      unit: 'week',
      every: 2,
      on: ['mon', 'fri'],
      until: dayFromNow(120),
    });
    assert.equal(event.time.minutes, -30);
    assert.equal(event.time.spread, 10);

    const day = event.next.slice(0, 10);
    await page.goto(`${house.url}#/calendar?view=month&date=${day}`);
    const chip = page.locator(`[data-key="${day}-${event.id}"]`);
    await chip.waitFor();
    assert.match(await chip.getAttribute('class'), /\bsunset\b/);
    await page.done();
  }));

test('what is wrong is said at its field, and nothing is lost', () =>
  withHouse(async (house) => {
    await house.ask('POST', '/events', daily('Taken', 600));
    const page = await open(house, '#/events/new', {expects: /status of 4\d\d/});
    await page.getByLabel('Time of day').fill('evening');
    await page.getByText('“evening” is no time; write 19:30, 7:30 pm or noon').waitFor();
    assert.equal(await page.getByLabel('Time of day').getAttribute('aria-invalid'), 'true');
    await page.getByLabel('Time of day').fill('19:30');
    await page.getByLabel('Give or take how many minutes').fill('721');
    await page.locator('[data-key=spread][aria-invalid=true]').waitFor();
    await page.getByLabel('Give or take how many minutes').fill('0');
    await page.getByLabel('Name').fill('Taken');
    await page.getByRole('button', {name: 'Add event'}).click();
    await page.locator('[data-key=description][aria-invalid=true]').waitFor();
    assert.equal(await page.getByLabel('Time of day').inputValue(), '19:30');
    assert.equal(await page.evaluate(() => document.activeElement.dataset.key), 'description');
    await page.done();
  }));

test('an event is dragged to another day, for every time', () =>
  withHouse(async (house) => {
    const start = dayFromNow(0);
    const weekday = ['sun', 'mon', 'tue', 'wed', 'thu', 'fri', 'sat'];
    const of = (day) => weekday[new Date(`${day}T00:00:00Z`).getUTCDay()];
    const [day, other] = [dayFromNow(14), dayFromNow(15)];
    const {id} = await house.ask(
      'POST',
      '/events',
      daily('Dragged', 600, {start, repeat: {unit: 'week', on: [of(day)]}}),
    );
    const page = await open(house, `#/calendar?view=month&date=${day}`);
    const chip = page.locator(`[data-key="${day}-${id}"]`);
    await chip.waitFor();
    await chip.dragTo(page.locator(`td[data-day="${other}"]`));
    const dialog = page.getByRole('dialog', {name: 'Move “Dragged”'});
    await dialog.getByLabel('Every time').check();
    await dialog.locator('.preview .lead').waitFor();
    await dialog.getByRole('button', {name: 'Move', exact: true}).click();
    await page.locator(`[data-key="${other}-${id}"]`).waitFor();
    await chip.waitFor({state: 'detached'});
    assert.deepEqual((await house.ask('GET', `/events/${id}`)).repeat.on, [of(other)]);
    await page.getByRole('button', {name: 'Undo'}).click();
    await chip.waitFor();
    assert.deepEqual((await house.ask('GET', `/events/${id}`)).repeat.on, [of(day)]);
    await page.done();
  }));

test('in the week it is dragged to another time, and may leave the sun for the clock', () =>
  withHouse(async (house) => {
    const day = dayFromNow(1);
    const {id} = await house.ask('POST', '/events', {
      description: 'Sunny',
      start: day,
      time: {base: 'sunset', minutes: -60},
      repeat: {unit: 'day'},
    });
    const page = await open(house, `#/calendar?view=day&date=${day}`);
    const chip = page.locator(`[data-key="${day}-${id}"]`);
    await chip.scrollIntoViewIfNeeded();
    const box = await chip.boundingBox();
    await page.mouse.move(box.x + 40, box.y + 10);
    await page.mouse.down();
    await page.mouse.move(box.x + 40, box.y - 30, {steps: 5});
    await page.mouse.move(box.x + 40, box.y + 10 - 88, {steps: 5});
    await page.mouse.up();
    const dialog = page.getByRole('dialog', {name: 'Move “Sunny”'});
    await dialog.getByLabel('From now on by the clock').check();
    await dialog.getByLabel('Every time').check();
    await dialog
      .locator('.preview .lead')
      .getByText(/^every day, at \d\d:\d\d/)
      .waitFor();
    await dialog.getByRole('button', {name: 'Move', exact: true}).click();
    const moved = await until(async () => {
      const event = await house.ask('GET', `/events/${id}`);
      return event.time.base === 'clock' && event;
    }, 'the event at a clock time');
    assert.equal(moved.time.minutes % 5, 0);
    await page.done();
  }));

test('an event is moved by the arrow keys, and the focus goes with it', () =>
  withHouse(async (house) => {
    const day = dayFromNow(3);
    const {id} = await house.ask(
      'POST',
      '/events',
      daily('Stepping', 600, {start: day, repeat: null}),
    );
    const page = await open(house, `#/calendar?view=day&date=${day}`);
    const chip = (on) => page.locator(`[data-key="${on}-${id}"]`);
    const focused = () => page.evaluate(() => document.activeElement.dataset.key);
    const event = () => house.ask('GET', `/events/${id}`);
    await chip(day).focus();
    await page.keyboard.press('Shift+ArrowDown');
    await until(async () => (await event()).time.minutes === 615, 'a quarter of an hour later');
    await chip(day).getByText('10:15').waitFor();
    await until(async () => (await focused()) === `${day}-${id}`, 'the focus on it');

    await page.goto(`${house.url}#/calendar?view=month&date=${day}`);
    await page.locator('.month').waitFor();
    await chip(day).focus();
    const next = dayFromNow(4);
    await page.keyboard.press('Shift+ArrowRight');
    await chip(next).waitFor();
    assert.equal((await event()).start, next);
    await until(async () => (await focused()) === `${next}-${id}`, 'the focus on the other day');
    await page.keyboard.press('Shift+ArrowDown');
    await until(async () => (await event()).start === dayFromNow(11), 'a week later');
    await page.locator('.notice').nth(2).waitFor();
    await page.keyboard.press('Control+z');
    await until(async () => (await event()).start === next, 'the day before that');
    await page.done();
  }));

test('a finger that holds an event drags it, and one that does not scrolls', () =>
  withHouse(async (house) => {
    const day = dayFromNow(3);
    const {id} = await house.ask(
      'POST',
      '/events',
      daily('Held', 600, {start: day, repeat: null}),
    );
    const page = await open(house, `#/calendar?view=day&date=${day}`, {
      viewport: {width: 390, height: 844},
      hasTouch: true,
      isMobile: true,
    });
    const chip = page.locator(`[data-key="${day}-${id}"]`);
    await chip.scrollIntoViewIfNeeded();
    const touch = await page.context().newCDPSession(page);
    const send = (type, x, y) =>
      touch.send('Input.dispatchTouchEvent', {
        type,
        touchPoints: type === 'touchEnd' ? [] : [{x, y}],
      });
    const drag = async (hold) => {
      const {x, y} = await chip.boundingBox();
      await send('touchStart', x + 40, y + 10);
      if (hold) await page.locator('.ghost').waitFor();
      for (const way of [15, 35, 55, 75, 88]) await send('touchMove', x + 40, y + 10 + way);
      await send('touchEnd');
    };
    await drag(true);
    await until(
      async () => (await house.ask('GET', `/events/${id}`)).time.minutes === 720,
      'two hours later',
    );
    await chip.getByText('12:00').waitFor();
    const scrolled = () => page.locator('.scroll').evaluate((box) => box.scrollTop);
    const before = await scrolled();
    await drag(false);
    await until(async () => (await scrolled()) !== before, 'the hours to scroll');
    assert.equal(await page.locator('.ghost').count(), 0);
    assert.equal((await house.ask('GET', `/events/${id}`)).time.minutes, 720);
    await page.done();
  }));

test('a drag is called off with Escape', () =>
  withHouse(async (house) => {
    const day = dayFromNow(3);
    const {id} = await house.ask(
      'POST',
      '/events',
      daily('Stays', 600, {start: day, repeat: null}),
    );
    const page = await open(house, `#/calendar?view=week&date=${day}`);
    const chip = page.locator(`[data-key="${day}-${id}"]`);
    await chip.scrollIntoViewIfNeeded();
    const box = await chip.boundingBox();
    await page.mouse.move(box.x + 20, box.y + 8);
    await page.mouse.down();
    await page.mouse.move(box.x + 20, box.y + 90, {steps: 4});
    await page.locator('.ghost').waitFor();
    await page.keyboard.press('Escape');
    await page.locator('.ghost').waitFor({state: 'detached'});
    await page.mouse.up();
    assert.equal((await house.ask('GET', `/events/${id}`)).time.minutes, 600);
    await page.done();
  }));

test('the next firing is skipped, and that is undone', () =>
  withHouse(async (house) => {
    const page = await open(house, '#/today');
    const name = await page.locator('.next .name').innerText();
    const {id} = await house.eventNamed(name);
    await page.locator('.next').getByRole('button', {name: 'Skip next'}).click();
    await page.locator('.next').getByText('the next one is skipped').waitFor();
    assert.equal((await house.ask('GET', `/events/${id}/programming`)).skip_next, true);
    await page.getByRole('button', {name: 'Undo'}).click();
    await page.locator('.next').getByText('the next one is skipped').waitFor({state: 'detached'});
    assert.equal((await house.ask('GET', `/events/${id}/programming`)).skip_next, false);
    await page.done();
  }));

test('an event is paused for a week, and goes on', () =>
  withHouse(async (house) => {
    const {id} = await house.ask('POST', '/events', daily('Paused', 600));
    const page = await open(house, `#/events/${id}`);
    await page.getByRole('button', {name: 'Pause…'}).click();
    await page.getByRole('dialog').getByRole('button', {name: 'For a week'}).click();
    await page
      .locator('.eventhead')
      .getByText(/paused until/)
      .waitFor();
    assert.equal((await house.ask('GET', `/events/${id}/programming`)).paused_until, dayFromNow(7));
    await page.getByRole('button', {name: 'Resume'}).click();
    await page
      .locator('.eventhead')
      .getByText(/paused until/)
      .waitFor({state: 'detached'});
    assert.equal((await house.ask('GET', `/events/${id}/programming`)).paused_until, null);
    await page.done();
  }));

test('an event that is run is called off in time, and runs if it is not', () =>
  withHouse(async (house) => {
    const {id} = await house.ask('POST', '/events', daily('By hand', 600));
    const fired = async () =>
      (await house.ask('GET', `/journal?event=${id}&kind=fired`)).rows.filter(
        ({reason}) => reason === 'by-hand',
      );
    const page = await open(house, `#/events/${id}`);
    const run = page.getByRole('button', {name: 'Run now'});
    await run.click();
    const notice = page.locator('.notice.waiting');
    await notice.getByText('“By hand” has not run yet').waitFor();
    await notice.evaluate((element) =>
      Promise.all(element.getAnimations().map(({finished}) => finished)),
    );
    assert.deepEqual(await findings(page), []);
    await notice.getByRole('button', {name: 'Cancel'}).click();
    await page.getByText('“By hand” was not run').waitFor();
    await run.click();
    await page.keyboard.press('Control+z');
    await notice.waitFor({state: 'detached'});
    await run.click();
    await page.getByText('“By hand” was run').waitFor();
    await until(async () => (await fired()).length, 'the firing in the journal');
    assert.equal((await fired()).length, 1, 'the first ones were called off');

    await run.click();
    const begun = Date.now();
    await notice.getByRole('button', {name: 'Run at once'}).click();
    await until(async () => (await fired()).length === 2, 'the second firing');
    const [latest] = await fired();
    assert.ok(Date.parse(latest.at) < begun + 3000, 'it was not waited for');
    await page.done();
  }));

test('a dialog stays open as long as nobody clicks beside it', () =>
  withHouse(async (house) => {
    const {id} = await house.ask('POST', '/events', daily('Edge', 600));
    const page = await open(house, `#/events/${id}`);
    await page.getByRole('button', {name: 'Pause…'}).click();
    const dialog = page.getByRole('dialog');
    const box = await dialog.boundingBox();
    await page.mouse.click(box.x + 4, box.y + box.height / 2);
    // As one who marks a text goes too far.
    await page.mouse.move(box.x + box.width / 2, box.y + 90);
    await page.mouse.down();
    await page.mouse.move(box.x - 60, box.y + 90, {steps: 4});
    await page.mouse.up();
    assert.equal(await dialog.count(), 1);
    await page.mouse.click(box.x - 60, box.y);
    await dialog.waitFor({state: 'detached'});
    await page.done();
  }));

test('what is deleted is brought back, with what it does', () =>
  withHouse(async (house) => {
    const {id} = await house.ask('POST', '/events', {
      ...daily('Gone', 600),
      programming: {actions: [{variable: {device: 1, variable: 5, value: '1'}}]},
    });
    const page = await open(house, '#/events');
    await page.getByRole('button', {name: 'More: Gone'}).click();
    await page.getByRole('dialog', {name: 'Gone'}).getByRole('button', {name: 'Delete'}).click();
    await page.getByRole('link', {name: 'Gone'}).waitFor({state: 'detached'});
    assert.equal(await house.eventNamed('Gone'), undefined);
    await page.keyboard.press('Control+z');
    await page.getByRole('link', {name: 'Gone'}).waitFor();
    assert.equal((await house.eventNamed('Gone')).id, id);
    assert.equal((await house.ask('GET', `/events/${id}/programming`)).actions.length, 1);
    await page.done();
  }));

test('a copy is made with what the event does', () =>
  withHouse(async (house) => {
    await house.ask('POST', '/events', {
      ...daily('Model', 600),
      programming: {actions: [{variable: {device: 1, variable: 5, value: '1'}}]},
    });
    const page = await open(house, '#/events');
    await page.getByRole('link', {name: 'Model'}).click();
    await page.getByRole('button', {name: 'Duplicate'}).click();
    await page.getByRole('heading', {level: 1, name: 'Model 2'}).waitFor();
    const copy = await house.eventNamed('Model 2');
    assert.equal(copy.programming.actions, 1);
    await page.done();
  }));
