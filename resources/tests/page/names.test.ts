import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open, painted } from '../support/page.ts';
import { tellCleaning, withHistory } from '../support/cleaning.ts';
import { hostileNames, hostileState } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

/** What was put in the page as markup or run as script, instead of being shown. */
const strangers = 'img, iframe, b, i, script:not([src="./velto.js"], [src="./later.js"]), a';

describe('names of files are data', () => {
  it.each(['inicio', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial', 'ajustes'])('in %s no name becomes markup or script', async (view) => {
    const opened = await open(browser, { saved: withHistory(hostileState(), true) });
    const { page } = opened;
    await opened.tell('onPermissions', { fda: false });
    await tellCleaning(opened, true);
    await opened.go(view);
    if (view === 'historial') await page.locator('[data-key]').first().press('Enter');
    await opened.tell('onExclusions', hostileNames.map((name) => `/Users/marina/${name}`));
    await opened.tell('toast', hostileNames[0], hostileNames[1]);
    await painted(page);
    expect(await page.locator(strangers).count()).toBe(0);
    expect(await page.title()).toBe('Velto');
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('a name is shown letter for letter, its marks spelled out', async () => {
    const opened = await open(browser, { saved: hostileState() });
    const { page } = opened;
    await opened.go('archivos');
    const shown = await page.locator('[data-key] .name bdi').evaluateAll((names) => names.map((name) => name.textContent));
    expect(shown[0]).toBe(hostileNames[0]);
    expect(shown[2]).toBe('facturaU+202Efdp.exe.mov');
    expect(shown[3]).toBe('línea unoU+000Alínea dosU+0009tabU+0007.bin');
    expect(shown[4]).toBe(hostileNames[4]);
    expect(shown[8]).toBe(hostileNames[8]);
    expect(await page.locator('[data-key] .mark').count()).toBe(4);
    await opened.close();
  });

  it('no mark of a name reaches a label or a tooltip', async () => {
    const opened = await open(browser, { saved: withHistory(hostileState(), true) });
    const { page } = opened;
    await tellCleaning(opened, true);
    for (const view of ['inicio', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial']) {
      await opened.go(view);
      await painted(page);
      const leaked = await page.evaluate(() =>
        [...document.querySelectorAll('[title], [aria-label]')]
          .flatMap((element) => [element.getAttribute('title'), element.getAttribute('aria-label')])
          .filter((text) => /[\u0000-\u001f\u202a-\u202e\u2066-\u2069]/.test(text ?? '')),
      );
      expect(leaked, view).toEqual([]);
    }
    await opened.close();
  });

  it('acts on the name as it is, not as it is shown', async () => {
    const opened = await open(browser, { saved: hostileState() });
    const { page } = opened;
    await opened.go('archivos');
    const [intent] = await opened.during(() => page.locator('[data-key]').nth(2).getByRole('button').first().click());
    expect(intent).toEqual({ type: 'revealPath', payload: `/Users/marina/Movies/${hostileNames[2]}` });
    await opened.close();
  });

  it('a question names a hostile file in words of its own, shortened and with its marks spelled out', async () => {
    const opened = await open(browser, { saved: hostileState() });
    const { page } = opened;
    await tellCleaning(opened, true);
    await opened.go('papelera');
    for (const row of await page.locator('[data-key^="it"]').all()) {
      await row.getByRole('button').last().click();
      const title = (await page.getByRole('dialog').getByRole('heading').textContent())!;
      expect([...title].length).toBeLessThan(800);
      expect(title).not.toMatch(/[\u0000-\u001f\u202a-\u202e]/);
      expect(await page.locator(strangers).count()).toBe(0);
      await page.keyboard.press('Escape');
    }
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});
