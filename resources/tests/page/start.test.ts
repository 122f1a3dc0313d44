import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open } from '../support/page.ts';
import { emptyState, fullState, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const sent = async (intents: Promise<{ type: string }[]>, type: string) =>
  (await intents).filter((intent) => intent.type === type).length;

describe('reporting that the page is ready', () => {
  it('happens once, after the saved analysis has been painted', async () => {
    const opened = await open(browser, { saved: fullState() });
    await opened.page.waitForFunction(() => (window as unknown as { __intents: unknown[] }).__intents.length > 0);
    const frames = await opened.page.evaluate(() =>
      (window as unknown as { __intents: { type: string; framesShown: number }[] }).__intents
        .filter(({ type }) => type === 'webReady')
        .map(({ framesShown }) => framesShown),
    );
    expect(frames).toHaveLength(1);
    expect(frames[0]).toBeGreaterThanOrEqual(2);
    await opened.tell('setState', fullState({ free: 1 }), 1_800_000_000);
    await opened.page.waitForTimeout(200);
    expect(await sent(opened.intents(), 'webReady')).toBe(1);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('waits for the first state when nothing was saved', async () => {
    const opened = await open(browser);
    await opened.page.waitForTimeout(200);
    expect(await opened.intents()).toEqual([]);
    await opened.tell('setState', emptyState(), 0);
    await opened.page.waitForTimeout(200);
    expect(await opened.intents()).toEqual([{ type: 'webReady' }]);
    await opened.close();
  });
});

describe('the first thing on screen', () => {
  it('is the saved analysis, in its language', async () => {
    const opened = await open(browser, { saved: inSpanish(fullState()) });
    expect(await opened.page.getByRole('heading', { level: 1 }).textContent()).toBe('Resumen');
    expect(await opened.page.locator('html').getAttribute('lang')).toBe('es');
    expect(await opened.page.getByText('312,4').first().isVisible()).toBe(true);
    expect(await opened.page.getByText(/^como .* fotos de 4 MB$/).isVisible()).toBe(true);
    await opened.close();
  });

  it('speaks the language of the system until a state says otherwise', async () => {
    const opened = await open(browser, { context: { locale: 'es-MX' } });
    expect(await opened.page.locator('html').getAttribute('lang')).toBe('es');
    await opened.tell('setState', fullState(), 1_800_000_000);
    expect(await opened.page.locator('html').getAttribute('lang')).toBe('en');
    await opened.close();
  });

  it('a state without categories is no analysis, whatever its stamp', async () => {
    const opened = await open(browser);
    await opened.tell('setState', emptyState(), Date.now() / 1000);
    expect(await opened.page.getByRole('heading', { name: 'No analysis yet' }).isVisible()).toBe(true);
    expect(await opened.page.getByText('Analyzed').count()).toBe(0);
    expect(await opened.page.getByText('312.4').first().isVisible()).toBe(true);
    await opened.close();
  });

  it('a plain browser is told where the page belongs', async () => {
    const opened = await open(browser, { program: null });
    expect(await opened.page.getByRole('heading', { name: 'This page belongs to Velto' }).isVisible()).toBe(true);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});

describe('the theme', () => {
  const background = (opened: Awaited<ReturnType<typeof open>>) =>
    opened.page.evaluate(() => getComputedStyle(document.documentElement).backgroundColor);

  it('follows the system and tells the program nothing until one is picked', async () => {
    const opened = await open(browser, { saved: fullState(), context: { colorScheme: 'dark' } });
    expect(await background(opened)).toBe('rgb(10, 10, 10)');
    await opened.page.emulateMedia({ colorScheme: 'light' });
    expect(await background(opened)).toBe('rgb(246, 246, 243)');
    expect(await sent(opened.intents(), 'setTheme')).toBe(0);
    await opened.close();
  });

  it('a choice is told, kept and told again at the next start', async () => {
    const opened = await open(browser, { saved: fullState(), context: { colorScheme: 'light' } });
    const intents = await opened.during(() => opened.page.getByRole('button', { name: 'Light, switch to the dark theme' }).click());
    expect(intents).toEqual([{ type: 'setTheme', payload: { theme: 'dark' } }]);
    expect(await background(opened)).toBe('rgb(10, 10, 10)');
    expect(await opened.page.evaluate(() => localStorage.getItem('velto.theme'))).toBe('dark');
    await opened.close();

    const next = await open(browser, { saved: fullState(), storage: { 'velto.theme': 'dark' }, context: { colorScheme: 'light' } });
    expect(await background(next)).toBe('rgb(10, 10, 10)');
    expect((await next.intents())[0]).toEqual({ type: 'setTheme', payload: { theme: 'dark' } });
    await next.close();
  });

  it('what storage holds by mistake is not a theme', async () => {
    const opened = await open(browser, { saved: fullState(), storage: { 'velto.theme': '<b>' } });
    await opened.page.waitForTimeout(100);
    expect(await sent(opened.intents(), 'setTheme')).toBe(0);
    expect(await opened.page.locator('html').getAttribute('data-theme')).toBeNull();
    await opened.close();
  });
});

describe('the strip for the window buttons', () => {
  const firstRailButton = (opened: Awaited<ReturnType<typeof open>>) =>
    opened.page.getByRole('navigation').getByRole('button').first().boundingBox();

  it('is left free on both systems: buttons or a menu lie over the top of the rail', async () => {
    for (const platform of ['macos', 'linux'] as const) {
      const opened = await open(browser, { saved: fullState(), platform });
      expect((await firstRailButton(opened))!.y).toBeGreaterThanOrEqual(52);
      await opened.close();
    }
  });

  it('no title or control lies under the buttons of a narrow macOS window', async () => {
    const opened = await open(browser, { saved: fullState(), platform: 'macos', context: { viewport: { width: 720, height: 600 } } });
    expect((await opened.page.getByRole('heading', { level: 1 }).boundingBox())!.x).toBeGreaterThanOrEqual(78);
    await opened.close();
  });
});
