/** The view of the live system, and what can be read off it. */
import type { Browser } from 'playwright-core';
import { expect } from 'vitest';
import { open, type OpenPage } from './page.ts';
import { fullState } from './states.ts';

/** As it is read: a space that does not break is a space. */
export const plain = (text: string | null) => (text ?? '').replaceAll('\u00a0', ' ').replace(/\s+/g, ' ').trim();
export const rowNames = ({ page }: OpenPage) => page.locator('[data-key] .name .name').allTextContents();

/** Runs a test on a page of its own, which has nothing to complain of. */
export async function onPage(browser: Browser, test: (opened: OpenPage) => Promise<void>): Promise<void> {
  const opened = await open(browser, { saved: fullState() });
  await test(opened);
  await opened.close();
  expect(opened.complaints).toEqual([]);
}
