import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { cleanable, someCleanables, someFurther } from '../support/cleaning.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

async function withPage(test: (opened: OpenPage) => Promise<void>, saved = fullState()): Promise<void> {
  const opened = await open(browser, { saved });
  await opened.go('limpieza');
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const plain = (text: string | null) => text!.replaceAll('\u00a0', ' ').trim();
const card = ({ page }: OpenPage, name: string) => page.getByRole('rowgroup', { name });
const tick = ({ page }: OpenPage, name: string | RegExp) => page.getByRole('row', { name }).getByRole('gridcell').first().click();

describe('what the further rules find', () => {
  it('is looked for once the proposals are there, and each time with them', async () => {
    await withPage(async (opened) => {
      expect(await opened.during(() => opened.tell('onCleanables', someCleanables()))).toEqual([{ type: 'scanFurther' }]);
      await opened.tell('onFurtherCleanables', someFurther());
      await opened.page.getByRole('button', { name: 'Look again' }).click();
      expect(await opened.during(() => opened.tell('onCleanables', someCleanables()))).toEqual([{ type: 'scanFurther' }]);
    });
  });

  it('shows each rule as it is: what makes it again, where, and how', async () => {
    await withPage(async (opened) => {
      await opened.tell('onCleanables', someCleanables());
      await opened.tell('onFurtherCleanables', someFurther());
      const cargo = plain(await card(opened, 'Cargo registry').textContent());
      expect(cargo).toContain('Cargo fetches the dependencies again at the next build.');
      expect(cargo).toContain('~/.cargo/registry/cache');
      expect(cargo).toContain('cargo fetch');
      expect(cargo).toContain('Certain: made again');
      const projects = plain(await card(opened, 'Dependencies of Node projects').textContent());
      expect(projects).toContain('node_modules beside package.json in a project that nobody has touched for 90 days');
      expect(projects).toContain('Possible: look first');
      expect(projects).toContain('tienda/node_modules');
      expect(projects).toContain('480 MB of it stays: those files have another name elsewhere');
      expect(plain(await card(opened, 'npm cache').textContent())).toContain('Possible: a program that uses it is running');
    });
  });

  it('selects nothing beforehand, however certain and old', async () => {
    await withPage(async (opened) => {
      await opened.tell('onCleanables', []);
      await opened.tell('onFurtherCleanables', someFurther());
      expect(await opened.page.getByRole('row', { selected: true }).count()).toBe(0);
      expect(await opened.page.getByRole('button', { name: /^Move \d/ }).count()).toBe(0);
    });
  });

  it('goes to Velto Trash with what cleaning proposes, and leaves the list', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await opened.tell('onCleanables', []);
      await opened.tell('onFurtherCleanables', someFurther());
      await tick(opened, /^Cargo registry/);
      await tick(opened, /tienda/);
      const paths = [`${home}/.cargo/registry/src`, `${home}/.cargo/registry/cache`, `${home}/Proyectos/tienda/node_modules`];
      expect(await opened.during(() => page.getByRole('button', { name: /^Move 3 items/ }).click())).toEqual([{ type: 'cleanPaths', payload: { paths } }]);
      await opened.tell('toast', 'Removed', '3.7 GB in Velto Trash. Kept for 30 days.');
      await page.getByRole('rowgroup', { name: 'Cargo registry' }).waitFor({ state: 'detached' });
      expect(await page.getByRole('row', { name: /tienda/ }).count()).toBe(0);
      expect(await page.getByRole('row', { name: /asociación/ }).count()).toBe(1);
    });
  });

  it('lists nothing that is on the list of proposals, or lies in it', async () => {
    await withPage(async (opened) => {
      await opened.tell('onCleanables', [cleanable('caches', '.cargo', 3, 3)]);
      await opened.tell('onFurtherCleanables', someFurther());
      expect(await card(opened, 'Cargo registry').count()).toBe(0);
      expect(await card(opened, 'npm cache').count()).toBe(1);
    });
  });

  it('is never deleted past the trash, on a full disk either', async () => {
    await withPage(async (opened) => {
      await opened.tell('onCleanables', someCleanables());
      await opened.tell('onFurtherCleanables', someFurther());
      await opened.page.getByRole('button', { name: 'Clear selection' }).click();
      const button = opened.page.getByRole('button', { name: 'Delete for good…' });
      await tick(opened, /org\.example\.Render/);
      expect(await button.getAttribute('aria-disabled')).toBe(null);
      await tick(opened, /registry\/src/);
      expect(await button.getAttribute('aria-disabled')).toBe('true');
    }, fullState({ free: 4.2 }));
  });

  it('explains what other programs take away, with a command to copy and nothing to select', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await opened.tell('onCleanables', []);
      await opened.tell('onFurtherCleanables', someFurther(true));
      const region = page.getByRole('region', { name: 'What other programs take away' });
      expect(plain(await region.textContent())).toContain('Asking…');
      await opened.tell('onFurtherCleanables', someFurther());
      const text = plain(await region.textContent());
      expect(text).toContain('49.3 GB');
      expect(text).toContain('docker volume prune --all');
      expect(text).toContain('Backups of iPhone and iPad');
      expect(await region.getByRole('row').count()).toBe(0);
      expect(await opened.during(() => region.getByRole('button', { name: 'Copy “docker image prune --all”' }).click())).toEqual([]);
      await page.getByText('Command copied').first().waitFor();
    });
  });

  it('works by keyboard alone', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await opened.tell('onCleanables', []);
      await opened.tell('onFurtherCleanables', someFurther());
      await page.getByRole('row', { name: /^Cargo registry/ }).focus();
      await page.keyboard.press('Space');
      expect(await page.getByRole('button', { name: /^Move 2 items/ }).count()).toBe(1);
      await page.keyboard.press('ArrowDown');
      await page.keyboard.press('Space');
      expect(await page.getByRole('button', { name: /^Move 1 item/ }).count()).toBe(1);
      await page.keyboard.press('Escape');
      expect(await page.getByRole('button', { name: /^Move \d/ }).count()).toBe(0);
    });
  });

  it('speaks Spanish', async () => {
    await withPage(async (opened) => {
      await opened.tell('onCleanables', []);
      await opened.tell('onFurtherCleanables', someFurther());
      const text = plain(await opened.page.locator('main').textContent());
      expect(text).toContain('Dependencias de proyectos de Node');
      expect(text).toContain('node_modules junto a package.json en un proyecto que nadie ha tocado desde hace 90 días');
      expect(text).toContain('Lo que quitan otros programas');
      expect(text).toContain('Volúmenes');
    }, inSpanish(fullState()));
  });

  it('takes anything that is no answer for nothing', async () => {
    await withPage(async (opened) => {
      await opened.tell('onCleanables', []);
      for (const value of [null, 3, [], {}, { groups: 3 }, { groups: [null, {}, { rule: { id: 3 } }] }]) await opened.tell('onFurtherCleanables', value);
      // A way that this page does not know is explained, and nothing of it can be selected.
      await opened.tell('onFurtherCleanables', { groups: [{ rule: { id: 'x', way: 'deleted' }, items: [{ path: '/a', bytes: 1 }] }] });
      expect(await opened.page.getByRole('row').count()).toBe(0);
    });
  });

  for (const theme of ['light', 'dark'] as const) {
    it(`has no fault for a screen reader, ${theme}`, async () => {
      await withPage(async (opened) => {
        await opened.page.emulateMedia({ colorScheme: theme });
        await opened.tell('onCleanables', someCleanables());
        await opened.tell('onFurtherCleanables', someFurther());
        expect(await violations(opened.page)).toEqual([]);
      });
    });
  }
});
