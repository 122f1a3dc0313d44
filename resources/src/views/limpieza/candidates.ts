/** The cleaning candidates by rule: what may be preselected, and what an item is called. */
import type { Dictionary } from '../../language/language.svelte.ts';
import { lastComponent } from '../../names/middle.ts';
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { CacheReason, Cleanable, CleanableFacts, FurtherGroup, FurtherReason, FurtherRule } from '../../protocol/protocol.ts';
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
  doubt: Exclude<CacheReason | FurtherReason, 'madeAgain'> | null;
  /** In files that have another name elsewhere: so much of it stays. */
  linkedGb: number;
  /** Found by a rule of the rule files: never selected beforehand, never deleted past the trash. */
  further: boolean;
}

export interface Group {
  /** Of its row. */
  id: string;
  rule: RuleName;
  /** The rule as its file says it; null for the program's own rules. */
  file: FurtherRule | null;
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
  const own = { linkedGb: 0, further: false };
  if (!fact) return { ...item, ...own, certain: isMadeAgain, doubt: null };
  const { certain, reason } = fact;
  return { ...item, ...own, certain, doubt: certain || reason === 'madeAgain' ? null : reason };
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
    return [{ id: name, rule: name, file: null, isMadeAgain, certainty: certaintyOf(items), age, gb: totalGb(items), items }];
  });
}

const bytesPerGb = 1e9;

/** What is on the other list, or lies in or around anything of it, is not listed a second time. */
function overlaps(path: string, listed: readonly string[]): boolean {
  return listed.some((other) => other === path || path.startsWith(`${other}/`) || other.startsWith(`${path}/`));
}

/** A card for each rule that has found something to move. */
export function furtherGroupsOf(found: readonly FurtherGroup[], candidates: readonly Cleanable[]): Group[] {
  const listed = candidates.map(({ path }) => path);
  return found.flatMap(({ rule, items: all }) => {
    if (rule.explained) return [];
    const items = all
      .filter(({ path }) => !overlaps(path, listed))
      .sort((left, right) => right.bytes - left.bytes)
      .map(({ path, bytes, linked, days, certain, reason }): Proposal => ({
        ruleID: `further:${rule.id}`, path, gb: bytes / bytesPerGb, daysOld: days, label: '', certain, linkedGb: linked / bytesPerGb, further: true,
        // That nothing is certain the head says of all.
        doubt: reason === 'madeAgain' || reason === 'unknown' ? null : reason,
      }));
    if (!items.length) return [];
    return [{ id: `further:${rule.id}`, rule: 'other', file: rule, isMadeAgain: false, certainty: certaintyOf(items), age: 'changed', gb: totalGb(items), items }];
  });
}

/** One protected path makes the program refuse the whole request. */
export function isSelectable({ path }: Cleanable): boolean {
  return !isProtectedPath(path);
}

/** `left`: what was on the list before and had gone meanwhile; somebody has decided about it. */
export function preselected(groups: readonly Group[], left: ReadonlySet<string> = new Set()): Set<string> {
  const certain = groups.flatMap(({ items }) => items).filter((item) => item.certain && !item.further);
  const old = certain.filter((item) => isSelectable(item) && item.daysOld > aMonth);
  return new Set(old.map(({ path }) => path).filter((path) => !left.has(path)));
}

/** The labels that travel with the candidates are Spanish; rule and path say as much in every language. */
export function nameOf({ ruleID, path }: Cleanable, words: Dictionary['cleanup']): string {
  const name = lastComponent(path) || path;
  // "node_modules" alone says nothing: the folder around it is the project.
  if (ruleID.startsWith('further:')) return path.split('/').slice(-2).join('/');
  if (ruleID !== 'xcode') return name;
  return name === 'DerivedData' ? words.derivedData : words.deviceSupport(name);
}
