import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open } from '../support/page.ts';
import { tellCleaning, withHistory } from '../support/cleaning.ts';
import { fullState, home } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const focusedKey = (page: Page) => page.evaluate(() => document.activeElement?.getAttribute('data-key')?.split('/').at(-1));
const focusedRegion = (page: Page) =>
  page.evaluate(() => document.activeElement?.closest('[data-region]')?.getAttribute('data-region'));
const selected = (page: Page) =>
  page.locator('[aria-selected="true"]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')!.split('/').at(-1)));

async function press(page: Page, ...keys: string[]): Promise<void> {
  for (const key of keys) await page.keyboard.press(key);
}

async function openList(view: string) {
  const opened = await open(browser, { saved: fullState() });
  await opened.go(view);
  await opened.page.getByRole('grid').waitFor();
  await opened.page.locator('[data-key]').first().focus();
  return opened;
}

describe('the list of large files by keyboard', () => {
  it('moves with the arrows and selects nothing by moving', async () => {
    const { page, close } = await openList('archivos');
    await press(page, 'ArrowDown', 'ArrowDown');
    expect(await focusedKey(page)).toBe('A0F1C2D3.mov');
    await press(page, 'End');
    expect(await focusedKey(page)).toBe('anexos.pdf');
    await press(page, 'ArrowDown');
    expect(await focusedKey(page)).toBe('anexos.pdf');
    await press(page, 'Home', 'PageDown');
    expect(await focusedKey(page)).toBe('entrevista_cam_B_sin_cortes.mov');
    expect(await selected(page)).toEqual([]);
    await close();
  });

  it('Space selects, Shift extends past a protected file, Escape clears', async () => {
    const { page, close } = await openList('archivos');
    await press(page, 'ArrowDown', 'Space', 'Shift+ArrowDown', 'Shift+ArrowDown');
    expect(await selected(page)).toEqual(['Disk.raw', 'macOS 27 beta installer.dmg']);
    await press(page, 'Home', 'ArrowDown', 'Space');
    expect(await selected(page)).toEqual(['macOS 27 beta installer.dmg']);
    await press(page, 'Escape');
    expect(await selected(page)).toEqual([]);
    await close();
  });

  it('is one tab stop: Tab leaves it for the action bar', async () => {
    const { page, close } = await openList('archivos');
    await press(page, 'Tab');
    expect(await focusedRegion(page)).toBe('actions');
    await press(page, 'Shift+Tab');
    expect(await focusedRegion(page)).toBe('list');
    await close();
  });

  it('reaches the actions of a row and the column headers with arrows', async () => {
    const { page, during, close } = await openList('archivos');
    await press(page, 'ArrowRight', 'ArrowRight');
    const intents = await during(() => page.keyboard.press('Enter'));
    expect(intents.map(({ type }) => type)).toEqual(['addExclusion']);
    await press(page, 'ArrowLeft', 'ArrowLeft', 'ArrowUp');
    expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).toBe('Size');
    await press(page, 'Enter');
    expect(await page.getByRole('columnheader', { name: 'Size' }).getAttribute('aria-sort')).toBe('ascending');
    await press(page, 'ArrowDown');
    expect(await page.evaluate(() => document.activeElement?.getAttribute('role'))).toBe('row');
    await close();
  });

  it('Enter shows the file in its folder', async () => {
    const { page, during, close } = await openList('archivos');
    await press(page, 'ArrowDown');
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([
      { type: 'revealPath', payload: `${home}/Library/Containers/com.example.desktop/Data/vms/0/data/Disk.raw` },
    ]);
    await close();
  });

  it('copies the whole paths of what is selected', async () => {
    const { page, close } = await openList('archivos');
    await page.evaluate(() => {
      document.addEventListener('copy', (event) => {
        (window as unknown as { __copied: string }).__copied = event.clipboardData!.getData('text/plain');
      }, { capture: true });
      // The page fills the clipboard in the capture phase, so this has to look afterwards.
      const original = DataTransfer.prototype.setData;
      DataTransfer.prototype.setData = function (format, data) {
        (window as unknown as { __copied: string }).__copied = data;
        original.call(this, format, data);
      };
    });
    await press(page, 'ArrowDown', 'Space', 'End', 'Space', 'Control+c');
    expect(await page.evaluate(() => (window as unknown as { __copied: string }).__copied)).toBe(
      `${home}/Library/Containers/com.example.desktop/Data/vms/0/data/Disk.raw\n${home}/Documents/Tesis/anexos.pdf`,
    );
    await close();
  });

  it('Delete moves the selection, and with nothing selected nothing', async () => {
    const { page, during, close } = await openList('archivos');
    expect(await during(() => page.keyboard.press('Delete'))).toEqual([]);
    await press(page, 'ArrowDown', 'Space');
    const [intent] = await during(() => page.keyboard.press('Delete'));
    expect(intent!.type).toBe('deleteFiles');
    await close();
  });
});

describe('the duplicates by keyboard', () => {
  it('Space selects a copy, K keeps one, and the kept copy cannot be selected', async () => {
    const { page, close } = await openList('duplicados');
    await press(page, 'Space', 'ArrowDown', 'ArrowDown', 'Space');
    expect(await selected(page)).toEqual(['playa.mp4']);
    await press(page, 'Home', 'k');
    expect(await selected(page)).toEqual([]);
    expect(await focusedKey(page)).toBe('playa.mp4');
    await press(page, 'Control+a');
    expect(await selected(page)).toHaveLength(6);
    await close();
  });
});

describe('the lists of the cleanup by keyboard', () => {
  it.each(['limpieza', 'papelera', 'historial'])('%s is one tab stop, walked with arrows', async (view) => {
    const opened = await open(browser, { saved: withHistory(fullState()) });
    const { page } = opened;
    await tellCleaning(opened);
    await opened.go(view);
    expect(await page.locator('[role="grid"] [data-key][tabindex="0"], [role="grid"] [data-key] button:not([tabindex="-1"])').count()).toBe(1);
    const keys = await page.locator('[data-key]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')));
    await page.locator('[data-key]').first().focus();
    await press(page, 'ArrowDown');
    const at = () => page.evaluate(() => document.activeElement?.getAttribute('data-key'));
    expect(await at()).toBe(keys[1]);
    await press(page, 'End');
    expect(await at()).toBe(keys.at(-1));
    await press(page, 'ArrowRight');
    expect(await page.evaluate(() => document.activeElement?.tagName)).toBe('BUTTON');
    await opened.close();
  });
});

describe('keys of the whole window', () => {
  it('F6 goes from rail to list to action bar and round again', async () => {
    const { page, close } = await openList('archivos');
    const visited: (string | null | undefined)[] = [];
    for (const key of ['F6', 'F6', 'F6', 'Shift+F6']) {
      await press(page, key);
      visited.push(await focusedRegion(page));
    }
    expect(visited).toEqual(['actions', 'rail', 'list', 'rail']);
    await close();
  });

  it('Control+F searches, Escape empties the search', async () => {
    const { page, close } = await openList('archivos');
    await press(page, 'Control+f');
    await page.keyboard.type('boda');
    await page.locator('[role="grid"][aria-rowcount="2"]').waitFor();
    await press(page, 'Escape');
    await page.locator('[role="grid"][aria-rowcount="21"]').waitFor();
    await close();
  });

  it('Control+Z takes the last cleanup back, but in a text field only the typing', async () => {
    const { page, during, close } = await openList('archivos');
    expect(await during(() => page.keyboard.press('Control+z'))).toEqual([{ type: 'undoLast' }]);
    await press(page, 'Control+f');
    expect(await during(() => page.keyboard.press('Control+z'))).toEqual([]);
    await close();
  });

  it('Control and a digit shows a view, the question mark the list of keys', async () => {
    const { page, close } = await openList('archivos');
    await press(page, 'Control+1');
    expect(await page.locator('[aria-current="page"]').innerText()).toBe('Overview');
    await press(page, '?');
    await page.getByRole('dialog', { name: 'Keys' }).waitFor();
    await press(page, 'Escape');
    expect(await page.locator('dialog[open]').count()).toBe(0);
    await close();
  });

  it('Control+R is left to the program', async () => {
    const { page, close } = await openList('archivos');
    const taken = await page.evaluate(() => {
      const event = new KeyboardEvent('keydown', { key: 'r', ctrlKey: true, bubbles: true, cancelable: true });
      return !document.activeElement!.dispatchEvent(event);
    });
    expect(taken).toBe(false);
    await close();
  });

  it('the map is one tab stop and is walked with arrows', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    await page.getByRole('group', { name: 'Map of the disk' }).waitFor();
    expect(await page.locator('.map [tabindex="0"]').count()).toBe(1);
    await page.locator('.map [tabindex="0"]').focus();
    const label = () => page.evaluate(() => document.activeElement?.getAttribute('aria-label'));
    const first = await label();
    await press(page, 'ArrowRight');
    expect(await label()).not.toBe(first);
    await press(page, 'Home');
    expect(await label()).toBe(first);
    expect(first).toContain('show in Folders');
    await press(page, 'ArrowRight', 'Enter');
    await page.waitForFunction(() => document.activeElement?.hasAttribute('data-key'));
    await opened.close();
  });

  it('the menu moves the focus to the view it opens', async () => {
    const opened = await open(browser, { saved: fullState() });
    await opened.go('ajustes');
    await opened.page.waitForFunction(() => document.activeElement?.tagName === 'H1');
    expect(await opened.page.evaluate(() => document.activeElement?.textContent)).toBe('Settings');
    await opened.close();
  });

  it('the focus can be seen wherever Tab leads', async () => {
    for (const view of ['inicio', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial', 'ajustes']) {
      const opened = await open(browser, { saved: withHistory(fullState()) });
      const { page } = opened;
      await tellCleaning(opened);
      await opened.go(view);
      const unseen: string[] = [];
      for (let stop = 0; stop < 25; stop += 1) {
        await press(page, 'Tab');
        const hidden = await page.evaluate(() => {
          const focused = document.activeElement;
          if (!focused || focused === document.body) return null;
          const chain = [focused, focused.parentElement, focused.closest('label'), focused.closest('.search')];
          const seen = chain.some((element) => {
            if (!element) return false;
            const style = getComputedStyle(element);
            return style.outlineStyle !== 'none' && Number.parseFloat(style.outlineWidth) > 0;
          });
          return seen ? null : focused.outerHTML.slice(0, 120);
        });
        if (hidden) unseen.push(hidden);
      }
      await opened.close();
      expect(unseen, view).toEqual([]);
    }
  });
});
