import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { someTrash, someWaiting } from '../support/cleaning.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const section = ({ page }: OpenPage, title = 'Waiting for a disk') => page.getByRole('region', { name: title });
const plain = (text: string | null) => text!.replaceAll('\u00a0', ' ');

describe('what waits for a disk', () => {
  it('stands by itself, says what it waits for, and is not counted in what can be emptied', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page, tell } = opened;
    const trash = someTrash();
    const waiting = someWaiting();
    // The second one is on its way out, so the program still lists it.
    const out = { ...trash[0]!, id: waiting[1]!.id, name: waiting[1]!.name, gb: 100 };
    await opened.go('papelera');
    await tell('onTrashWaiting', waiting);
    await tell('onTrashState', [...trash, out]);
    const rows = section(opened).getByRole('listitem');
    expect(await rows.count()).toBe(3);
    const [first, second, third] = (await rows.allTextContents()).map(plain);
    expect(first).toContain('Boda de Clara.raw');
    expect(first).toContain('/Users/marina/Disco de fotos/2024');
    expect(first).toContain('12 GB');
    expect(first).toContain('It comes from a disk that is not connected. Connect it, and the move is finished by itself.');
    expect(second).toContain('It goes to a disk that is not connected.');
    expect(second).toContain('/Users/marina/Copias');
    expect(third).toContain('cannot be reached');
    expect(third).not.toContain('GB');
    expect(await page.getByRole('checkbox').count()).toBe(0);
    // Nothing of it is cut off by the rest of the view.
    const box = await section(opened).boundingBox();
    const last = await rows.last().boundingBox();
    expect(box!.y + box!.height).toBeGreaterThanOrEqual(last!.y + last!.height);
    expect(await page.locator(`[data-key="${out.id}"]`).count()).toBe(0);
    // What the program would undo is the operation of what waits.
    const newest = { ...out, opID: 'opW', taken: Date.now() / 1000 + 60 };
    await tell('onTrashState', [...trash, newest]);
    const [sent] = await opened.during(() => page.getByRole('button', { name: /^Put all back/ }).first().click());
    expect(sent!.type).toBe('restoreItem');
    await tell('toast', "Couldn't restore", 'no');
    await tell('onTrashState', [...trash, out]);
    await page.getByRole('button', { name: 'Empty trash…' }).click();
    expect(plain(await page.getByRole('dialog').textContent())).toContain('12 items are deleted for good. This frees 23 GB.');
    await page.keyboard.press('Escape');

    await tell('onTrashWaiting', []);
    await page.locator(`[data-key="${out.id}"]`).waitFor();
    expect(await section(opened).count()).toBe(0);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('shows in an otherwise empty trash too, which is not called empty then', async () => {
    const opened = await open(browser, { saved: inSpanish(fullState()) });
    await opened.go('papelera');
    await opened.tell('onTrashWaiting', someWaiting());
    await opened.tell('onTrashState', []);
    expect(await section(opened, 'A la espera de un disco').getByRole('listitem').count()).toBe(3);
    expect(await opened.page.getByText('La Papelera de Velto está vacía').count()).toBe(0);
    expect(await opened.page.getByRole('button', { name: 'Vaciar la papelera…' }).count()).toBe(0);
    await opened.close();
  });

  it('is given up only after a question that says what becomes of it', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page, tell, during } = opened;
    await opened.go('papelera');
    await tell('onTrashWaiting', someWaiting());
    await tell('onTrashState', []);
    const dialog = page.getByRole('dialog');
    const giveUp = page.getByRole('button', { name: 'Stop waiting: Boda de Clara.raw…' });
    await giveUp.click();
    const question = plain(await dialog.textContent());
    expect(question).toContain('“(copia sin terminar)” in its name');
    expect(question).toContain('The original stays on its disk.');
    expect(question).toContain('Nothing is deleted.');
    expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).toBe('Cancel');
    expect(await violations(page)).toEqual([]);
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([]);
    await giveUp.click();
    const confirm = dialog.getByRole('button', { name: 'Stop waiting', exact: true });
    expect(await during(() => confirm.click())).toEqual([{ type: 'giveUpWaiting', payload: { id: 'it0000000a' } }]);

    await page.getByRole('button', { name: 'Stop waiting: Acta.pdf…' }).click();
    expect(plain(await dialog.textContent())).toContain('It stays in Velto Trash, whole');
    // Its disk comes while the question stands.
    await tell('onTrashWaiting', []);
    expect(await during(() => dialog.getByRole('button', { name: 'Stop waiting', exact: true }).click())).toEqual([]);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});
