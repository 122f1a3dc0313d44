import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const places = {
  systemTrash: { places: ['/Users/ana/.Trash'] },
  oldDownloads: { places: ['/Users/ana/Downloads'] },
  caches: { places: ['/Users/ana/Library/Caches', '/Users/ana/Library/Developer/Xcode/DerivedData'] },
  duplicates: { places: ['/Users/ana/Downloads', '/Users/ana/Desktop', '/Users/ana/Documents'] },
};
const measured = {
  systemTrash: { ...places.systemTrash, items: 0, gb: 0 },
  oldDownloads: { ...places.oldDownloads, items: 1, gb: 1.26 },
  caches: { ...places.caches, items: 12, gb: 8.4 },
  duplicates: { ...places.duplicates, items: 3, gb: 0.3 },
};
const noon = Date.UTC(2026, 10, 22, 12) / 1000;

async function settings(): Promise<OpenPage> {
  const opened = await open(browser, { saved: fullState() });
  await opened.page.getByRole('button', { name: 'Settings' }).click();
  return opened;
}

it('asks for the status when it is shown, and says when nothing has run', async () => {
  const { page, tell, intents, close, complaints } = await settings();
  expect(await intents()).toContainEqual({ type: 'maintenanceStatus' });
  expect(await page.getByText('Last run').count()).toBe(0);
  await tell('onMaintenance', { installed: false, last: null, next: null, rules: places });
  expect(await page.getByText('Maintenance has not run yet.').isVisible()).toBe(true);
  expect(await page.getByText('The next run').count()).toBe(0);
  expect(await page.getByRole('list', { name: 'Where' }).count()).toBe(4);
  await close();
  expect(complaints).toEqual([]);
});

it('tells the last run and the next one, in both languages', async () => {
  const { page, tell, close } = await settings();
  const state = fullState();
  state.settings.autoMaintenance = true;
  await tell('setState', state, noon);
  await tell('onMaintenance', {
    installed: true, last: { ts: noon, freed: 0.4, moved: 3, movedGB: 1.2 }, next: noon + 86400, rules: places,
  });
  expect(await page.getByText('The next run is due on November 23, 2026.').isVisible()).toBe(true);
  expect(await page.getByText('moved 3 items (1.2 GB) to Velto Trash, deleted 0.4 GB for good.').isVisible()).toBe(true);
  await tell('onMaintenance', {
    installed: true, last: { ts: noon, freed: 0, moved: 0, movedGB: 0 }, next: noon + 86400, rules: places,
  });
  expect(await page.getByText('there was nothing to do.').isVisible()).toBe(true);
  await page.getByRole('radio', { name: 'Español' }).click();
  expect(await page.getByText('La próxima pasada toca el 23 de noviembre de 2026.').isVisible()).toBe(true);
  expect(await page.getByText('no había nada que hacer.').isVisible()).toBe(true);
  await close();
});

it('measures when asked, once at a time, and keeps the figures when the schedule changes', async () => {
  const { page, tell, during, close } = await settings();
  await tell('onMaintenance', { installed: false, last: null, next: null, rules: places });
  const measure = page.getByRole('button', { name: 'Measure', exact: true });
  expect(await during(() => measure.click())).toEqual([{ type: 'measureMaintenance' }]);
  const running = page.getByRole('button', { name: 'Measuring…' });
  expect(await during(() => running.click({ force: true }))).toEqual([]);
  // What the program tells of the schedule meanwhile is not the answer.
  await tell('onMaintenance', { installed: false, last: null, next: null, rules: places });
  expect(await running.isVisible()).toBe(true);
  await tell('onMaintenance', { installed: false, last: null, next: null, rules: measured });
  expect(await page.getByText('Now: 12 items, 8.4 GB').isVisible()).toBe(true);
  expect(await page.getByText('Now: nothing').count()).toBe(1);
  await tell('onMaintenance', { installed: true, last: null, next: noon, rules: places });
  expect(await page.getByText('Now: 1 item, 1.3 GB').isVisible()).toBe(true);
  expect(await measure.isVisible()).toBe(true);
  // What else is said of a rule is news.
  const withheld = page.getByText('Does nothing without Full Disk Access.');
  for (const needsAccess of [true, false]) {
    await tell('onMaintenance', {
      installed: true, last: null, next: noon, rules: { ...places, duplicates: { ...places.duplicates, needsAccess } },
    });
    expect(await withheld.count()).toBe(needsAccess ? 1 : 0);
    expect(await page.getByText('Now: 1 item, 1.3 GB').isVisible()).toBe(true);
  }
  expect(await violations(page)).toEqual([]);
  await close();
});

const held = {
  items: 5, bytes: 1.2e9,
  returns: [{ from: noon + 86400, items: 2, bytes: 2e8 }, { from: noon + 2 * 86400, items: 2, bytes: 3e8 }, { from: noon + 29 * 86400, items: 1, bytes: 7e8 }],
  days: {},
};
const foretold = [{ days: 0, bytes: 4.65e9 }, { days: 7, bytes: 1.2e9 }, { days: 3, bytes: 6e8 }, { days: 1, bytes: 3e8 }];
const unasked = {
  installed: false, last: null, next: null, rules: { ...places, oldDownloads: { ...places.oldDownloads, needsAccess: true } },
  held, cacheDays: null, fullDiskGB: 0, foretold,
};

async function switchedOff(): Promise<OpenPage> {
  const opened = await settings();
  const state = fullState();
  state.settings.autoMaintenance = false;
  await opened.tell('setState', state, noon);
  return opened;
}

it('asks once how long caches are to be kept, and tells what that comes to', async () => {
  const { page, tell, intents, during, close, complaints } = await switchedOff();
  expect(await intents()).toContainEqual({ type: 'foretellCaches' });
  await tell('onMaintenance', unasked);
  expect(await page.getByText('Velto Trash would come to hold up to 4.7 GB of them.').isVisible()).toBe(true);
  expect(await page.getByText('Does nothing without Full Disk Access.').count()).toBe(1);
  expect(await page.getByText('1.2 GB in Velto Trash. While maintenance is off, it stays there.').isVisible()).toBe(true);

  const enable = page.getByRole('switch', { name: 'Run maintenance automatically' });
  await enable.click();
  const question = page.getByRole('dialog', { name: 'How long should caches be kept?' });
  expect(await question.count(), 'not before it is set up').toBe(0);
  await tell('onMaintenance', { ...unasked, installed: true });
  expect(await question.getByText('That could come to 4.7 GB; with 3 days, to 0.6 GB.').isVisible()).toBe(true);
  expect(await violations(page)).toEqual([]);
  expect(await during(() => question.getByRole('button', { name: 'Keep caches for 3 days' }).click())).toContainEqual({
    type: 'keepCaches', payload: { days: 3 },
  });
  expect(await page.getByLabel('Keep caches for').inputValue()).toBe('3');
  expect(await page.getByText('Velto Trash would come to hold up to 0.6 GB of them.').isVisible()).toBe(true);
  expect(
    await page.getByText('Comes back: 0.2 GB from November 23, 2026, 0.3 GB from November 24, 2026, and 0.7 GB from December 21, 2026.').isVisible(),
  ).toBe(true);

  await enable.click();
  await enable.click();
  await tell('onMaintenance', { ...unasked, installed: true, cacheDays: 3 });
  expect(await question.count(), 'asked once').toBe(0);
  expect(await during(() => page.getByLabel('Say when the disk gets full').selectOption('20'))).toContainEqual({
    type: 'fullDiskNotice', payload: { gb: 20 },
  });
  await close();
  expect(complaints).toEqual([]);
});

it('caches stay as long as everything when nobody wants it otherwise', async () => {
  const { page, tell, during, close } = await switchedOff();
  await tell('onMaintenance', unasked);
  await page.getByRole('switch', { name: 'Run maintenance automatically' }).click();
  await tell('onMaintenance', { ...unasked, installed: true });
  expect(await during(() => page.keyboard.press('Escape'))).toContainEqual({ type: 'keepCaches', payload: { days: 0 } });
  expect(await page.getByLabel('Keep caches for').inputValue()).toBe('0');
  await close();
});

it('a malformed status harms nothing', async () => {
  const { page, tell, close, complaints } = await settings();
  for (const status of [null, 3, 'x', [], { rules: [] }, { rules: { caches: 7, other: {} }, last: 'x', next: 'soon' }]) {
    await tell('onMaintenance', status);
  }
  expect(await page.getByRole('switch', { name: 'Application caches' }).isVisible()).toBe(true);
  await close();
  expect(complaints).toEqual([]);
});
