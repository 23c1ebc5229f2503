// A real Chromium and pages in it, each watched: what it says on its console, and whom it asks.

import assert from 'node:assert/strict';
import {existsSync} from 'node:fs';
import {createRequire} from 'node:module';
import {readFile} from 'node:fs/promises';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
/** Where npm has put what package-lock.json names. */
const modules = process.env.VEXALINK_NODE_MODULES ?? join(here, 'node_modules');
const require = createRequire(join(modules, 'from-here.js'));
const {chromium} = require('playwright-core');
const AXE = require.resolve('axe-core/axe.min.js');
const CHROMIUM =
  process.env.CHROMIUM ?? ['/usr/bin/chromium', '/usr/bin/chromium-browser'].find(existsSync);

/** How long anything may take before it counts as not coming. */
export const PATIENCE_MS = 30000;

let browser = null;

export async function openBrowser() {
  assert.ok(
    CHROMIUM,
    'there is no /usr/bin/chromium; install the package chromium, or name one in CHROMIUM',
  );
  const root = process.getuid?.() === 0;
  browser = await chromium.launch({executablePath: CHROMIUM, args: root ? ['--no-sandbox'] : []});
}

export async function closeBrowser() {
  await browser?.close();
  browser = null;
}

/**
 * A page of its own on `house`, ready; `options` as Playwright's contexts take them. What `expects`
 * matches may be said on the console; `before` has the page before it goes there.
 */
export async function open(
  house,
  path = '',
  {expects, ready = true, before = null, ...options} = {},
) {
  const context = await browser.newContext({
    locale: 'en-GB',
    viewport: {width: 1280, height: 860},
    ...options,
  });
  context.setDefaultTimeout(PATIENCE_MS);
  const page = await context.newPage();
  const complaints = [];
  page.on('console', (message) => {
    const text = message.text();
    if (['error', 'warning'].includes(message.type()) && !expects?.test(text))
      complaints.push(`console: ${text}`);
  });
  page.on('pageerror', (error) => complaints.push(`uncaught: ${error.stack}`));
  page.on('request', (request) => {
    const url = request.url();
    if (!url.startsWith(house.url) && !url.startsWith('data:') && !url.startsWith('blob:'))
      complaints.push(`asks elsewhere: ${url}`);
  });
  await before?.(page);
  await page.goto(house.url + path);
  if (ready) await page.waitForSelector('html[data-ready]');
  /** Ends the page; what it complained of is the test's failure. */
  page.done = async () => {
    await context.close();
    assert.deepEqual(complaints, []);
  };
  return page;
}

/** What the accessibility checker finds on the page, each as a line. */
export async function findings(page) {
  await page.evaluate(await readFile(AXE, 'utf8'));
  const {violations} = await page.evaluate(() =>
    globalThis.axe.run(document, {resultTypes: ['violations']}),
  );
  return violations.flatMap(({id, nodes}) =>
    nodes.map(({html, failureSummary}) => `${id}: ${html}\n  ${failureSummary}`),
  );
}

/** Waits until `find` answers with something true; what it is. */
export async function until(find, what) {
  const end = Date.now() + PATIENCE_MS;
  for (;;) {
    const found = await find();
    if (found) return found;
    assert.ok(Date.now() < end, `waited in vain for ${what}`);
    await new Promise((resolve) => setTimeout(resolve, 30));
  }
}

/** The house's civil day so many days on, "2026-11-21". */
export function dayFromNow(days, zone = 'Europe/Berlin') {
  // Part by part: what a locale makes of them is another thing with every node.
  const format = new Intl.DateTimeFormat('en', {
    timeZone: zone,
    year: 'numeric',
    month: '2-digit',
    day: '2-digit',
  });
  const parts = new Map(format.formatToParts(new Date()).map(({type, value}) => [type, value]));
  const today = `${parts.get('year')}-${parts.get('month')}-${parts.get('day')}`;
  return new Date(Date.parse(`${today}T00:00:00Z`) + days * 86400000).toISOString().slice(0, 10);
}
