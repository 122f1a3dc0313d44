import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { someHistory, someTrash } from '../support/cleaning.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, home } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

async function withPage(test: (opened: OpenPage) => Promise<void>, saved = fullState({ history: someHistory() })): Promise<void> {
  const opened = await open(browser, { saved });
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const toastTexts = ({ page }: OpenPage) => page.locator('.toast').allTextContents();
const focusedText = ({ page }: OpenPage) => page.evaluate(() => document.activeElement?.textContent?.trim());

describe('Velto Trash', () => {
  const ready = async (opened: OpenPage) => {
    await opened.tell('onTrashState', someTrash());
    await opened.go('papelera');
  };
  const putBack = (opened: OpenPage, name: string) => opened.page.getByRole('button', { name: `Put back: ${name}`, exact: true });

  it('is by cleanup, newest first, with what remains of its time and what it would give back', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const heads = await opened.page.locator('[data-key^="operation:"]').allTextContents();
      expect(heads.map((text) => /(\d+ items?).*?(No time limit)/.exec(text.replaceAll('\u00a0', ' '))!.slice(1))).toEqual([
        ['9 items', 'No time limit'], ['2 items', 'No time limit'], ['1 item', 'No time limit'],
      ]);
      const summary = (await opened.page.locator('section').filter({ hasText: 'held in Velto Trash' }).textContent())!.replaceAll('\u00a0', ' ');
      expect(summary).toContain('comes back only when they are deleted for good');
      expect(summary).toContain('After emptying: about 335.4 GB');
      expect(summary).toContain('Automatic maintenance is off');
    });
  });

  it('says when things go by themselves, where they do', async () => {
    const saved = fullState();
    const opened = await open(browser, { saved: { ...saved, settings: { ...saved.settings, autoMaintenance: true } } });
    await ready(opened);
    expect(await opened.page.getByText('then automatic maintenance deletes them for good').count()).toBe(1);
    await opened.close();
  });

  it('puts one item back and says where it is', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const item = someTrash().find(({ name }) => name === 'Boda Clara y Hugo.mp4')!;
      const sent = await opened.during(() => putBack(opened, item.name).click());
      expect(sent.map(({ type }) => type)).toEqual(['restoreItem']);
      expect(await putBack(opened, item.name).count()).toBe(0);
      const held = someTrash().filter(({ name }) => name !== item.name);
      await opened.tell('onTrashState', held);
      expect(await toastTexts(opened)).toEqual([expect.stringContaining(`is back in ${home}/Movies`)]);
    });
  });

  it('an item that came back under another name says which', async () => {
    await withPage(async (opened) => {
      const items = someTrash();
      await opened.tell('onHome', home);
      await opened.tell('onTrashState', items);
      await opened.go('papelera');
      const item = items.find(({ name }) => name === 'Boda Clara y Hugo.mp4')!;
      await putBack(opened, item.name).click();
      await opened.tell('onPutBack', [{ id: item.id, path: `${home}/Movies/Boda Clara y Hugo (restaurado 1).mp4` }]);
      await opened.tell('onTrashState', items.filter(({ id }) => id !== item.id));
      expect(await toastTexts(opened)).toEqual([
        expect.stringContaining('Another “Boda Clara y Hugo.mp4” stands in ~/Movies, so it is back there as “Boda Clara y Hugo (restaurado 1).mp4”.'),
      ]);
    });
  });

  it('a whole cleanup is deleted for good after a question, by key too', async () => {
    await withPage(async (opened) => {
      const items = someTrash();
      await opened.tell('onTrashState', items);
      await opened.go('papelera');
      const { page } = opened;
      const head = page.locator('[data-key^="operation:"]').nth(1);
      const id = (await head.getAttribute('data-key'))!.slice('operation:'.length);
      await head.focus();
      await page.keyboard.press('Delete');
      const dialog = page.getByRole('dialog');
      expect(await dialog.getByRole('heading').textContent()).toBe('Delete 2 items for good?');
      expect(await focusedText(opened)).toBe('Cancel');
      expect(await opened.during(() => page.keyboard.press('Enter'))).toEqual([]);
      await head.getByRole('button', { name: /^Delete this cleanup for good: 2 items/ }).click();
      expect(await opened.during(() => dialog.getByRole('button', { name: 'Delete for good' }).click())).toEqual([
        { type: 'purgeOperation', payload: { id } },
      ]);
      await opened.tell('toast', 'Deleted', '2 items deleted permanently.');
      await opened.tell('onTrashState', items.filter(({ opID }) => opID !== id));
      expect(await page.locator(`[data-key="operation:${id}"]`).count()).toBe(0);
    });
  });

  it('an item that cannot be put back stays and can be tried again', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      await putBack(opened, 'Boda Clara y Hugo.mp4').click();
      await opened.tell('toast', "Couldn't restore", 'El archivo ya no existe.');
      expect(await toastTexts(opened)).toEqual([expect.stringContaining('stays in Velto Trash')]);
      expect(await putBack(opened, 'Boda Clara y Hugo.mp4').count()).toBe(1);
    });
  });

  it('an item whose folder is a link now says so and offers another folder', async () => {
    await withPage(async (opened) => {
      const items = someTrash();
      const item = items.find(({ name }) => name === 'Boda Clara y Hugo.mp4')!;
      await opened.tell('onTrashState', items);
      await opened.go('papelera');
      const elsewhere = opened.page.getByRole('button', { name: `Restore to another folder: ${item.name}…` });
      expect(await elsewhere.textContent()).toBe('');
      await putBack(opened, item.name).click();
      await opened.tell('toast', "Couldn't restore", `“${item.name}” is still in Velto Trash: “~/Movies” is a link now.`);
      await opened.tell('onRestoreBlocked', { id: item.id, path: `${home}/Movies` });
      expect(await opened.page.getByText(`Cannot go back: ${home}/Movies is a link now`).count()).toBe(1);
      expect((await elsewhere.textContent())!.trim()).toBe('Restore to another folder…');
      expect(await opened.during(() => elsewhere.click())).toEqual([{ type: 'restoreItemTo', payload: { id: item.id } }]);
      expect(await putBack(opened, item.name).count(), 'the user may think better of it').toBe(1);
      await opened.tell('onTrashState', items.filter(({ id }) => id !== item.id));
      await opened.tell('toast', 'Restored', `“${item.name}” is in ~/Desktop now.`);
      expect((await toastTexts(opened)).join()).toContain('is in ~/Desktop now');
      await opened.tell('onTrashState', items);
      expect(await opened.page.getByText('Cannot go back').count(), 'in the trash again, it is not blocked').toBe(0);
    });
  });

  it('any item can be restored to another folder, and trying its own place again forgets what stood there', async () => {
    await withPage(async (opened) => {
      const items = someTrash();
      const item = items.find(({ name }) => name === 'Boda Clara y Hugo.mp4')!;
      await opened.tell('onTrashState', items);
      await opened.go('papelera');
      const elsewhere = opened.page.getByRole('button', { name: `Restore to another folder: ${item.name}…` });
      expect(await opened.during(() => elsewhere.click())).toEqual([{ type: 'restoreItemTo', payload: { id: item.id } }]);
      await opened.tell('onRestoreBlocked', { id: item.id, path: `${home}/Movies` });
      expect(await opened.page.getByText('Cannot go back').count()).toBe(1);
      await putBack(opened, item.name).click();
      expect(await opened.page.getByText('Cannot go back').count()).toBe(0);
    });
  });

  it('the last cleanup is undone as a whole, an older one item by item until one fails', async () => {
    await withPage(async (opened) => {
      const items = someTrash();
      await opened.tell('onTrashState', items);
      await opened.go('papelera');
      const all = opened.page.getByRole('button', { name: /^Put all back/ });
      expect(await opened.during(() => all.first().click())).toEqual([{ type: 'undoLast' }]);
      const [key, wedding, copy] = items;
      await opened.tell('onTrashState', [key, wedding, copy]);
      expect(await toastTexts(opened)).toEqual([expect.stringContaining('Put back')]);

      await opened.tell('onTrashState', [key, wedding, copy, { ...items[5]!, taken: Date.now() / 1000 }]);
      expect(await opened.during(() => all.nth(1).click())).toEqual([{ type: 'restoreItem', payload: wedding!.id }]);
      const next = opened.during(() => opened.tell('onTrashState', [key, copy, items[5]]).then(() => opened.page.waitForTimeout(50)));
      expect(await next).toEqual([{ type: 'restoreItem', payload: copy!.id }]);
      await opened.tell('toast', "Couldn't restore", 'El archivo ya no existe.');
      await opened.page.waitForTimeout(50);
      expect((await toastTexts(opened)).join()).toContain('is back in');
      expect(await opened.during(() => opened.tell('onTrashState', [key, copy, items[5]]))).toEqual([]);
    });
  });

  it('deletes for good only after a question with what and how much, the focus on Cancel', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const remove = opened.page.getByRole('button', { name: 'Delete Boda Clara y Hugo.mp4 for good…' });
      await remove.click();
      const dialog = (await opened.page.getByRole('dialog').textContent())!.replaceAll('\u00a0', ' ');
      expect(dialog).toContain('Delete “Boda Clara y Hugo.mp4” for good?');
      expect(dialog).toContain('12.6 GB');
      expect(await focusedText(opened)).toBe('Cancel');
      expect(await opened.during(() => opened.page.keyboard.press('Enter'))).toEqual([]);
      await remove.click();
      const [sent] = await opened.during(() => opened.page.getByRole('button', { name: 'Delete for good', exact: true }).click());
      expect(sent!.type).toBe('purgeItem');
      await opened.tell('toast', "Couldn't delete", 'x');
      expect(await toastTexts(opened)).toEqual([expect.stringContaining('What was not deleted stays in Velto Trash.')]);
      expect(await remove.count()).toBe(1);
    });
  });

  it('is emptied only after a question with how much', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const empty = opened.page.getByRole('button', { name: 'Empty trash…' });
      await empty.click();
      const dialog = (await opened.page.getByRole('dialog').textContent())!.replaceAll('\u00a0', ' ');
      expect(dialog).toContain('12 items are deleted for good. This frees 23 GB.');
      expect(await focusedText(opened)).toBe('Cancel');
      expect(await opened.during(() => opened.page.keyboard.press('Escape'))).toEqual([]);
      await empty.click();
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Empty Velto Trash', exact: true }).click())).toEqual([{ type: 'purgeTrash' }]);
      expect(await opened.page.getByRole('button', { name: 'Emptying…' }).count()).toBe(1);
      await opened.tell('onTrashEmptying', 7, 12);
      expect(await opened.page.getByRole('button', { name: 'Emptying: 7 of 12…' }).count()).toBe(1);
      await opened.tell('toast', 'Trash emptied', 'Items deleted permanently.');
      await opened.tell('onTrashState', []);
      expect(await opened.page.getByRole('heading', { name: 'Velto Trash is empty' }).isVisible()).toBe(true);
    });
  });

  it('by keyboard: the focus goes on to the next row when one is put back', async () => {
    await withPage(async (opened) => {
      const items = someTrash();
      await opened.tell('onTrashState', items);
      await opened.go('papelera');
      await opened.page.locator(`[data-key="${items[1]!.id}"]`).focus();
      const [sent] = await opened.during(() => opened.page.keyboard.press('Enter'));
      expect(sent).toEqual({ type: 'restoreItem', payload: items[1]!.id });
      await opened.tell('onTrashState', items.filter(({ id }) => id !== items[1]!.id));
      await opened.page.waitForFunction((id) => document.activeElement?.getAttribute('data-key') === id, items[2]!.id);
    });
  });

  it('unfolds a large cleanup in portions', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const rows = opened.page.locator('[data-key^="it"]');
      expect(await rows.count()).toBe(8);
      await opened.page.getByRole('button', { name: 'Show 4 more items' }).click();
      expect(await rows.count()).toBe(12);
    });
  });
});

describe('undoing', () => {
  it('with an empty trash says that there is nothing to undo', async () => {
    await withPage(async (opened) => {
      await opened.tell('onTrashState', []);
      expect(await opened.during(() => opened.page.keyboard.press('Control+z'))).toEqual([]);
      expect(await toastTexts(opened)).toEqual([expect.stringContaining('Nothing to undo')]);
    });
  });

  it('is offered for the last removal only, and no longer once the trash was touched', async () => {
    await withPage(async (opened) => {
      const { page, tell } = opened;
      const undo = page.getByRole('button', { name: 'Undo', exact: true });
      await opened.go('archivos');
      await page.locator('[data-key]').first().focus();
      for (const gb of ['41.7', '34.2']) {
        for (const key of ['Space', 'Delete']) await page.keyboard.press(key);
        await tell('toast', 'Removed', `${gb} GB in Velto Trash. Kept for 30 days.`);
        await page.keyboard.press('Escape');
        await page.keyboard.press('ArrowDown');
        expect(await undo.count()).toBe(1);
      }
      expect(await page.locator('.toast').filter({ has: undo }).textContent()).toContain('34.2');
      expect(await page.locator('.toast').filter({ hasText: 'Removed' }).count()).toBe(1);
      await tell('onTrashState', someTrash());
      await opened.go('papelera');
      await page.getByRole('button', { name: 'Put back: Boda Clara y Hugo.mp4' }).click();
      expect(await undo.count()).toBe(0);
    });
  });

  it('a message about something else takes no Undo away', async () => {
    await withPage(async (opened) => {
      await opened.go('archivos');
      await opened.page.locator('[data-key]').first().focus();
      for (const key of ['Space', 'Delete']) await opened.page.keyboard.press(key);
      await opened.tell('toast', 'Excluded from the analysis', '/a');
      await opened.tell('toast', 'Removed', '41.7 GB in Velto Trash.');
      expect(await opened.page.getByRole('button', { name: 'Undo', exact: true }).count()).toBe(1);
    });
  });
});

describe('history', () => {
  it('is by month with totals, and says what is still in Velto Trash', async () => {
    await withPage(async (opened) => {
      await opened.tell('onTrashState', someTrash());
      await opened.go('historial');
      const rows = (await opened.page.locator('[data-key]').allTextContents()).map((text) => text.replaceAll('\u00a0', ' '));
      expect(rows[0]).toContain('In Velto Trash');
      expect(rows[1]).toContain('2 of 3 in Velto Trash');
      expect(rows[3]).toMatch(/Uninstall · 2 items.*Deleted for good/);
      expect(rows[4]).toContain('No longer in Velto Trash');
      expect(await opened.page.getByRole('img', { name: /^Removed by month: .*31\.4/ }).count()).toBe(1);
    });
  });

  it('unfolds the items of an entry and leads to them in Velto Trash', async () => {
    await withPage(async (opened) => {
      await opened.tell('onTrashState', someTrash());
      await opened.go('historial');
      await opened.page.locator('[data-key="opB"]').focus();
      expect(await opened.page.getByText('ya recuperado.mov').count()).toBe(0);
      await opened.page.keyboard.press('Enter');
      expect(await opened.page.getByText('ya recuperado.mov').count()).toBe(1);
      await opened.page.locator('[data-key="opB"]').getByRole('button', { name: 'Show in Velto Trash' }).click();
      await opened.page.waitForFunction(() => document.activeElement?.getAttribute('data-key') === 'operation:opB');
    });
  });

  it('is cleared only after a question that says what stays', async () => {
    await withPage(async (opened) => {
      await opened.go('historial');
      const clear = opened.page.getByRole('button', { name: 'Clear history…' });
      await clear.click();
      expect(await opened.page.getByRole('dialog').textContent()).toContain('Your files and Velto Trash stay as they are.');
      expect(await focusedText(opened)).toBe('Cancel');
      expect(await opened.during(() => opened.page.keyboard.press('Enter'))).toEqual([]);
      await clear.click();
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Clear history', exact: true }).click())).toEqual([{ type: 'clearHistory' }]);
      expect(await opened.page.getByRole('heading', { name: 'No cleanup yet' }).isVisible()).toBe(true);
    });
  });
});
