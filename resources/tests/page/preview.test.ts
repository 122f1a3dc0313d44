// What a file holds, shown over the list that it was asked from.
import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { violations } from '../support/axe.ts';
import { launch, open, painted, type OpenPage } from '../support/page.ts';
import { fullState, home, inSpanish } from '../support/states.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const state = fullState();
const playa = state.dupGroups.find(({ name }) => name === 'playa.mp4')!;
const copy = playa.paths[0]!;

async function inView(view: string, test: (opened: OpenPage) => Promise<void>, setting: Parameters<typeof open>[1] = {}): Promise<void> {
  const opened = await open(browser, { saved: state, ...setting });
  await opened.tell('onHome', home);
  await opened.tell('onCopyDates', Object.fromEntries(playa.paths.map((path, index) => [path, 1_700_000_000 + index * 86_400])));
  await opened.go(view);
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}

const row = ({ page }: OpenPage, path: string) => page.locator(`[data-key="${path}"]`);
const focused = ({ page }: OpenPage) => page.evaluate(() => document.activeElement?.getAttribute('data-key'));
const dialog = ({ page }: OpenPage) => page.locator('dialog[open]');

/** Opens it by key; what the program was asked. */
async function preview(opened: OpenPage, path: string): Promise<{ request: number; path: string }> {
  await row(opened, path).focus();
  const [intent] = await opened.during(() => opened.page.keyboard.press('p'));
  expect(intent!.type).toBe('preview');
  return intent!.payload as { request: number; path: string };
}

/** A picture of 300 by 200 in two colours, made by the engine itself. */
const picture = ({ page }: OpenPage) =>
  page.evaluate(() => {
    const canvas = Object.assign(document.createElement('canvas'), { width: 300, height: 200 });
    const pen = canvas.getContext('2d')!;
    pen.fillStyle = 'rgb(30 120 200)';
    pen.fillRect(0, 0, 300, 120);
    pen.fillStyle = 'rgb(230 200 120)';
    pen.fillRect(0, 120, 300, 80);
    return canvas.toDataURL('image/png');
  });

const facts = { bytes: 2_400_000, modified: 1_700_000_000 };

describe('the preview', () => {
  it('opens by key, shows a text as text, and gives the focus back to its row', async () => {
    await inView('duplicados', async (opened) => {
      const { page, tell, during } = opened;
      const asked = await preview(opened, copy);
      expect(asked.path).toBe(copy);
      await dialog(opened).getByText('Reading the file…').waitFor();
      await tell('onPreview', { ...asked, ...facts, kind: 'text', text: '<b>uno</b>\n<script>dos</script>', whole: false });
      expect(await page.locator('dialog pre').innerText()).toBe('<b>uno</b>\n<script>dos</script>');
      const shown = (await dialog(opened).innerText()).replaceAll('\u00a0', ' ');
      expect(shown).toContain('2.4 MB · changed on November 14, 2023 · only the beginning is shown');
      for (const path of playa.paths.slice(0, 4)) expect(await dialog(opened).locator(`li [title*="${path.split('/').at(-1)}"]`).count()).toBeGreaterThan(0);
      expect(await violations(page)).toEqual([]);
      const [ended] = await during(() => page.keyboard.press('Escape'));
      expect(ended!.type).toBe('preview');
      expect((ended!.payload as { path?: string }).path).toBeUndefined();
      expect(await dialog(opened).count()).toBe(0);
      await painted(page);
      expect(await focused(opened)).toBe(copy);
      // Nothing was selected or removed on the way.
      expect(await page.locator('[aria-selected="true"]').count()).toBe(0);
    });
  });

  it('draws a picture, and says its dimensions', async () => {
    await inView('duplicados', async (opened) => {
      const { page, tell } = opened;
      const asked = await preview(opened, copy);
      await tell('onPreview', { ...asked, ...facts, kind: 'picture', source: await picture(opened), width: 300, height: 200 });
      const canvas = page.locator('canvas[data-drawn]');
      await canvas.waitFor();
      expect(await canvas.evaluate((drawn: HTMLCanvasElement) => [...drawn.getContext('2d')!.getImageData(drawn.width / 2, 10, 1, 1).data])).toEqual([30, 120, 200, 255]);
      await dialog(opened).getByText('300 × 200 pixels').waitFor();
      expect(await canvas.getAttribute('aria-label')).toBe('Preview of “playa.mp4”');
    });
  });

  it('says that a picture which cannot be decoded is damaged, and takes no other source', async () => {
    await inView('duplicados', async (opened) => {
      const { tell } = opened;
      const asked = await preview(opened, copy);
      await tell('onPreview', { ...asked, ...facts, kind: 'picture', source: 'data:image/png;base64,AAAA', width: 3, height: 2 });
      await dialog(opened).getByText('the file seems to be damaged').waitFor();
      for (const source of ['https://example.org/a.png', 'data:image/svg+xml;base64,AAAA', 'data:image/png;base64,AAAA" onload="x']) {
        await tell('onPreview', { ...asked, ...facts, kind: 'picture', source });
        await dialog(opened).getByText('The file could not be read').waitFor();
      }
    });
  });

  it.each([
    ['gone', 'not there any more'], ['refused', 'behind a link'], ['closed', 'no permission'], ['inCloud', 'in the cloud only'],
    ['tooLong', 'too large for a preview'], ['tooLarge', 'too many pixels'], ['noKind', 'this kind of file'], ['anything', 'could not be read'],
  ])('says why there is none: %s', async (reason, words) => {
    await inView('duplicados', async (opened) => {
      const asked = await preview(opened, copy);
      await opened.tell('onPreview', { ...asked, bytes: 0, modified: 0, kind: 'none', reason });
      await dialog(opened).getByText(words).waitFor();
    });
  });

  it('goes on to the next row by key, and an answer to an earlier question is not shown', async () => {
    await inView('duplicados', async (opened) => {
      const { page, tell, during } = opened;
      const first = await preview(opened, copy);
      const [next] = await during(() => page.keyboard.press('ArrowDown'));
      const second = next!.payload as { request: number; path: string };
      expect(second.path).toBe(playa.paths[1]);
      await tell('onPreview', { ...first, ...facts, kind: 'text', text: 'old', whole: true });
      await dialog(opened).getByText('Reading the file…').waitFor();
      await tell('onPreview', { ...second, ...facts, kind: 'text', text: 'new', whole: true });
      expect(await page.locator('dialog pre').innerText()).toBe('new');
      await page.keyboard.press('p');
      expect(await dialog(opened).count()).toBe(0);
      await painted(page);
      expect(await focused(opened)).toBe(playa.paths[1]);
    });
  });

  it('is in the menu of a row, and of a large file', async () => {
    for (const [view, path] of [['duplicados', copy], ['archivos', state.files[0]!.path]] as const) {
      await inView(view, async (opened) => {
        const { page, during, tell } = opened;
        await row(opened, path).dispatchEvent('contextmenu', { button: 0 });
        const [intent] = await during(() => page.getByRole('menuitem', { name: 'Preview' }).click());
        expect(intent).toMatchObject({ type: 'preview', payload: { path } });
        await tell('onPreview', { ...(intent!.payload as object), ...facts, kind: 'none', reason: 'noKind' });
        await dialog(opened).getByRole('button', { name: 'Close' }).click();
        await painted(page);
        expect(await focused(opened)).toBe(path);
      });
    }
  });
});

describe('however it is looked at', () => {
  it.each([
    { name: 'light', context: { colorScheme: 'light' as const }, saved: state },
    { name: 'dark', context: { colorScheme: 'dark' as const }, saved: state },
    { name: 'spanish', context: {}, saved: inSpanish(state) },
    { name: 'small', context: { viewport: { width: 720, height: 480 } }, saved: state },
  ])('$name', async ({ name, context, saved }) => {
    await inView('duplicados', async (opened) => {
      const { page, tell } = opened;
      const asked = await preview(opened, copy);
      await tell('onPreview', { ...asked, ...facts, kind: 'picture', source: await picture(opened), width: 300, height: 200 });
      await page.locator('canvas[data-drawn]').waitFor();
      expect(await violations(page)).toEqual([]);
      expect(await dialog(opened).evaluate((box) => box.scrollWidth <= box.clientWidth && box.getBoundingClientRect().bottom <= innerHeight)).toBe(true);
      if (process.env.VELTO_PICTURES) await page.screenshot({ path: `${process.env.VELTO_PICTURES}/preview-${name}.png` });
    }, { context, saved });
  });
});
