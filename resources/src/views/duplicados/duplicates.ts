/** The arithmetic of duplicate groups: what each copy weighs, which one stays, what can go. */
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { DuplicateGroup, LinkedCopies } from '../../protocol/protocol.ts';

/** Group id to the path of the copy that stays, where it is not the proposed one. */
export type Keeps = ReadonlyMap<string, string>;

/** What is known of copies besides their groups. */
export interface CopyFacts {
  /** Bytes by path. */
  sizes?: ReadonlyMap<string, number>;
  /** Copies that are names of one file. */
  linked?: LinkedCopies;
  /** Copies that share their space with another one: their removal brings nothing. */
  one?: ReadonlySet<string>;
  /** A folder whose copies all stay. */
  reference?: string | null;
}

/** The size of one copy in GB; 0 stands for less than 0.05 GB. */
export function copySize(group: DuplicateGroup, { sizes }: CopyFacts = {}): number {
  for (const path of group.paths) {
    const bytes = sizes?.get(path);
    if (bytes !== undefined) return bytes / 1e9;
  }
  const size = Number.parseFloat(group.pairs[0]?.[0]?.[1] ?? '');
  return Number.isFinite(size) && size > 0 ? size : 0;
}

/** The files of a group, each with all of its names there; most have one. */
export function filesOf(group: DuplicateGroup, { linked }: CopyFacts = {}): string[][] {
  const lists = linked?.get(group.id) ?? [];
  const files: string[][] = [];
  const placed = new Set<string>();
  for (const path of group.paths) {
    if (placed.has(path)) continue;
    const others = lists.find((names) => names.includes(path)) ?? [];
    const names = group.paths.filter((one) => one === path || others.includes(one));
    for (const name of names) placed.add(name);
    files.push(names);
  }
  return files;
}

/** Other names of a file take up nothing. */
export function wastedBy(group: DuplicateGroup, facts: CopyFacts = {}): number {
  const files = filesOf(group, facts).filter((names) => takesUpSpace(names, facts));
  return copySize(group, facts) * Math.max(0, files.length - 1);
}

function takesUpSpace(names: readonly string[], { one }: CopyFacts): boolean {
  return !one || !names.some((path) => one.has(path));
}

export function totalWasted(groups: readonly DuplicateGroup[], facts: CopyFacts = {}): number {
  return groups.reduce((sum, group) => sum + wastedBy(group, facts), 0);
}

export function mostWastefulFirst(
  groups: readonly DuplicateGroup[],
  compare: (a: string, b: string) => number,
  facts: CopyFacts = {},
): DuplicateGroup[] {
  const wasted = new Map(groups.map((group) => [group, wastedBy(group, facts)]));
  return [...groups].sort(
    (left, right) =>
      wasted.get(right)! - wasted.get(left)! ||
      right.paths.length - left.paths.length ||
      compare(left.name, right.name) ||
      compare(left.id, right.id),
  );
}

export function keptPath(group: DuplicateGroup, keeps: Keeps): string {
  const chosen = keeps.get(group.id);
  return chosen !== undefined && group.paths.includes(chosen) ? chosen : group.paths[group.recommended]!;
}

export function isRemovable(group: DuplicateGroup, path: string, keeps: Keeps, facts: CopyFacts = {}): boolean {
  return path !== keptPath(group, keeps) && !isProtectedPath(path) && !isInReference(path, facts);
}

export function isInReference(path: string, { reference }: CopyFacts): boolean {
  return reference !== null && reference !== undefined && path.startsWith(`${reference}/`);
}

/** Every copy that may go; the kept copy of each group is never among them. */
export function removablePaths(groups: readonly DuplicateGroup[], keeps: Keeps, facts: CopyFacts = {}): string[] {
  return groups.flatMap((group) => group.paths.filter((path) => isRemovable(group, path, keeps, facts)));
}

/** Every copy whose going frees space: of a file with several names all of them, or none. */
export function extraPaths(groups: readonly DuplicateGroup[], keeps: Keeps, facts: CopyFacts = {}): string[] {
  return groups.flatMap((group) =>
    filesOf(group, facts)
      .filter((names) => names.every((path) => isRemovable(group, path, keeps, facts)) && takesUpSpace(names, facts))
      .flat(),
  );
}

/** What would come back: a file counts once, and only when all of its names go. */
export function selectedSize(
  groups: readonly DuplicateGroup[],
  selected: ReadonlySet<string>,
  facts: CopyFacts = {},
): number {
  return groups.reduce(
    (sum, group) =>
      sum +
      copySize(group, facts) *
        filesOf(group, facts).filter((names) => names.every((path) => selected.has(path)) && takesUpSpace(names, facts)).length,
    0,
  );
}

/** What a copy is besides a copy; null for most. */
export function linkOf(
  group: DuplicateGroup,
  path: string,
  keeps: Keeps,
  facts: CopyFacts,
): { ofKept: boolean; names: number } | null {
  const names = filesOf(group, facts).find((all) => all.includes(path)) ?? [];
  return names.length > 1 ? { ofKept: names.includes(keptPath(group, keeps)), names: names.length } : null;
}
