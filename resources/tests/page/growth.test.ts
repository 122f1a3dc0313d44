import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { noon, someGrowth } from '../support/growth.ts';
import { launch, open, painted, type OpenPage, type Setting } from '../support/page.ts';
import { fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

async function withGrowth(test: (opened: OpenPage) => Promise<void>, setting: Setting = {}): Promise<void> {
  const opened = await open(browser, { saved: fullState(), ...setting });
  await opened.tell('onGrowth', someGrowth());
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const line = ({ page }: OpenPage) => page.locator('.card > button[aria-expanded]');
const panel = ({ page }: OpenPage) => page.getByRole('region', { name: 'What has changed' });
const listed = (opened: OpenPage, title: string) =>
  panel(opened).locator('section', { has: opened.page.getByRole('heading', { name: title, exact: true }) }).locator('li');

describe('what has grown', () => {
  it('is asked for once the page is there, and is one line on the overview', async () => {
    await withGrowth(async (opened) => {
      expect(await opened.intents()).toContainEqual({ type: 'growth', payload: { since: 'last' } });
      const text = (await line(opened).textContent())!.replaceAll('\u00a0', ' ');
      expect(text).toMatch(/^Since .+, 18\.3 GB more: 14\.1 GB in Movies\/Lanzarote and 3 GB in Library\/Caches\.\s*$/);
      expect(await panel(opened).count()).toBe(0);
    });
  });

  it('is no line while there is nothing to compare with', async () => {
    await withGrowth(async (opened) => {
      await opened.tell('onGrowth', someGrowth({ available: [], since: 0, bytes: 0, grown: [], shrunk: [], renamed: [] }));
      expect(await line(opened).count()).toBe(0);
    });
  });

  it('unfolds by key into lists of what has changed, each with its path and size', async () => {
    await withGrowth(async (opened) => {
      await line(opened).focus();
      await opened.page.keyboard.press('Enter');
      expect(await listed(opened, 'New').allTextContents()).toEqual([expect.stringMatching(/~\/Movies\/Lanzarote\s*\+14\.1.GB/)]);
      expect(await listed(opened, 'Grown').count()).toBe(3);
      expect(await listed(opened, 'Shrunk').allTextContents()).toEqual([expect.stringMatching(/~\/Downloads\s*−900.MB/)]);
      expect(await listed(opened, 'Gone').getByRole('button').count()).toBe(0);
      expect(await listed(opened, 'Renamed or moved').textContent()).toMatch(/~\/Movies\/Archivo\/Boda Clara y Hugo.*before:.*~\/Movies\/Boda.*12\.6.GB/s);
    });
  });

  it('leads to the folder, the home among them', async () => {
    await withGrowth(async (opened) => {
      await line(opened).click();
      await listed(opened, 'New').getByRole('button').focus();
      const sent = await opened.during(async () => {
        await opened.page.keyboard.press('Enter');
        await opened.page.getByRole('heading', { level: 1, name: 'Folders' }).waitFor();
        await opened.tell('onFolder', { request: 1, path: home, found: true, state: 'measured', folders: [], entries: [] });
      });
      expect(sent.filter(({ type }) => type === 'folder').map(({ payload }) => (payload as { path: string }).path)).toContain(`${home}/Movies/Lanzarote`);
    });
  });

  it('is compared with another analysis when another is chosen, by the folders too', async () => {
    await withGrowth(async (opened) => {
      await line(opened).click();
      const choice = panel(opened).getByRole('combobox', { name: 'Compare with' });
      expect(await choice.locator('option').count()).toBe(6);
      expect(await opened.during(() => choice.selectOption('month'))).toEqual([{ type: 'growth', payload: { since: 'month' } }]);
      expect(await panel(opened).getByRole('status').textContent()).toBe('Comparing…');
      await opened.tell('onGrowth', someGrowth({ asked: 'month', since: noon(75), grown: [], shrunk: [], renamed: [], bytes: 0 }));
      expect(await panel(opened).getByRole('status').textContent()).toMatch(/^From the analysis of .+ to that of .+\.$/);
      expect(await panel(opened).textContent()).toContain('No folder has changed by 10 MB or more.');
      expect(await opened.during(() => choice.selectOption(String(noon(200))))).toEqual([{ type: 'growth', payload: { since: noon(200) } }]);
    });
  });

  it('is forgotten when that was asked and confirmed', async () => {
    await withGrowth(async (opened) => {
      await line(opened).click();
      const forget = panel(opened).getByRole('button', { name: 'Forget…' });
      expect(await opened.during(async () => {
        await forget.click();
        await opened.page.getByRole('dialog').getByRole('button', { name: 'Cancel' }).click();
      })).toEqual([]);
      expect(await opened.during(async () => {
        await forget.click();
        await opened.page.getByRole('dialog').getByRole('button', { name: 'Forget' }).click();
      })).toEqual([{ type: 'forgetGrowth' }]);
      await opened.tell('onGrowth', someGrowth({ available: [], since: 0 }));
      expect(await line(opened).count()).toBe(0);
    });
  });

  for (const [colorScheme, language] of [['light', 'es'], ['dark', 'en'], ['dark', 'es'], ['light', 'en']] as const) {
    it(`has no fault in the ${colorScheme} theme in ${language}, wide or narrow`, async () => {
      const saved = language === 'es' ? inSpanish(fullState()) : fullState();
      for (const width of [1180, 720]) {
        await withGrowth(async (opened) => {
          expect(await violations(opened.page)).toEqual([]);
          await line(opened).click();
          await painted(opened.page);
          expect(await violations(opened.page)).toEqual([]);
          expect(await opened.page.evaluate(() => document.documentElement.scrollWidth <= innerWidth)).toBe(true);
        }, { saved, context: { viewport: { width, height: 860 }, colorScheme, reducedMotion: 'reduce' } });
      }
    });
  }
});
