// Duplicates that are finished without looking at each: rules, folders, search, and sharing their space.
import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const state = fullState();
const playa = state.dupGroups.find(({ name }) => name === 'playa.mp4')!;
const sharable = Object.fromEntries(
  state.dupGroups.map(({ id, paths, recommended }) => [id, {
    kept: paths[recommended],
    copies: paths.filter((_, index) => index !== recommended).map((path) => ({ path, bytes: 1_000_000_000, exact: true })),
  }]),
);

async function inDuplicates(test: (opened: OpenPage) => Promise<void>, setting: Parameters<typeof open>[1] = {}): Promise<void> {
  const opened = await open(browser, { saved: state, ...setting });
  await opened.tell('onHome', home);
  await opened.go('duplicados');
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

async function canShare({ page, tell, go }: OpenPage, groups: unknown = sharable, saved = state): Promise<void> {
  await page.evaluate((known) => ((window as unknown as Record<string, unknown>).__sharable = known), groups);
  // Asked anew when what stays has changed.
  await tell('setState', { ...saved, dupGroups: [...saved.dupGroups] }, Date.now() / 1000);
  await go('duplicados');
}

const kept = (page: OpenPage['page']) => page.locator('.row.kept').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')));
const selected = (page: OpenPage['page']) =>
  page.locator('[aria-selected="true"]').evaluateAll((rows) => rows.map((row) => row.getAttribute('data-key')).sort());

describe('which copy stays', () => {
  it('follows a rule for all groups, and by the menu for one', async () => {
    await inDuplicates(async ({ page }) => {
      await page.getByLabel('Which copy stays in each group').selectOption('shortest');
      expect(await kept(page)).toContain(`${home}/Movies/Verano/playa.mp4`);
      await page.locator(`[data-key="${home}/Movies/Verano/playa.mp4"]`).focus();
      await page.locator(`[data-key="${home}/Movies/Verano/playa.mp4"]`).dispatchEvent('contextmenu', { button: 0 });
      await page.getByRole('menuitem', { name: 'Keep the newest of this group' }).click();
      expect(await kept(page)).toContain(playa.paths[playa.recommended]);
    });
  });

  it('is chosen in the menu of a row by keyboard alone', async () => {
    await inDuplicates(async ({ page }) => {
      const wanted = `${home}/Movies/Verano/playa.mp4`;
      await page.locator(`[data-key="${wanted}"]`).focus();
      await page.keyboard.press('m');
      expect(await page.evaluate(() => document.activeElement?.textContent)).toContain('Preview');
      await page.keyboard.press('ArrowDown');
      await page.keyboard.press('Enter');
      expect(await kept(page)).toContain(wanted);
      expect(await page.evaluate(() => (document.activeElement as HTMLElement).dataset.key)).toBe(wanted);
    });
  });

  it('a reference folder keeps all its copies, and says so', async () => {
    await inDuplicates(async ({ page }) => {
      await page.getByLabel('Folder whose copies always stay').selectOption(`${home}/Downloads`);
      await page.getByRole('button', { name: 'Select all but the kept copies' }).click();
      const paths = await selected(page);
      expect(paths.length).toBeGreaterThan(0);
      expect(paths.filter((path) => path!.startsWith(`${home}/Downloads/`))).toEqual([]);
      // Of each group one copy stays, whatever is selected.
      for (const group of state.dupGroups) expect(group.paths.every((path) => paths.includes(path))).toBe(false);
    });
  });

  it('all copies in a folder are selected from a row of it, and one of each group stays', async () => {
    await inDuplicates(async ({ page }) => {
      await page.locator(`[data-key="${home}/Downloads/playa (2).mp4"]`).dispatchEvent('contextmenu', { button: 0 });
      await page.getByRole('menuitem', { name: 'Select all copies in “~/Downloads”' }).click();
      expect(await selected(page)).toEqual([
        `${home}/Downloads/Curso de fotografía completo.zip`, `${home}/Downloads/alquiler (1).pdf`, `${home}/Downloads/playa (2).mp4`,
      ]);
    });
  });
});

describe('the search', () => {
  it('finds groups by the place of a copy, and what it hides is not removed', async () => {
    await inDuplicates(async ({ page, during }) => {
      await page.getByRole('button', { name: 'Select all but the kept copies' }).click();
      await page.getByLabel('Search names and locations').fill('abuela');
      expect(await page.getByRole('rowgroup').count()).toBe(1);
      await page.locator('.summary').getByText('more selected, hidden by the search').waitFor();
      const [intent] = await during(() => page.getByRole('button', { name: 'Move to Velto Trash' }).click());
      const { paths } = intent!.payload as { paths: string[] };
      expect(paths.every((path) => playa.paths.includes(path))).toBe(true);
      await page.getByLabel('Search names and locations').fill('nothing at all');
      await page.getByRole('button', { name: 'Show all groups' }).click();
      expect(await page.getByRole('rowgroup').count()).toBe(4);
    });
  });
});

describe('sharing the space', () => {
  it('is not offered where the disk cannot', async () => {
    await inDuplicates(async ({ page }) => {
      await page.waitForFunction(() => (window as unknown as Record<string, unknown>).__foretold !== undefined);
      expect(await page.getByRole('button', { name: 'Share the space' }).count()).toBe(0);
    });
  });

  it('is asked about what is looked at alone, and not again while nothing has changed', async () => {
    const many = Array.from({ length: 60 }, (_, index) => ({
      ...playa, id: `many-${index}`, paths: playa.paths.map((path) => `${path}.${index}`),
    }));
    const saved = { ...state, dupGroups: many };
    await inDuplicates(async ({ page }) => {
      const asked = () => page.evaluate(() => {
        const told = (window as unknown as Record<string, unknown>).__foretold as { groups: { id: string }[] } | undefined;
        (window as unknown as Record<string, unknown>).__foretold = undefined;
        return told?.groups.map(({ id }) => id) ?? null;
      });
      const isAsked = () => page.waitForFunction(() => (window as unknown as Record<string, unknown>).__foretold !== undefined);
      await isAsked();
      const first = (await asked())!;
      expect(first.length).toBeLessThan(30);
      // What stays of one group is another file: that group alone is asked about.
      const other = page.locator(`[role="rowgroup"] .row:not(.kept)`).first();
      await other.focus();
      await page.keyboard.press('k');
      await isAsked();
      expect(await asked()).toHaveLength(1);
      await page.locator('.content').evaluate((list) => (list.closest('.page')!.scrollTop = list.closest('.page')!.scrollHeight, (list.scrollTop = list.scrollHeight)));
      await isAsked();
      expect((await asked())!.some((id) => first.includes(id))).toBe(false);
    }, { saved });
  });

  it('says what comes back, shows how far it is, and can be stopped', async () => {
    await inDuplicates(async (opened) => {
      const { page, during, tell } = opened;
      await canShare(opened);
      await page.getByText('can let 7 copies share the space').waitFor();
      const [intent] = await during(() => page.getByRole('button', { name: 'Share the space', exact: true }).click());
      expect(intent!.type).toBe('shareSpace');
      const { groups } = intent!.payload as { groups: { id: string; kept: string }[] };
      expect(groups).toHaveLength(4);
      expect(groups.find(({ id }) => id === playa.id)!.kept).toBe(playa.paths[playa.recommended]);
      await tell('onSharing', { done: 2, of: 7, bytes: 0 });
      await page.getByText('Sharing the space: 2 of 7 copies').waitFor();
      expect(await during(() => page.getByRole('button', { name: 'Stop', exact: true }).click())).toEqual([{ type: 'stopSharing' }]);
      await tell('onShared', {
        files: 2, bytes: 2_000_000_000, exact: true, stopped: true,
        stays: [{ path: `${home}/x`, bytes: 0, exact: true, reason: 'changed' }],
      });
      const message = page.getByRole('status').filter({ hasText: 'Every file is where it was' });
      await message.waitFor();
      expect((await message.innerText()).replaceAll('\u00a0', ' ')).toContain('2 GB came back from 2 copies');
      expect(await message.innerText()).toContain('1 has changed since the analysis.');
    });
  });

  it('what shares its space already is no waste, and its removal is not proposed', async () => {
    await inDuplicates(async (opened) => {
      const { page } = opened;
      const one = { ...sharable, [playa.id]: { ...sharable[playa.id]!, copies: sharable[playa.id]!.copies.map((copy) => ({ ...copy, bytes: 0, reason: 'one' })) } };
      await canShare(opened, one);
      await page.getByText('space shared').waitFor();
      await page.getByRole('button', { name: 'Select all but the kept copies' }).click();
      expect((await selected(page)).some((path) => playa.paths.includes(path!))).toBe(false);
    });
  });
});

describe('however it is looked at', () => {
  it.each([
    { name: 'light', context: { colorScheme: 'light' as const }, saved: state },
    { name: 'dark', context: { colorScheme: 'dark' as const }, saved: state },
    { name: 'spanish', context: {}, saved: inSpanish(state) },
    { name: 'small', context: { viewport: { width: 720, height: 480 } }, saved: state },
  ])('$name', async ({ name, context, saved }) => {
    await inDuplicates(async (opened) => {
      await canShare(opened, sharable, saved);
      await opened.page.locator('.share').waitFor();
      expect(await violations(opened.page)).toEqual([]);
      expect(await opened.page.evaluate(() => document.documentElement.scrollWidth <= innerWidth)).toBe(true);
      if (process.env.VELTO_PICTURES) await opened.page.screenshot({ path: `${process.env.VELTO_PICTURES}/sharing-${name}.png` });
    }, { context, saved });
  });
});
