import type { Browser, Locator } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { someTrash } from '../support/cleaning.ts';
import { someMeasurement, tellMeasurement } from '../support/measurement.ts';
import { launch, open, painted } from '../support/page.ts';
import { fullState, home } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

/** Painted first: a row that was never shown has no text yet. */
const text = async (locator: Locator) => {
  await painted(locator.page());
  return (await locator.innerText()).replaceAll('\u00a0', ' ');
};
const film = `${home}/Movies/Viaje a Islandia/Islandia - montaje final (4K, HDR, 60 fps).mov`;
const [small, , many] = fullState().dupGroups;

describe('sizes', () => {
  it('are shown to the unit that people read, sums too', async () => {
    // High enough for the row to be there when it has become the last.
    const opened = await open(browser, { saved: fullState(), context: { viewport: { width: 1180, height: 1600 } } });
    await opened.go('archivos');
    const row = opened.page.locator(`[data-key="${film}"]`);
    expect(await text(row.locator('.size'))).toBe('41.7 GB');
    await opened.tell('onExactSizes', { files: { [film]: 9_400_000 } });
    expect(await text(row.locator('.size'))).toBe('9.4 MB');
    await row.click();
    await opened.page.keyboard.press('Space');
    expect(await text(opened.page.locator('.summary').last())).toContain('1 selected · 9.4 MB');
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('of copies are those of their content', async () => {
    const opened = await open(browser, { saved: fullState({ dupGroups: [small!] }) });
    await opened.go('duplicados');
    expect(await text(opened.page.locator('.group > .head'))).toContain('less than 0.1 GB each');
    await opened.tell('onExactSizes', { copies: { [small!.paths[1]!]: 9_000_000 } });
    expect(await text(opened.page.locator('.group > .head'))).toContain('9 MB each');
    expect(await text(opened.page.locator('header').first())).toContain('About 9 MB in extra copies');
    await opened.close();
  });

  it('of the trash come by item, and change what it holds', async () => {
    const opened = await open(browser, { saved: fullState() });
    await opened.go('papelera');
    const item = someTrash()[0]!;
    await opened.tell('onExactSizes', { trash: { [item.id]: 23_400_000 } });
    await opened.tell('onTrashState', [{ ...item, gb: 0 }]);
    expect(await text(opened.page.locator('.held'))).toContain('23 MB');
    expect(await text(opened.page.locator(`[data-key="${item.id}"] .size`))).toBe('23 MB');
    await opened.close();
  });

  it('of candidates change their kind and the whole', async () => {
    const opened = await open(browser, { saved: fullState() });
    await opened.go('limpieza');
    const path = `${home}/Library/Caches/com.example`;
    await opened.tell('onExactSizes', { cleanables: { [path]: 61_000_000 } });
    await opened.tell('onCleanables', [{ ruleID: 'caches', path, gb: 0.1, daysOld: 40, label: 'x' }]);
    expect(await text(opened.page.locator(`[data-key="${path}"] .size`))).toBe('61 MB');
    await opened.close();
  });
});

describe('paths', () => {
  it('begin with ~, and are whole in the tooltip and when copied', async () => {
    const opened = await open(browser, { saved: fullState() });
    await opened.tell('onHome', home);
    await opened.go('archivos');
    const row = opened.page.locator(`[data-key="${film}"]`);
    expect(await text(row.locator('.path'))).toBe('~/Movies/Viaje a Islandia');
    expect(await row.locator('.path .name').getAttribute('title')).toBe(film);
    await opened.page.evaluate(() => {
      const original = DataTransfer.prototype.setData;
      DataTransfer.prototype.setData = function (format, data) {
        (window as unknown as { __copied: string }).__copied = data;
        original.call(this, format, data);
      };
    });
    await row.focus();
    await opened.page.keyboard.press('Control+c');
    expect(await opened.page.evaluate(() => (window as unknown as { __copied: string }).__copied)).toBe(film);
    await opened.go('duplicados');
    expect(await text(opened.page.locator('.path').first())).toContain('~/');
    await opened.close();
  });
});

describe('names of one file', () => {
  it('are marked, left out of the sum, and not selected as extra copies', async () => {
    const opened = await open(browser, { saved: fullState({ dupGroups: [many!] }) });
    await opened.go('duplicados');
    const kept = many!.paths[2]!;
    await opened.tell('onLinkedCopies', { [many!.id]: [[many!.paths[0], kept], [many!.paths[1], many!.paths[3]]] });
    const head = opened.page.locator('.group > .head');
    expect(await text(head)).toContain('2 copies under 4 names');
    expect(await text(head)).toContain('2.1 GB extra');
    const row = (path: string) => opened.page.locator(`[data-key="${path}"]`);
    expect(await text(row(many!.paths[0]!))).toContain('Same file as the one that stays');
    expect(await text(row(many!.paths[1]!))).toContain('One file, 2 names');
    await opened.page.getByRole('button', { name: 'Select all but the kept copies' }).click();
    expect(await row(many!.paths[0]!).getAttribute('aria-selected')).toBe('false');
    expect(await row(many!.paths[1]!).getAttribute('aria-selected')).toBe('true');
    expect(await text(opened.page.locator('.summary').last())).toContain('2 selected · 2.1 GB');
    await opened.close();
  });
});

describe('everything else', () => {
  it('opens the parts that it is made of', async () => {
    const opened = await open(browser, { saved: fullState(), platform: 'linux' });
    await tellMeasurement(opened);
    expect(await text(opened.page.locator('.used'))).toContain('49.7 GB of it reserved for the system');
    await opened.page.getByText('What this is made of').click();
    const parts = await text(opened.page.locator('.parts'));
    for (const part of [
      'System data in your home', '24.8 GB', 'Hidden files, and the folders themselves', '12.3 GB', 'Reserved by the file system', '49.7 GB',
      'The rest of the disk', '91.4 GB',
    ]) {
      expect(parts).toContain(part);
    }
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('leaves the map to what was measured, and says how much stands beside it', async () => {
    const opened = await open(browser, { saved: fullState() });
    const area = () => opened.page.locator('.map .area[data-category="sistema"]').getAttribute('aria-label');
    expect(await area()).toContain('178.2');
    await tellMeasurement(opened);
    expect(await area()).toContain('24.8');
    expect(await text(opened.page.locator('.card [data-category="sistema"] strong'))).toBe('macOS and system data');
    expect(await text(opened.page.locator('p[data-category="sistema"]'))).toContain('153.4 GB');
    await opened.close();
  });
});

describe('what was not measured', () => {
  it('is told in one place', async () => {
    const opened = await open(browser, { saved: fullState() });
    const section = opened.page.getByRole('region', { name: 'What was not measured' });
    expect(await section.count()).toBe(0);
    await tellMeasurement(opened);
    const told = await text(section);
    expect(told).toContain('1 place is excluded by you');
    expect(told).toContain('12 items could not be read');
    expect(told).toContain('another disk, with 1.4 TB in use there');
    expect(told).toContain('another disk, or a folder on a network');
    expect(told).toContain('1,234 files have not been compared yet');
    await section.getByText('12 items').click();
    expect(await text(section)).toContain('nas virtuales/compartido');
    await opened.close();
  });

  it('is not there when nothing is left out', async () => {
    const opened = await open(browser, { saved: fullState() });
    await tellMeasurement(opened, {
      volumes: [], excluded: [], unreadable: { count: 0, paths: [] },
      compared: { complete: true, left: 0, canContinue: false, running: false },
    });
    await opened.page.getByText('What this is made of').waitFor();
    expect(await opened.page.getByRole('region', { name: 'What was not measured' }).count()).toBe(0);
    await opened.close();
  });

  it('the comparison goes on when asked to, and stops', async () => {
    const opened = await open(browser, { saved: fullState() });
    await tellMeasurement(opened);
    expect(await opened.during(() => opened.page.getByRole('button', { name: 'Compare the rest' }).click())).toEqual([
      { type: 'continueComparison' },
    ]);
    await tellMeasurement(opened, { compared: { ...someMeasurement.compared, running: true, left: 800 } });
    await opened.page.getByText('800 to go').waitFor();
    expect(await opened.during(() => opened.page.getByRole('button', { name: 'Stop', exact: true }).click())).toEqual([
      { type: 'stopComparison' },
    ]);
    await opened.go('duplicados');
    await opened.page.getByText('800 to go').waitFor();
    await opened.close();
  });

  it('after a restart only a new analysis can go on', async () => {
    const opened = await open(browser, { saved: fullState() });
    await tellMeasurement(opened, { compared: { ...someMeasurement.compared, canContinue: false } });
    await opened.page.getByText('Analyze again to be able to go on.').waitFor();
    expect(await opened.page.getByRole('button', { name: 'Compare the rest' }).count()).toBe(0);
    await opened.close();
  });
});
