/** The folders' view, opened on made-up folders, and what can be read off it. */
import type { Browser, Locator, Page } from 'playwright-core';
import { linuxFolders, linuxHome, macDisk, macFolders, serveFolders, type Served } from './folders.ts';
import { open, type OpenPage, type Setting } from './page.ts';
import { fullState, home } from './states.ts';

export const focusedName = (page: Page) =>
  page.evaluate(() => {
    const element = document.activeElement as HTMLElement | null;
    return (element?.dataset.key ?? element?.dataset.cell)?.split('/').at(-1);
  });
export const inMap = (page: Page) => page.evaluate(() => document.activeElement?.hasAttribute('data-cell') ?? false);
export const here = (page: Page) => page.locator('[aria-current="location"]').textContent();
export const selected = (page: Page) =>
  page.locator('[role="row"][aria-selected="true"]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')!.split('/').at(-1)));
export const pressed = (page: Page) =>
  page.locator('[data-cell][aria-pressed="true"]').evaluateAll((cells) => cells.map((cell) => cell.getAttribute('data-cell')!.split('/').at(-1)));
export const namesShown = (page: Page) => page.locator('[data-key]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')!.split('/').at(-1)!));
/** As it is read: a space that does not break is a space. */
export const textOf = async (locator: Locator) => (await locator.textContent())!.replaceAll('\u00a0', ' ');
export const row = (page: Page, name: string) => page.getByRole('row').filter({ has: page.getByTitle(name, { exact: true }) });

export async function press(page: Page, ...keys: string[]): Promise<void> {
  for (const key of keys) await page.keyboard.press(key);
}

export async function openFolders(browser: Browser, served: Partial<Served> = {}, setting: Setting = {}): Promise<OpenPage> {
  const opened = await open(browser, { saved: fullState(), ...setting });
  await serveFolders(opened, { disk: macDisk(), ...served });
  await opened.tell('onHomeFolders', served.disk?.[linuxHome] ? linuxFolders : macFolders);
  await opened.go('explorar');
  await opened.page.getByRole('grid').waitFor();
  return opened;
}

/** In a folder of the home that is not empty: its rows are there, and the first of them has the focus. */
export async function inFolder(browser: Browser, name: string, served: Partial<Served> = {}): Promise<OpenPage> {
  const opened = await openFolders(browser, served);
  await opened.page.locator('[data-key]').first().focus();
  await opened.page.locator(`[data-key="${home}/${name}"]`).focus();
  await opened.page.keyboard.press('Enter');
  await opened.page.locator(`[data-key^="${home}/${name}/"]:focus`).waitFor();
  return opened;
}
