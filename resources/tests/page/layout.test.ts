import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open, painted } from '../support/page.ts';
import { tellAbout } from '../support/about.ts';
import { analysisOf, hostileApps, hostileLeftovers, someApps, someLeftovers } from '../support/apps.ts';
import { tellCleaning, trashItem, withHistory } from '../support/cleaning.ts';
import { hostileDisk, macDisk, serveFolders } from '../support/folders.ts';
import { tellMeasurement } from '../support/measurement.ts';
import { fullState, home, hostileState, inSpanish, manyDuplicates, manyFiles, withoutAccess } from '../support/states.ts';
import { hostileActivity, hostileSample, someActivity, someSample } from '../support/system.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const views = ['inicio', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial', 'ajustes', 'guia', 'avisos', 'apps'];

/** What sticks out sideways of the window or of a scrolling part of it, or out of its own control. */
function sticksOut(page: Page): Promise<string[]> {
  return page.evaluate(() => {
    const found: string[] = [];
    if (document.documentElement.scrollWidth > innerWidth) found.push('window');
    for (const element of document.querySelectorAll('.page, .content, nav, section, button, label')) {
      const hidden = getComputedStyle(element).overflowX === 'hidden' && !element.matches('.page');
      if (!hidden && element.scrollWidth > element.clientWidth + 1) {
        found.push(`${element.tagName}.${element.className}: ${element.textContent?.trim().slice(0, 60)}`);
      }
    }
    return found;
  });
}

const sizes = [
  { name: '720 px', width: 720, height: 600, zoom: '100%' },
  { name: '720 px and 200 % text', width: 720, height: 600, zoom: '200%' },
  { name: '940 px', width: 940, height: 600, zoom: '100%' },
  { name: '1180 px', width: 1180, height: 760, zoom: '100%' },
  { name: '1180 px and 200 % text', width: 1180, height: 760, zoom: '200%' },
  { name: '4K', width: 3840, height: 2160, zoom: '100%' },
];

describe.each(sizes)('$name', ({ width, height, zoom }) => {
  it.each([
    { kind: 'in Spanish, without access', hostile: false, state: inSpanish(withHistory(withoutAccess())) },
    { kind: 'with hostile names', hostile: true, state: withHistory(hostileState(), true) },
  ])('nothing sticks out $kind', async ({ state, hostile }) => {
    const opened = await open(browser, { saved: state, context: { viewport: { width, height } } });
    await opened.tell('onPermissions', { fda: false });
    await opened.page.evaluate((size) => (document.documentElement.style.fontSize = size), zoom);
    await tellCleaning(opened, hostile);
    await tellAbout(opened);
    for (const view of views) {
      await opened.go(view);
      await opened.tell('onExclusions', state.files.map(({ path }) => path));
      if (view === 'historial') await opened.page.locator('[data-key]').first().press('Enter');
      await painted(opened.page);
      expect(await sticksOut(opened.page), view).toEqual([]);
    }
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});

describe.each(sizes)('$name, applications and system', ({ width, height, zoom }) => {
  it.each([{ kind: 'in Spanish', hostile: false }, { kind: 'with hostile names', hostile: true }])(
    'nothing sticks out $kind',
    async ({ hostile }) => {
      const saved = inSpanish(withoutAccess());
      const opened = await open(browser, { saved, context: { viewport: { width, height } } });
      const { page } = opened;
      await page.evaluate((size) => (document.documentElement.style.fontSize = size), zoom);
      await opened.go('sistema');
      for (let sample = 0; sample < 2; sample += 1) {
        await opened.tell('onSystemActivity', hostile ? hostileActivity() : someActivity());
        await opened.tell('onSystem', hostile ? hostileSample() : someSample());
      }
      // Applications that stay open have the longest words.
      for (const button of await page.locator('.quit button').all()) await button.dispatchEvent('click');
      for (const { pid } of someActivity().procs) await opened.tell('onApplicationStopped', { pid, ended: false });
      await painted(page);
      expect(await sticksOut(page), 'sistema').toEqual([]);
      await opened.go('apps');
      const apps = hostile ? hostileApps() : someApps();
      await opened.tell('onApps', apps);
      await painted(page);
      expect(await sticksOut(page), 'apps').toEqual([]);
      const first = (await page.locator('[data-key^="/"]').first().getAttribute('data-key'))!;
      await page.locator('[data-key^="/"]').first().click({ position: { x: 60, y: 10 } });
      const opening = apps.find(({ path }) => path === first)!;
      await opened.tell('onAppAnalysis', analysisOf(opening, hostile ? hostileLeftovers() : someLeftovers()));
      await painted(page);
      expect(await sticksOut(page), 'one application').toEqual([]);
      await opened.close();
      expect(opened.complaints).toEqual([]);
    },
  );
});

describe.each(sizes)('$name, folders', ({ width, height, zoom }) => {
  it('nothing sticks out, with hostile names deep inside and with everything that can be shown', async () => {
    const opened = await open(browser, { saved: inSpanish(hostileState()), context: { viewport: { width, height } } });
    const { page } = opened;
    await page.evaluate((size) => (document.documentElement.style.fontSize = size), zoom);
    const disk = hostileDisk();
    const deepest = Object.keys(disk).reduce((left, right) => (disk[right]!.entries.length > 0 ? right : left));
    const growth = { [home]: { [disk[home]!.folders[0]!.name]: -123_456_789_000 } };
    await serveFolders(opened, { disk, growth });
    await opened.go('explorar');
    await page.getByRole('grid').waitFor();
    await painted(page);
    expect(await sticksOut(page), 'home').toEqual([]);
    await page.locator('[data-key]').first().focus();
    await page.keyboard.press('Control+a');
    expect(await sticksOut(page), 'selected').toEqual([]);
    await page.keyboard.press('Control+f');
    await page.keyboard.type('a');
    await page.locator('[aria-describedby="found-help"] [data-key]').first().waitFor();
    expect(await sticksOut(page), 'search').toEqual([]);
    await page.locator('[data-key]').evaluateAll((rows, wanted) => rows.find((row) => (row as HTMLElement).dataset.key === wanted)!.dispatchEvent(new MouseEvent('click', { bubbles: true })), deepest);
    await page.locator('.notes').waitFor();
    await painted(page);
    expect(await sticksOut(page), 'deep').toEqual([]);
    expect(await page.title()).toBe('Velto');
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});

/** Controls under the window's drag strip: a click on one would move the window and do nothing else. */
function underTheStrip(page: Page): Promise<string[]> {
  return page.evaluate(() => {
    const wide = Math.min(Math.max(innerWidth - 598, 140), innerWidth - 200);
    return [...document.querySelectorAll('button, a, input, select, summary, [role="switch"]')]
      .filter((element) => {
        const { left, right, top, bottom } = element.getBoundingClientRect();
        return right > 78 && left < 78 + wide && top < 52 && bottom > 0 && right > left && bottom > top;
      })
      .map((element) => element.outerHTML.slice(0, 160));
  });
}

describe.each(sizes.filter(({ zoom }) => zoom === '100%'))('$name, the strip that drags the window', ({ width, height }) => {
  it('lies over no control', async () => {
    const opened = await open(browser, { saved: inSpanish(withHistory(withoutAccess())), context: { viewport: { width, height } } });
    const { page } = opened;
    await tellCleaning(opened);
    await serveFolders(opened, { disk: macDisk() });
    for (const view of [...views, 'sistema', 'explorar']) {
      await opened.go(view);
      if (view === 'apps') await opened.tell('onApps', someApps());
      await painted(page);
      expect(await underTheStrip(page), view).toEqual([]);
    }
    await opened.go('apps');
    await page.locator('[data-key^="/"]').first().click({ position: { x: 60, y: 10 } });
    expect(await underTheStrip(page), 'one application').toEqual([]);
    await page.getByRole('button', { name: 'Volver a todas las aplicaciones' }).click();
    expect(await page.locator('[data-key^="/"]').count()).toBeGreaterThan(1);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});

describe('room for the list', () => {
  it('with large text the list keeps room and the page scrolls', async () => {
    const opened = await open(browser, { saved: inSpanish(withoutAccess()), context: { viewport: { width: 720, height: 600 } } });
    await opened.page.evaluate(() => (document.documentElement.style.fontSize = '200%'));
    await opened.go('archivos');
    const list = (await opened.page.locator('.content').boundingBox())!;
    const bar = (await opened.page.locator('[data-region="actions"]').boundingBox())!;
    expect(list.height).toBeGreaterThan(200);
    expect(bar.y).toBeGreaterThanOrEqual(list.y + list.height - 1);
    await serveFolders(opened, { disk: macDisk() });
    await opened.go('explorar');
    await opened.page.getByRole('grid').waitFor();
    expect((await opened.page.locator('.scroller').boundingBox())!.height).toBeGreaterThan(200);
    await opened.close();
  });

  it('in the smallest window what can be done with a selection is in sight, and rows tell their names', async () => {
    const opened = await open(browser, { saved: inSpanish(fullState()), context: { viewport: { width: 720, height: 480 } } });
    const { page } = opened;
    const growth = { [home]: { Library: 4_100_000_000, Movies: -900_000_000 } };
    await serveFolders(opened, { disk: macDisk(), growth });
    await opened.tell('onExclusions', [`${home}/Music`]);
    await tellMeasurement(opened);
    await tellCleaning(opened);
    for (const view of ['duplicados', 'archivos', 'limpieza', 'explorar']) {
      await opened.go(view);
      await page.locator('[data-key]').first().waitFor();
      const { y, height } = (await page.locator('.bar').boundingBox())!;
      expect(Math.round(y + height), view).toBe(480);
    }
    const cut = (found: Element[]) =>
      found.filter(({ scrollWidth, clientWidth }) => scrollWidth > clientWidth).map(({ textContent }) => textContent!.trim());
    await page.locator('.row .growth').first().waitFor();
    // What is said of a folder besides comes first, and may need more room than there is.
    expect(await page.locator('.row .more:not(:has(span))').evaluateAll(cut)).toEqual([]);
    await page.setViewportSize({ width: 1180, height: 760 });
    await painted(page);
    const widths = await page.locator('.row .title').evaluateAll((found) => found.map((title) => title.getBoundingClientRect().width));
    expect(widths.length).toBeGreaterThan(5);
    expect(Math.min(...widths)).toBeGreaterThan(30);
    expect(await page.locator('.row .title').evaluateAll(cut)).toEqual([]);
    await opened.close();
  });

  it('targets are at least 24 by 24 px', async () => {
    for (const view of [...views, 'explorar']) {
      const opened = await open(browser, { saved: withHistory(withoutAccess()), context: { viewport: { width: 720, height: 600 } } });
      await opened.tell('onPermissions', { fda: false });
      await tellCleaning(opened);
      await serveFolders(opened, { disk: macDisk() });
      await opened.go(view);
      if (view === 'explorar') await opened.page.getByRole('grid').waitFor();
      const small = await opened.page.evaluate(() =>
        [...document.querySelectorAll('button:not(.cell), select, [role="switch"], label')]
          .filter((element) => {
            const { width, height } = element.getBoundingClientRect();
            return width > 0 && (width < 24 || height < 24);
          })
          .map((element) => element.outerHTML.slice(0, 120)),
      );
      await opened.close();
      expect(small, view).toEqual([]);
    }
  });
});

/** What a screen reader is told of a list of which only the rows in sight are made. */
const rowIndices = (page: Page) =>
  page.getByRole('grid').locator('[role="row"]').evaluateAll((rows) => rows.map((row) => Number(row.getAttribute('aria-rowindex'))));
const rowCount = (page: Page) => page.getByRole('grid').getAttribute('aria-rowcount');
const focused = (page: Page) => page.evaluate(() => document.activeElement?.getAttribute('data-key')?.split('/').at(-1));

describe('long lists', () => {
  it('of 500 files makes the rows in sight, and counts, selects and focuses the others as well', async () => {
    const opened = await open(browser, { saved: manyFiles(500) });
    const { page } = opened;
    await opened.go('archivos');
    await painted(page);
    expect(await page.locator('[data-key]').count()).toBeLessThan(40);
    expect(await rowCount(page)).toBe('501');
    expect((await rowIndices(page)).slice(0, 4)).toEqual([1, 2, 3, 4]);
    await page.locator('[data-key]').first().press('End');
    await page.locator('[aria-rowindex="501"]:focus').waitFor();
    expect(await focused(page)).toBe('grabación 497.bin');
    await page.keyboard.press('Space');
    // The focused row stays while another part of the list is looked at.
    await page.locator('.content').evaluate((content) => (content.scrollTop = 0));
    await page.locator('[aria-rowindex="2"]').waitFor();
    expect(await focused(page)).toBe('grabación 497.bin');
    await page.keyboard.press('Home');
    await page.locator('[aria-rowindex="2"]:focus').waitFor();
    await page.keyboard.press('Control+a');
    await page.getByText('500 selected').first().waitFor();
    expect((await opened.during(() => page.keyboard.press('Delete')))[0]!.payload).toHaveProperty('paths.length', 500);
    await page.getByRole('textbox').fill('Proyectos');
    await page.locator('[aria-rowcount="126"]').waitFor();
    expect(await page.locator('[data-key]').first().getAttribute('data-key')).toContain('Proyectos');
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('of 3,000 groups makes the groups in sight, and selects the copies in all of them', async () => {
    const opened = await open(browser, { saved: manyDuplicates(3000) });
    const { page } = opened;
    await opened.go('duplicados');
    await painted(page);
    expect(await page.getByRole('rowgroup').count()).toBeLessThan(12);
    expect(await rowCount(page)).toBe('9000');
    await page.getByRole('button', { name: 'Select all but the kept copies' }).click();
    await page.getByText(/3[,.]?000 selected/).first().waitFor();
    expect(await page.getByRole('rowgroup').count()).toBeLessThan(12);
    await page.locator('[data-key]').first().press('End');
    await page.locator('[aria-rowindex="9000"]:focus').waitFor();
    const { bottom, end } = await page.evaluate(() => ({
      bottom: document.activeElement!.getBoundingClientRect().bottom,
      end: document.querySelector('.content')!.getBoundingClientRect().bottom,
    }));
    expect(bottom).toBeLessThanOrEqual(end);
    expect(await page.locator(':focus').getAttribute('aria-selected')).toBe('true');
    await opened.close();
  });

  it('of 5,000 things in the trash makes the cards in sight, and reaches the last one', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    const now = Date.now() / 1000;
    await opened.tell('onTrashState', Array.from({ length: 5000 }, (_, index) => trashItem(`op${index}`, `Downloads/${index}.iso`, 1, now - index * 60)));
    await opened.go('papelera');
    await painted(page);
    expect(await page.locator('[data-key]').count()).toBeLessThan(40);
    expect(await rowCount(page)).toBe('10000');
    await page.locator('[data-key]').first().press('End');
    await page.locator('[aria-rowindex="10000"]:focus').waitFor();
    expect(await page.locator(':focus').innerText()).toContain('4999.iso');
    await opened.close();
  });
});
