import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import type { LeftBehindItem } from '../../src/protocol/protocol.ts';
import { app } from '../support/apps.ts';
import { violations } from '../support/axe.ts';
import { daysAgo } from '../support/cleaning.ts';
import { launch, open, type OpenPage, type Setting } from '../support/page.ts';
import { fullState, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const home = '/home/marina';
const apps = [app('Borealis', { path: `${home}/Applications/Borealis.AppImage` }), app('Cadencia', { path: '/usr/share/applications/c.desktop' })];
const items: LeftBehindItem[] = [
  { path: `${home}/.var/app/org.example.Estudio`, identifier: 'org.example.Estudio', why: 'flatpak', gb: 2.412, last: daysAgo(75) },
  { path: `${home}/.config/com.example.Notas`, identifier: 'com.example.Notas', why: 'identifier', gb: 0.031, last: daysAgo(420) },
  { path: `${home}/.cache/spotify`, identifier: 'spotify', why: 'package', gb: 0.8, last: daysAgo(130) },
];

async function withItems(test: (opened: OpenPage) => Promise<void>, setting: Setting = {}): Promise<void> {
  const opened = await open(browser, { saved: fullState(), platform: 'linux', ...setting });
  await opened.go('apps');
  await opened.tell('onApps', apps);
  await opened.tell('onLeftBehind', items);
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const section = ({ page }: OpenPage) => page.getByRole('region', { name: 'Left behind by apps that are gone' });
const row = (opened: OpenPage, item: LeftBehindItem) => section(opened).locator(`[data-key="${item.path}"]`);
const move = ({ page }: OpenPage) => page.getByRole('button', { name: 'Move to Velto Trash' });

describe('what applications that are gone have left behind', () => {
  it('is asked for after the applications are there, and on a Mac not at all', async () => {
    for (const platform of ['linux', 'macos'] as const) {
      const opened = await open(browser, { saved: fullState(), platform });
      expect(await opened.during(() => opened.go('apps'))).toEqual([{ type: 'appsList' }]);
      expect(await opened.during(() => opened.tell('onApps', apps))).toEqual(platform === 'linux' ? [{ type: 'leftBehind' }] : []);
      await opened.tell('onLeftBehind', []);
      expect(await section(opened).count()).toBe(0);
      await opened.close();
    }
  });

  it('is shown with what says so, and nothing of it is selected', async () => {
    await withItems(async (opened) => {
      expect(await section(opened).getByRole('row').count()).toBe(3);
      expect(await section(opened).locator('[aria-selected="true"]').count()).toBe(0);
      expect(await move(opened).count()).toBe(0);
      expect(await row(opened, items[0]!).textContent()).toContain('No Flatpak of this name is installed');
      expect(await row(opened, items[1]!).textContent()).toContain('Last change 1 year ago');
      expect(await row(opened, items[2]!).textContent()).toContain('not installed as a package');
    });
  });

  it('is moved to Velto Trash and can be taken back', async () => {
    await withItems(async (opened) => {
      await row(opened, items[0]!).locator('> .tick').click();
      await row(opened, items[1]!).focus();
      await opened.page.keyboard.press('Space');
      const sent = await opened.during(() => move(opened).click());
      expect(sent).toEqual([{ type: 'deleteFiles', payload: { paths: [items[0]!.path, items[1]!.path], kind: 'wind' } }]);
      await opened.tell('toast', 'Removed', '2 items');
      expect(await section(opened).getByRole('row').count()).toBe(1);
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Undo' }).click())).toEqual([{ type: 'undoLast' }]);
    });
  });

  it('steps aside for a search, and drops what it is told wrongly', async () => {
    await withItems(async (opened) => {
      await opened.page.getByRole('textbox').fill('bor');
      expect(await section(opened).count()).toBe(0);
      await opened.page.getByRole('textbox').fill('');
      await opened.tell('onLeftBehind', [items[0], items[0], { ...items[1], why: 'because' }, { path: 3 }, null]);
      expect(await section(opened).getByRole('row').count()).toBe(1);
    });
  });

  for (const [colorScheme, language] of [['light', 'es'], ['dark', 'en']] as const) {
    it(`has no fault in the ${colorScheme} theme, wide or narrow`, async () => {
      const saved = language === 'es' ? inSpanish(fullState()) : fullState();
      for (const width of [1180, 720]) {
        await withItems(async (opened) => {
          await opened.page.locator(`[data-key="${items[0]!.path}"] > .tick`).click();
          expect(await violations(opened.page)).toEqual([]);
        }, { saved, context: { viewport: { width, height: 760 }, colorScheme, reducedMotion: 'reduce' } });
      }
    });
  }
});
