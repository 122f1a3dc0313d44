import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open, painted } from '../support/page.ts';
import { analysisOf, hostileApps, hostileLeftovers, someApps, someLeftovers } from '../support/apps.ts';
import { tellCleaning, withHistory } from '../support/cleaning.ts';
import { hostileDisk, macDisk, serveFolders } from '../support/folders.ts';
import { home, hostileState, inSpanish, manyDuplicates, manyFiles, withoutAccess } from '../support/states.ts';
import { hostileActivity, hostileSample, someActivity, someSample } from '../support/system.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const views = ['inicio', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial', 'ajustes', 'apps'];

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

describe('long lists', () => {
  /** Generous for a shared machine; a list that is laid out whole on every key takes far longer. */
  const slow = 400;

  it('500 files sort and filter without a pause', async () => {
    const opened = await open(browser, { saved: manyFiles(500) });
    const { page } = opened;
    await opened.go('archivos');
    await page.locator('[data-key]').nth(499).waitFor({ state: 'attached' });
    const time = (action: string) =>
      page.evaluate(async (selector) => {
        const start = performance.now();
        document.querySelector<HTMLElement>(selector)!.click();
        await new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
        return performance.now() - start;
      }, action);
    expect(await time('[role="columnheader"].name button')).toBeLessThan(slow);
    expect(await time('[role="columnheader"].size button')).toBeLessThan(slow);
    await page.getByRole('textbox').fill('Proyectos');
    expect(await page.locator('[data-key]').count()).toBe(125);
    await opened.close();
  });

  it('many groups come in portions, and selecting all of them shows all of them', async () => {
    const opened = await open(browser, { saved: manyDuplicates(230) });
    const { page } = opened;
    await opened.go('duplicados');
    expect(await page.getByRole('rowgroup').count()).toBe(100);
    await page.getByRole('button', { name: 'Show 130 more groups' }).click();
    expect(await page.getByRole('rowgroup').count()).toBe(200);
    await page.getByRole('button', { name: 'Select all but the kept copies' }).click();
    expect(await page.getByRole('rowgroup').count()).toBe(230);
    expect(await page.getByText('230 selected').first().isVisible()).toBe(true);
    await opened.close();
  });
});
