import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, expect, it } from 'vitest';
import { launch, open, painted, type OpenPage } from '../support/page.ts';
import { someActivity, someDetails, someSample } from '../support/system.ts';
import { fullState, inSpanish } from '../support/states.ts';
import { openFolders } from '../support/foldersPage.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const small = { viewport: { width: 720, height: 480 } };
const large = { viewport: { width: 1180, height: 760 } };

async function onPage(view: string, context: object, test: (opened: OpenPage) => Promise<void>): Promise<void> {
  const opened = await open(browser, { saved: inSpanish(fullState()), context });
  await opened.go(view);
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

it.each([small, large])('what the keys do stands in one column, however long their names are', async (context) => {
  await onPage('inicio', context, async ({ page }) => {
    await page.keyboard.press('?');
    await page.locator('dd').first().waitFor();
    const starts = await page.locator('dd').evaluateAll((all) => all.map((each) => Math.round(each.getBoundingClientRect().left)));
    expect(new Set(starts).size).toBe(1);
  });
});

it.each(['explorar', 'duplicados'])('the action bar of %s takes a fifth of the smallest window', async (view) => {
  const opened = view === 'explorar'
    ? await openFolders(browser, {}, { saved: inSpanish(fullState()), context: small })
    : await open(browser, { saved: inSpanish(fullState()), context: small });
  await opened.go(view);
  const bar = opened.page.locator('[data-region="actions"]');
  await bar.waitFor();
  expect((await bar.boundingBox())!.height).toBeLessThanOrEqual(100);
  // What moving does stays said, on one line below.
  const note = (await opened.page.locator('#removal-note').boundingBox())!;
  const button = (await bar.getByRole('button').last().boundingBox())!;
  expect(note.y).toBeGreaterThanOrEqual(button.y + button.height);
  await opened.close();
  expect(opened.complaints).toEqual([]);
});

it('what narrows the large files shares one line below the search', async () => {
  const opened = await open(browser, { saved: fullState(), context: small });
  await opened.go('archivos');
  const tops = await opened.page.locator('.tools select').evaluateAll((all) => all.map((each) => Math.round(each.getBoundingClientRect().top)));
  expect(tops).toHaveLength(3);
  expect(new Set(tops).size).toBe(1);
  await opened.close();
});

it('a process keeps its name beside its number', async () => {
  await onPage('sistema', small, async ({ page, tell }) => {
    await tell('onSystem', someSample());
    await tell('onSystemActivity', someActivity());
    await tell('onSystemDetails', someDetails());
    await tell('onSystem', someSample());
    await painted(page);
    const opener = page.locator('button.opener').first();
    if ((await opener.getAttribute('aria-expanded')) === 'false') await opener.click();
    const name = page.locator('.inside').filter({ hasText: 'proceso 501' }).locator('bdi');
    expect(await name.evaluate((each) => [...each.querySelectorAll('*'), each].some((part) => part.scrollWidth > part.clientWidth + 1 && part.clientWidth > 1))).toBe(false);
  });
});
