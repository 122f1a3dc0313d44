/** The cleaning candidates by rule: what may be preselected, and what an item is called. */
import type { Dictionary } from '../../language/language.svelte.ts';
import { lastComponent } from '../../names/middle.ts';
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { CacheReason, Cleanable, CleanableFacts } from '../../protocol/protocol.ts';
import { totalGb } from '../../state/operations.ts';

export type RuleName = keyof Dictionary['cleanup']['rules'];

/** In the order shown. What is certain is made again by the program that made it; the rest is the user's own. */
const rules: readonly { name: RuleName; certain: boolean; age: 'changed' | 'opened' }[] = [
  { name: 'caches', certain: true, age: 'changed' },
  { name: 'xcode', certain: true, age: 'changed' },
  { name: 'oldDownloads', certain: false, age: 'opened' },
  { name: 'installers', certain: false, age: 'opened' },
  { name: 'other', certain: false, age: 'changed' },
];

/** A candidate, and what is known of what becomes of it. */
export interface Proposal extends Cleanable {
  certain: boolean;
  /** Why not; null when it is certain, or its kind says all there is to say. */
  doubt: Exclude<CacheReason, 'madeAgain'> | null;
}

export interface Group {
  rule: RuleName;
  /** The kind as a whole is made again, as far as nothing speaks against a single one. */
  isMadeAgain: boolean;
  certainty: 'certain' | 'possible' | 'mixed';
  /** What the age of its items is counted from. */
  age: 'changed' | 'opened';
  gb: number;
  /** Largest first. */
  items: Proposal[];
}

const aMonth = 30;

function ruleOf(ruleID: string): RuleName {
  return rules.find(({ name }) => name === ruleID)?.name ?? 'other';
}

function proposal(item: Cleanable, isMadeAgain: boolean, facts: CleanableFacts): Proposal {
  const fact = facts.get(item.path);
  if (!fact) return { ...item, certain: isMadeAgain, doubt: null };
  const { certain, reason } = fact;
  return { ...item, certain, doubt: certain || reason === 'madeAgain' ? null : reason };
}

function certaintyOf(items: readonly Proposal[]): Group['certainty'] {
  if (items.every(({ certain }) => certain)) return 'certain';
  return items.some(({ certain }) => certain) ? 'mixed' : 'possible';
}

export function groupsOf(candidates: readonly Cleanable[], facts: CleanableFacts = new Map()): Group[] {
  return rules.flatMap(({ name, certain: isMadeAgain, age }) => {
    const items = candidates
      .filter(({ ruleID }) => ruleOf(ruleID) === name)
      .sort((left, right) => right.gb - left.gb)
      .map((item) => proposal(item, isMadeAgain, facts));
    if (!items.length) return [];
    return [{ rule: name, isMadeAgain, certainty: certaintyOf(items), age, gb: totalGb(items), items }];
  });
}

/** One protected path makes the program refuse the whole request. */
export function isSelectable({ path }: Cleanable): boolean {
  return !isProtectedPath(path);
}

/** `left`: what was on the list before and had gone meanwhile; somebody has decided about it. */
export function preselected(groups: readonly Group[], left: ReadonlySet<string> = new Set()): Set<string> {
  const certain = groups.flatMap(({ items }) => items).filter((item) => item.certain);
  const old = certain.filter((item) => isSelectable(item) && item.daysOld > aMonth);
  return new Set(old.map(({ path }) => path).filter((path) => !left.has(path)));
}

/** The labels that travel with the candidates are Spanish; rule and path say as much in every language. */
export function nameOf({ ruleID, path }: Cleanable, words: Dictionary['cleanup']): string {
  const name = lastComponent(path) || path;
  if (ruleID !== 'xcode') return name;
  return name === 'DerivedData' ? words.derivedData : words.deviceSupport(name);
}
