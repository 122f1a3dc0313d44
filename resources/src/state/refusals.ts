/** What the program's trash would not take, in the page's words: they come right before its message. */
import { language } from '../language/language.svelte.ts';
import { plainName } from '../names/marks.ts';
import { lastComponent, shortInMiddle } from '../names/middle.ts';
import type { Refusal, RefusalReason } from '../protocol/protocol.ts';

/** More names than these make no message any more. */
const mostNamed = 3;

let held: Refusal | null = null;

export function holdRefusal(refusal: Refusal): void {
  held = refusal;
}

/** The refusal that belongs to the message that has just come. */
export function takeRefusal(): Refusal | null {
  const refusal = held;
  held = null;
  return refusal;
}

/** One sentence a reason, with the first names of each. */
export function refusalSentences({ refused }: Refusal): string[] {
  const words = language.words.trash;
  const byReason = new Map<RefusalReason, Refusal['refused']>();
  for (const item of refused) byReason.set(item.reason, [...(byReason.get(item.reason) ?? []), item]);
  return [...byReason].map(([reason, items]) => {
    const names = items.flatMap(({ path }) => (path ? [shortInMiddle(plainName(lastComponent(path)), 40)] : []));
    if (names.length === 0) return words.refusedUnnamed[reason];
    return words.refused[reason](names.slice(0, mostNamed), names.length - mostNamed);
  });
}
