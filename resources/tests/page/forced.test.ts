/** With the system's own few colours: what is current, chosen, off or how large is still told apart. */
import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, expect, it } from 'vitest';
import { macDisk, serveFolders } from '../support/folders.ts';
import { launch, open, painted } from '../support/page.ts';
import { fullState, home } from '../support/states.ts';
import { someActivity, someSample } from '../support/system.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

/** How the first element that matches looks. */
const look = (page: Page, selector: string, part?: string) =>
  page.locator(selector).first().evaluate((element, pseudo) => {
    const style = getComputedStyle(element, pseudo);
    const { color, borderTopWidth, outlineStyle, inlineSize, height } = style;
    // A forced background keeps how clear it was; the page, of the same white, is seen through it.
    const backgroundColor = style.backgroundColor.replace(/^rgba\(255, 255, 255, .*|^rgba\(.*, 0\)$/, 'rgb(255, 255, 255)');
    return { backgroundColor, color, borderTopWidth, outlineStyle, inlineSize, height, row: getComputedStyle(element).height };
  }, part);

/** By how many pixels; a row may have its border besides. */
const tallerThanRow = ({ height, row }: { height: string; row: string }) =>
  Math.abs(Number.parseFloat(height) - Number.parseFloat(row));

it('marks stay what they are without the colours of the page', async () => {
  const opened = await open(browser, { saved: fullState(), context: { forcedColors: 'active', reducedMotion: 'reduce' } });
  const { page } = opened;
  await serveFolders(opened, { disk: macDisk() });
  const background = async (selector: string) => (await look(page, selector)).backgroundColor;

  expect(await background('nav [aria-current="page"]'), 'the current view').not.toBe(await background('nav button:not([aria-current])'));

  await opened.go('archivos');
  const rows = page.locator('[role="row"][data-key]');
  const disabled = await look(page, '[aria-disabled="true"]');
  await rows.first().focus();
  await page.keyboard.press('Space');
  await painted(page);
  expect((await look(page, '.bar button:not([aria-disabled])')).color, 'a button that does nothing').not.toBe(disabled.color);
  const mark = await look(page, '[aria-selected="true"]', '::before');
  expect(mark.backgroundColor, 'a selected row').not.toBe(await background('[aria-selected="true"]'));
  expect(tallerThanRow(mark), 'as tall as its row').toBeLessThan(2);
  expect((await look(page, '[data-key]:focus')).outlineStyle).toBe('solid');
  expect(Number.parseFloat((await look(page, '[aria-selected="false"]', '::before')).inlineSize), 'and no other').toBeNaN();

  await opened.go('duplicados');
  const copy = page.locator('.grid-row[aria-selected]').first();
  await copy.focus();
  await page.keyboard.press('Space');
  const copied = await look(page, '.grid-row[aria-selected="true"]', '::before');
  expect(tallerThanRow(copied), 'in a card too').toBeLessThan(2);

  await opened.go('ajustes');
  expect(await background('.choice label:has(:checked)'), 'a choice').not.toBe(await background('.choice label:not(:has(:checked))'));
  expect(await background('[role="switch"][aria-checked="true"]'), 'a switch').not.toBe(await background('[role="switch"][aria-checked="false"]'));

  await opened.go('explorar');
  await page.locator(`[data-cell="${home}/Movies"]`).waitFor();
  expect((await look(page, '[data-cell]')).borderTopWidth, 'the edges of areas').toBe('1px');

  await opened.go('sistema');
  await opened.tell('onSystemActivity', someActivity());
  await opened.tell('onSystem', someSample());
  await page.locator('.meter').first().waitFor();
  expect(await background('.meter div'), 'a meter').not.toBe(await background('.meter'));

  await opened.close();
  expect(opened.complaints).toEqual([]);
});
