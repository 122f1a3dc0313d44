import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { launch, open, type OpenPage, type Setting } from '../support/page.ts';
import { bareState, emptyState, fullState, inSpanish, withoutAccess } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const go = (view: string) => (opened: OpenPage) =>
  opened.page.evaluate((name) => (window as unknown as { go(name: string): void }).go(name), view);

const looks = (['light', 'dark'] as const).flatMap((colorScheme) => [
  { colorScheme, language: 'en', translate: (state: ReturnType<typeof fullState>) => state },
  { colorScheme, language: 'es', translate: inSpanish },
]);

describe.each(looks)('$language, $colorScheme', ({ colorScheme, translate }) => {
  async function check(setting: Setting, act?: (opened: OpenPage) => Promise<unknown>): Promise<void> {
    const opened = await open(browser, { ...setting, context: { colorScheme, reducedMotion: 'reduce', ...setting.context } });
    await act?.(opened);
    await opened.page.waitForTimeout(100);
    const found = await violations(opened.page);
    await opened.close();
    expect(found).toEqual([]);
    expect(opened.complaints).toEqual([]);
  }

  it.each(['inicio', 'archivos', 'duplicados', 'ajustes', 'papelera'])('%s has no violation', async (view) => {
    await check({ saved: translate(fullState()) }, async (opened) => {
      await opened.tell('onPermissions', { fda: true });
      await go(view)(opened);
      await opened.tell('onExclusions', ['/Users/marina/Music']);
    });
  });

  it.each(['inicio', 'archivos', 'duplicados', 'ajustes'])('%s of a narrow window has none', async (view) => {
    await check({ saved: translate(withoutAccess()), context: { viewport: { width: 720, height: 600 } } }, async (opened) => {
      await opened.tell('onPermissions', { fda: false });
      await go(view)(opened);
    });
  });

  it.each(['archivos', 'duplicados'])('%s with a selection and the trash at hand has none', async (view) => {
    await check({ saved: translate(fullState()), ahead: true }, async (opened) => {
      await go(view)(opened);
      await opened.page.keyboard.press('F6');
      await opened.page.keyboard.press('F6');
      await opened.page.keyboard.press('Control+a');
    });
  });

  it.each(['inicio', 'archivos', 'duplicados'])('%s of a disk with nothing on it has none', async (view) => {
    await check({ saved: translate(bareState()) }, go(view));
  });

  it('the first analysis, its progress and its failure have none', async () => {
    const first = async (opened: OpenPage) => {
      await opened.tell('onPermissions', { fda: false });
      await opened.tell('setState', translate(emptyState()), 0);
      await opened.tell('onScanStarted');
      await opened.tell('onScanProgress', 1234, 5.6);
    };
    await check({}, first);
    await check({}, async (opened) => {
      await first(opened);
      await opened.tell('onScanFailed');
    });
  });

  it('progress and failure over an older analysis have none', async () => {
    await check({ saved: translate(fullState()) }, (opened) => opened.tell('onScanStarted'));
    await check({ saved: translate(fullState()) }, (opened) => opened.tell('onScanFailed'));
  });

  it('a toast with an undo and a question have none', async () => {
    await check({ saved: translate(fullState()), ahead: true }, async (opened) => {
      await go('archivos')(opened);
      await opened.page.keyboard.press('F6');
      await opened.page.keyboard.press('F6');
      await opened.page.keyboard.press('Space');
      await opened.page.keyboard.press('Delete');
      await opened.tell('toast', 'Removed', '41.7 GB in Velto Trash. Kept for 30 days.');
    });
    await check({ saved: translate(fullState()) }, async (opened) => {
      await go('ajustes')(opened);
      await opened.page.locator('section[aria-labelledby="reset"] button').click();
    });
  });

  it('the page without a program has none', async () => {
    await check({ program: null });
  });
});
