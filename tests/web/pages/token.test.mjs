// A controller that others may reach wants to know who they are, and what a role may not do is said.

import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {mkdtemp} from 'node:fs/promises';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import test, {after, before} from 'node:test';

import {closeBrowser, open, openBrowser, until} from '../browser.mjs';
import {House, PROGRAM} from '../house.mjs';

let house;
const tokens = {};
before(async () => {
  await openBrowser();
  const folder = await mkdtemp(join(tmpdir(), 'vexalink-web-'));
  for (const role of ['view', 'operate', 'edit']) {
    const line = [
      'token',
      'add',
      `a-${role}`,
      '--role',
      role,
      '--project',
      join(folder, 'house.db'),
    ];
    tokens[role] = execFileSync(PROGRAM, line, {
      encoding: 'utf8',
      stdio: ['ignore', 'pipe', 'ignore'],
    }).trim();
  }
  house = await House.start({folder, listen: '0.0.0.0:0'});
});
after(async () => {
  await closeBrowser();
  await house.stop();
});

/** A page that has been told this token. */
async function enter(token, path, options = {}) {
  const page = await open(house, path, {...options, ready: false, expects: /status of 40[13]/});
  const dialog = page.getByRole('dialog', {name: 'A token, please'});
  await dialog.getByLabel('Token').fill(token);
  await dialog.getByRole('button', {name: 'Go on'}).click();
  return page;
}

test('a token is asked for until it is right, and kept as long as the tab', async () => {
  const page = await enter('nonsense', '#/events');
  const dialog = page.getByRole('dialog', {name: 'A token, please'});
  await until(
    async () =>
      (await dialog
        .getByLabel('Token')
        .inputValue()
        .catch(() => 'gone')) === '',
    'the question to come again',
  );
  await dialog.getByLabel('Token').fill(tokens.edit);
  await dialog.getByRole('button', {name: 'Go on'}).click();
  await page.locator('.events > li').first().waitFor();
  await page.locator('#connection.live').waitFor();
  await page.reload();
  await page.locator('.events > li').first().waitFor();
  assert.equal(await dialog.count(), 0);
  await page.done();
});

test('who may only look is told so, and nothing changes', async () => {
  const page = await enter(tokens.view, '#/events');
  await page.locator('.events').getByRole('button', {name: 'More: Porch light off'}).click();
  await page.getByRole('dialog').getByRole('button', {name: 'Delete'}).click();
  await page.locator('.notice.bad').getByText('not allowed with this token').waitFor();
  await page.getByRole('link', {name: 'Porch light off'}).waitFor();
  await page.done();
});

test('who may operate pauses, and does not rename', async () => {
  const page = await enter(tokens.operate, '#/events');
  await page.getByRole('link', {name: 'Porch light off'}).click();
  await page.getByRole('heading', {level: 1, name: 'Porch light off'}).waitFor();
  await page.getByRole('button', {name: 'Skip next'}).click();
  await page.locator('.eventhead').getByText('the next one is skipped').waitFor();
  await page.getByLabel('Name').fill('Another name');
  await page.getByRole('button', {name: 'Save'}).click();
  await page.locator('.notice.bad').getByText('not allowed with this token').waitFor();
  assert.equal(
    await page.getByLabel('Name').inputValue(),
    'Another name',
    'what was typed is still there',
  );
  await page.done();
});
