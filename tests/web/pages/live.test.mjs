// What happens elsewhere is seen here at once, and a lost connection is shown and mended.

import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
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

/** The wall clock in Berlin so many seconds from now: its day and minutes. */
function soon(seconds) {
  const text = new Intl.DateTimeFormat('sv-SE', {
    timeZone: 'Europe/Berlin',
    dateStyle: 'short',
    timeStyle: 'medium',
  }).format(new Date(Date.now() + seconds * 1000));
  return {
    day: text.slice(0, 10),
    minutes: Number(text.slice(11, 13)) * 60 + Number(text.slice(14, 16)),
  };
}

test('an event fires while one looks on', async () => {
  // The minute after next begins in 60 to 120 seconds.
  const {day, minutes} = soon(61);
  const {id} = await house.ask('POST', '/events', {
    description: 'Any moment',
    start: day,
    time: {base: 'clock', minutes},
  });
  const page = await open(house, '#/today');
  if (day === soon(0).day) {
    const row = page.locator('.occurrence').filter({hasText: 'Any moment'}).first();
    await row.getByText('to come').waitFor();
    await row.getByText('fired').waitFor({timeout: 150000});
  }
  await page.goto(`${house.url}#/journal?event=${id}&kind=fired`);
  await page.locator('.entry.fired').getByText('Any moment').waitFor({timeout: 150000});
  await page.done();
});

test('the journal grows while one reads it', async () => {
  const {id} = await house.ask('POST', '/events', {
    description: 'Bell',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  const page = await open(house, `#/journal?event=${id}`);
  await page.locator('.entry.change').waitFor();
  await house.ask('POST', `/events/${id}/run`);
  await page.locator('.entry.fired').getByText('by hand').first().waitFor();
  await page.locator('.entry.fired a').first().click();
  await page.getByRole('heading', {level: 1, name: 'Bell'}).waitFor();
  await page.done();
});

test('the journal from one day to another has the rows of both, and no others', async () => {
  const {id} = await house.ask('POST', '/events', {
    description: 'Dated',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  const page = await open(house, `#/journal?event=${id}&to=${dayFromNow(-1)}`);
  await page.getByText('There is no such row.').waitFor();
  await page.getByLabel('to', {exact: true}).fill(dayFromNow(0));
  await page.locator('.entry.change').waitFor();
  await page.getByLabel('from', {exact: true}).fill(dayFromNow(1));
  await page.getByLabel('to', {exact: true}).fill(dayFromNow(1));
  await page.getByText('There is no such row.').waitFor();
  await page.done();
});

test('two pages see what the other does', async () => {
  const one = await open(house, '#/events');
  const other = await open(house, `#/calendar?view=agenda&date=${dayFromNow(0)}`);
  await one.goto(`${house.url}#/events/new`);
  await one.getByLabel('Name').fill('Shared');
  await one.getByLabel('Time of day').fill('23:58');
  await one.getByRole('button', {name: 'Add event'}).click();
  await other.getByRole('button', {name: 'Shared'}).first().waitFor();
  const {id} = await until(() => house.eventNamed('Shared'), 'the event');

  await other.goto(`${house.url}#/events/${id}`);
  await other.getByLabel('Name').fill('Shared by both');
  await other.getByRole('button', {name: 'Save'}).click();
  await one.getByRole('heading', {level: 1, name: 'Shared by both'}).waitFor();
  await one.done();
  await other.done();
});

test('of two who change the same the second is asked', async () => {
  const {id} = await house.ask('POST', '/events', {
    description: 'Contested',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  const page = await open(house, `#/events/${id}`, {expects: /status of 412/});
  await page.getByLabel('Time of day').fill('11:00');
  await house.ask('PATCH', `/events/${id}`, {time: {base: 'clock', minutes: 720}});
  await page.getByText('It was just changed elsewhere.').waitFor();
  assert.equal(
    await page.getByLabel('Time of day').inputValue(),
    '11:00',
    'what was typed is still there',
  );
  await page.getByRole('button', {name: 'Save'}).click();
  await page
    .getByRole('dialog', {name: 'It was changed meanwhile'})
    .getByRole('button', {name: 'Cancel'})
    .click();
  assert.equal((await house.ask('GET', `/events/${id}`)).time.minutes, 720);
  await page.getByRole('button', {name: 'Save'}).click();
  await page
    .getByRole('dialog', {name: 'It was changed meanwhile'})
    .getByRole('button', {name: 'Replace it'})
    .click();
  await until(
    async () => (await house.ask('GET', `/events/${id}`)).time.minutes === 660,
    'the second version',
  );
  await page.done();
});

test('what is typed while the version of another is on its way is kept', async () => {
  const {id} = await house.ask('POST', '/events', {
    description: 'Overtaken',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  const page = await open(house, `#/events/${id}`);
  const time = page.getByLabel('Time of day');
  await time.waitFor();
  let asked = false;
  let answer;
  const typed = new Promise((resolve) => (answer = resolve));
  await page.route(`**/api/v1/events/${id}`, async (route) => {
    asked = true;
    await typed;
    await route.continue();
  });
  await house.ask('PATCH', `/events/${id}`, {time: {base: 'clock', minutes: 720}});
  await until(() => asked, 'the event to be asked for again');
  await time.fill('13:45');
  answer();
  await page.getByText('It was just changed elsewhere.').waitFor();
  assert.equal(await time.inputValue(), '13:45');
  await page.getByRole('button', {name: 'Show the other'}).click();
  await until(async () => (await time.inputValue()) === '12:00', 'the version of the other');
  await page.done();
});

test('what is typed is not left behind by accident', async () => {
  const page = await open(house, '#/events/new');
  await page.getByLabel('Name').fill('Half done');
  await page.getByRole('link', {name: 'Calendar'}).click();
  await page
    .getByRole('dialog', {name: 'Leave without saving?'})
    .getByRole('button', {name: 'Cancel'})
    .click();
  assert.equal(await page.getByLabel('Name').inputValue(), 'Half done');
  await page.getByRole('link', {name: 'Calendar'}).click();
  await page
    .getByRole('dialog', {name: 'Leave without saving?'})
    .getByRole('button', {name: 'Leave'})
    .click();
  await page.locator('.month, .agendaday').first().waitFor();
  await page.done();
});

test('a disk that takes nothing is told, also to who comes later, until it does', async () => {
  // Another process holds the project's file.
  const hold = spawn('python3', [
    '-c',
    'import sqlite3, sys\n' +
      'c = sqlite3.connect(sys.argv[1], isolation_level=None)\nc.execute("begin immediate")\nprint("held", flush=True)\nsys.stdin.read()',
    house.file,
  ]);
  try {
    await new Promise((resolve) => hold.stdout.once('data', resolve));
    const page = await open(house, '#/events', {expects: /status of 503/});
    await page.getByRole('button', {name: 'Skip next: Porch light off'}).click();
    await page.locator('#alarm').getByText('cannot be saved at present').waitFor();
    const later = await open(house, '#/today');
    await later.locator('#alarm').getByText('cannot be saved at present').waitFor();
    hold.stdin.end();
    await page.locator('#alarm').waitFor({state: 'hidden'});
    await later.locator('#alarm').waitFor({state: 'hidden'});
    await page.done();
    await later.done();
  } finally {
    hold.kill();
  }
});

test('a controller that goes away is missed, and greeted when it is back', async () => {
  const page = await open(house, '#/events', {expects: /ERR_|Failed to load resource/});
  await page.locator('#connection.live').waitFor();
  await house.restart();
  await until(async () => (await page.locator('#connection.live').count()) === 1, 'the connection');
  await house.ask('POST', '/events', {
    description: 'After the night',
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
  await page.getByRole('link', {name: 'After the night'}).waitFor();
  await house.halt();
  await page.locator('#connection.lost').waitFor();
  await page.locator('#alarm').getByText('The controller cannot be reached.').waitFor();
  for (const view of ['Calendar', 'Journal', 'Calendar']) {
    await page.getByRole('link', {name: view, exact: true}).click();
    await page.locator('.notice.bad').waitFor();
  }
  assert.equal(await page.locator('.notice.bad').count(), 1, 'it is said once');
  await house.restart();
  await page.locator('#alarm').waitFor({state: 'hidden'});
  await page.locator('.notice.bad').waitFor({state: 'detached'});
  await page.locator('.chip, .agendaday').first().waitFor();
  await page.done();
});

test('a view that could not be fetched comes when the controller is back', async () => {
  const sun = '**/views/sun.js';
  const page = await open(house, '#/events', {
    expects: /ERR_|Failed to load resource/,
    before: (blank) => blank.route(sun, (route) => route.abort()),
  });
  await page.locator('#connection.live').waitFor();
  await house.halt();
  await page.locator('#connection.lost').waitFor();
  await page.getByRole('link', {name: 'Sun', exact: true}).click();
  await page.locator('.notice.bad').waitFor();
  await page.unroute(sun);
  await house.restart();
  await page.getByRole('heading', {level: 1, name: /^The sun in/}).waitFor();
  await page.locator('#connection.live').waitFor();
  await page.done();
});

test('a controller that waits for its clock is waited for, and the page begins by itself', async () => {
  const waiting = await House.start();
  try {
    await waiting.halt();
    // The clock is behind what the journal says, as after a cold start without a battery.
    const change =
      'import sqlite3, sys, time\n' +
      'c = sqlite3.connect(sys.argv[1])\n' +
      'c.execute("update journal set at = ? where id = (select max(id) from journal)", (int(time.time()) + 12,))\n' +
      'c.commit()';
    const python = spawn('python3', ['-c', change, waiting.file], {stdio: 'inherit'});
    assert.equal(await new Promise((resolve) => python.once('exit', resolve)), 0);
    await waiting.restart();
    const page = await open(waiting, '#/events', {ready: false, expects: /status of 503/});
    await page.getByRole('heading', {name: 'The controller is not ready yet'}).waitFor();
    await page.getByText('when the journal was last written').waitFor();
    assert.deepEqual(await findings(page), []);
    await page.waitForSelector('html[data-ready]');
    await page.locator('.events > li').first().waitFor();
    await page.locator('#connection.live').waitFor();
    await page.done();
  } finally {
    await waiting.stop();
  }
});
