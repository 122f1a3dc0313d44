// What low windows, wide ones and large text leave room for.
import type { Browser, Locator, Page } from 'playwright-core';
import { afterAll, beforeAll, expect, it } from 'vitest';
import { someCleanables, withHistory } from '../support/cleaning.ts';
import { hostileDisk, linuxDisk, linuxFolders, linuxHome, serveFolders } from '../support/folders.ts';
import { launch, open, painted, type OpenPage, type Setting } from '../support/page.ts';
import { duplicateGroup, emptyState, fullState, home, inSpanish } from '../support/states.ts';
import { someActivity, someSample } from '../support/system.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

interface Look extends Setting {
  width: number;
  height: number;
  /** Of the text, in percent. */
  text?: number;
}

const usual = { width: 1180, height: 760 };
const smallest = { width: 720, height: 480 };

async function look({ width, height, text = 100, ...setting }: Look, test: (opened: OpenPage) => Promise<void>): Promise<void> {
  const opened = await open(browser, { saved: fullState(), ...setting, context: { viewport: { width, height } } });
  await opened.page.evaluate((size) => (document.documentElement.style.fontSize = size), `${text}%`);
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

/** What is cut of an element, inside of it or by what it lies in. */
const cut = (locator: Locator) =>
  locator.evaluateAll((all) => all.filter((each) => {
    const seen = each.getBoundingClientRect();
    const isWide = (part: Element) => part.clientWidth > 1 && part.scrollWidth > part.clientWidth + 1;
    const row = each.closest('[role="row"]')!.getBoundingClientRect();
    return seen.width > 1 && (isWide(each) || [...each.querySelectorAll('*')].some(isWide) || seen.top < row.top - 1 || seen.bottom > row.bottom + 1);
  }).map((each) => each.textContent));

const boxOf = async (locator: Locator) => (await locator.boundingBox())!;

async function folders(opened: OpenPage, disk: ReturnType<typeof hostileDisk>): Promise<Page> {
  await serveFolders(opened, { disk });
  await opened.go('explorar');
  await opened.page.locator('[data-key]').first().waitFor();
  await painted(opened.page);
  return opened.page;
}

it('what is said of a folder besides stands whole below its name, however long that is', async () => {
  await look(usual, async (opened) => {
    const page = await folders(opened, hostileDisk());
    const marks = page.locator('[role="gridcell"].name').getByText(/could not be read|^Cannot be read|^New|^Excluded|^Counted|^Left out/i);
    expect(await marks.count()).toBeGreaterThan(4);
    expect(await cut(marks)).toEqual([]);
    const widths = await page.locator('.row bdi').evaluateAll((all) => all.map((each) => each.getBoundingClientRect().width));
    expect(Math.min(...widths)).toBeGreaterThan(120);
  });
});

it.each([usual, smallest])('with large text both sizes of another disk stay inside of their row', async (size) => {
  await look({ ...size, text: 200 }, async (opened) => {
    await opened.tell('onHome', linuxHome);
    await opened.tell('onHomeFolders', linuxFolders);
    const page = await folders(opened, linuxDisk());
    await page.locator('[data-key]').first().press('End');
    const row = page.locator(`[data-key="${linuxHome}/disco"]`);
    await row.waitFor();
    expect(await cut(row.locator('.size > span'))).toEqual([]);
    expect((await row.locator('[role="gridcell"].size').textContent())!.replaceAll('\u00a0', ' ')).toContain('301 GB of 500 GB');
  });
});

it('in the smallest window with the largest text a cleanup of the history can be read', async () => {
  await look({ ...smallest, text: 200, saved: withHistory(fullState()) }, async ({ page, go }) => {
    await go('historial');
    const what = await page.locator('.row .what').evaluateAll((all) => all.map((each) => each.getBoundingClientRect().width));
    expect(Math.min(...what)).toBeGreaterThan(8 * 24);
  });
});

it('in the smallest window with the largest text processes keep their names', async () => {
  await look({ ...smallest, text: 200 }, async ({ page, go, tell }) => {
    await go('sistema');
    await tell('onSystemActivity', someActivity());
    await tell('onSystem', someSample());
    await painted(page);
    expect(await cut(page.locator('[data-key] bdi').filter({ hasText: 'servidor-de-sonido' }))).toEqual([]);
  });
});

it.each([{ ...smallest, text: 200 }, { ...smallest, text: 150 }, { ...usual, text: 200 }, smallest])(
  'all views are in reach at $width x $height with text of $text %',
  async (size) => {
    await look(size, async ({ page }) => {
      expect(await page.locator('nav .entries').evaluate(({ scrollHeight, clientHeight }) => scrollHeight - clientHeight)).toBe(0);
      const heights = await page.locator('nav button').evaluateAll((all) => all.map((each) => each.getBoundingClientRect().height));
      expect(Math.min(...heights)).toBeGreaterThanOrEqual(24);
    });
  },
);

it.each(['archivos', 'duplicados'])('with large text the action bar of %s takes a fifth of the window', async (view) => {
  await look({ ...usual, text: 200 }, async ({ page, go }) => {
    await go(view);
    await page.locator('[data-key]').first().focus();
    await page.keyboard.press('Control+a');
    expect((await boxOf(page.locator('[data-region="actions"]'))).height).toBeLessThanOrEqual(usual.height / 5);
  });
});

it.each(['es', 'en'])('the action bar of the cleanup is one row (%s)', async (language) => {
  await look({ ...usual, saved: language === 'es' ? inSpanish(fullState()) : fullState() }, async ({ page, go, tell }) => {
    await go('limpieza');
    await tell('onCleanables', someCleanables());
    const move = await boxOf(page.locator('[data-region="actions"] button').last());
    const count = await boxOf(page.locator('[data-region="actions"] strong'));
    expect(count.y).toBeLessThan(move.y + move.height);
    expect((await boxOf(page.locator('[data-region="actions"]'))).height).toBeLessThanOrEqual(80);
  });
});

it.each(['archivos', 'explorar'])('in a wide window the line of an analysis starts where the content of %s does', async (view) => {
  await look({ width: 1920, height: 1080 }, async ({ page, go, tell }) => {
    await go(view);
    await tell('onScanStarted');
    const line = await boxOf(page.locator('[data-scan] > *').first());
    expect(Math.round(line.x)).toBe(Math.round((await boxOf(page.locator('h1'))).x));
  });
});

it('a program of the background has its whole name where there is room', async () => {
  await look({ ...usual, saved: inSpanish(fullState()) }, async ({ page, go, tell }) => {
    await go('sistema');
    await tell('onSystemActivity', someActivity());
    await tell('onSystem', someSample());
    await painted(page);
    const name = page.locator('[data-key] bdi').filter({ hasText: 'servidor-de-sonido' });
    expect(await name.count()).toBe(1);
    expect(await cut(name)).toEqual([]);
  });
});

it('at the first start the smallest window shows what to do', async () => {
  await look({ ...smallest, saved: inSpanish(emptyState()) }, async ({ page, go, tell }) => {
    await tell('onPermissions', { fda: false });
    await go('inicio');
    await page.getByText('Hay lugares que aún no se pueden medir').waitFor();
    const button = await boxOf(page.getByRole('button', { name: 'Analizar disco' }));
    expect(button.y + button.height).toBeLessThan(smallest.height - 8);
  });
});

it('the list of shortcuts opens at its title, with its button in sight', async () => {
  await look({ ...smallest, text: 150 }, async ({ page }) => {
    await page.keyboard.press('?');
    const dialog = page.getByRole('dialog');
    const around = await boxOf(dialog);
    const title = await boxOf(dialog.getByRole('heading'));
    expect(title.y).toBeGreaterThan(around.y);
    const close = dialog.getByRole('button');
    const box = await boxOf(close);
    expect(box.y + box.height).toBeLessThan(around.y + around.height);
    expect(await close.evaluate((each) => each === document.activeElement)).toBe(true);
    // The words behind it can be read by key.
    await page.keyboard.press('End');
    await page.waitForFunction(() => document.querySelector('dialog[open]')!.scrollTop > 0);
  });
});

it.each(['limpieza', 'duplicados'])('the list of %s has the room of the smallest window when it is looked through', async (view) => {
  await look({ ...smallest, saved: inSpanish(fullState()) }, async ({ page, go, tell }) => {
    await go(view);
    await tell('onCleanables', someCleanables());
    await page.locator('[data-key]').first().waitFor();
    expect((await boxOf(page.locator('.content'))).height).toBeGreaterThan(smallest.height / 2);
    // What is said above the list goes with it.
    await page.locator('[data-key]').first().focus();
    await page.keyboard.press('End');
    await painted(page);
    expect(await page.locator('.about').evaluate((about) => about.getBoundingClientRect().bottom)).toBeLessThan(60);
  });
});

it('a copy in a protected place stays, and is not offered as the one to keep', async () => {
  const locked = `${home}/Library/Mail/V10/Attachments/plano.pdf`;
  const saved = fullState({ dupGroups: [duplicateGroup('1.0', 0, `${home}/Documents/plano.pdf`, locked, `${home}/Desktop/plano.pdf`)] });
  await look({ ...usual, saved }, async ({ page, go }) => {
    await go('duplicados');
    const row = page.locator(`[data-key="${locked}"]`);
    expect(await row.textContent()).toContain('Stays · protected');
    expect(await row.getByRole('button', { name: /^Keep this one/ }).count()).toBe(0);
    // It still can be the one, so that the other may go.
    await row.focus();
    await page.keyboard.press('k');
    await page.locator(`.kept[data-key="${locked}"]`).waitFor();
  });
});

it('the menu of a copy is whole with large text, and marks the one item that is pointed at', async () => {
  await look({ ...usual, text: 200, saved: inSpanish(fullState()) }, async ({ page, go }) => {
    await go('duplicados');
    await page.locator('[data-key]').first().dispatchEvent('contextmenu', { button: 0 });
    const menu = page.getByRole('menu');
    const { y, height } = await boxOf(menu);
    expect(y).toBeGreaterThanOrEqual(0);
    expect(y + height).toBeLessThanOrEqual(usual.height);
    await menu.getByRole('menuitem').nth(2).hover();
    await painted(page);
    const plain = await menu.evaluate((each) => getComputedStyle(each).color);
    const colours = await menu.getByRole('menuitem').evaluateAll((all) => all.map((each) => getComputedStyle(each).color));
    expect(colours.filter((colour) => colour !== plain)).toHaveLength(1);
    expect(colours[2]).not.toBe(plain);
  });
});

it('with large text a list that finds nothing says so in sight, and what to do', async () => {
  await look({ ...usual, text: 200, saved: inSpanish(fullState()) }, async ({ page, go }) => {
    await go('archivos');
    await page.locator('[data-search]').fill('zzz');
    const all = await boxOf(page.getByRole('button', { name: 'Ver todos los archivos' }));
    expect(all.y + all.height).toBeLessThan((await boxOf(page.locator('[data-region="actions"]'))).y);
  });
});
