/** Which copy stays by a rule or a folder, and which groups are shown in which order. */
import { folderOf, lastComponent } from '../../names/middle.ts';
import type { DuplicateGroup } from '../../protocol/protocol.ts';
import { mostWastefulFirst, type CopyFacts, type Keeps } from './duplicates.ts';

export const keepRules = ['newest', 'oldest', 'shortest'] as const;
export type KeepRule = (typeof keepRules)[number];

export const groupOrders = ['space', 'name', 'copies'] as const;
export type GroupOrder = (typeof groupOrders)[number];

/** Seconds since 1970 by path. */
export type CopyDates = ReadonlyMap<string, number>;

export function isInFolder(path: string, folder: string): boolean {
  return path.startsWith(folder === '/' ? '/' : `${folder}/`);
}

/**
 * The copy that a rule keeps among some of a group. The program proposes the most recent one; without dates that is the
 * newest, and nothing is known of the oldest.
 */
export function keptByRule(group: DuplicateGroup, among: readonly string[], rule: KeepRule, dates: CopyDates): string {
  const proposed = group.paths[group.recommended]!;
  const first = among.includes(proposed) ? proposed : among[0]!;
  if (rule === 'shortest') {
    return among.reduce((best, path) => (path.length < best.length ? path : best), first);
  }
  const dated = among.filter((path) => dates.has(path));
  if (dated.length < among.length) return first;
  const sign = rule === 'newest' ? 1 : -1;
  return among.reduce((best, path) => (sign * dates.get(path)! > sign * dates.get(best)! ? path : best), first);
}

/** What decides which copy of a group stays, the strongest first: a choice by hand, the reference folder, the rule. */
export interface Choices {
  byHand: Keeps;
  reference: string | null;
  rule: KeepRule;
}

export function keepsOf(groups: readonly DuplicateGroup[], { byHand, reference, rule }: Choices, dates: CopyDates): Keeps {
  return new Map(
    groups.map((group) => {
      const chosen = byHand.get(group.id);
      if (chosen !== undefined && group.paths.includes(chosen)) return [group.id, chosen];
      const inReference = reference === null ? [] : group.paths.filter((path) => isInFolder(path, reference));
      return [group.id, keptByRule(group, inReference.length ? inReference : group.paths, rule, dates)];
    }),
  );
}

/**
 * The copies in a folder that can go, and which copy stays for that: one outside of the folder where there is one, so that
 * no group loses its last copy.
 */
export function selectInFolder(
  groups: readonly DuplicateGroup[],
  folder: string,
  keeps: Keeps,
  rule: KeepRule,
  dates: CopyDates,
): { keeps: Keeps; paths: string[] } {
  const changed = new Map<string, string>();
  const paths = groups.flatMap((group) => {
    const inside = group.paths.filter((path) => isInFolder(path, folder));
    if (!inside.length) return [];
    const outside = group.paths.filter((path) => !isInFolder(path, folder));
    let kept = keeps.get(group.id) ?? group.paths[group.recommended]!;
    if (outside.length && !outside.includes(kept)) {
      kept = keptByRule(group, outside, rule, dates);
      changed.set(group.id, kept);
    }
    return inside.filter((path) => path !== kept);
  });
  return { keeps: changed, paths };
}

/** Folders that hold a copy of several groups, or one of two copies apart: those with the most groups first. */
export function foldersOfCopies(groups: readonly DuplicateGroup[], home: string, most: number): string[] {
  const counts = new Map<string, number>();
  for (const group of groups) {
    const seen = new Set<string>();
    for (const path of group.paths) {
      for (let folder = folderOf(path); folder.length > home.length && folder !== '/'; folder = folderOf(folder)) {
        if (home && !isInFolder(folder, home)) break;
        seen.add(folder);
      }
    }
    for (const folder of seen) {
      // A folder that holds all copies of a group tells none of them apart.
      if (group.paths.every((path) => isInFolder(path, folder))) continue;
      counts.set(folder, (counts.get(folder) ?? 0) + 1);
    }
  }
  return [...counts]
    .sort(([left, some], [right, others]) => others - some || left.length - right.length || (left < right ? -1 : 1))
    .slice(0, most)
    .map(([folder]) => folder);
}

export function orderedGroups(
  groups: readonly DuplicateGroup[],
  order: GroupOrder,
  compare: (a: string, b: string) => number,
  facts: CopyFacts,
): DuplicateGroup[] {
  const bySpace = mostWastefulFirst(groups, compare, facts);
  if (order === 'name') return bySpace.sort((left, right) => compare(left.name, right.name));
  if (order === 'copies') return bySpace.sort((left, right) => right.paths.length - left.paths.length);
  return bySpace;
}

/** A group is found by its name and by where any of its copies lies. */
export function foundGroups(groups: DuplicateGroup[], matches: (text: string) => boolean): DuplicateGroup[] {
  return groups.filter((group) => matches(group.name) || group.paths.some((path) => matches(path)));
}

export function folderName(folder: string): string {
  return lastComponent(folder) || folder;
}
