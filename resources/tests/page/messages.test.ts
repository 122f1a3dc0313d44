import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { isWhole, launch, open, type OpenPage, type Setting } from '../support/page.ts';
import { emptyState, fullState, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const toasts = (page: Page) => page.locator('.toast');

/** Opens the page with its clock in the hands of the test. */
async function withClock(setting: Setting, test: (opened: OpenPage) => Promise<void>): Promise<void> {
  const opened = await open(browser, setting);
  const start = new Date('2026-03-01T10:00:00Z');
  await opened.page.clock.install({ time: start });
  await opened.page.reload();
  // A page still opening waits for frames, which a clock that stands no longer gives.
  await isWhole(opened.page);
  // From here on time passes only when the test says so.
  await opened.page.clock.pauseAt(new Date(start.getTime() + 30_000));
  await test(opened);
  await opened.close();
}

describe('toasts', () => {
  it('stay ten seconds, and longer while the pointer is on them', async () => {
    await withClock({ saved: fullState() }, async ({ page, tell }) => {
      await tell('toast', 'Excluded from the analysis', '/Users/marina/Music');
      await page.clock.runFor(9_900);
      expect(await toasts(page).count()).toBe(1);
      const { x, y } = (await toasts(page).boundingBox())!;
      await page.mouse.move(x + 20, y + 20);
      await page.clock.runFor(60_000);
      expect(await toasts(page).count()).toBe(1);
      await page.mouse.move(0, 0);
      await page.clock.runFor(10_100);
      expect(await toasts(page).count()).toBe(0);
    });
  });

  it('are announced, stack and can be dismissed one by one', async () => {
    const { page, tell, close } = await open(browser, { saved: fullState() });
    await tell('toast', 'First', 'one');
    await tell('toast', 'Second', '');
    expect(await toasts(page).count()).toBe(2);
    expect(await page.getByRole('status').filter({ hasText: 'First' }).count()).toBe(1);
    await toasts(page).first().getByRole('button', { name: 'Dismiss' }).click();
    expect(await toasts(page).allTextContents()).toEqual([expect.stringContaining('Second')]);
    for (let index = 0; index < 9; index += 1) await tell('toast', `More ${index}`, '');
    expect(await toasts(page).count()).toBe(4);
    await close();
  });

  it('the answer to a removal offers to undo it for more than ten seconds', async () => {
    await withClock({ saved: fullState() }, async ({ page, tell, during, go }) => {
      await go('archivos');
      await page.locator('[data-key]').first().focus();
      await page.keyboard.press('Space');
      await page.keyboard.press('Delete');
      await tell('toast', 'Removed', '41.7 GB in Velto Trash. Kept for 30 days.');
      await page.clock.runFor(14_000);
      const undo = page.getByRole('button', { name: 'Undo' });
      expect(await during(() => undo.click())).toEqual([{ type: 'undoLast' }]);
      expect(await toasts(page).count()).toBe(0);
    });
  });

  it('a removal that failed, or one nobody asked for, offers no undo', async () => {
    const { page, tell, go, close } = await open(browser, { saved: fullState() });
    await tell('toast', 'Removed', '1.0 GB in Velto Trash.');
    await go('archivos');
    await page.locator('[data-key]').first().focus();
    await page.keyboard.press('Space');
    await page.keyboard.press('Delete');
    await tell('toast', "Couldn't remove", 'El archivo ya no existe.');
    expect(await toasts(page).count()).toBe(2);
    expect(await page.getByRole('button', { name: 'Undo' }).count()).toBe(0);
    await close();
  });
});

describe('an analysis', () => {
  it('shows files, size and time, and announces them at most every five seconds', async () => {
    await withClock({ saved: fullState() }, async ({ page, tell }) => {
      await page.evaluate(() => {
        const said: string[] = [];
        (window as unknown as { __said: string[] }).__said = said;
        const status = document.querySelector('p[role="status"]')!;
        new MutationObserver(() => said.push(status.textContent ?? '')).observe(status, { childList: true, characterData: true, subtree: true });
      });
      await tell('onScanStarted');
      for (let step = 1; step <= 60; step += 1) {
        await tell('onScanProgress', step * 1000, step * 1.5);
        await page.clock.runFor(200);
      }
      const visible = (await page.locator('.scan').textContent())!.replaceAll('\u00a0', ' ');
      expect(visible).toContain('60,000 files counted');
      expect(visible).toContain('90 GB');
      expect(visible).toContain('12 sec so far');
      expect(visible).not.toContain('%');
      const said = await page.evaluate(() => (window as unknown as { __said: string[] }).__said);
      expect(said.filter((message) => message.startsWith('Analysis running'))).toHaveLength(2);
      await tell('setState', fullState({ free: 300 }), 1_772_360_000);
      await tell('onScanFinished');
      expect(await page.locator('.scan').count()).toBe(0);
      expect(await page.locator('p[role="status"]').textContent()).toBe('Analysis finished.');
    });
  });

  it('is named by its phase, seen and stopped from every view, and its end is told there', async () => {
    const { page, tell, during, go, close } = await open(browser, { saved: inSpanish(fullState()) });
    await go('archivos');
    await tell('onScanStarted');
    const line = page.getByRole('region', { name: 'Analizando…' });
    expect(await line.textContent()).toContain('Contando…');
    await tell('onScanProgress', 1200, 5.5);
    await tell('onAnalysisPhase', { phase: 'comparing', files: 0, gb: 0 });
    expect(await line.textContent()).toContain('Comparando archivos de igual tamaño…');
    expect(await line.textContent()).not.toContain('1200');
    await tell('onAnalysisPhase', { phase: 'comparing', files: 34, gb: 2.5 });
    expect((await line.textContent())!.replaceAll('\u00a0', ' ')).toMatch(/34 archivos mirados\s*2,5 GB leídos/);
    expect(await page.locator('p[role="status"]').textContent()).toContain('Comparando');
    for (const view of ['papelera', 'ajustes', 'sistema', 'explorar']) {
      await go(view);
      expect(await page.getByRole('button', { name: 'Detener' }).count(), view).toBe(1);
    }
    await go('inicio');
    expect(await line.count(), 'the overview shows it itself').toBe(0);
    await go('historial');
    expect(await during(() => line.getByRole('button', { name: 'Detener' }).click())).toEqual([{ type: 'stopAnalysis' }]);
    await tell('onAnalysisStopped');
    await tell('onScanFailed');
    expect(await line.count()).toBe(0);
    expect(await page.locator('.toast').textContent()).toContain('El análisis se ha detenido');
    await close();
  });

  it('that fails leaves the last one standing and says that nothing was lost', async () => {
    const { page, tell, during, close } = await open(browser, { saved: fullState() });
    await tell('onScanStarted');
    await tell('onScanFailed');
    expect(await page.getByText('Nothing was changed and nothing was lost. What you see is the last analysis that finished.').isVisible()).toBe(true);
    expect(await page.getByText('312.4').first().isVisible()).toBe(true);
    expect(await during(() => page.getByRole('button', { name: 'Try again' }).click())).toEqual([{ type: 'scan' }]);
    await tell('onScanStarted');
    expect(await page.getByRole('button', { name: 'Try again' }).count()).toBe(0);
    await close();
  });

  it('that fails the first time offers one thing: to try again', async () => {
    const { page, tell, during, go, close } = await open(browser);
    await tell('setState', emptyState(), 0);
    await tell('onScanStarted');
    expect(await page.getByRole('heading', { name: 'Looking at your disk for the first time' }).isVisible()).toBe(true);
    await tell('onScanFailed');
    for (const view of ['inicio', 'archivos', 'duplicados']) {
      await go(view);
      expect(await page.getByRole('heading', { name: 'The analysis did not finish' }).isVisible()).toBe(true);
    }
    expect(await during(() => page.getByRole('button', { name: 'Try again' }).click())).toEqual([{ type: 'scan' }]);
    await close();
  });

  it('says how long ago it was made, and keeps saying it right', async () => {
    const stamp = Date.parse('2026-03-01T09:59:00Z') / 1000;
    await withClock({ saved: fullState(), stamp }, async ({ page }) => {
      expect(await page.getByText('Analyzed 1 minute ago').isVisible()).toBe(true);
      await page.clock.runFor(3_600_000);
      expect(await page.getByText('Analyzed 1 hour ago').isVisible()).toBe(true);
    });
  });
});

describe('Velto Trash', () => {
  it('is told apart from what is free', async () => {
    const { page, tell, close } = await open(browser, { saved: fullState() });
    expect(await page.getByText('in Velto Trash').count()).toBe(0);
    await tell('onTrashState', [{ id: 'it1', name: 'a', gb: 1.5, taken: 1, path: '/a', opID: 'op1' }, { id: 'it2', name: 'b', gb: 2, taken: 1, path: '/b', opID: 'op1' }]);
    expect(await page.getByText('3.5 GB of it in Velto Trash').count()).toBe(1);
    await tell('onTrashChanged', 0);
    await tell('onTrashState', []);
    expect(await page.getByText('in Velto Trash').count()).toBe(0);
    await close();
  });
});

describe('the exclusions', () => {
  it('that do not arrive are reported, and can be asked for again', async () => {
    await withClock({ saved: fullState() }, async ({ page, during, tell, go }) => {
      await go('ajustes');
      expect(await page.getByText('Reading the list…').isVisible()).toBe(true);
      await page.clock.runFor(5_100);
      expect(await page.getByText('The list could not be read.').isVisible()).toBe(true);
      expect(await during(() => page.getByRole('button', { name: 'Try again' }).click())).toEqual([{ type: 'exclusions' }]);
      await tell('onExclusions', ['/late']);
      expect(await page.getByText('/late').isVisible()).toBe(true);
    });
  });
});
