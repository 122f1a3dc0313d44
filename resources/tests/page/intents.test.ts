import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, open, type OpenPage, type Setting } from '../support/page.ts';
import { fullState, home, withoutAccess } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

/** Opens a view by its name in the rail and runs the test with it. */
async function inView(view: string, test: (opened: OpenPage) => Promise<void>, setting: Setting = {}): Promise<void> {
  const opened = await open(browser, { saved: fullState(), ...setting });
  await opened.page.getByRole('navigation').getByRole('button', { name: view, exact: true }).click();
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

describe('overview', () => {
  it('starts an analysis, and not a second one while it runs', async () => {
    await inView('Overview', async ({ page, during, tell }) => {
      const start = page.getByRole('button', { name: 'Analyze disk' });
      expect(await during(() => start.click())).toEqual([{ type: 'scan' }]);
      await tell('onScanStarted');
      const running = page.getByRole('button', { name: 'Analyzing…' });
      expect(await during(() => running.click({ force: true }))).toEqual([]);
      await tell('onScanFinished');
      expect(await start.isVisible()).toBe(true);
    });
  });

  it('offers access, asks for it, and goes on without it', async () => {
    await inView(
      'Overview',
      async ({ page, during, tell }) => {
        await tell('onPermissions', { fda: false });
        expect(await page.getByText('iPhone backups').isVisible()).toBe(true);
        const press = (name: string) => during(() => page.getByRole('button', { name }).click());
        expect(await press('Grant access…')).toEqual([{ type: 'requestAccess' }]);
        expect(await press('Already granted')).toEqual([{ type: 'checkAccess' }]);
        expect(await press('Analyze anyway')).toEqual([{ type: 'scan' }]);
        await tell('onPermissions', { fda: true });
        expect(await page.getByText('iPhone backups').count()).toBe(0);
      },
      { saved: withoutAccess() },
    );
  });

  it('a file of the map is found in the list, focused and not selected', async () => {
    await inView('Overview', async ({ page, during }) => {
      const intents = await during(() => page.getByRole('button', { name: /^Disk\.raw, 34\.2/ }).click());
      expect(intents).toEqual([]);
      expect(await page.getByRole('heading', { level: 1 }).textContent()).toBe('Large files');
      await page.waitForFunction(() => document.activeElement?.getAttribute('data-key')?.endsWith('Disk.raw'));
      expect(await page.locator('[aria-selected="true"]').count()).toBe(0);
    });
  });

  it('a file of the map is found although the list was filtered', async () => {
    await inView('Large files', async ({ page }) => {
      await page.getByRole('textbox').fill('boda');
      await page.getByRole('navigation').getByRole('button', { name: 'Overview' }).click();
      await page.getByRole('button', { name: /^Disk\.raw/ }).click();
      await page.waitForFunction(() => document.activeElement?.getAttribute('data-key')?.endsWith('Disk.raw'));
      expect(await page.getByRole('textbox').inputValue()).toBe('');
    });
  });
});

describe('large files', () => {
  const wedding = `${home}/Movies/Boda Clara y Hugo.mp4`;

  it('reveals and excludes one file', async () => {
    await inView('Large files', async ({ page, during }) => {
      const press = (name: string) => during(() => page.getByRole('button', { name }).click());
      expect(await press('Show Boda Clara y Hugo.mp4 in its folder')).toEqual([{ type: 'revealPath', payload: wedding }]);
      expect(await press('Exclude Boda Clara y Hugo.mp4 from the analysis')).toEqual([{ type: 'addExclusion', payload: wedding }]);
    });
  });

  it('moves exactly what is selected', async () => {
    await inView(
      'Large files',
      async ({ page, during }) => {
        const tick = (name: string) => page.getByRole('row', { name }).getByRole('gridcell').first().click();
        await tick('Boda Clara y Hugo.mp4');
        await page.mouse.wheel(0, 2000);
        await tick('frames.cache');
        const intents = await during(() => page.getByRole('button', { name: 'Move to Velto Trash' }).click());
        expect(intents).toEqual([
          { type: 'deleteFiles', payload: { paths: [wedding, `${home}/Library/Caches/org.example.Render/frames.cache`], kind: 'wind' } },
        ]);
      },
    );
  });

  it('never sends a protected file, not even with everything selected', async () => {
    await inView(
      'Large files',
      async ({ page, during }) => {
        await page.getByText('Boda Clara y Hugo.mp4').click();
        await page.keyboard.press('Control+a');
        const [intent] = await during(() => page.keyboard.press('Delete'));
        const { paths } = intent!.payload as { paths: string[] };
        expect(paths).toHaveLength(18);
        expect(paths.filter((path) => path.includes('Photos Library') || path.includes('MobileSync'))).toEqual([]);
      },
    );
  });

  it('a selection that a search hides is named and kept, and stays where it is when the rest is moved', async () => {
    await inView('Large files', async ({ page, during }) => {
      await page.getByText('Boda Clara y Hugo.mp4').click();
      await page.keyboard.press('Control+a');
      await page.getByRole('textbox').fill('boda');
      const summary = page.locator('.summary');
      expect(await summary.textContent()).toMatch(/1 selected .*17 more selected, hidden by the search/);
      expect(await during(() => page.getByRole('button', { name: 'Move to Velto Trash' }).click())).toEqual([
        { type: 'deleteFiles', payload: { paths: [wedding], kind: 'wind' } },
      ]);
      await page.getByRole('button', { name: 'Clear search' }).click();
      await page.getByText('18 selected').first().waitFor();
      await page.getByRole('combobox', { name: 'Kind' }).selectOption({ label: 'Installer' });
      expect(await summary.textContent()).toContain('hidden by the filter');
      await page.getByRole('textbox').fill('nothing like it');
      await page.getByRole('button', { name: 'Show all files' }).click();
      await page.getByText('18 selected').first().waitFor();
    });
  });

  it('what an undo brings back comes without its old selection', async () => {
    await inView('Large files', async ({ page, tell }) => {
      await page.getByRole('row', { name: 'Boda Clara y Hugo.mp4' }).getByRole('gridcell').first().click();
      await page.mouse.wheel(0, 2000);
      await page.getByRole('row', { name: 'frames.cache' }).getByRole('gridcell').first().click();
      const whole = fullState();
      await tell('setState', { ...whole, files: whole.files.filter(({ path }) => path !== wedding) });
      expect(await page.getByText('1 selected').first().isVisible()).toBe(true);
      await tell('setState', whole);
      await page.mouse.wheel(0, -2000);
      await page.getByText('Boda Clara y Hugo.mp4').waitFor();
      expect(await page.locator('[aria-selected="true"]').count()).toBe(1);
      expect(await page.getByText('1 selected').first().isVisible()).toBe(true);
    });
  });

  it('moves to the cloud where there is one, after what it does to the space is said, and back', async () => {
    await inView('Large files', async ({ page, during, tell }) => {
      const tick = () => page.getByRole('row', { name: 'Boda Clara y Hugo.mp4' }).getByRole('gridcell').first().click();
      await tick();
      const toCloud = page.getByRole('button', { name: 'Move to iCloud Drive…' });
      expect(await toCloud.count()).toBe(0);
      await tell('onCloudDrive', true);
      expect(await during(() => toCloud.click())).toEqual([]);
      const dialog = page.getByRole('dialog');
      expect(await dialog.textContent()).toContain('On this disk nothing becomes free yet.');
      expect(await during(() => dialog.getByRole('button', { name: 'Move to iCloud Drive' }).click())).toEqual([
        { type: 'moveCloud', payload: { paths: [wedding], direction: 'to' } },
      ]);
      expect(await during(() => page.keyboard.press('Delete')), 'it is under way').toEqual([]);
      await tell('onCloudMove', { moved: [wedding], failed: [], direction: 'to' });
      const back = page.locator('.toast').getByRole('button', { name: 'Undo' });
      expect(await during(() => back.click())).toEqual([{ type: 'moveCloud', payload: { paths: [wedding], direction: 'from' } }]);
      await tell('onCloudMove', { moved: [], failed: [wedding], direction: 'from' });
      expect(await page.locator('.toast').last().textContent()).toContain('Not moved: “Boda Clara y Hugo.mp4”.');
    });
  });

  it('filters and sorts', async () => {
    await inView('Large files', async ({ page }) => {
      const names = () => page.locator('[data-key]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')!.split('/').at(-1)));
      await page.getByRole('combobox', { name: 'Kind' }).selectOption({ label: 'Archive' });
      await page.getByRole('combobox', { name: 'Last used' }).selectOption({ label: 'Over a year ago' });
      expect(await names()).toEqual(['dataset-traffic-2024.tar.gz', 'usuarios-y-documentos.zip', 'Curso de fotografía completo.zip']);
      await page.getByRole('columnheader', { name: 'Name' }).getByRole('button').click();
      expect((await names())[0]).toBe('Curso de fotografía completo.zip');
      expect(await page.getByRole('columnheader', { name: 'Name' }).getAttribute('aria-sort')).toBe('ascending');
      await page.getByRole('textbox').fill('nothing like it');
      await page.getByRole('button', { name: 'Show all files' }).click();
      await page.locator('[role="grid"][aria-rowcount="21"]').waitFor();
      await page.getByRole('combobox', { name: 'Smallest size' }).selectOption({ label: '20 GB and more' });
      expect(await names()).toHaveLength(2);
    });
  });

  it('are those of a category when the overview asks for them, until its chip is pressed', async () => {
    await inView('Large files', async ({ page, go }) => {
      await go('inicio');
      await page.getByRole('button', { name: 'See its files: Downloads' }).click();
      await page.locator('[role="grid"][aria-rowcount="5"]').waitFor();
      await page.getByRole('button', { name: /^Category: Downloads/ }).click();
      await page.locator('[role="grid"][aria-rowcount="21"]').waitFor();
    });
  });

  it('a row has a menu, by the right button and by the key, and a tick for all of them', async () => {
    await inView('Large files', async ({ page, during }) => {
      const row = page.getByRole('row', { name: 'Boda Clara y Hugo.mp4' });
      await row.click({ button: 'right' });
      const menu = page.getByRole('menu');
      expect(await menu.getByRole('menuitem').allInnerTexts()).toEqual([
        'Preview', 'Show in folder', 'Open its folder in Folders', 'Copy location', 'Exclude from the analysis', 'Move to Velto Trash',
      ]);
      await page.keyboard.press('End');
      await page.keyboard.press('Escape');
      expect(await menu.count()).toBe(0);
      expect(await row.evaluate((element) => element === document.activeElement)).toBe(true);
      await row.dispatchEvent('contextmenu', { button: 0 });
      await page.keyboard.press('ArrowDown');
      expect(await during(() => page.keyboard.press('Enter'))).toEqual([{ type: 'revealPath', payload: wedding }]);
      await page.getByText('Opening its folder…').waitFor();
      const height = () => page.locator('[data-region="actions"]').evaluate((bar) => bar.getBoundingClientRect().height);
      const before = await height();
      await page.getByRole('checkbox', { name: 'Select all files shown' }).click();
      await page.getByText('18 selected').first().waitFor();
      expect(await height()).toBe(before);
      // A name that is shown in two pieces is one text to a screen reader.
      expect(await page.getByRole('gridcell', { name: 'Islandia - montaje final (4K, HDR, 60 fps).mov', exact: true }).count()).toBe(1);
      await page.getByRole('checkbox', { name: 'Select all files shown' }).click();
      await page.getByText('Nothing selected').first().waitFor();
    });
  });
});

describe('duplicates', () => {
  it('selects every copy but the kept ones, and follows a change of mind', async () => {
    await inView(
      'Duplicates',
      async ({ page, during }) => {
        await page.getByRole('button', { name: 'Select all but the kept copies' }).click();
        await page.getByRole('button', { name: `Keep this one: ${home}/Movies/Verano/playa.mp4` }).click();
        const [intent] = await during(() => page.getByRole('button', { name: 'Move to Velto Trash' }).click());
        const { paths, kind } = intent!.payload as { paths: string[]; kind: string };
        expect(kind).toBe('wind');
        expect(paths.sort()).toEqual([
          `${home}/Desktop/maqueta.wav`,
          `${home}/Desktop/para enviar a la abuela/playa.mp4`,
          `${home}/Downloads/Curso de fotografía completo.zip`,
          `${home}/Downloads/alquiler (1).pdf`,
          `${home}/Downloads/playa (2).mp4`,
        ]);
      },
    );
  });

  it('clicking the copy that stays selects nothing', async () => {
    await inView('Duplicates', async ({ page }) => {
      await page.getByRole('img', { name: 'This is the copy that stays' }).first().click();
      expect(await page.locator('[aria-selected="true"]').count()).toBe(0);
      expect(await page.getByRole('status').filter({ hasText: 'Keep another one' }).count()).toBe(1);
    });
  });

  it('are in order of what they waste', async () => {
    await inView('Duplicates', async ({ page }) => {
      const groups = await page.getByRole('rowgroup').evaluateAll((found) => found.map((group) => group.getAttribute('aria-label')));
      expect(groups.map((label) => label!.split(':')[0])).toEqual([
        'playa.mp4', 'Curso de fotografía completo.zip', 'maqueta.wav', 'alquiler.pdf',
      ]);
    });
  });
});

describe('settings', () => {
  it('sends only what changed', async () => {
    await inView('Settings', async ({ page, during }) => {
      const click = (role: 'switch' | 'radio', name: string) => during(() => page.getByRole(role, { name, exact: true }).click());
      expect(await click('switch', 'Run maintenance automatically')).toEqual([{ type: 'settings', payload: { enabled: true } }]);
      expect(await click('switch', 'Run maintenance automatically')).toEqual([{ type: 'settings', payload: { enabled: false } }]);
      expect(await click('radio', 'Every week')).toEqual([{ type: 'settings', payload: { frequency: 'weekends' } }]);
      expect(await click('switch', 'Duplicates')).toEqual([{ type: 'settings', payload: { rules: { duplicates: true } } }]);
      expect(await click('switch', 'Application caches')).toEqual([{ type: 'settings', payload: { rules: { caches: false } } }]);
      const retention = page.getByRole('combobox', { name: 'Keep removed items for' });
      expect(await during(() => retention.selectOption({ label: '90 days' }))).toEqual([{ type: 'settings', payload: { retention: 90 } }]);
      expect(await click('radio', 'Español')).toEqual([{ type: 'settings', payload: { language: 'es' } }]);
      expect(await page.getByRole('heading', { level: 1 }).textContent()).toBe('Ajustes');
      expect(await page.getByRole('radio', { name: 'Como el sistema' }).isChecked()).toBe(true);
      const themes: [string, object][] = [
        ['Claro', { type: 'setTheme', payload: { theme: 'light' } }], // the system's own: chosen all the same
        ['Oscuro', { type: 'setTheme', payload: { theme: 'dark' } }],
        ['Como el sistema', { type: 'followSystemTheme' }],
      ];
      for (const [name, intent] of themes) {
        expect(await during(() => page.getByRole('radio', { name }).click())).toEqual([intent]);
      }
      expect(await page.locator('html').getAttribute('data-theme')).toBeNull();
      expect(await page.evaluate(() => localStorage.getItem('velto.theme'))).toBeNull();
    });
  });

  it('shows what the program answers, not what was clicked', async () => {
    await inView('Settings', async ({ page, tell }) => {
      await page.getByRole('switch', { name: 'Run maintenance automatically' }).click();
      expect(await page.getByRole('switch', { name: 'Run maintenance automatically' }).getAttribute('aria-checked')).toBe('true');
      await tell('setState', fullState(), 1_800_000_000);
      expect(await page.getByRole('switch', { name: 'Run maintenance automatically' }).getAttribute('aria-checked')).toBe('false');
    });
  });

  it('asks for the exclusions and takes one back', async () => {
    const opened = await open(browser, { saved: fullState() });
    const asked = await opened.during(() => opened.page.getByRole('button', { name: 'Settings' }).click());
    expect(asked).toEqual([
      { type: 'maintenanceStatus' }, { type: 'foretellCaches' }, { type: 'exclusions' }, { type: 'appUses' }, { type: 'about' },
    ]);
    await opened.tell('onExclusions', ['/a/Music', '/b']);
    const back = await opened.during(() => opened.page.getByRole('button', { name: 'Include /a/Music again' }).click());
    expect(back).toEqual([{ type: 'removeExclusion', payload: '/a/Music' }]);
    await opened.tell('onExclusions', []);
    expect(await opened.page.getByText('Nothing is excluded.').isVisible()).toBe(true);
    await opened.close();
  });

  it('opens the system settings and resets the access', async () => {
    await inView('Settings', async ({ page, during, tell }) => {
      await tell('onPermissions', { fda: false });
      expect(await during(() => page.getByRole('button', { name: 'Open system settings' }).click())).toEqual([{ type: 'openFDASettings' }]);
      expect(await during(() => page.getByRole('button', { name: 'Reset access' }).click())).toEqual([{ type: 'resetAccess' }]);
    });
  });

  it('resets only after two questions, each with the focus on Cancel', async () => {
    await inView('Settings', async ({ page, during, tell }) => {
      await tell('onTrashChanged', 12.5);
      const focused = () => page.evaluate(() => document.activeElement?.textContent?.trim());
      const start = page.getByRole('button', { name: 'Reset Velto…' });
      await start.click();
      expect(await page.getByRole('dialog').textContent()).toContain('12.5');
      expect(await focused()).toBe('Cancel');
      expect(await during(() => page.keyboard.press('Enter'))).toEqual([]);
      expect(await page.getByRole('dialog').count()).toBe(0);

      await start.click();
      expect(await during(() => page.getByRole('button', { name: 'Continue…' }).click())).toEqual([]);
      expect(await focused()).toBe('Cancel');
      expect(await during(() => page.keyboard.press('Escape'))).toEqual([]);
      expect(await page.getByRole('dialog').count()).toBe(0);

      await start.click();
      await page.getByRole('button', { name: 'Continue…' }).click();
      expect(await during(() => page.getByRole('button', { name: 'Reset Velto', exact: true }).click())).toEqual([{ type: 'resetVelto' }]);
    });
  });
});

describe('the menu of the program', () => {
  it('shows every view by its name, and passes over an unknown one', async () => {
    const opened = await open(browser, { saved: fullState() });
    for (const [view, title] of [['apps', 'Applications'], ['sistema', 'System'], ['ajustes', 'Settings'], ['inicio', 'Overview']] as const) {
      await opened.go(view);
      expect(await opened.page.getByRole('heading', { level: 1 }).textContent()).toBe(title);
      await opened.go('no such view');
      expect(await opened.page.getByRole('heading', { level: 1 }).textContent()).toBe(title);
    }
    await opened.close();
  });
});
