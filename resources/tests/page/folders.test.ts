import type { Browser, Locator } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { crowdedDisk, macDisk, serveFolders } from '../support/folders.ts';
import { focusedName, here, inFolder, inMap, namesShown, openFolders, press, pressed, row, selected, textOf } from '../support/foldersPage.ts';
import { someGrowth } from '../support/growth.ts';
import { launch, painted } from '../support/page.ts';
import { home } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

describe('the folders by keyboard', () => {
  it('Enter goes into a folder, Backspace out of it, and the focus knows where it came from', async () => {
    const { page, close, complaints } = await openFolders(browser);
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
    const { page, close } = await openFolders(browser);
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
    const { page, close } = await inFolder(browser, 'Documents');
    await press(page, 'Home', 'Space', 'Shift+ArrowDown');
    expect(await selected(page)).toEqual(['Copia antigua del portátil', 'Máquinas virtuales']);
    expect(await page.getByText('2 selected').first().isVisible()).toBe(true);
    await press(page, 'Escape');
    expect(await selected(page)).toEqual([]);
    await press(page, 'Backspace');
    await page.locator('[data-key$="/Documents"]:focus').waitFor();
    await press(page, 'Space');
    expect(await selected(page)).toEqual([]);
    expect(await page.locator('p[role="status"]').textContent()).toContain('Your system or programs look for this folder');
    await close();
  });

  it('the column heads are reached from the first row, and sort both ways', async () => {
    const { page, close } = await openFolders(browser);
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
    const { page, close, during } = await openFolders(browser);
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
    const { page, close } = await inFolder(browser, 'Documents');
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

  it('Shift on the map selects what lies between there, whatever the order of the table', async () => {
    const { page, close } = await inFolder(browser, 'Documents');
    await page.getByRole('columnheader', { name: 'Name' }).getByRole('button').click();
    const largest = ['Copia antigua del portátil', 'Máquinas virtuales'];
    const cell = (name: string) => page.locator(`[data-cell="${home}/Documents/${name}"]`);
    await cell(largest[0]!).focus();
    await press(page, 'Space');
    await cell(largest[1]!).click({ modifiers: ['Shift'] });
    expect(await selected(page)).toEqual(largest);
    await press(page, 'Escape');
    await cell(largest[0]!).focus();
    await press(page, 'Space', 'ArrowRight', 'Shift+Space');
    expect(await selected(page)).toEqual(largest);
    await press(page, 'Escape');
    await cell(largest[0]!).focus();
    await press(page, 'Shift+ArrowDown');
    expect(await selected(page)).toEqual(largest);
    await close();
  });

  it('a folder of the map is gone into with a click or Enter, and the focus stays on the map', async () => {
    const { page, close } = await openFolders(browser);
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
    const { page, close } = await openFolders(browser);
    await row(page, 'Documents').getByText('Documents').click();
    await page.locator('[data-key$="Copia antigua del portátil"]').waitFor();
    await page.getByRole('navigation', { name: 'Location' }).getByRole('button', { name: 'Home' }).click();
    await page.locator(`[data-key="${home}/Library"]:focus`).waitFor();
    await row(page, 'Movies').dblclick({ position: { x: 500, y: 20 } });
    await page.locator('[data-key$="Viaje a Islandia"]').waitFor();
    await page.getByRole('button', { name: 'Folder above' }).click();
    await page.locator('[data-key$="/Movies"]').waitFor();
    await close();
  });

  it('the second click of a double one does not go on in what the first has opened', async () => {
    const { page, close, during } = await openFolders(browser);
    const clickTwice = async (target: Locator) => {
      const { x, y, width, height } = (await target.boundingBox())!;
      await page.mouse.click(x + width / 2, y + height / 2);
      await page.locator('[data-key$="Viaje a Islandia"]:focus, [data-cell$="Viaje a Islandia"]:focus').waitFor();
      const intents = await during(async () => {
        await page.mouse.down({ clickCount: 2 });
        await page.mouse.up({ clickCount: 2 });
        await painted(page);
      });
      expect(intents).toEqual([]);
      expect(await here(page)).toContain('Movies');
    };
    await clickTwice(row(page, 'Movies').getByText('Movies'));
    await page.getByRole('button', { name: 'Back' }).click();
    await page.locator('[data-key$="/Movies"]').waitFor();
    await clickTwice(page.locator(`[data-cell="${home}/Movies"]`));
    await close();
  });
});

describe('ten thousand files', () => {
  it('are a list of which only the rows in sight are made, however it is scrolled and sorted', async () => {
    const { page, close } = await inFolder(browser, 'Fotos', { disk: crowdedDisk(10_000) });
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
    const { page, close } = await inFolder(browser, 'Fotos', { disk: crowdedDisk(10_000) });
    await press(page, 'ArrowDown', 'ArrowDown');
    const before = await focusedName(page);
    await page.evaluate(() => { document.querySelector('.scroller')!.scrollTop = 300_000; });
    await page.locator('[aria-rowindex="6820"]').waitFor();
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

describe('the growth column', () => {
  it('is there when something is known, and sorts', async () => {
    const opened = await openFolders(browser, { growth: { [home]: { Movies: 9_100_000_000, Music: -420_000_000, Library: 0 } } });
    const { page, close } = opened;
    await page.getByRole('columnheader', { name: 'Growth' }).waitFor();
    expect(await textOf(row(page, 'Movies'))).toContain('+9.1 GB');
    expect(await textOf(row(page, 'Music'))).toContain('\u2212420 MB');
    await page.getByRole('columnheader', { name: 'Growth' }).getByRole('button').click();
    expect((await namesShown(page)).slice(0, 3)).toEqual(['Movies', 'Library', 'Music']);
    // An analysis has ended: its snapshot is kept a moment after its folders are there.
    await serveFolders(opened, { disk: macDisk(), growth: { [home]: { Movies: 1_200_000_000, Music: 0, Library: 0 } } });
    await opened.tell('onGrowth', someGrowth());
    await row(page, 'Movies').getByText('+1.2').waitFor();
    await page.locator(`[data-key="${home}/Movies"]`).focus();
    await press(page, 'Enter');
    await page.locator('[data-key$="Viaje a Islandia"]').waitFor();
    expect(await page.getByRole('columnheader', { name: 'Growth' }).count()).toBe(0);
    await close();
  });
});
