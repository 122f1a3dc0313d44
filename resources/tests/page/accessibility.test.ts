import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { launch, open, painted, type OpenPage, type Setting } from '../support/page.ts';
import { tellAbout } from '../support/about.ts';
import { analysisOf, sizesOf, someApps, someFailures, someLeftovers, someResult } from '../support/apps.ts';
import { someTrash, someWaiting, tellCleaning, withHistory } from '../support/cleaning.ts';
import { someMeasurement, tellMeasurement } from '../support/measurement.ts';
import { bareState, emptyState, fullState, inSpanish, withoutAccess } from '../support/states.ts';
import { bareSample, someActivity, someDetails, someSample } from '../support/system.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const languages = [
  { language: 'en', translate: (state: ReturnType<typeof fullState>) => state },
  { language: 'es', translate: inSpanish },
];

/** What moves has come to rest and is painted. */
async function atRest(page: Page): Promise<void> {
  await page.evaluate(() => Promise.all(document.getAnimations()
    .filter(({ effect }) => effect?.getComputedTiming().endTime !== Infinity)
    .map(({ finished }) => finished.catch(() => undefined))));
  await painted(page);
}

describe.each(languages)('$language', ({ translate }) => {
  /** Each view in the light theme, and the very same page in the dark one, where only colours differ. */
  async function check(setting: Setting, views: string[], act?: (opened: OpenPage) => Promise<unknown>): Promise<void> {
    const opened = await open(browser, { ...setting, context: { colorScheme: 'light', reducedMotion: 'reduce', ...setting.context } });
    const { page } = opened;
    for (const view of views) {
      await opened.go(view);
      await act?.(opened);
      await atRest(page);
      expect(await violations(page), `${view}, light`).toEqual([]);
      await page.emulateMedia({ colorScheme: 'dark' });
      await atRest(page);
      // The settings say which theme it is.
      expect(await violations(page, view === 'ajustes' ? 'all' : 'ofColours'), `${view}, dark`).toEqual([]);
      await page.emulateMedia({ colorScheme: 'light' });
    }
    await opened.close();
    expect(opened.complaints).toEqual([]);
  }

  it('the views have no violation', async () => {
    await check({ saved: translate(fullState()) }, ['inicio', 'archivos', 'duplicados', 'ajustes', 'apps', 'guia', 'avisos'], async (opened) => {
      await tellAbout(opened);
      await opened.tell('onPermissions', { fda: true });
      await opened.tell('onExclusions', ['/Users/marina/Music']);
    });
  });

  it('what was measured has none, folded and unfolded, at rest and comparing', async () => {
    const [, , many] = fullState().dupGroups;
    await check({ saved: translate(fullState({ dupGroups: [many!] })) }, ['inicio', 'duplicados'], async (opened) => {
      await tellMeasurement(opened);
      await opened.tell('onLinkedCopies', { [many!.id]: [[many!.paths[0], many!.paths[2]]] });
      for (const summary of await opened.page.locator('.disclosure > button').all()) await summary.click();
    });
    await check({ saved: translate(fullState()), platform: 'linux' }, ['inicio'], (opened) =>
      tellMeasurement(opened, { compared: { ...someMeasurement.compared, running: true } }),
    );
  });

  it('what is for cleaning up has none, full, unfolded and empty', async () => {
    const views = ['limpieza', 'papelera', 'historial'];
    await check({ saved: translate(withHistory(fullState())) }, views, async (opened) => {
      await tellCleaning(opened);
      await opened.page.locator('[data-key]').first().focus();
      await opened.page.keyboard.press('Space');
    });
    await check({ saved: translate(fullState()) }, views);
    await check({ saved: translate(fullState()) }, views, async ({ tell }) => {
      await tell('onPermissions', { fda: false });
      await tell('onCleanables', []);
      await tell('onTrashState', []);
    });
    await check({ saved: translate(fullState()) }, ['papelera'], async ({ tell }) => {
      await tell('onTrashWaiting', someWaiting());
      await tell('onTrashState', someTrash());
    });
    await check({ saved: translate(fullState()) }, ['papelera'], async (opened) => {
      await tellCleaning(opened);
      await opened.page.getByRole('row').nth(1).focus();
      await opened.page.keyboard.press('Delete');
    });
  });

  it('the applications, one of them and its removal have none', async () => {
    const apps = someApps();
    const list = async ({ tell }: OpenPage) => {
      await tell('onApps', apps);
      await tell('onAppSizes', sizesOf(apps));
    };
    const look = async (opened: OpenPage) => {
      await list(opened);
      await opened.page.locator('[data-key]').nth(1).click();
      await opened.tell('onAppAnalysis', analysisOf(apps[1]!, someLeftovers()));
    };
    const begin = async (opened: OpenPage) => {
      await look(opened);
      await opened.page.locator('[data-region="actions"] button').last().click();
      await opened.page.getByRole('dialog').getByRole('button').last().click();
      await opened.tell('onUninstallProgress', 'files', 64, 'a.plist');
    };
    const saved = translate(fullState());
    await check({ saved }, ['apps'], async (opened) => {
      await list(opened);
      await opened.page.locator('[data-key="system"] button').click();
    });
    await check({ saved }, ['apps'], look);
    await check({ saved }, ['apps'], begin);
    await check({ saved }, ['apps'], async (opened) => {
      await begin(opened);
      await opened.tell('onUninstallResult', someResult({ failures: someFailures }));
    });
    await check({ saved }, ['apps']);
  });

  it('the live view of the machine has none', async () => {
    const saved = translate(fullState());
    await check({ saved }, ['sistema'], async ({ page, tell }) => {
      await tell('onSystem', someSample());
      await tell('onSystemActivity', someActivity());
      await tell('onSystemDetails', someDetails());
      await tell('onSystem', someSample());
      // A row that opens to the single processes.
      const opener = page.locator('button.opener').first();
      if ((await opener.getAttribute('aria-expanded')) === 'false') await opener.click();
      await page.getByRole('row').filter({ hasText: 'borealis: pestaña' }).waitFor();
    });
    await check({ saved }, ['sistema'], ({ tell }) => tell('onSystem', bareSample()));
    await check({ saved }, ['sistema']);
  });

  it('the views of a narrow window, without access, have none', async () => {
    const narrow = { viewport: { width: 720, height: 600 } };
    await check({ saved: translate(withHistory(withoutAccess())), context: narrow }, ['inicio', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial', 'ajustes'], async (opened) => {
      await opened.tell('onPermissions', { fda: false });
      await tellCleaning(opened);
    });
  });

  it('a selection has none', async () => {
    await check({ saved: translate(fullState()) }, ['archivos', 'duplicados'], async ({ page }) => {
      await page.locator('[data-key]').first().focus();
      await page.keyboard.press('Control+a');
    });
  });

  it('a disk with nothing on it has none', async () => {
    await check({ saved: translate(bareState()) }, ['inicio', 'archivos', 'duplicados']);
  });

  it('the first analysis, its progress and its failure have none', async () => {
    const first = async (opened: OpenPage) => {
      await opened.tell('onPermissions', { fda: false });
      await opened.tell('setState', translate(emptyState()), 0);
      await opened.tell('onScanStarted');
      await opened.tell('onScanProgress', 1234, 5.6);
    };
    await check({}, ['inicio'], first);
    await check({}, ['inicio'], async (opened) => {
      await first(opened);
      await opened.tell('onScanFailed');
    });
  });

  it('progress and failure over an older analysis have none', async () => {
    await check({ saved: translate(fullState()) }, ['inicio'], (opened) => opened.tell('onScanStarted'));
    await check({ saved: translate(fullState()) }, ['inicio'], (opened) => opened.tell('onScanFailed'));
  });

  it('a toast with an undo and a question have none', async () => {
    await check({ saved: translate(fullState()) }, ['archivos'], async (opened) => {
      await opened.page.locator('[data-key]').first().focus();
      await opened.page.keyboard.press('Space');
      await opened.page.keyboard.press('Delete');
      await opened.tell('toast', 'Removed', '41.7 GB in Velto Trash. Kept for 30 days.');
    });
    await check({ saved: translate(fullState()) }, ['ajustes'], async (opened) => {
      await opened.page.locator('section[aria-labelledby="reset"] button').click();
    });
  });

  it('the page without a program has none', async () => {
    await check({ program: null }, ['inicio']);
  });
});
