import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { cleanableFacts, someCleanables, someHistory } from '../support/cleaning.ts';
import { launch, open, type OpenPage } from '../support/page.ts';
import { duplicateGroup, fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

async function withPage(test: (opened: OpenPage) => Promise<void>, saved = fullState({ history: someHistory() })): Promise<void> {
  const opened = await open(browser, { saved });
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const toastTexts = ({ page }: OpenPage) => page.locator('.toast').allTextContents();
const renderCache = `${home}/Library/Caches/org.example.Render`;

describe('cleanup', () => {
  const ready = async (opened: OpenPage) => {
    await opened.go('limpieza');
    await opened.tell('onCleanables', someCleanables());
  };
  const tick = ({ page }: OpenPage, name: string | RegExp) => page.getByRole('row', { name }).getByRole('gridcell').first().click();

  it('looks when it is shown, once, and again when asked', async () => {
    await withPage(async (opened) => {
      expect(await opened.during(() => opened.go('limpieza'))).toEqual([{ type: 'scanCleanables' }]);
      expect(await opened.page.getByRole('heading', { name: 'Looking for what can go' }).isVisible()).toBe(true);
      await opened.tell('onCleanables', someCleanables());
      expect(await opened.during(async () => {
        await opened.go('inicio');
        await opened.go('limpieza');
      })).toEqual([]);
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Look again' }).click())).toEqual([{ type: 'scanCleanables' }]);
      await opened.tell('onCleanables', someCleanables());
      // An analysis makes it as old as what it has measured itself.
      await opened.tell('onScanStarted');
      expect(await opened.during(() => opened.tell('onScanFinished'))).toEqual([{ type: 'scanCleanables' }]);
    });
  });

  it('begins with what is certain and over a month old, and says what the button will do', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const button = opened.page.getByRole('button', { name: /^Move / });
      expect((await button.innerText()).replaceAll('\u00a0', ' ').trim()).toBe('Move 4 items, 20.5 GB, to Velto Trash');
      await tick(opened, /Curso de fotografía/);
      expect((await button.innerText()).replaceAll('\u00a0', ' ').trim()).toBe('Move 5 items, 25.4 GB, to Velto Trash');
    });
  });

  it('on a disk with room offers no deleting for good, on one nearly full what the user has chosen of what is certain', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await ready(opened);
      const button = page.getByRole('button', { name: 'Delete for good…' });
      expect(await button.count()).toBe(0);
      await opened.tell('setState', fullState({ free: 4.2 }));
      expect(await page.getByText('The disk is nearly full').textContent()).toContain('4.2\u00a0GB free');
      expect(await button.getAttribute('aria-disabled'), 'what is preselected is nobody\'s choice').toBe('true');
      await page.getByRole('button', { name: 'Clear selection' }).click();
      expect(await button.getAttribute('aria-disabled')).toBe('true');
      await tick(opened, /Curso de fotografía/);
      await tick(opened, /org\.example\.Render/);
      expect(await button.getAttribute('aria-disabled'), 'a download is only possible').toBe('true');
      await tick(opened, /Curso de fotografía/);
      const { x, y } = (await button.boundingBox())!;
      expect(await opened.during(() => page.mouse.click(x + 5, y + 5))).toEqual([]);
      const dialog = page.getByRole('dialog');
      expect((await dialog.textContent())!.replaceAll('\u00a0', ' ')).toContain('Delete 1 item for good?');
      expect((await dialog.textContent())!.replaceAll('\u00a0', ' ')).toContain('cannot be put back. Its applications make it again when they need it.It frees 3.4 GB now.');
      expect(await page.evaluate(() => document.activeElement?.textContent?.trim())).toBe('Cancel');
      expect(await opened.during(() => page.keyboard.press('Escape'))).toEqual([]);
      await button.click();
      expect(await opened.during(() => dialog.getByRole('button', { name: 'Delete for good' }).click()))
        .toEqual([{ type: 'deleteNow', payload: { paths: [renderCache] } }]);
      expect(await button.getAttribute('aria-disabled')).toBe('true');
      await opened.tell('toast', "Couldn't delete now", 'Some of it is not certain any more.');
      expect((await toastTexts(opened)).at(-1)).toContain('Nothing was deleted: everything is where it was.');
      await button.click();
      await dialog.getByRole('button', { name: 'Delete for good' }).click();
      await opened.tell('toast', 'Deleted for good', '1 item; its space is free again.');
      await opened.tell('setState', fullState({ free: 7.6 }));
      expect(await page.locator(`[data-key="${renderCache}"]`).count()).toBe(0);
      expect(await page.locator('.toast').getByRole('button', { name: 'Undo' }).count()).toBe(0);
      expect(await button.count()).toBe(0);
    });
  });

  it('shows and proposes by what has changed inside, not by the date of the folder alone', async () => {
    await withPage(async (opened) => {
      await opened.go('limpieza');
      await opened.tell('onCleanableAges', { [renderCache]: 0, [`${home}/Library/Caches/com.example.music-player.ShipIt`]: 31 });
      await opened.tell('onCleanables', someCleanables());
      const row = opened.page.locator(`[data-key="${renderCache}"]`);
      expect(await row.textContent()).toContain('Changed today');
      expect(await row.getAttribute('aria-selected')).toBe('false');
      expect(await opened.page.locator('[data-key$="ShipIt"]').getAttribute('aria-selected')).toBe('true');
    });
  });

  it('says of each cache how certain it is, and leaves what is only possible unselected', async () => {
    await withPage(async (opened) => {
      await opened.go('limpieza');
      await opened.tell('onCleanableFacts', cleanableFacts({
        'org.example.Render': 'unknown', 'com.example.MailClient': 'keeps', 'com.example.music-player.ShipIt': 'running',
        'com.example.Browser': 'madeAgain', pip: 'madeAgain',
      }));
      await opened.tell('onCleanables', someCleanables());
      const { page } = opened;
      const row = (name: string) => page.locator(`[data-key="${home}/Library/Caches/${name}"]`);
      expect(await row('org.example.Render').textContent()).toContain('Possible: nothing says that it is made again');
      expect(await row('com.example.MailClient').textContent()).toContain('Possible: may hold what nothing makes again');
      expect(await row('com.example.music-player.ShipIt').textContent()).toContain('Possible: a program that uses it is running');
      expect(await row('pip').textContent()).toContain('Certain: made again');
      const kind = page.locator('[data-key="kind:caches"]');
      expect(await kind.textContent()).toContain('Certain and possible: look at each');
      expect(await kind.textContent()).not.toContain('Each application makes its own again');
      expect(await page.locator('[data-key="kind:xcode"]').textContent()).toContain('Certain: made again');
      expect(await page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(2);
      expect(await row('org.example.Render').getAttribute('aria-selected')).toBe('false');
      await tick(opened, /org\.example\.Render/);
      expect(await row('org.example.Render').getAttribute('aria-selected')).toBe('true');
    });
  });

  it('moves exactly what is selected, never a protected path, and offers it no more', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      await opened.page.locator('[data-key="kind:xcode"] [role="gridcell"]').first().click();
      await opened.page.locator('[data-key="kind:caches"] [role="gridcell"]').first().click();
      const [intent, ...more] = await opened.during(() => opened.page.getByRole('button', { name: /^Move / }).click());
      expect(more).toEqual([]);
      expect(intent!.type).toBe('cleanPaths');
      const { paths } = intent!.payload as { paths: string[] };
      expect(paths.map((path) => path.split('/').at(-1)).sort()).toEqual([
        'com.example.Browser', 'com.example.music-player.ShipIt', 'org.example.Render', 'pip',
      ]);
      expect(await opened.page.getByText('Moving 4 items to Velto Trash…').first().isVisible()).toBe(true);
      expect(await opened.during(() => opened.page.keyboard.press('Delete'))).toEqual([]);
      await opened.tell('toast', 'Removed', '6.1 GB in Velto Trash. Kept for 30 days.');
      expect(await opened.page.locator(`[data-key="${renderCache}"]`).count()).toBe(0);
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Undo' }).click())).toEqual([{ type: 'undoLast' }]);
      await opened.tell('onCleanables', someCleanables());
      expect(await opened.page.locator(`[data-key="${renderCache}"]`).getAttribute('aria-selected')).toBe('false');
    });
  });

  it('what was taken as it was proposed and came back is not proposed again', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      await opened.page.getByRole('button', { name: /^Move / }).click();
      await opened.tell('toast', 'Removed', '20.5 GB in Velto Trash. Kept for 30 days.');
      await opened.page.locator(`[data-key="${renderCache}"]`).waitFor({ state: 'detached' });
      await opened.tell('onCleanables', someCleanables());
      await opened.page.locator(`[data-key="${renderCache}"]`).waitFor();
      expect(await opened.page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(0);
    });
  });

  it('that fails leaves everything selected and says that nothing was moved', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      await opened.page.getByRole('button', { name: /^Move / }).click();
      await opened.tell('toast', "Couldn't remove", 'El archivo ya no existe.');
      expect(await toastTexts(opened)).toEqual([expect.stringContaining('Nothing was moved: everything is where it was.')]);
      expect(await opened.page.getByRole('button', { name: 'Undo' }).count()).toBe(0);
      expect(await opened.page.locator('[data-key^="/"][aria-selected="true"]').count()).toBe(4);
    });
  });

  it('shows a candidate in its folder', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      const reveal = opened.page.getByRole('button', { name: 'Show org.example.Render in its folder' });
      expect(await opened.during(() => reveal.click())).toEqual([{ type: 'revealPath', payload: renderCache }]);
    });
  });

  it('by keyboard: Space takes a whole kind, then one item out of it', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      await opened.page.locator('[data-key="kind:caches"]').focus();
      for (const key of ['Escape', 'Space', 'ArrowDown', 'Space']) await opened.page.keyboard.press(key);
      const [intent] = await opened.during(() => opened.page.keyboard.press('Delete'));
      expect((intent!.payload as { paths: string[] }).paths).toHaveLength(3);
    });
  });

  it('with nothing to offer, without an answer and without access says so', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await opened.go('limpieza');
      await opened.tell('onPermissions', { fda: false });
      await opened.tell('onCleanables', []);
      expect(await page.getByRole('heading', { name: 'Nothing to clean up' }).isVisible()).toBe(true);
      expect(await opened.during(() => page.getByRole('button', { name: 'Grant access…' }).click())).toEqual([{ type: 'requestAccess' }]);
      await page.clock.install();
      await page.getByRole('button', { name: 'Look again' }).click();
      await page.clock.runFor(16_000);
      expect(await page.getByText('Large folders take a while').isVisible()).toBe(true);
      await page.clock.runFor(170_000);
      expect(await page.getByRole('heading', { name: 'No answer has come' }).isVisible()).toBe(true);
      expect(await opened.during(() => page.getByRole('button', { name: 'Try again' }).click())).toEqual([{ type: 'scanCleanables' }]);
    });
  });

  it('labels are never shown, in no language', async () => {
    await withPage(async (opened) => {
      await ready(opened);
      expect(await opened.page.getByText('Caché de').count()).toBe(0);
      expect(await opened.page.getByText('Resultados de compilación (DerivedData)').count()).toBe(1);
    }, inSpanish(fullState()));
  });
});

describe('removing every copy of a file', () => {
  it('is refused with a sentence, wherever the copies are selected', async () => {
    const [first, second] = fullState().files.map(({ path }) => path);
    const saved = fullState({ dupGroups: [duplicateGroup('34.2', 0, first!, second!)] });
    await withPage(async (opened) => {
      await opened.go('archivos');
      await opened.page.locator('[data-key]').first().focus();
      for (const key of ['Space', 'ArrowDown', 'Space']) await opened.page.keyboard.press(key);
      expect(await opened.during(() => opened.page.keyboard.press('Delete'))).toEqual([]);
      expect(await toastTexts(opened)).toEqual([expect.stringContaining('Leave one of them out')]);
      await opened.page.keyboard.press('Space');
      expect(await opened.during(() => opened.page.keyboard.press('Delete'))).toEqual([
        { type: 'deleteFiles', payload: { paths: [first], kind: 'wind' } },
      ]);
      // The other copy is the last one as soon as the first is on its way.
      await opened.page.keyboard.press('Space');
      expect(await opened.during(() => opened.page.keyboard.press('Delete'))).toEqual([]);
    }, saved);
  });
});
