/** The arithmetic of duplicate groups: what each copy weighs, which one stays, what can go. */
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { DuplicateGroup } from '../../protocol/protocol.ts';

/** Group id to the path of the copy that stays, where it is not the proposed one. */
export type Keeps = ReadonlyMap<string, string>;

/** The size of one copy in GB; 0 stands for less than 0.05 GB. */
export function copySize(group: DuplicateGroup): number {
  const size = Number.parseFloat(group.pairs[0]?.[0]?.[1] ?? '');
  return Number.isFinite(size) && size > 0 ? size : 0;
}

export function wastedBy(group: DuplicateGroup): number {
  return copySize(group) * (group.paths.length - 1);
}

export function totalWasted(groups: readonly DuplicateGroup[]): number {
  return groups.reduce((sum, group) => sum + wastedBy(group), 0);
}

export function mostWastefulFirst(groups: readonly DuplicateGroup[], compare: (a: string, b: string) => number) {
  return [...groups].sort(
    (left, right) =>
      wastedBy(right) - wastedBy(left) ||
      right.paths.length - left.paths.length ||
      compare(left.name, right.name) ||
      compare(left.id, right.id),
  );
}

export function keptPath(group: DuplicateGroup, keeps: Keeps): string {
  const chosen = keeps.get(group.id);
  return chosen !== undefined && group.paths.includes(chosen) ? chosen : group.paths[group.recommended]!;
}

export function isRemovable(group: DuplicateGroup, path: string, keeps: Keeps): boolean {
  return path !== keptPath(group, keeps) && !isProtectedPath(path);
}

/** Every copy that may go; the kept copy of each group is never among them. */
export function removablePaths(groups: readonly DuplicateGroup[], keeps: Keeps): string[] {
  return groups.flatMap((group) => group.paths.filter((path) => isRemovable(group, path, keeps)));
}

export function selectedSize(
  groups: readonly DuplicateGroup[],
  selected: ReadonlySet<string>,
): number {
  return groups.reduce(
    (sum, group) => sum + copySize(group) * group.paths.filter((path) => selected.has(path)).length,
    0,
  );
}
