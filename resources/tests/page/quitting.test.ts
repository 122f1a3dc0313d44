import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open, painted } from '../support/page.ts';
import { defaultSettings, fullState } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

describe('the program that is about to quit', () => {
  it('says what it still does, and nothing new can be begun', async () => {
    const { page, tell, close } = await open(browser, { saved: fullState() });
    const notice = page.getByRole('dialog', { name: 'Velto is about to quit' });
    expect(await notice.count()).toBe(0);
    await tell('onQuitting', { running: 'cleanup' });
    await notice.waitFor();
    expect(await notice.textContent()).toContain('Velto is finishing what it has begun.');
    await page.keyboard.press('Escape');
    await page.keyboard.press('Escape');
    await painted(page);
    expect(await notice.isVisible()).toBe(true);
    // There is nothing to press in it.
    expect(await notice.evaluate((one) => getComputedStyle(one).outlineStyle)).toBe('none');
    const blocked = await page.evaluate(() => !document.elementFromPoint(30, 300)?.closest('nav, main'));
    expect(blocked).toBe(true);
    await close();
  });

  it('names an uninstall, in Spanish too', async () => {
    const { page, tell, close } = await open(browser, { saved: fullState({ settings: { ...defaultSettings, language: 'es' } }) });
    await tell('onQuitting', { running: 'uninstall' });
    const notice = page.getByRole('dialog', { name: 'Velto está a punto de cerrarse' });
    await notice.waitFor();
    expect(await notice.textContent()).toContain('Todavía se está desinstalando una aplicación.');
    await close();
  });
});
