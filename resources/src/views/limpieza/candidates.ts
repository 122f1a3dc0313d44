/** The cleaning candidates by rule: what may be preselected, and what an item is called. */
import type { Dictionary } from '../../language/language.svelte.ts';
import { lastComponent } from '../../names/middle.ts';
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { Cleanable } from '../../protocol/protocol.ts';
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

export interface Group {
  rule: RuleName;
  certain: boolean;
  /** What the age of its items is counted from. */
  age: 'changed' | 'opened';
  gb: number;
  /** Largest first. */
  items: Cleanable[];
}

const aMonth = 30;

function ruleOf(ruleID: string): RuleName {
  return rules.find(({ name }) => name === ruleID)?.name ?? 'other';
}

export function groupsOf(candidates: readonly Cleanable[]): Group[] {
  return rules.flatMap(({ name, certain, age }) => {
    const items = candidates.filter(({ ruleID }) => ruleOf(ruleID) === name).sort((left, right) => right.gb - left.gb);
    return items.length ? [{ rule: name, certain, age, gb: totalGb(items), items }] : [];
  });
}

/** One protected path makes the program refuse the whole request. */
export function isSelectable({ path }: Cleanable): boolean {
  return !isProtectedPath(path);
}

export function preselected(groups: readonly Group[]): Set<string> {
  const certain = groups.filter((group) => group.certain).flatMap(({ items }) => items);
  return new Set(certain.filter((item) => isSelectable(item) && item.daysOld > aMonth).map(({ path }) => path));
}

/** The labels that travel with the candidates are Spanish; rule and path say as much in every language. */
export function nameOf({ ruleID, path }: Cleanable, words: Dictionary['cleanup']): string {
  const name = lastComponent(path) || path;
  if (ruleID !== 'xcode') return name;
  return name === 'DerivedData' ? words.derivedData : words.deviceSupport(name);
}
