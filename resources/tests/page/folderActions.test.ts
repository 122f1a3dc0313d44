import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { linuxDisk, linuxFolders, macDisk, macFolders, serveFolders } from '../support/folders.ts';
import { focusedName, here, inFolder, openFolders, press, row, textOf } from '../support/foldersPage.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, home } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

describe('what can be done with a row', () => {
  it('a small file goes at once, and its folder is read again', async () => {
    const { page, close, during, tell } = await inFolder(browser, 'Documents');
    const intents = await during(() => page.getByRole('button', { name: 'Move declaración.pdf to Velto Trash' }).click());
    expect(intents).toEqual([{ type: 'deleteFiles', payload: { paths: [`${home}/Documents/declaración.pdf`], kind: 'wind' } }]);
    await tell('toast', 'Removed', '2 MB in Velto Trash. Kept for 30 days.');
    const after = await during(() => tell('onTrashState', []));
    expect(after[0]).toMatchObject({ type: 'folder', payload: { path: `${home}/Documents` } });
    expect(await page.getByRole('button', { name: 'Undo' }).isVisible()).toBe(true);
    await close();
  });

  it('a row that goes hands its focus on', async () => {
    const opened = await inFolder(browser, 'Documents');
    const { page } = opened;
    await page.locator('[data-key$="declaración.pdf"]').focus();
    await press(page, 'Space', 'Delete');
    const disk = macDisk();
    const documents = disk[`${home}/Documents`]!;
    documents.entries = documents.entries.filter(({ name }) => name !== 'declaración.pdf');
    await serveFolders(opened, { disk });
    await opened.tell('toast', 'Removed', '2 MB in Velto Trash. Kept for 30 days.');
    await opened.tell('onTrashState', []);
    await page.locator('[data-key$="declaración.pdf"]').waitFor({ state: 'detached' });
    await page.locator('[data-key$="presupuesto 2026.ods"]:focus').waitFor();
    await opened.close();
  });

  it('what is large is asked about first, with what and how much and the focus on Cancel', async () => {
    const { page, close, during } = await inFolder(browser, 'Documents');
    const remove = page.getByRole('button', { name: 'Move Copia antigua del portátil to Velto Trash' });
    expect(await during(() => remove.click())).toEqual([]);
    const dialog = page.getByRole('dialog');
    expect(await textOf(dialog)).toContain('21.4 GB in 48,210 files would go.');
    expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).toBe('Cancel');
    expect(await during(() => press(page, 'Enter'))).toEqual([]);
    await remove.click();
    const intents = await during(() => dialog.getByRole('button', { name: 'Move to Velto Trash' }).click());
    expect(intents.map(({ type }) => type)).toEqual(['deleteFiles']);
    await close();
  });

  it('excluding can be taken back from its message; one that stood already offers nothing', async () => {
    const { page, close, during, tell } = await inFolder(browser, 'Documents');
    await tell('onExclusions', []);
    const contracts = `${home}/Documents/Contratos`;
    expect(await during(() => page.getByRole('button', { name: 'Exclude Contratos from the analysis' }).click()))
      .toEqual([{ type: 'addExclusion', payload: contracts }]);
    await tell('onExcluded', contracts);
    await tell('toast', 'Excluded from the analysis', contracts);
    await tell('onExclusions', [contracts]);
    expect(await page.getByText('Excluded from the next analysis').first().isVisible()).toBe(true);
    // Asked for twice, it was new once.
    await tell('toast', 'Excluded from the analysis', contracts);
    await tell('onExclusions', [contracts]);
    expect(await during(() => page.getByRole('button', { name: 'Undo' }).click())).toEqual([{ type: 'removeExclusion', payload: contracts }]);
    expect(await during(() => page.getByRole('button', { name: 'Include Contratos in the analysis again' }).click()))
      .toEqual([{ type: 'removeExclusion', payload: contracts }]);
    await tell('toast', 'Excluded from the analysis', '/chosen/elsewhere');
    expect(await page.getByRole('button', { name: 'Undo' }).count()).toBe(0);
    // What stood already from an earlier session, and nobody here has heard of.
    const bills = `${home}/Documents/Facturas`;
    await page.getByRole('button', { name: 'Exclude Facturas from the analysis' }).click();
    await tell('toast', 'Excluded from the analysis', bills);
    expect(await page.getByRole('button', { name: 'Undo' }).count()).toBe(0);
    await close();
  });

  it('excluding and including by key leave the focus where it is', async () => {
    const { page, close, during, tell } = await inFolder(browser, 'Documents');
    await tell('onExclusions', []);
    const contracts = `${home}/Documents/Contratos`;
    await page.locator(`[data-key="${contracts}"]`).focus();
    await press(page, 'ArrowRight', 'ArrowRight', 'ArrowRight');
    expect(await during(() => press(page, 'Enter'))).toEqual([{ type: 'addExclusion', payload: contracts }]);
    await tell('onExclusions', [contracts]);
    await page.getByRole('button', { name: 'Include Contratos in the analysis again' }).and(page.locator(':focus')).waitFor();
    expect(await during(() => press(page, 'Enter'))).toEqual([{ type: 'removeExclusion', payload: contracts }]);
    await tell('onExclusions', []);
    await page.getByRole('button', { name: 'Exclude Contratos from the analysis' }).and(page.locator(':focus')).waitFor();
    await close();
  });

  it('folders that were not measured are named as such and offer only what makes sense', async () => {
    const { page, close, during } = await openFolders(browser);
    const states = {
      Compartida: 'Cannot be read', 'Copia de Marta': 'Excluded', Espejo: 'Counted elsewhere', 'Proyecto nuevo': 'New since the analysis',
      Respaldo: 'Another disk',
    };
    for (const [name, words] of Object.entries(states)) {
      const text = await textOf(row(page, name));
      expect(text, name).toContain(words);
      const offers = await row(page, name).getByRole('button').count();
      expect(offers, name).toBe({ Compartida: 3, 'Proyecto nuevo': 4 }[name] ?? 2);
    }
    expect(await textOf(row(page, 'Respaldo'))).toContain('812 GB of 2 TB');
    await page.locator(`[data-key="${home}/Respaldo"]`).focus();
    expect(await during(() => press(page, 'Enter'))).toEqual([{ type: 'revealPath', payload: `${home}/Respaldo` }]);
    expect(await page.getByText('14 items inside could not be read').isVisible()).toBe(true);
    await close();
  });

  it('a location is copied with the keys of the system', async () => {
    const { page, close } = await openFolders(browser);
    await page.evaluate(() => document.addEventListener('copy', (event) => ((window as unknown as { copied: string }).copied = event.clipboardData!.getData('text/plain'))));
    await page.locator(`[data-key="${home}/Movies"]`).focus();
    await page.evaluate(() => {
      const { execCommand } = document;
      document.execCommand = (command: string) => {
        const event = new ClipboardEvent('copy', { clipboardData: new DataTransfer(), cancelable: true });
        document.dispatchEvent(event);
        (window as unknown as { copied: string }).copied = event.clipboardData!.getData('text/plain');
        return execCommand.call(document, command);
      };
    });
    await press(page, 'Control+c');
    expect(await page.evaluate(() => (window as unknown as { copied: string }).copied)).toBe(`${home}/Movies`);
    await close();
  });
});

describe('the search over all folders', () => {
  it('lists what it finds with its place, and Enter opens it', async () => {
    const { page, close, complaints } = await openFolders(browser);
    await press(page, 'Control+f');
    await page.keyboard.type('maquinas');
    await page.getByRole('grid', { name: 'Folders found' }).waitFor();
    const found = page.getByRole('grid').getByRole('row').nth(1);
    expect(await found.textContent()).toContain('~/Documents');
    await press(page, 'ArrowDown');
    expect(await focusedName(page)).toBe('Máquinas virtuales');
    await press(page, 'ArrowUp', 'ArrowDown', 'Enter');
    await page.locator('[data-key$="Contabilidad Windows 11.vmdk"]:focus').waitFor();
    expect(await page.getByRole('textbox').inputValue()).toBe('');
    await press(page, 'Backspace');
    await page.locator('[data-key$="Máquinas virtuales"]:focus').waitFor();
    await close();
    expect(complaints).toEqual([]);
  });

  it('says when nothing has the name, and Escape ends it', async () => {
    const { page, close } = await openFolders(browser);
    await press(page, 'Control+f');
    await page.keyboard.type('zzz');
    await page.getByRole('heading', { name: 'No folder has this name' }).waitFor();
    await press(page, 'Escape');
    await page.getByRole('grid', { name: 'What is in Home' }).waitFor();
    await close();
  });
});

describe('the way from the overview', () => {
  async function overview(): Promise<OpenPage> {
    const opened = await open(browser, { saved: fullState() });
    await serveFolders(opened, { disk: macDisk() });
    await opened.tell('onHomeFolders', macFolders);
    return opened;
  }

  it('a category with one folder of its own leads into it', async () => {
    const { page, close, complaints } = await overview();
    await page.getByRole('table').getByRole('button', { name: 'Downloads', exact: true }).click();
    await page.locator('[data-key$="dataset-traffic-2024.tar.gz"]').waitFor();
    expect(await here(page)).toContain('Downloads');
    await page.getByRole('button', { name: 'Back' }).click();
    await page.locator('[data-key$="/Movies"]').waitFor();
    await close();
    expect(complaints).toEqual([]);
  });

  it('one with several leads to the home, with the largest of them marked', async () => {
    const { page, close } = await overview();
    await page.getByRole('button', { name: /^Photos and video: everything else/ }).click();
    await page.locator('.row.current[data-key$="/Pictures"]').waitFor();
    expect(await here(page)).toContain('Home');
    await close();
  });

  it('one without a folder of its own leads nowhere', async () => {
    const opened = await open(browser, { saved: fullState(), platform: 'linux' });
    const { page } = opened;
    await serveFolders(opened, { disk: linuxDisk() });
    const system = page.getByRole('table').getByRole('button', { name: /^System/ }).or(page.getByRole('button', { name: /^System.*in Folders$/ }));
    expect(await system.count()).toBeGreaterThan(0);
    await opened.tell('onHomeFolders', linuxFolders);
    await system.first().waitFor({ state: 'detached' });
    expect(await system.count()).toBe(0);
    await page.getByRole('table').getByRole('button', { name: 'Applications', exact: true }).click();
    await page.locator('.row.current[data-key$="/.local"]').waitFor();
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('the heads of the map lead there too, by keyboard', async () => {
    const { page, close } = await overview();
    await page.getByRole('group', { name: 'Map of the disk' }).waitFor();
    await page.getByRole('button', { name: 'Music and audio, 24.7\u00a0GB: show in Folders' }).focus();
    await press(page, 'Enter');
    await page.getByText('Music', { exact: true }).first().waitFor();
    await page.locator('[aria-current="location"]').filter({ hasText: 'Music' }).waitFor();
    await close();
  });
});
