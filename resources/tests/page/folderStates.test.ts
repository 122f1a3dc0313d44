import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { linuxDisk, linuxHome, macDisk, serveFolders } from '../support/folders.ts';
import { here, inFolder, openFolders, press, selected } from '../support/foldersPage.ts';
import { launch, open } from '../support/page.ts';
import { emptyState, fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

describe('folders that cannot be shown', () => {
  it('an analysis without folders offers a new one, and the stop of it', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    await serveFolders(opened, { disk: {} });
    await opened.go('explorar');
    await page.getByRole('heading', { name: 'The last analysis has no folders' }).waitFor();
    expect(await opened.during(() => page.getByRole('button', { name: 'Analyze disk' }).click())).toEqual([{ type: 'scan' }]);
    await opened.tell('onScanStarted');
    expect(await opened.during(() => page.getByRole('button', { name: 'Stop' }).click())).toEqual([{ type: 'stopAnalysis' }]);
    await page.getByRole('button', { name: 'Stopping…' }).waitFor();
    await opened.tell('onAnalysisStopped');
    await opened.tell('onScanFailed');
    await page.getByRole('button', { name: 'Analyze disk' }).waitFor();
    await page.getByRole('heading', { level: 1, name: 'Folders' }).and(page.locator(':focus')).waitFor();
    await serveFolders(opened, { disk: macDisk() });
    await opened.tell('onScanStarted');
    await opened.tell('setState', fullState({ free: 300 }), Date.now() / 1000);
    await opened.tell('onScanFinished');
    await page.getByRole('grid').waitFor();
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('an empty folder, one that is gone and a disk that was never analysed have a sentence and an action', async () => {
    const opened = await inFolder(browser, 'Documents');
    const { page } = opened;
    const head = page.getByRole('heading', { level: 1, name: 'Folders' }).and(page.locator(':focus'));
    await page.locator('[data-key$="Vacía"]').focus();
    await press(page, 'Enter');
    await page.getByRole('heading', { name: 'This folder is empty' }).waitFor();
    await head.waitFor();
    await press(page, 'Backspace');
    await page.locator('[data-key$="Vacía"]:focus').waitFor();
    await press(page, 'Enter');
    await page.getByRole('heading', { name: 'This folder is empty' }).waitFor();
    const disk = macDisk();
    for (const path of Object.keys(disk)) if (path.startsWith(`${home}/Documents`)) delete disk[path];
    await serveFolders(opened, { disk });
    await page.getByRole('button', { name: 'Go to the folder above' }).click();
    await page.getByRole('heading', { name: 'This folder is not there any more' }).waitFor();
    await head.waitFor();
    await page.getByRole('button', { name: 'Go to the home folder' }).click();
    await page.locator('[data-key]:focus').waitFor();
    await page.locator('[data-key$="imagen de disco.img"]').focus();
    await press(page, 'Space');
    await page.getByText('1 selected').first().waitFor();
    await opened.tell('setState', emptyState(), 0);
    await page.getByRole('heading', { name: 'No analysis yet' }).waitFor();
    expect(await page.locator('[data-region="actions"]').count()).toBe(0);
    expect(await page.locator('header .aside').textContent()).toBe('');
    await opened.tell('setState', fullState(), Date.now() / 1000);
    await page.getByRole('grid').waitFor();
    expect(await selected(page)).toEqual([]);
    expect(await page.getByRole('button', { name: 'Back' }).getAttribute('aria-disabled')).toBe('true');
    await opened.close();
  });

  it('the last row of a folder that goes leaves the focus at the head, and the keys of the way work there', async () => {
    const opened = await inFolder(browser, 'Documents');
    const { page } = opened;
    await page.locator('[data-key$="Máquinas virtuales"]').focus();
    await press(page, 'Enter');
    await page.locator('[data-key$=".vmdk"]:focus').waitFor();
    const disk = macDisk();
    disk[`${home}/Documents/Máquinas virtuales`]!.entries = [];
    await serveFolders(opened, { disk });
    await opened.tell('onTrashState', []);
    await page.getByRole('heading', { name: 'This folder is empty' }).waitFor();
    await page.getByRole('heading', { level: 1, name: 'Folders' }).and(page.locator(':focus')).waitFor();
    await press(page, 'Alt+ArrowLeft');
    await page.locator('[data-key$="Máquinas virtuales"]:focus').waitFor();
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('one below a folder left out since is said not to be part of the analysis, and there is a way on', async () => {
    const opened = await inFolder(browser, 'Movies');
    const { page } = opened;
    await press(page, 'Enter');
    await page.locator('[data-key$=".mov"]').first().waitFor();
    const disk = macDisk();
    for (const path of Object.keys(disk)) if (path.startsWith(`${home}/Movies/`)) delete disk[path];
    disk[`${home}/Movies`] = { ...disk[`${home}/Movies`]!, found: false, state: 'excluded', folders: [], entries: [] };
    await serveFolders(opened, { disk });
    await opened.tell('setState', fullState({ free: 300 }), Date.now() / 1000);
    await page.getByRole('heading', { name: 'This folder is not there any more' }).waitFor();
    expect(await page.getByText('has no folders').count()).toBe(0);
    await page.getByRole('navigation', { name: 'Location' }).getByRole('button', { name: 'Movies' }).click();
    await page.getByRole('heading', { name: 'Excluded' }).waitFor();
    await page.getByRole('button', { name: 'Go to the home folder' }).click();
    await page.getByRole('grid').waitFor();
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('an answer that does not come is said to be late, and can be asked for again', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    await page.clock.install();
    await serveFolders(opened, { disk: macDisk(), silent: true });
    await opened.go('explorar');
    await page.clock.runFor(11_000);
    await page.getByRole('heading', { name: 'No answer yet' }).waitFor();
    await serveFolders(opened, { disk: macDisk() });
    await page.getByRole('button', { name: 'Try again' }).click();
    await page.clock.runFor(100);
    await page.getByRole('grid').waitFor();
    await opened.close();
  });

  it('an answer to an older question changes nothing', async () => {
    const { page, close, tell } = await inFolder(browser, 'Movies');
    await tell('onFolder', { ...macDisk()[`${home}/Music`], request: 1 });
    expect(await here(page)).toContain('Movies');
    await close();
  });
});

describe('an analysis that is stopped', () => {
  it('is said to be stopped, not failed, and what was there stays', async () => {
    const { page, close, during, tell, complaints } = await open(browser, { saved: fullState() });
    await tell('onScanStarted');
    expect(await during(() => page.getByRole('button', { name: 'Stop' }).click())).toEqual([{ type: 'stopAnalysis' }]);
    expect(await during(() => page.getByRole('button', { name: 'Stopping…' }).dispatchEvent('click'))).toEqual([]);
    await tell('onAnalysisStopped');
    await tell('onScanFailed');
    await page.getByRole('heading', { name: 'The analysis was stopped' }).waitFor();
    expect(await page.getByText('did not finish').count()).toBe(0);
    expect(await page.locator('p[role="status"]').textContent()).toBe('The analysis was stopped');
    await tell('onScanStarted');
    await tell('onScanFailed');
    await page.getByRole('heading', { name: 'The analysis did not finish' }).waitFor();
    await close();
    expect(complaints).toEqual([]);
  });

  it('a folder to leave out is chosen from the settings', async () => {
    const { page, close, during, tell, go } = await open(browser, { saved: fullState() });
    await go('ajustes');
    await tell('onExclusions', []);
    expect(await during(() => page.getByRole('button', { name: 'Exclude a folder…' }).click())).toEqual([{ type: 'chooseExclusion' }]);
    await tell('onExcluded', '/home/marina/Proyectos');
    await tell('toast', 'Excluded from the analysis', '/home/marina/Proyectos');
    expect(await during(() => page.getByRole('button', { name: 'Undo' }).click()))
      .toEqual([{ type: 'removeExclusion', payload: '/home/marina/Proyectos' }]);
    await close();
  });
});

describe.each(['light', 'dark'] as const)('%s', (colorScheme) => {
  it.each([
    { language: 'en', platform: 'macos', disk: macDisk(), state: fullState(), root: home, viewport: { width: 1180, height: 760 } },
    { language: 'es', platform: 'linux', disk: linuxDisk(), state: inSpanish(fullState()), root: linuxHome, viewport: { width: 720, height: 480 } },
  ] as const)('no violation in $language on $platform', async ({ platform, disk, state, root, viewport }) => {
    const growth = { [root]: { Movies: 1e9, Vídeos: -1e9 } };
    const opened = await openFolders(browser, { disk, growth }, { saved: state, platform, context: { colorScheme, reducedMotion: 'reduce', viewport } });
    const { page } = opened;
    await opened.tell('onExclusions', [`${root}/Music`]);
    await page.locator('[data-key]').first().focus();
    await press(page, 'Control+a');
    expect(await violations(page)).toEqual([]);
    await page.keyboard.press('Control+f');
    await page.keyboard.type('e');
    await page.locator('[role="grid"][aria-describedby="found-help"]').waitFor();
    expect(await violations(page)).toEqual([]);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('no violation where there is nothing to show', async () => {
    const opened = await openFolders(browser, {}, { context: { colorScheme, reducedMotion: 'reduce' } });
    const { page } = opened;
    await page.keyboard.press('Control+f');
    await page.keyboard.type('qqq');
    await page.locator('h2').waitFor();
    expect(await violations(page)).toEqual([]);
    await serveFolders(opened, { disk: {} });
    await press(page, 'Escape');
    await opened.tell('onTrashState', []);
    await page.getByRole('heading', { name: 'The last analysis has no folders' }).waitFor();
    await opened.tell('onScanStarted');
    await page.getByRole('button', { name: 'Stop' }).waitFor();
    expect(await violations(page)).toEqual([]);
    await opened.close();
  });
});
