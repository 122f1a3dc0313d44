import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { someCleanables } from '../support/cleaning.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, home, inSpanish } from '../support/states.ts';

const renderCache = `${home}/Library/Caches/org.example.Render`;

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

/** Selects the first three large files and asks for their removal. */
async function removeThree({ page, go }: OpenPage): Promise<string[]> {
  await go('archivos');
  const rows = page.locator('[data-key][aria-selected]');
  const paths = await rows.evaluateAll((found) => found.slice(0, 3).map((row) => (row as HTMLElement).dataset.key!));
  for (const index of [0, 1, 2]) {
    await rows.nth(index).focus();
    await page.keyboard.press('Space');
  }
  await page.keyboard.press('Delete');
  return paths;
}

const refuse = (tell: OpenPage['tell'], refused: object[], rest: string[]) => tell('onRefused', { refused, rest });
const text = async ({ page }: OpenPage) => (await page.locator('.toast').last().textContent())!.replaceAll('\u00a0', ' ');

/** What fades in has its own colours only when it has. */
const settled = (page: OpenPage['page']) =>
  page.evaluate(() => Promise.allSettled(document.getAnimations()
    .filter(({ effect }) => effect?.getComputedTiming().endTime !== Infinity)
    .map(({ finished }) => finished)));

describe('a selection of which something was refused', () => {
  it('says which, moves nothing by itself, and moves the rest when asked', async () => {
    const opened = await open(browser, { saved: fullState(), context: { reducedMotion: 'reduce' } });
    const { page, tell, during } = opened;
    const [first, second, third] = await removeThree(opened);
    const sent = await during(async () => {
      await refuse(tell, [{ path: first, reason: 'link' }], [second!, third!]);
      await tell('toast', "Couldn't remove", 'La ruta está fuera de tu carpeta de usuario.');
      await page.getByRole('button', { name: 'Move the other 2' }).waitFor();
    });
    expect(sent).toEqual([]);
    expect(await text(opened)).toMatch(/“Islandia.*…?.*60 fps\)\.mov” is a link, or lies behind one\./);
    expect(await text(opened)).toContain('Nothing was moved');
    expect(await text(opened)).not.toContain('ruta');
    await settled(page);
    expect(await violations(page)).toEqual([]);

    const rest = page.getByRole('button', { name: 'Move the other 2' });
    expect(await during(() => rest.click())).toEqual([
      { type: 'deleteFiles', payload: { paths: [second, third], kind: 'wind' } },
    ]);
    expect(await page.locator('.toast').count()).toBe(0);
    await tell('toast', 'Removed', '1.0 GB in Velto Trash. Kept for 30 days.');
    expect(await page.getByRole('button', { name: 'Undo' }).count()).toBe(1);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('in Spanish, by keyboard: F6 reaches the offer, and it stays until it is used', async () => {
    const opened = await open(browser, { saved: inSpanish(fullState()), context: { reducedMotion: 'reduce' } });
    const { page, tell, during } = opened;
    await page.clock.install();
    const [first, second, third] = await removeThree(opened);
    await refuse(tell, [{ path: first, reason: 'protected' }, { path: second, reason: 'gone' }], [third!]);
    await tell('toast', 'No se pudo eliminar', 'Es un elemento protegido (librería de Fotos, backup, correo).');
    await page.clock.runFor(60_000);
    expect(await text(opened)).toMatch(/está protegido: .* no se mueven\..*» ya no está ahí\./);
    expect(await violations(page)).toEqual([]);
    for (let presses = 0; presses < 4; presses += 1) {
      await page.keyboard.press('F6');
      if ((await page.evaluate(() => document.activeElement?.textContent?.trim())) === 'Mover el otro') break;
    }
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([
      { type: 'deleteFiles', payload: { paths: [third], kind: 'wind' } },
    ]);
    await opened.close();
  });

  it('offers nothing where nothing is left, and names three at most of many', async () => {
    const opened = await open(browser, { saved: fullState(), context: { reducedMotion: 'reduce' } });
    const { page, tell } = opened;
    await removeThree(opened);
    const many = Array.from({ length: 6 }, (_, index) => ({ path: `/Users/marina/${index}\0ff.mov`, reason: 'gone' }));
    await refuse(tell, many, []);
    await tell('toast', "Couldn't remove", 'El archivo ya no existe.');
    expect(await text(opened)).toContain('“0\ufffd.mov”, “1\ufffd.mov”, “2\ufffd.mov”, and 3 more are not there any more.');
    expect(await page.getByRole('button', { name: /^Move the/ }).count()).toBe(0);
    await opened.close();
  });

  it('an offer is gone once something else is removed, and a later message has its own words', async () => {
    const opened = await open(browser, { saved: fullState(), context: { reducedMotion: 'reduce' } });
    const { page, tell } = opened;
    const [first, second] = await removeThree(opened);
    await refuse(tell, [{ path: first, reason: 'gone' }], [second!]);
    await tell('toast', "Couldn't remove", 'El archivo ya no existe.');
    expect(await page.getByRole('button', { name: 'Move the other one' }).count()).toBe(1);
    await page.locator('[data-key]').first().focus();
    await page.keyboard.press('Delete');
    expect(await page.getByRole('button', { name: 'Move the other one' }).count()).toBe(0);
    await tell('toast', "Couldn't remove", 'There is no free space left on the disk.');
    expect(await text(opened)).toContain('no free space');
    await opened.close();
  });
});

describe('a selection of which something cannot be moved', () => {
  const stay = ({ page }: OpenPage, stays: Record<string, { reason: string; detail: string }>) =>
    page.evaluate((given) => ((window as unknown as { __stays: unknown }).__stays = given), stays);
  const shown = (page: OpenPage['page']) =>
    page.locator('[data-key][aria-selected]').evaluateAll((rows) => rows.slice(0, 3).map((row) => (row as HTMLElement).dataset.key!));

  it('is asked about first: what stays, why, the system behind Details, and the rest when agreed', async () => {
    const opened = await open(browser, { saved: fullState(), context: { reducedMotion: 'reduce' } });
    const { page, during, go } = opened;
    await go('archivos');
    const [first, second, third] = await shown(page);
    await stay(opened, {
      [first!]: { reason: 'gone', detail: 'No such file or directory' },
      [second!]: { reason: 'closed', detail: 'Permission denied' },
    });
    expect(await during(() => removeThree(opened))).toEqual([]);
    const dialog = page.getByRole('dialog');
    expect(await dialog.getByRole('heading').textContent()).toBe('2 of 3 items cannot be moved');
    const sentences = await dialog.getByRole('listitem').allTextContents();
    expect(sentences[0]).toContain('is not there any more.');
    expect(sentences[1]).toContain('stands in a folder that may not be changed.');
    expect(await dialog.getByText('Permission denied').isVisible()).toBe(false);
    await dialog.getByText('Details', { exact: true }).nth(1).click();
    expect(await dialog.getByText('Permission denied').isVisible()).toBe(true);
    expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).not.toContain('Move');
    expect(await violations(page)).toEqual([]);
    expect(await during(() => dialog.getByRole('button', { name: 'Move the other one' }).click())).toEqual([
      { type: 'deleteFiles', payload: { paths: [third], kind: 'wind' } },
    ]);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('in Spanish: of which nothing can be moved there is nothing to agree to, and what is gone is proposed no more', async () => {
    const opened = await open(browser, { saved: inSpanish(fullState()), context: { reducedMotion: 'reduce' } });
    const { page, during, go, tell } = opened;
    await go('limpieza');
    await tell('onCleanables', someCleanables());
    const row = page.locator(`[data-key="${renderCache}"]`);
    await stay(opened, Object.fromEntries(someCleanables().map(({ path }) => [path, { reason: 'gone', detail: '' }])));
    await row.focus();
    for (const key of ['Escape', 'Space', 'Delete']) await page.keyboard.press(key);
    const dialog = page.getByRole('dialog');
    expect(await dialog.getByRole('heading').textContent()).toBe('No se puede mover');
    expect(await dialog.getByRole('listitem').textContent()).toContain('«org.example.Render» ya no está ahí.');
    expect(await row.count()).toBe(0);
    expect(await dialog.locator('.answers').getByRole('button').allTextContents()).toEqual(['Cerrar']);
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([]);
    expect(await dialog.count()).toBe(0);
    await opened.close();
  });
});

describe('a name that is no text', () => {
  const path = '/Users/marina/Movies/caf\0e9.mov';

  it('is shown readable, acted on with every byte, and reached by keyboard', async () => {
    const state = fullState();
    const saved = { ...state, files: [{ ...state.files[0]!, name: 'caf\ufffd.mov', path }, ...state.files.slice(1)] };
    const opened = await open(browser, { saved });
    const { page, during } = opened;
    await opened.go('archivos');
    expect(await page.evaluate(() => document.body.innerText)).not.toMatch(/\0|e9\.mov/);
    const titles = await page.locator('[title*="caf"]').evaluateAll((found) => found.map((one) => one.getAttribute('title')));
    expect(titles).toContain('/Users/marina/Movies/caf\ufffd.mov');
    await page.locator('[data-key]').nth(1).focus();
    await page.keyboard.press('ArrowUp');
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([{ type: 'revealPath', payload: path }]);
    await page.keyboard.press('Space');
    const [sent] = await during(() => page.keyboard.press('Delete'));
    expect(sent).toEqual({ type: 'deleteFiles', payload: { paths: [path], kind: 'wind' } });
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});
