// Follows docs/tour.md: every bold word in it is something to find and use on the page, in its order.

import assert from 'node:assert/strict';
import {readFile} from 'node:fs/promises';
import test, {after, before} from 'node:test';

import {closeBrowser, open, openBrowser, until} from '../browser.mjs';
import {House} from '../house.mjs';

const TOUR = new URL('../../../docs/tour.md', import.meta.url);

let house;
before(async () => {
  await openBrowser();
  house = await House.start({place: []});
});
after(async () => {
  await closeBrowser();
  await house.stop();
});

/** What to do with the bold words of each section: nothing said means that it is clicked. */
const steps = {
  'Where the house stands': async (page, word) => {
    await page.locator('#facts').getByText('guessed').waitFor();
    await word('House');
    await page.getByLabel(await word('Latitude and longitude', 'label')).fill('52.52, 13.405');
    await word('Set place', 'button');
    await page.locator('#facts').getByText('52.52° N').waitFor();
    await word('Undo', 'button');
    await page.locator('#facts').getByText('52.52° N').waitFor({state: 'detached'});
  },
  'What comes next': async (page, word) => {
    await word('Today');
    await page.locator('.next .countdown').waitFor();
    const next = page.locator('.next');
    await next.getByRole('button', {name: await word('Skip next', 'label')}).click();
    await next.getByText('the next one is skipped').waitFor();
    await next.getByRole('button', {name: await word('Do not skip', 'label')}).click();
    await next.getByText('the next one is skipped').waitFor({state: 'detached'});
  },
  'A light before sunset': async (page, word) => {
    await word('Events');
    await word('New event');
    await page.getByLabel(await word('Name', 'label')).fill('Porch');
    await page.getByLabel('By the clock or by the sun').selectOption('sun');
    await page.getByLabel('How many minutes', {exact: true}).fill('30');
    await page.getByLabel('Before or after').selectOption('before');
    await page.getByLabel('Sunrise or sunset').selectOption('sunset');
    await page.getByLabel('Give or take how many minutes').fill('10');
    await page
      .locator('.preview .lead')
      .getByText('30 minutes before sunset, give or take 10 minutes')
      .waitFor();
    assert.equal(await page.locator('.preview .occurrences li').count(), 10);
    await word('Add event', 'button');
    await page.getByRole('heading', {level: 1, name: 'Porch'}).waitFor();
  },
  'What it does': async (page, word) => {
    await page
      .getByRole('navigation', {name: 'Of this event'})
      .getByRole('link', {name: await word('What it does', 'label')})
      .click();
    await word('Add an action', 'button');
    await page.getByLabel('What it does', {exact: true}).selectOption('command');
    await page.getByLabel('Program and arguments').fill('/bin/echo\n{description}');
    await page.getByLabel('Condition', {exact: true}).selectOption('month');
    await page
      .locator('.verdict')
      .getByText(/(true|false) now, because/)
      .waitFor();
    await page.getByLabel('Condition', {exact: true}).selectOption('');
    await word('Test now', 'button');
    await page.locator('.outcome pre').getByText('Porch').waitFor();
    await word('Save', 'button');
    await page.getByText('What it does was saved').waitFor();
  },
  'Somewhere else in the week': async (page, word) => {
    await word('Calendar');
    await word('Week', 'button');
    await page.getByRole('button', {name: 'Later'}).click();
    await page
      .locator('.column .chip')
      .filter({has: page.getByText('Porch', {exact: true})})
      .nth(2)
      .click();
    await word('Move…', 'button');
    const dialog = page.getByRole('dialog', {name: 'Move “Porch”'});
    const time = dialog.getByLabel('at', {exact: true});
    await time.fill('15:00');
    await dialog.getByLabel(await word('Every time', 'label')).check();
    await dialog
      .locator('.preview .lead')
      .getByText(/sunset/)
      .waitFor();
    await dialog.getByRole('button', {name: await word('Move', 'label'), exact: true}).click();
    await until(
      async () => (await house.eventNamed('Porch')).time.minutes !== -30,
      'the event at another time',
    );
  },
  'What happened': async (page, word) => {
    await word('Journal');
    await page.locator('.entry.change').getByRole('link', {name: 'Porch'}).first().waitFor();
  },
  'The whole year': async (page, word) => {
    await word('Sun');
    await page.getByLabel('Show an event…').selectOption({label: 'Porch'});
    await page.locator('.plot .trace circle').first().waitFor();
  },
};

test('the tour leads where it says', async () => {
  const sections = (await readFile(TOUR, 'utf8'))
    .split(/^## /m)
    .slice(1)
    .map((text) => [
      text.slice(0, text.indexOf('\n')),
      [...text.matchAll(/\*\*([^*]+)\*\*/g)].map((match) => match[1].replace(/\s+/g, ' ')),
    ]);
  assert.deepEqual(
    sections.map(([title]) => title),
    Object.keys(steps),
  );
  const page = await open(house);
  for (const [title, words] of sections) {
    const left = [...words];
    /** The next bold word; a link or a button of that name is clicked, a label only named. */
    const word = async (name, kind = 'link') => {
      assert.equal(left.shift(), name, `in "${title}"`);
      if (kind !== 'label') await page.getByRole(kind, {name, exact: true}).first().click();
      return name;
    };
    await steps[title](page, word);
    assert.deepEqual(left, [], `in "${title}" more is said than done`);
  }
  await page.done();
});
