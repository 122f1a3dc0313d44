/** What a machine can find wrong with the accessibility of the page as it stands. */
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import type { Page } from 'playwright-core';

const source = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

interface Violation {
  id: string;
  nodes: { html: string; failureSummary?: string }[];
}

/** What a theme can change of a page: its colours. */
const ofColours = ['color-contrast', 'link-in-text-block'];

/** One line a violation; an empty list is what every view owes. */
export async function violations(page: Page, rules: 'all' | 'ofColours' = 'all'): Promise<string[]> {
  if (await page.evaluate(() => !('axe' in window))) await page.evaluate(source);
  const found = await page.evaluate(async (named) => {
    const axe = (window as unknown as { axe: { run(options: object): Promise<{ violations: unknown }> } }).axe;
    return (await axe.run({ preload: false, ...(named && { runOnly: { type: 'rule', values: named } }) })).violations;
  }, rules === 'ofColours' ? ofColours : null);
  return (found as Violation[]).flatMap(({ id, nodes }) =>
    nodes.map(({ html, failureSummary }) => `${id}: ${html.slice(0, 160)} ${failureSummary ?? ''}`),
  );
}
