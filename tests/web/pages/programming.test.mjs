// What an event does: actions and their conditions, chosen, tried out and saved.

import assert from 'node:assert/strict';
import {createServer} from 'node:http';
import test, {after, before} from 'node:test';

import {closeBrowser, open, openBrowser, until} from '../browser.mjs';
import {House} from '../house.mjs';

let house;
let hub;
const heard = [];
before(async () => {
  await openBrowser();
  house = await House.start();
  hub = createServer(async (request, response) => {
    let body = '';
    for await (const piece of request) body += piece;
    heard.push({method: request.method, url: request.url, body});
    response.writeHead(request.url === '/broken' ? 404 : 200).end('thanks');
  });
  await new Promise((resolve) => hub.listen(0, '127.0.0.1', resolve));
});
after(async () => {
  await closeBrowser();
  await house.stop();
  hub.close();
});

const event = (description) =>
  house.ask('POST', '/events', {
    description,
    time: {base: 'clock', minutes: 600},
    repeat: {unit: 'day'},
  });
const address = (path) => `http://127.0.0.1:${hub.address().port}${path}`;

test('a web request is written, tried out and saved', async () => {
  const {id} = await event('Lamp');
  const page = await open(house, `#/events/${id}/programming`);
  await page.getByRole('button', {name: 'Add an action'}).click();
  await page.getByLabel('Address').fill(address('/lamp'));
  await page.getByLabel('Body').fill('{"event": {event}, "what": "{description}"}');
  await page.getByRole('button', {name: 'Test now'}).click();
  await page
    .locator('.outcome')
    .getByText(/^ ?done/)
    .waitFor();
  assert.deepEqual(heard.at(-1), {
    method: 'POST',
    url: '/lamp',
    body: `{"event": ${id}, "what": "Lamp"}`,
  });

  await page.getByLabel('Address').fill(address('/broken'));
  await page.getByRole('button', {name: 'Test now'}).click();
  await page
    .locator('.outcome')
    .getByText(/failed.*404/)
    .waitFor();

  await page.getByRole('button', {name: 'Save'}).click();
  await page.getByText('What it does was saved').waitFor();
  const {actions} = await house.ask('GET', `/events/${id}/programming`);
  assert.equal(actions[0].hook.url, address('/broken'));
  await page.done();
});

test('a command and a variable, and their order', async () => {
  const {id} = await event('Two things');
  const page = await open(house, `#/events/${id}/programming`);
  const card = (index) => page.locator('.actions > li').nth(index);
  await page.getByRole('button', {name: 'Add an action'}).click();
  await card(0).getByLabel('What it does').selectOption('command');
  await card(0).getByLabel('Program and arguments').fill('/bin/echo\nhello {description}');
  await card(0).getByRole('button', {name: 'Test now'}).click();
  await card(0).locator('.outcome pre').getByText('hello Two things').waitFor();
  await page.getByRole('button', {name: 'Add an action'}).click();
  await card(1).getByLabel('What it does').selectOption('variable');
  await card(1).getByLabel('Variable').fill('2001');
  await card(1).getByLabel('to', {exact: true}).fill('1');
  await card(1).getByRole('button', {name: 'Earlier'}).click();
  await page.getByRole('button', {name: 'Save'}).click();
  await page.getByText('What it does was saved').waitFor();
  const {actions} = await house.ask('GET', `/events/${id}/programming`);
  assert.deepEqual(
    actions.map((action) =>
      Object.keys(action).find((key) => ['variable', 'command'].includes(key)),
    ),
    ['variable', 'command'],
  );
  assert.deepEqual(actions[1].command.argv, ['/bin/echo', 'hello {description}']);
  await page.done();
});

test('every kind of condition is chosen, said in words, and tested now', async () => {
  const {id} = await event('Conditional');
  const page = await open(house, `#/events/${id}/programming`);
  await page.getByRole('button', {name: 'Add an action'}).click();
  await page.getByLabel('Address').fill(address('/if'));
  const kind = page.getByLabel('Condition', {exact: true});
  const is = page.getByLabel('How it is compared');
  const verdict = page.locator('.verdict');
  const rows = [
    ['time', 'between', /the time is between 22:00 and 06:00 — (true|false) now, because /],
    ['time', 'night', /the sun is down — (true|false) now/],
    ['time', 'within', /it is within 30 minutes before sunset — (true|false) now/],
    ['time', 'gt', /the time is after 12:00 — (true|false) now/],
    ['weekday', 'eq', /the weekday is (Saturday or Sunday|Sunday or Saturday) — (true|false) now/],
    ['weekday', 'between', /the weekday is between Monday and Friday — (true|false) now/],
    ['day', 'between', /the day of the month is between the 1st and the 15th — (true|false) now/],
    ['date', 'eq', /the date is .* — true now/],
    ['month', 'between', /the month is between November and March — (true|false) now/],
    ['month', 'ne', /the month is not December — (true|false) now/],
    ['year', 'ge', /the year is \d{4} or after — true now/],
  ];
  for (const [name, comparison, said] of rows) {
    await kind.selectOption(name);
    await is.selectOption(comparison);
    await verdict.filter({hasText: said}).waitFor();
  }
  await kind.selectOption('leap');
  const year = Number((await house.ask('GET', '/project')).now.slice(0, 4));
  const leap = (year % 4 === 0 && year % 100 !== 0) || year % 400 === 0;
  await verdict.getByText(leap ? 'true now' : 'false now').waitFor();

  await kind.selectOption('month');
  await is.selectOption('eq');
  for (const month of ['Jan', 'Dec'])
    await page.getByRole('checkbox', {name: month}).setChecked(month === 'Jan');
  await verdict.getByText(/the month is January/).waitFor();
  await page.getByRole('button', {name: 'Save'}).click();
  await page.getByText('What it does was saved').waitFor();
  const {actions} = await house.ask('GET', `/events/${id}/programming`);
  assert.deepEqual(actions[0].if, {kind: 'month', is: 'eq', months: [1]});
  await page.done();
});

test('what is wrong with an action is said at the action', async () => {
  const {id} = await event('Wrong');
  const page = await open(house, `#/events/${id}/programming`, {expects: /status of 422/});
  await page.getByRole('button', {name: 'Add an action'}).click();
  await page.getByLabel('Address').fill('ftp://nowhere');
  await page.getByRole('button', {name: 'Save'}).click();
  await page.locator('.actions > li > .error').filter({hasText: /ftp/}).waitFor();
  assert.equal(await page.getByLabel('Address').getAttribute('aria-invalid'), 'true');
  assert.equal((await house.ask('GET', `/events/${id}/programming`)).actions.length, 0);
  await page.getByRole('button', {name: 'Remove this action'}).click();
  await page.getByRole('button', {name: 'Undo'}).click();
  await page.getByLabel('Address').waitFor();
  await page.done();
});

test('what is missed may be caught up', async () => {
  const {id} = await event('Late');
  const page = await open(house, `#/events/${id}/programming`);
  await page.getByLabel('What happens with what was missed').selectOption('always');
  await page.getByRole('button', {name: 'Save'}).click();
  await until(
    async () => (await house.ask('GET', `/events/${id}/programming`)).catch_up.policy === 'always',
    'the policy',
  );
  await page.done();
});
