import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { analysisOf, app, manyApps, sizesOf, someApps, someFailures, someLeftovers, someResult } from '../support/apps.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, home } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const apps = someApps();
const borealis = apps.find(({ name }) => name === 'Borealis')!;
const plain = (text: string | null) => (text ?? '').replaceAll('\u00a0', ' ').replace(/\s+/g, ' ').trim();

async function withApps(test: (opened: OpenPage) => Promise<void>, list = apps): Promise<void> {
  const opened = await open(browser, { saved: fullState() });
  await opened.go('apps');
  await opened.tell('onApps', list);
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const rowNames = ({ page }: OpenPage) =>
  page.locator('[data-key^="/"] .name .name').allTextContents().then((names) => names.map((name) => name.trim()));
const title = ({ page }: OpenPage) => page.getByRole('heading', { level: 1 }).textContent();

async function openBorealis(opened: OpenPage, installed = borealis): Promise<void> {
  await opened.page.locator(`[data-key="${installed.path}"]`).click();
  await opened.tell('onAppAnalysis', analysisOf(installed, someLeftovers()));
}

async function uninstall(opened: OpenPage): Promise<void> {
  await opened.page.getByRole('button', { name: 'Uninstall…' }).click();
  await opened.page.getByRole('dialog').getByRole('button', { name: 'Uninstall', exact: true }).click();
}

describe('the list of applications', () => {
  it('is asked for when it is shown, and not again at every visit', async () => {
    const opened = await open(browser, { saved: fullState() });
    expect(await opened.during(() => opened.go('apps'))).toEqual([{ type: 'appsList' }]);
    expect(await opened.page.getByRole('heading', { name: 'Reading the applications' }).isVisible()).toBe(true);
    await opened.tell('onApps', apps);
    expect(await opened.during(async () => {
      await opened.go('inicio');
      await opened.go('apps');
    })).toEqual([]);
    expect(await opened.during(() => opened.page.getByRole('button', { name: 'Read again' }).click())).toEqual([{ type: 'appsList' }]);
    await opened.close();
  });

  it('is there before the sizes are, and says that they are being measured', async () => {
    await withApps(async (opened) => {
      expect(await opened.page.getByText('Measuring…').count()).toBe(8);
      await opened.tell('onAppSizes', sizesOf(apps));
      expect(await opened.page.getByText('Measuring…').count()).toBe(0);
      expect(plain(await opened.page.locator('.aside').textContent())).toBe('8 applications · 19.9 GB');
    });
  });

  it('sorts by size and last use, from the headers and by keyboard', async () => {
    await withApps(async (opened) => {
      const { page } = opened;
      await opened.tell('onAppSizes', sizesOf(apps));
      await page.getByRole('columnheader', { name: 'Size' }).getByRole('button').click();
      expect((await rowNames(opened)).slice(0, 3)).toEqual(['Terra', 'Acme Studio', 'Borealis']);
      await page.locator('[data-key]').first().focus();
      for (const key of ['ArrowUp', 'ArrowLeft', 'Enter']) await page.keyboard.press(key);
      expect(await page.getByRole('columnheader', { name: 'Last used' }).getAttribute('aria-sort')).toBe('ascending');
      expect((await rowNames(opened))[0]).toBe('Límite');
      expect((await rowNames(opened)).at(-1)).toBe('Grabador de pantalla');
    });
  });

  it('keeps the applications of the system apart, finds them, and offers no removal for them', async () => {
    await withApps(async (opened) => {
      const { page, during } = opened;
      expect(await page.getByText('Calculadora').count()).toBe(0);
      await page.getByRole('button', { name: 'Show', exact: true }).click();
      expect(await page.getByText('Vista previa').count()).toBeGreaterThan(0);
      await page.getByRole('button', { name: 'Hide', exact: true }).click();
      await page.getByRole('textbox').fill('calculadora');
      const row = page.locator('[data-key="/Applications/Calculadora.app"]');
      expect(await during(() => row.click())).toEqual([]);
      expect(await title(opened)).toBe('Applications');
      await page.getByRole('textbox').fill('nothing like that');
      expect(await during(() => page.getByRole('button', { name: 'Show all applications' }).click())).toEqual([]);
      expect(await rowNames(opened)).toHaveLength(8);
    });
  });

  it('says so when nothing comes, and when there is nothing', async () => {
    const opened = await open(browser, { saved: fullState() });
    await opened.page.clock.install();
    await opened.go('apps');
    await opened.page.clock.runFor(11_000);
    expect(await opened.page.getByText('It takes longer than usual').isVisible()).toBe(true);
    await opened.page.clock.runFor(60_000);
    expect(await opened.during(() => opened.page.getByRole('button', { name: 'Try again' }).click())).toEqual([{ type: 'appsList' }]);
    await opened.tell('onApps', []);
    expect(await opened.page.getByRole('heading', { name: 'No applications found' }).isVisible()).toBe(true);
    await opened.close();
  });

  it('of hundreds of applications is searched at once', async () => {
    await withApps(async (opened) => {
      expect(await rowNames(opened)).toHaveLength(267);
      await opened.page.getByRole('textbox').fill('aplicacion 25');
      expect(await rowNames(opened)).toHaveLength(13); // one of them of the system
    }, manyApps(300));
  });
});

describe('one application', () => {
  it('is looked at, with everything certain preselected and nothing possible', async () => {
    await withApps(async (opened) => {
      const row = opened.page.locator(`[data-key="${borealis.path}"]`);
      await row.focus();
      expect(await opened.during(() => opened.page.keyboard.press('Enter'))).toEqual([
        { type: 'appAnalysis', payload: { path: borealis.path } },
      ]);
      expect(await opened.page.getByRole('heading', { name: 'Looking for what Borealis left behind' }).isVisible()).toBe(true);
      await opened.tell('onAppAnalysis', analysisOf(app('Another'), []));
      expect(await opened.page.getByRole('grid').count()).toBe(0);
      await opened.tell('onAppAnalysis', analysisOf(borealis, someLeftovers()));
      expect(await opened.page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(8);
      expect(await opened.page.locator('[data-key="section:possible"]').getAttribute('aria-label')).toContain('0 of 3 items selected');
      expect(await opened.page.locator('[data-key^="/Library/"]').first().getAttribute('aria-selected')).toBeNull();
      expect(plain(await opened.page.locator('.plan').textContent())).toContain('Deleted for good: 8 items, 4 GB.');
      expect(plain(await opened.page.locator('.plan').textContent())).toContain('Borealis is running');
    });
  });

  it('a link among it is shown with where it leads and what goes, and is not preselected', async () => {
    await withApps(async (opened) => {
      const { page } = opened;
      const cache = `${home}/Library/Caches/org.example.Borealis`;
      const support = `${home}/Library/Application Support/org.example.Borealis`;
      await page.locator(`[data-key="${borealis.path}"]`).click();
      await opened.tell('onLeftoverLinks', 'another', [{ path: borealis.path, target: '/x', kept: true }]);
      await opened.tell('onLeftoverLinks', borealis.path, [
        { path: cache, target: `${home}/Projects`, kept: true },
        { path: support, target: `${home}/dotfiles/<b>Borealis</b>` },
      ]);
      await opened.tell('onAppAnalysis', analysisOf(borealis, someLeftovers()));
      expect(await page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(6);
      expect(await page.locator(`[data-key="${cache}"]`).getAttribute('aria-selected')).toBe('false');
      const text = plain(await page.locator(`[data-key="${cache}"] .path`).textContent());
      expect(text).toContain(`${home}/Projects`);
      expect(text).toContain('Only the link goes; what it leads to stays.');
      const other = plain(await page.locator(`[data-key="${support}"] .path`).textContent());
      expect(other).toContain('<b>Borealis</b>');
      expect(other).toContain('Behind a link: what it leads to is deleted.');
      // Looked at again, it is told anew.
      await page.getByRole('button', { name: 'Back to all applications' }).first().click();
      await page.locator(`[data-key="${borealis.path}"]`).click();
      await opened.tell('onAppAnalysis', analysisOf(borealis, someLeftovers()));
      expect(await page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(8);
    });
  });

  it('that cannot be removed itself says why beforehand, and nothing of it is preselected', async () => {
    const system = { ...borealis, path: '/usr/share/applications/borealis.desktop' };
    await withApps(async (opened) => {
      const { page } = opened;
      await page.locator(`[data-key="${system.path}"]`).click();
      await opened.tell('onAppRemoval', 'another', { stays: '', folder: '' });
      await opened.tell('onAppRemoval', system.path, { stays: 'admin', folder: '' });
      await opened.tell('onAppAnalysis', analysisOf(system, someLeftovers()));
      expect(await page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(0);
      expect(await page.locator(`[data-key="${system.path}"]`).getAttribute('aria-selected')).toBeNull();
      expect(plain(await page.locator('.plan').textContent())).toContain('Borealis itself stays: it is installed for all users');
      expect(await page.getByText('Selected to begin with.', { exact: false }).filter({ hasNotText: 'Not selected' }).count()).toBe(0);
      // Asked for all the same, it is told first.
      await page.locator(`[data-key="${home}/Library/Caches/org.example.Borealis"] [role="gridcell"]`).first().click();
      await page.getByRole('button', { name: 'Remove what is selected…' }).click();
      const question = plain(await page.getByRole('dialog').textContent());
      expect(question).toContain('Remove what Borealis left behind?');
      expect(question).toContain('Borealis itself stays');
      const [intent] = await opened.during(() => page.getByRole('button', { name: 'Remove for good' }).click());
      expect((intent!.payload as { paths: string[] }).paths).toEqual([`${home}/Library/Caches/org.example.Borealis`]);
    }, [system]);
  });

  it('of which only the program file goes is not called uninstalled', async () => {
    const run = { ...borealis, path: `${home}/apps/thing/run` };
    await withApps(async (opened) => {
      const { page } = opened;
      await page.locator(`[data-key="${run.path}"]`).click();
      await opened.tell('onAppRemoval', run.path, { stays: '', folder: `${home}/apps/thing` });
      await opened.tell('onAppAnalysis', analysisOf(run, []));
      expect(plain(await page.locator('.plan').textContent())).toContain(`its folder ${home}/apps/thing stays`);
      await uninstall(opened);
      await opened.tell('onUninstallResult', someResult({ removed: 1, freed: 0.1 }));
      expect(await title(opened)).toBe('The program file of Borealis is removed');
      expect(plain(await page.locator('.outcome').textContent())).toContain(`Its folder stays: ${home}/apps/thing`);
    }, [run]);
  });

  it('of which only the menu entry can go says so, before and after', async () => {
    const entry = { ...borealis, path: `${home}/.local/share/applications/page.desktop` };
    await withApps(async (opened) => {
      const { page } = opened;
      await page.locator(`[data-key="${entry.path}"]`).click();
      await opened.tell('onAppRemoval', entry.path, { stays: 'entry', folder: '' });
      await opened.tell('onAppAnalysis', analysisOf(entry, []));
      expect(await page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(0);
      await page.locator(`[data-key="${entry.path}"] [role="gridcell"]`).first().click();
      await page.getByRole('button', { name: 'Remove what is selected…' }).click();
      expect(plain(await page.getByRole('dialog').textContent())).toContain('only its entry in the menu can be removed');
      await page.getByRole('button', { name: 'Remove for good' }).click();
      await opened.tell('onUninstallResult', someResult({ removed: 1, freed: 0 }));
      expect(await title(opened)).toBe('The menu entry of Borealis is removed');
    }, [entry]);
  });

  it('is uninstalled with what was chosen, after a question with the focus on Cancel', async () => {
    await withApps(async (opened) => {
      const { page } = opened;
      await openBorealis(opened);
      await page.locator('[data-key="section:certain"]').focus();
      // Takes the caches out, and one possible item in.
      await page.locator(`[data-key="${home}/Library/Caches/org.example.Borealis"] [role="gridcell"]`).first().click();
      await page.locator(`[data-key="${home}/Library/Application Support/Borealis"]`).focus();
      await page.keyboard.press('Space');
      await page.getByRole('button', { name: 'Uninstall…' }).click();
      expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).toBe('Cancel');
      expect(plain(await page.getByRole('dialog').textContent())).toContain('8 items are deleted for good. About 3.1 GB become free.');
      expect(await opened.during(() => page.keyboard.press('Enter'))).toEqual([]);
      const [intent, ...more] = await opened.during(() => uninstall(opened));
      expect(more).toEqual([]);
      expect(intent!.type).toBe('uninstall');
      const { path, paths, sizes } = intent!.payload as { path: string; paths: string[]; sizes: Record<string, number> };
      expect(path).toBe(borealis.path);
      expect(paths[0]).toBe(borealis.path);
      expect(paths).toContain(`${home}/Library/Application Support/Borealis`);
      expect(paths).not.toContain(`${home}/Library/Caches/org.example.Borealis`);
      expect(paths.some((each) => each.startsWith('/Library/'))).toBe(false);
      expect(sizes[borealis.path]).toBe(1.934);
      expect(Object.keys(sizes).sort()).toEqual([...paths].sort());
    });
  });

  it('shows how far it is, then what was freed and what could not be removed and why', async () => {
    await withApps(async (opened) => {
      const { page } = opened;
      await openBorealis(opened);
      await uninstall(opened);
      await opened.tell('onUninstallProgress', 'files', 52, 'org.example.Borealis.plist');
      expect(await page.getByRole('progressbar').getAttribute('aria-valuenow')).toBe('52');
      expect(await page.getByText('org.example.Borealis.plist').isVisible()).toBe(true);
      const after = await opened.during(() => opened.tell('onUninstallResult', someResult({ removed: 6, freed: 2.7, failures: someFailures })));
      expect(after).toEqual([{ type: 'appsList' }]);
      expect(await title(opened)).toBe('Borealis is uninstalled');
      expect(plain(await page.locator('.outcome').textContent())).toContain('2.7 GB became free 6 items deleted · 3 processes closed');
      expect(await page.getByRole('heading', { name: '3 items could not be removed' }).isVisible()).toBe(true);
      expect(await page.getByText('Only an administrator can remove it').count()).toBe(1);
      const reveal = page.getByRole('button', { name: 'Show in folder: org.example.Borealis.plist' });
      expect(await opened.during(() => reveal.click())).toEqual([
        { type: 'revealPath', payload: '/Library/LaunchDaemons/org.example.Borealis.plist' },
      ]);
      await page.getByRole('button', { name: 'Back to all applications' }).last().click();
      expect(await rowNames(opened)).not.toContain('Borealis');
    });
  });

  it('that could not be removed itself is not called uninstalled, and can be looked at again', async () => {
    const shared = { ...borealis, path: '/Applications/Borealis.app' };
    await withApps(async (opened) => {
      await openBorealis(opened, shared);
      expect(await opened.page.getByText('Installed for all users: to be moved to the trash by hand').isVisible()).toBe(true);
      await uninstall(opened);
      const failures = [{ name: 'Borealis.app', path: shared.path, reason: 'admin' }];
      await opened.tell('onUninstallResult', someResult({ failures: failures as never }));
      expect(await title(opened)).toBe('Borealis: some of it is still there');
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Look at what is left' }).click())).toEqual([
        { type: 'appAnalysis', payload: { path: shared.path } },
      ]);
    }, [shared]);
  });

  it('a second removal waits, and one that the program refuses has not begun', async () => {
    await withApps(async (opened) => {
      const { page } = opened;
      await openBorealis(opened);
      await uninstall(opened);
      await opened.tell('toast', 'An uninstall is already running', 'Wait for it to finish.');
      expect(await title(opened)).toBe('Uninstall Borealis');
      await uninstall(opened);
      await opened.tell('onUninstallProgress', 'stop', 3);
      await page.getByRole('button', { name: 'Back to all applications' }).click();
      expect(await page.getByText('Uninstalling Borealis · Closing the application').isVisible()).toBe(true);
      // What is being removed is not looked at again.
      expect(await opened.during(() => page.locator(`[data-key="${borealis.path}"]`).click())).toEqual([]);
      expect(await title(opened)).toBe('Uninstalling Borealis');
      await page.getByRole('button', { name: 'Back to all applications' }).click();
      const terra = apps.find(({ name }) => name === 'Terra')!;
      await openBorealis(opened, terra);
      expect(await page.getByText('An uninstall is already running: Borealis.').isVisible()).toBe(true);
      const button = page.getByRole('button', { name: 'Uninstall…' });
      expect(await button.getAttribute('aria-disabled')).toBe('true');
      expect(await opened.during(() => button.click({ force: true }))).toEqual([]);
    });
  });

  it('tells the end of a removal wherever one is by then', async () => {
    await withApps(async (opened) => {
      await openBorealis(opened);
      await uninstall(opened);
      await opened.go('inicio');
      await opened.tell('onUninstallResult', someResult());
      expect(plain(await opened.page.locator('.toast').textContent())).toContain('Borealis is uninstalled 8 items deleted · 4 GB');
    });
  });

  it('that cannot be looked at says why, and is tried again', async () => {
    await withApps(async (opened) => {
      await opened.page.locator(`[data-key="${borealis.path}"]`).click();
      await opened.tell('toast', "Couldn't analyze", 'The bundle is damaged.');
      expect(await opened.page.getByText('The program says: The bundle is damaged.').isVisible()).toBe(true);
      expect(await opened.page.locator('.toast').count()).toBe(0);
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Try again' }).click())).toEqual([
        { type: 'appAnalysis', payload: { path: borealis.path } },
      ]);
    });
  });

  it('is left with the focus on its row', async () => {
    await withApps(async (opened) => {
      await openBorealis(opened);
      await opened.page.getByRole('button', { name: 'Back to all applications' }).click();
      await opened.page.waitForFunction((path) => document.activeElement?.getAttribute('data-key') === path, borealis.path);
    });
  });
});
