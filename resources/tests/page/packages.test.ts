import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import type { PackagePlan } from '../../src/protocol/protocol.ts';
import { app, leftover } from '../support/apps.ts';
import { violations } from '../support/axe.ts';
import { launch, open, type OpenPage, type Setting } from '../support/page.ts';
import { fullState, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const path = '/usr/share/applications/org.example.Mapas.desktop';
const maps = app('Mapas', { path, bid: 'org.example.Mapas', version: '' });
const config = leftover('prefs', '/home/marina/.config/org.example.Mapas', 0.012);
const analysis = {
  bid: maps.bid, name: maps.name, path, version: '', icon: '', gb: 0, running: false, team: '',
  groups: [
    { key: 'app', items: [leftover('app', path, 0, { id: 'un-app', name: 'Mapas' })] },
    { key: 'prefs', items: [config] },
  ],
  total: 0.012, certain: 0.012, possible: 0, adminCount: 0, possibleCount: 0, count: 2,
};
const plan: PackagePlan = { keeper: 'distribution', name: 'example-mapas', others: ['gnome'], kept: '', command: '' };

/** The application is looked at; its plan has not come yet. */
async function looking(test: (opened: OpenPage) => Promise<void>, setting: Setting = {}): Promise<void> {
  const opened = await open(browser, { saved: fullState(), platform: 'linux', ...setting });
  await opened.go('apps');
  await opened.tell('onApps', [maps]);
  await opened.page.locator(`[data-key="${path}"]`).focus();
  await opened.page.keyboard.press('Enter');
  await opened.tell('onAppRemoval', path, { stays: 'admin', folder: '' });
  await opened.tell('onAppAnalysis', analysis);
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

async function known(test: (opened: OpenPage) => Promise<void>, change: Partial<PackagePlan> = {}, setting: Setting = {}): Promise<void> {
  await looking(async (opened) => {
    await opened.tell('onAppPackage', path, { ...plan, ...change });
    await test(opened);
  }, setting);
}

const panel = ({ page }: OpenPage) => page.getByRole('region', { name: 'How it was installed' });
const remove = (opened: OpenPage) => panel(opened).getByRole('button', { name: 'Remove with the system…' });

async function removed(opened: OpenPage): Promise<unknown> {
  await remove(opened).click();
  return opened.during(() => opened.page.getByRole('dialog').getByRole('button', { name: 'Remove' }).click());
}

describe('an application that the system has installed', () => {
  it('is asked about when it is looked at, and one of the user is not', async () => {
    await looking(async (opened) => {
      expect((await opened.intents()).filter(({ type }) => type === 'appPackage')).toEqual([{ type: 'appPackage', payload: { path } }]);
      expect(await panel(opened).textContent()).toContain('Asking the system');
      await opened.tell('onAppPackage', path, null);
      expect(await panel(opened).count()).toBe(0);
    });
    const own = app('Propia', { path: '/home/marina/.local/share/applications/propia.desktop' });
    const opened = await open(browser, { saved: fullState(), platform: 'linux' });
    await opened.go('apps');
    await opened.tell('onApps', [own]);
    await opened.page.locator(`[data-key="${own.path}"]`).focus();
    await opened.page.keyboard.press('Enter');
    expect((await opened.intents()).some(({ type }) => type === 'appPackage')).toBe(false);
    await opened.close();
  });

  it('goes with what was shown, once that is confirmed', async () => {
    await known(async (opened) => {
      expect(await panel(opened).textContent()).toContain('package “example-mapas” of your distribution');
      expect(await panel(opened).textContent()).toContain('1 other package goes with it: gnome.');
      expect(await removed(opened)).toEqual([{ type: 'removePackage', payload: { path, others: ['gnome'] } }]);
      expect(await panel(opened).textContent()).toContain('The system is removing Mapas');
      expect(await remove(opened).count()).toBe(0);
      await opened.tell('onPackageRemoval', path, { done: true, reason: '', detail: '' });
      expect(await panel(opened).textContent()).toContain('The system has removed Mapas.');
    });
  });

  it('leaves what it left behind to be chosen, as of one that is gone', async () => {
    await known(async (opened) => {
      const row = opened.page.locator(`[data-key="${config.path}"]`);
      expect(await row.getAttribute('aria-selected')).toBe('false');
      await removed(opened);
      await opened.tell('onPackageRemoval', path, { done: true, reason: '', detail: '' });
      expect(await row.getAttribute('aria-selected')).toBe('true');
    });
  });

  it('stays when the user is not allowed, and says so', async () => {
    await known(async (opened) => {
      await removed(opened);
      await opened.tell('onPackageRemoval', path, { done: false, reason: 'refused', detail: 'x' });
      expect(await panel(opened).textContent()).toContain('It was not allowed. Nothing was removed.');
      expect(await remove(opened).count()).toBe(1);
      await removed(opened);
      await opened.tell('onPackageRemoval', path, { done: false, reason: 'failed', detail: 'in its own words' });
      await panel(opened).getByRole('button', { name: 'Details' }).click();
      expect(await panel(opened).textContent()).toContain('in its own words');
    });
  });

  it('is asked about anew when more would go by now', async () => {
    await known(async (opened) => {
      await removed(opened);
      const sent = await opened.during(() => opened.tell('onPackageRemoval', path, { done: false, reason: 'changed', detail: '' }));
      expect(sent).toEqual([{ type: 'appPackage', payload: { path } }]);
      await opened.tell('onAppPackage', path, { ...plan, others: ['gnome', 'gnome-games'] });
      expect(await panel(opened).textContent()).toContain('2 other packages go with it: gnome, gnome-games.');
      expect(await panel(opened).textContent()).toContain('More would go than was shown');
    });
  });

  it('leaves runtimes that nothing uses to be removed, when it was a Flatpak', async () => {
    await known(async (opened) => {
      await removed(opened);
      await opened.tell('onPackageRemoval', path, { done: true, reason: '', detail: '' });
      const offer = opened.page.getByRole('button', { name: 'Remove unused runtimes…' });
      const agree = () => opened.page.getByRole('dialog').getByRole('button', { name: 'Remove' });
      await offer.click();
      expect(await opened.during(() => agree().click())).toEqual([{ type: 'removeUnusedRuntimes', payload: { ofAllUsers: true } }]);
      await opened.tell('onUnusedRuntimes', { done: false, reason: 'refused', detail: '' });
      expect(await panel(opened).textContent()).toContain('It was not allowed');
      await offer.click();
      await agree().click();
      await opened.tell('onUnusedRuntimes', { done: true, reason: '', detail: '' });
      expect(await panel(opened).textContent()).toContain('Flatpak has removed what nothing uses.');
      expect(await offer.count()).toBe(0);
    }, { keeper: 'flatpak', others: [] });
  });

  it('is not offered where the computer needs it, or nobody answers', async () => {
    await known(async (opened) => {
      expect(await panel(opened).textContent()).toContain('“gnome-shell” would go with it');
      expect(await remove(opened).count()).toBe(0);
    }, { kept: 'gnome-shell' });
    await known(async (opened) => {
      expect(await panel(opened).locator('code').textContent()).toBe("sudo dnf remove '/usr/share/x.desktop'");
      expect(await remove(opened).count()).toBe(0);
    }, { name: '', others: [], command: "sudo dnf remove '/usr/share/x.desktop'" });
  });

  for (const [colorScheme, language] of [['light', 'es'], ['dark', 'en']] as const) {
    it(`has no fault in the ${colorScheme} theme, wide or narrow`, async () => {
      const saved = language === 'es' ? inSpanish(fullState()) : fullState();
      for (const width of [1180, 720]) {
        await known(async (opened) => {
          expect(await violations(opened.page)).toEqual([]);
        }, { others: ['gnome', ...Array.from({ length: 12 }, (_, index) => `example-plugin-${index}`)] }, {
          saved, context: { viewport: { width, height: 760 }, colorScheme, reducedMotion: 'reduce' },
        });
      }
    });
  }
});
