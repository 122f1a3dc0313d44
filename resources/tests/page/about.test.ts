import { cp, mkdtemp, readFile, rm } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import type { Browser, Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { someAbout, tellAbout } from '../support/about.ts';
import { builtPage, launch, open } from '../support/page.ts';
import { fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const title = (page: Page) => page.getByRole('heading', { level: 1 });
const button = (page: Page, name: string) => page.getByRole('button', { name, exact: true });

describe('about Velto', () => {
  it('says which version it is and where it keeps what; each place can be shown and copied', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page, during } = opened;
    await opened.go('ajustes');
    await tellAbout(opened);
    expect(await page.getByText('Velto 1.2.3').isVisible()).toBe(true);
    expect(await page.getByText('under the MIT license').isVisible()).toBe(true);
    expect(await page.getByText('Not there at the moment.').count()).toBe(1);

    const [data] = someAbout().places;
    const shown = await during(() => button(page, 'Show in the file viewer: Data: analyses, history, exclusions').click());
    expect(shown).toEqual([{ type: 'revealPath', payload: data!.path }]);
    expect(await button(page, 'Show in the file viewer: Schedule of the maintenance').count()).toBe(0);
    await page.evaluate(() => {
      const { setData } = DataTransfer.prototype;
      DataTransfer.prototype.setData = function (this: DataTransfer, type: string, text: string) {
        document.documentElement.dataset.copied = text;
        setData.call(this, type, text);
      };
    });
    await button(page, 'Copy the location: Schedule of the maintenance').click();
    // Another file stands there once there is a schedule; what else is told of maintenance changes nothing.
    expect(await during(() => opened.tell('onMaintenance', { fullDiskGB: 5 }))).toEqual([]);
    expect(await during(() => opened.tell('onMaintenance', { installed: true }))).toEqual([{ type: 'about' }]);
    expect(await page.locator('html').getAttribute('data-copied')).toBe(`${home}/Library/LaunchAgents/app.velto.maintenance.plist`);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('the notices hold the whole licence of whatever is inside, and lead back', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    await opened.go('ajustes');
    await tellAbout(opened);
    await button(page, 'Show the notices').click();
    await page.locator('pre').waitFor();
    expect(await page.locator('pre').textContent()).toBe(await readFile(join(builtPage(), 'NOTICES.txt'), 'utf8'));
    expect(await title(page).and(page.locator(':focus')).textContent()).toBe('License notices');
    await button(page, 'Settings').last().click();
    expect(await title(page).textContent()).toBe('Settings');
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('a text that cannot be read is said', async () => {
    const folder = await mkdtemp(join(tmpdir(), 'velto-page-'));
    await cp(builtPage(), folder, { recursive: true });
    await rm(join(folder, 'notices.js'));
    const opened = await open(browser, { saved: fullState(), folder });
    await opened.go('avisos');
    await opened.page.getByRole('alert').filter({ hasText: 'installing Velto again' }).waitFor();
    await opened.close();
    await rm(folder, { recursive: true });
  });
});

describe('the guide', () => {
  it('opens with F1 wherever one is, follows its links and leads back there', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    await opened.go('papelera');
    await page.keyboard.press('F1');
    await page.getByRole('link', { name: 'Getting things back', exact: true }).click();
    const target = page.getByRole('heading', { level: 2, name: 'Getting things back' });
    expect(await target.evaluate((heading) => heading === document.activeElement)).toBe(true);
    expect(await target.isVisible()).toBe(true);
    expect(await target.evaluate((heading) => heading.getBoundingClientRect().top < innerHeight / 2)).toBe(true);
    expect(page.url().endsWith('index.html')).toBe(true);
    await page.keyboard.press('F1');
    await button(page, 'Velto Trash').last().click();
    expect(await title(page).textContent()).toBe('Velto Trash');
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('is in the language of the page, with every picture', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page } = opened;
    await opened.go('guia');
    await page.getByRole('heading', { level: 2, name: 'Privacy' }).waitFor();
    await opened.tell('setState', inSpanish(fullState()), 1_800_000_000);
    await page.getByRole('heading', { level: 2, name: 'Privacidad' }).waitFor();
    const missing = await page.locator('article img').evaluateAll((images) =>
      Promise.all((images as HTMLImageElement[]).map(async (image) => {
        await image.decode().catch(() => undefined);
        return image.naturalWidth > 0 ? null : image.src;
      })));
    expect(missing.filter(Boolean)).toEqual([]);
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});

describe('the record of last uses', () => {
  it('is switched off only after a question, and switched on without one', async () => {
    const opened = await open(browser, { saved: fullState() });
    const { page, during, tell } = opened;
    await opened.go('ajustes');
    await tellAbout(opened);
    const toggle = page.getByRole('switch', { name: 'Remember when applications were used' });
    expect(await page.getByText('Noted now: 12 applications.').isVisible()).toBe(true);

    expect(await during(() => toggle.click())).toEqual([]);
    expect(await page.getByRole('dialog').textContent()).toContain('12 applications');
    expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).toBe('Cancel');
    expect(await during(() => page.keyboard.press('Enter'))).toEqual([]);
    expect(await toggle.getAttribute('aria-checked')).toBe('true');

    await toggle.click();
    const off = await during(() => button(page, 'Stop and delete').click());
    expect(off).toEqual([{ type: 'recordAppUses', payload: { on: false } }]);
    expect(await toggle.getAttribute('aria-checked')).toBe('true'); // until the program says so
    await tell('onAppUses', { recording: false, applications: 0 });
    expect(await toggle.getAttribute('aria-checked')).toBe('false');
    expect(await page.getByText('Nothing is noted. The list of applications estimates').isVisible()).toBe(true);

    expect(await during(() => toggle.click())).toEqual([{ type: 'recordAppUses', payload: { on: true } }]);
    await tell('onAppUses', { recording: true, applications: 0 });
    expect(await during(() => toggle.click())).toEqual([{ type: 'recordAppUses', payload: { on: false } }]); // nothing to lose
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });
});
