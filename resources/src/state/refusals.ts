/** What the program's trash would not take, in the page's words: they come right before its message. */
import { language } from '../language/language.svelte.ts';
import { fromHome } from '../names/home.ts';
import { plainName } from '../names/marks.ts';
import { lastComponent, shortInMiddle } from '../names/middle.ts';
import type { Refusal, RefusalReason, SelectionCheck, Stay } from '../protocol/protocol.ts';
import type { Question } from './questions.svelte.ts';
import { session } from './session.svelte.ts';

/** More names than these make no message any more. */
const mostNamed = 3;

/** More sentences than these make no list any more. */
const mostListed = 100;

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

function sentenceOf({ path, reason }: Stay): string {
  const words = language.words.trash;
  const names = [shortInMiddle(plainName(lastComponent(path)), 40)];
  return { ...words.refused, ...words.staysWhy }[reason](names, 0);
}

/** What cannot be moved, each with its reason, and whether to move the others. */
export function questionOfRest({ movable, stays }: SelectionCheck): Question {
  const words = language.words.trash;
  const more = stays.length - mostListed;
  return {
    title: words.staysTitle(stays.length, stays.length + movable.length),
    notes: stays.slice(0, mostListed).map((stay) => ({
      sentence: sentenceOf(stay),
      details: [plainName(fromHome(stay.path, session.home)), ...(stay.detail ? [plainName(stay.detail)] : [])],
    })),
    paragraphs: [...(more > 0 ? [words.staysMore(more)] : []), ...(movable.length ? [words.staysText] : [])],
    confirm: movable.length ? words.moveRest(movable.length) : null,
    harmless: true,
  };
}
