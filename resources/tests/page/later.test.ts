import { copyFile, cp, mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { builtPage, launch, open } from '../support/page.ts';
import { fullState } from '../support/states.ts';

let browser: Browser;
let folder: string;

beforeAll(async () => {
  browser = await launch();
  folder = await mkdtemp(join(tmpdir(), 'velto-page-'));
});
afterAll(async () => {
  await browser.close();
  await rm(folder, { recursive: true });
});

const heading = (opened: Awaited<ReturnType<typeof open>>, name: string) =>
  opened.page.getByRole('heading', { level: 1, name });

describe('the views of the second script', () => {
  it('a view asked for before anything is painted opens, and takes the focus', async () => {
    const opened = await open(browser, {
      saved: fullState(),
      before: () =>
        document.addEventListener('DOMContentLoaded', () =>
          (window as unknown as { go(name: string): void }).go('archivos'),
        ),
    });
    await opened.page.getByRole('grid').waitFor();
    await heading(opened, 'Large files').and(opened.page.locator(':focus')).waitFor();
    await opened.close();
    expect(opened.complaints).toEqual([]);
  });

  it('what the program tells while the saved analysis is painted is not lost', async () => {
    const opened = await open(browser, {
      saved: fullState(),
      before: () =>
        document.addEventListener('DOMContentLoaded', () => {
          const { velto } = window as unknown as { velto: Record<string, (...values: unknown[]) => void> };
          velto.toast?.('Told', 'very early');
          velto.onScanStarted?.();
        }),
    });
    await opened.page.getByText('very early').waitFor();
    await opened.page.getByText('Analyzing…').first().waitFor();
    await opened.close();
  });

  it.each(['later.js', 'later.css'])('a %s that cannot be read is said, and can be tried again', async (missing) => {
    await cp(builtPage(), folder, { recursive: true });
    await rm(join(folder, missing));
    const opened = await open(browser, { saved: fullState(), folder });
    expect(await heading(opened, 'Overview').isVisible()).toBe(true);

    await opened.go('duplicados');
    await heading(opened, 'Duplicates').and(opened.page.locator(':focus')).waitFor();
    await opened.page.getByText('Nothing was changed and nothing was lost.').waitFor();
    await opened.page.getByRole('button', { name: 'Try again' }).click();
    await heading(opened, 'Duplicates').and(opened.page.locator(':focus')).waitFor();
    await opened.page.getByText('This section could not be opened').waitFor();

    await copyFile(join(builtPage(), missing), join(folder, missing));
    await opened.page.getByRole('button', { name: 'Try again' }).click();
    await opened.page.getByRole('grid').waitFor();
    await heading(opened, 'Duplicates').and(opened.page.locator(':focus')).waitFor();
    await opened.close();
    for (const complaint of opened.complaints) expect(complaint).toMatch(/later|ERR_FILE_NOT_FOUND/);
  });

  it('a later.js that ends early is said, and does not open for ever', async () => {
    await cp(builtPage(), folder, { recursive: true });
    const script = join(folder, 'later.js');
    const ends = 'throw new RangeError("later.js ends here");const ';
    const whole = await readFile(script, 'utf8');
    await writeFile(script, whole.replace(/const (?=\w+=require\()/, ends));
    const opened = await open(browser, { saved: fullState(), folder });
    await opened.go('duplicados');
    await opened.page.getByText('This section could not be opened').waitFor();
    await opened.close();
    for (const complaint of opened.complaints) expect(complaint).toMatch(/later|second script/);
  });
});
