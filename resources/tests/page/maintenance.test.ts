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
  expect(await violations(page)).toEqual([]);
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
