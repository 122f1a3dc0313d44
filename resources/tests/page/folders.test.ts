import type { Browser, Locator, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { crowdedDisk, linuxDisk, linuxHome, macDisk, serveFolders, type Served } from '../support/folders.ts';
import { launch, open, type OpenPage, type Setting } from '../support/page.ts';
import { emptyState, fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const focusedName = (page: Page) =>
  page.evaluate(() => {
    const element = document.activeElement as HTMLElement | null;
    return (element?.dataset.key ?? element?.dataset.cell)?.split('/').at(-1);
  });
const inMap = (page: Page) => page.evaluate(() => document.activeElement?.hasAttribute('data-cell') ?? false);
const here = (page: Page) => page.locator('[aria-current="location"]').textContent();
const selected = (page: Page) =>
  page.locator('[role="row"][aria-selected="true"]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')!.split('/').at(-1)));
const pressed = (page: Page) =>
  page.locator('[data-cell][aria-pressed="true"]').evaluateAll((cells) => cells.map((cell) => cell.getAttribute('data-cell')!.split('/').at(-1)));
const namesShown = (page: Page) => page.locator('[data-key]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')!.split('/').at(-1)!));
/** As it is read: a space that does not break is a space. */
const textOf = async (locator: Locator) => (await locator.textContent())!.replaceAll('\u00a0', ' ');
const row = (page: Page, name: string) => page.getByRole('row').filter({ has: page.getByTitle(name, { exact: true }) });

async function press(page: Page, ...keys: string[]): Promise<void> {
  for (const key of keys) await page.keyboard.press(key);
}

async function openFolders(served: Partial<Served> = {}, setting: Setting = {}): Promise<OpenPage> {
  const opened = await open(browser, { saved: fullState(), ...setting });
  await serveFolders(opened, { disk: macDisk(), ...served });
  await opened.go('explorar');
  await opened.page.getByRole('grid').waitFor();
  return opened;
}

async function inFolder(name: string, served: Partial<Served> = {}): Promise<OpenPage> {
  const opened = await openFolders(served);
  await opened.page.locator('[data-key]').first().focus();
  await opened.page.locator(`[data-key="${home}/${name}"]`).focus();
  await opened.page.keyboard.press('Enter');
  await opened.page.waitForFunction((wanted) => document.querySelector('[aria-current="location"]')?.textContent?.includes(wanted), name);
  return opened;
}

describe('the folders by keyboard', () => {
  it('Enter goes into a folder, Backspace out of it, and the focus knows where it came from', async () => {
    const { page, close, complaints } = await openFolders();
    expect(await here(page)).toContain('Home');
    await page.locator('[data-key]').first().focus();
    await press(page, 'ArrowDown', 'ArrowDown');
    expect(await focusedName(page)).toBe('Movies');
    await press(page, 'Enter');
    await page.locator('[data-key$="Viaje a Islandia"]:focus').waitFor();
    expect(await here(page)).toContain('Movies');
    await press(page, 'Enter');
    await page.locator('[data-key$=".mov"]:focus').waitFor();
    await press(page, 'Backspace');
    await page.locator('[data-key$="Viaje a Islandia"]:focus').waitFor();
    await press(page, 'Alt+ArrowLeft');
    await page.locator('[data-key$=".mov"]:focus').waitFor();
    await press(page, 'Alt+ArrowUp', 'Alt+ArrowUp'); // faster than the answers
    await page.locator('[data-key$="/Movies"]:focus').waitFor();
    await press(page, 'Backspace');
    expect(await here(page)).toContain('Home');
    await close();
    expect(complaints).toEqual([]);
  });

  it('letters jump to a name, and Home, End and the page keys move', async () => {
    const { page, close } = await openFolders();
    await page.locator('[data-key]').first().focus();
    await press(page, 'd', 'o', 'w');
    expect(await focusedName(page)).toBe('Downloads');
    await press(page, 'Home');
    expect(await focusedName(page)).toBe('Library');
    await press(page, 'End');
    expect(await focusedName(page)).toBe('Respaldo');
    await press(page, 'PageUp');
    const up = await focusedName(page);
    await press(page, 'PageDown');
    expect(await focusedName(page)).toBe('Respaldo');
    expect(up).not.toBe('Respaldo');
    await close();
  });

  it('Space selects what can be moved, Shift extends, Escape clears; of the rest it is said why not', async () => {
    const { page, close } = await inFolder('Documents');
    await press(page, 'Home', 'Space', 'Shift+ArrowDown');
    expect(await selected(page)).toEqual(['Copia antigua del portátil', 'Máquinas virtuales']);
    expect(await page.getByText('2 selected').first().isVisible()).toBe(true);
    await press(page, 'Escape');
    expect(await selected(page)).toEqual([]);
    await press(page, 'Backspace');
    await page.locator('[data-key$="/Documents"]:focus').waitFor();
    await press(page, 'Space');
    expect(await selected(page)).toEqual([]);
    expect(await page.locator('p[role="status"]').textContent()).toContain('A folder that every home has');
    await close();
  });

  it('the column heads are reached from the first row, and sort both ways', async () => {
    const { page, close } = await openFolders();
    await page.locator('[data-key]').first().focus();
    await press(page, 'ArrowUp', 'ArrowLeft', 'Enter');
    expect((await namesShown(page)).slice(0, 3)).toEqual(['.zsh_history', 'Compartida', 'Copia de Marta']);
    expect(await page.getByRole('columnheader', { name: 'Name' }).getAttribute('aria-sort')).toBe('ascending');
    await press(page, 'Enter');
    expect((await namesShown(page))[0]).toBe('Respaldo');
    for (const [name, first] of [['Files', 'Library'], ['Last change', '.zsh_history'], ['Size', 'Library']] as const) {
      await page.getByRole('columnheader', { name }).getByRole('button').click();
      expect((await namesShown(page))[0], name).toBe(first);
    }
    await close();
  });

  it('the list is one tab stop, and the actions of a row are reached with the right arrow', async () => {
    const { page, close, during } = await openFolders();
    await page.locator('[data-key]').first().focus();
    await press(page, 'ArrowRight');
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([{ type: 'revealPath', payload: `${home}/Library` }]);
    await press(page, 'ArrowLeft', 'Tab');
    expect(await page.evaluate(() => document.activeElement?.closest('[data-region]')?.getAttribute('data-region'))).toBe('actions');
    await press(page, 'F6', 'F6');
    expect(await focusedName(page)).toBe('Library');
    await close();
  });
});

describe('the table and the map', () => {
  it('have one focus and one selection', async () => {
    const { page, close } = await inFolder('Documents');
    await press(page, 'Home', 'ArrowDown', 'Space');
    expect(await pressed(page)).toEqual(['Máquinas virtuales']);
    expect(await page.locator('.cell.current').getAttribute('data-cell')).toBe(`${home}/Documents/Máquinas virtuales`);

    await page.locator('.cell.current').focus();
    await press(page, 'ArrowLeft', 'Space');
    expect(await inMap(page)).toBe(true);
    expect(await selected(page)).toEqual(['Copia antigua del portátil', 'Máquinas virtuales']);
    expect(await page.locator('.row.current').getAttribute('data-key')).toBe(`${home}/Documents/Copia antigua del portátil`);
    await press(page, 'Space', 'Escape');
    expect(await selected(page)).toEqual([]);
    await close();
  });

  it('a folder of the map is gone into with a click or Enter, and the focus stays on the map', async () => {
    const { page, close } = await openFolders();
    await page.locator(`[data-cell="${home}/Movies"]`).click();
    await page.locator('[data-cell$="Viaje a Islandia"]:focus').waitFor();
    expect(await here(page)).toContain('Movies');
    await press(page, 'Backspace');
    await page.locator('[data-cell$="/Movies"]:focus').waitFor();
    await press(page, 'Enter');
    await page.locator('[data-cell$="Viaje a Islandia"]:focus').waitFor();
    await press(page, 'Alt+ArrowLeft');
    await page.locator('[data-cell$="/Movies"]:focus').waitFor();
    await close();
  });

  it('a name in the table and a step of the way are clicked', async () => {
    const { page, close } = await openFolders();
    await row(page, 'Documents').getByText('Documents').click();
    await page.locator('[data-key$="Copia antigua del portátil"]').waitFor();
    await page.getByRole('navigation', { name: 'Location' }).getByRole('button', { name: 'Home' }).click();
    await page.locator('[data-key$="/Movies"]').waitFor();
    await row(page, 'Movies').dblclick({ position: { x: 500, y: 20 } });
    await page.locator('[data-key$="Viaje a Islandia"]').waitFor();
    await page.getByRole('button', { name: 'Folder above' }).click();
    await page.locator('[data-key$="/Movies"]').waitFor();
    await close();
  });
});

describe('ten thousand files', () => {
  it('are a list of which only the rows in sight are made, however it is scrolled and sorted', async () => {
    const { page, close } = await inFolder('Fotos', { disk: crowdedDisk(10_000) });
    const made = () => page.locator('[data-key]').count();
    expect(await page.getByRole('grid').getAttribute('aria-rowcount')).toBe('10001');
    expect(await made()).toBeLessThan(60);
    await page.evaluate(() => (document.querySelector('.scroller')!.scrollTop = 200_000));
    await page.locator('[aria-rowindex="4550"]').waitFor();
    expect(await made()).toBeLessThan(60);
    expect(await page.locator('[data-cell]').count()).toBeLessThanOrEqual(300);
    await page.getByRole('columnheader', { name: 'Name' }).getByRole('button').click();
    await press(page, 'ArrowDown');
    expect(await made()).toBeLessThan(60);
    await close();
  });

  it('keep the row that holds the focus, however far they are scrolled', async () => {
    const { page, close } = await inFolder('Fotos', { disk: crowdedDisk(10_000) });
    await press(page, 'ArrowDown', 'ArrowDown');
    const before = await focusedName(page);
    await page.evaluate(() => { document.querySelector('.scroller')!.scrollTop = 300_000; });
    await page.waitForTimeout(100);
    expect(await focusedName(page)).toBe(before);
    await press(page, 'End');
    await page.waitForFunction(() => document.activeElement?.getAttribute('aria-rowindex') === '10001');
    const box = (await page.locator(':focus').boundingBox())!;
    const list = (await page.locator('.scroller').boundingBox())!;
    expect(box.y + box.height).toBeLessThanOrEqual(list.y + list.height + 1);
    await press(page, 'Control+a');
    expect(await page.getByText('10,000 selected').first().isVisible()).toBe(true);
    await close();
  });
});

describe('what can be done with a row', () => {
  it('a small file goes at once, and its folder is read again', async () => {
    const { page, close, during, tell } = await inFolder('Documents');
    const intents = await during(() => page.getByRole('button', { name: 'Move declaración.pdf to Velto Trash' }).click());
    expect(intents).toEqual([{ type: 'deleteFiles', payload: { paths: [`${home}/Documents/declaración.pdf`], kind: 'wind' } }]);
    await tell('toast', 'Removed', '2 MB in Velto Trash. Kept for 30 days.');
    const after = await during(() => tell('onTrashState', []));
    expect(after[0]).toMatchObject({ type: 'folder', payload: { path: `${home}/Documents` } });
    expect(await page.getByRole('button', { name: 'Undo' }).isVisible()).toBe(true);
    await close();
  });

  it('a row that goes hands its focus on', async () => {
    const opened = await inFolder('Documents');
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
    const { page, close, during } = await inFolder('Documents');
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
    const { page, close, during, tell } = await inFolder('Documents');
    await tell('onExclusions', []);
    const contracts = `${home}/Documents/Contratos`;
    expect(await during(() => page.getByRole('button', { name: 'Exclude Contratos from the analysis' }).click()))
      .toEqual([{ type: 'addExclusion', payload: contracts }]);
    await tell('toast', 'Excluded from the analysis', contracts);
    await tell('onExclusions', [contracts]);
    expect(await page.getByText('Excluded from the next analysis').first().isVisible()).toBe(true);
    expect(await during(() => page.getByRole('button', { name: 'Undo' }).click())).toEqual([{ type: 'removeExclusion', payload: contracts }]);
    expect(await during(() => page.getByRole('button', { name: 'Include Contratos in the analysis again' }).click()))
      .toEqual([{ type: 'removeExclusion', payload: contracts }]);
    await tell('toast', 'Excluded from the analysis', '/chosen/elsewhere');
    expect(await page.getByRole('button', { name: 'Undo' }).count()).toBe(0);
    await close();
  });

  it('folders that were not measured are named as such and offer only what makes sense', async () => {
    const { page, close, during } = await openFolders();
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
    const { page, close } = await openFolders();
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

describe('the growth column', () => {
  it('is there when something is known, and sorts', async () => {
    const { page, close } = await openFolders({ growth: { [home]: { Movies: 9_100_000_000, Music: -420_000_000, Library: 0 } } });
    await page.getByRole('columnheader', { name: 'Growth' }).waitFor();
    expect(await textOf(row(page, 'Movies'))).toContain('+9.1 GB');
    expect(await textOf(row(page, 'Music'))).toContain('\u2212420 MB');
    await page.getByRole('columnheader', { name: 'Growth' }).getByRole('button').click();
    expect((await namesShown(page)).slice(0, 3)).toEqual(['Movies', 'Library', 'Music']);
    await page.locator(`[data-key="${home}/Movies"]`).focus();
    await press(page, 'Enter');
    await page.locator('[data-key$="Viaje a Islandia"]').waitFor();
    expect(await page.getByRole('columnheader', { name: 'Growth' }).count()).toBe(0);
    await close();
  });
});

describe('the search over all folders', () => {
  it('lists what it finds with its place, and Enter opens it', async () => {
    const { page, close, complaints } = await openFolders();
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
    const { page, close } = await openFolders();
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
    return opened;
  }

  it('a category with one folder of its own leads into it', async () => {
    const { page, close, complaints } = await overview();
    await page.getByRole('table').getByRole('button', { name: 'Downloads' }).click();
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
    const opened = await inFolder('Documents');
    const { page } = opened;
    await page.locator('[data-key$="Vacía"]').focus();
    await press(page, 'Enter');
    await page.getByRole('heading', { name: 'This folder is empty' }).waitFor();
    const disk = macDisk();
    for (const path of Object.keys(disk)) if (path.startsWith(`${home}/Documents`)) delete disk[path];
    await serveFolders(opened, { disk });
    await page.getByRole('button', { name: 'Go to the folder above' }).click();
    await page.getByRole('heading', { name: 'Cannot be read' }).waitFor();
    await page.getByRole('button', { name: 'Go to the home folder' }).click();
    await page.locator('[data-key]:focus').waitFor();
    await opened.tell('setState', emptyState(), 0);
    await page.getByRole('heading', { name: 'No analysis yet' }).waitFor();
    await opened.close();
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
    const { page, close, tell } = await inFolder('Movies');
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
    await close();
  });
});

describe.each(['light', 'dark'] as const)('%s', (colorScheme) => {
  it.each([
    { language: 'en', platform: 'macos', disk: macDisk(), state: fullState(), root: home, viewport: { width: 1180, height: 760 } },
    { language: 'es', platform: 'linux', disk: linuxDisk(), state: inSpanish(fullState()), root: linuxHome, viewport: { width: 720, height: 480 } },
  ] as const)('no violation in $language on $platform', async ({ platform, disk, state, root, viewport }) => {
    const growth = { [root]: { Movies: 1e9, Vídeos: -1e9 } };
    const opened = await openFolders({ disk, growth }, { saved: state, platform, context: { colorScheme, reducedMotion: 'reduce', viewport } });
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
    const opened = await openFolders({}, { context: { colorScheme, reducedMotion: 'reduce' } });
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
