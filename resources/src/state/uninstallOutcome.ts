/** How a removal ended, in words; told wherever the user is by then. */
import type { Dictionary } from '../language/language.svelte.ts';
import { language } from '../language/language.svelte.ts';
import { plainName } from '../names/marks.ts';
import { shortInMiddle } from '../names/middle.ts';
import { announcer } from './announcer.svelte.ts';
import { leftovers } from './leftovers.svelte.ts';
import { navigation } from './navigation.svelte.ts';
import { toasts } from './toasts.svelte.ts';
import type { Outcome } from './uninstalling.svelte.ts';

export function outcomeTitle(outcome: Outcome, words: Dictionary['apps']): string {
  const { removed, failures, appGone, known } = outcome;
  const name = shortInMiddle(plainName(outcome.name), 48);
  if (appGone && known?.stays === 'entry') return words.entryGoneTitle(name);
  if (appGone) return known?.folder ? words.programGoneTitle(name) : words.doneTitle(name);
  if (removed === 0) return words.noneTitle;
  return failures.length ? words.partTitle(name) : words.doneTitleKept(name);
}

/** Unless the page of the application is open, which shows it, a message says so. */
export function tellOutcome(outcome: Outcome): void {
  const words = language.words.apps;
  const title = outcomeTitle(outcome, words);
  const left = outcome.failures.filter(({ reason }) => reason !== 'gone').length;
  const failed = left ? words.failuresTitle(left) : '';
  announcer.say([title, failed].filter(Boolean).join('. '));
  if (navigation.view === 'apps' && leftovers.app?.path === outcome.path) return;
  const done = `${words.removedItems(outcome.removed)} · ${language.formats.fineSize(outcome.freed)}`;
  toasts.show(title, outcome.removed ? done : words.noneText, { note: failed });
}
