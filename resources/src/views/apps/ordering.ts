/** Which applications are shown, and in which order. */
import { createSearch } from '../../names/folded.ts';
import type { InstalledApp } from '../../protocol/protocol.ts';

export type AppColumn = 'name' | 'lastUse' | 'size';

export interface AppOrder {
  column: AppColumn;
  direction: 'ascending' | 'descending';
}

export const byName: AppOrder = { column: 'name', direction: 'ascending' };

type Compare = (left: string, right: string) => number;

export function findApps(apps: readonly InstalledApp[], search: string): InstalledApp[] {
  const found = createSearch(search);
  return apps.filter(({ name, bid, path }) => found(`${name} ${bid} ${path}`));
}

/** What is unknown stands last whichever way round the list is: nobody looks for it at the top. */
export function sortApps(
  apps: readonly InstalledApp[],
  { column, direction }: AppOrder,
  compare: Compare,
  sizeOf: (app: InstalledApp) => number | null,
): InstalledApp[] {
  const sign = direction === 'ascending' ? 1 : -1;
  const figure = (app: InstalledApp): number => (column === 'size' ? (sizeOf(app) ?? 0) : app.last);
  const tie = (left: InstalledApp, right: InstalledApp) => compare(left.name, right.name) || compare(left.path, right.path);
  if (column === 'name') return [...apps].sort((left, right) => sign * compare(left.name, right.name) || tie(left, right));
  return [...apps].sort((left, right) => {
    const [one, other] = [figure(left), figure(right)];
    if (one === 0 || other === 0) return Number(one === 0) - Number(other === 0) || tie(left, right);
    return sign * (one - other) || tie(left, right);
  });
}

/** A second press turns the order round. Large ones come first, and so do those unused for longest. */
export function nextAppOrder(current: AppOrder, column: AppColumn): AppOrder {
  if (current.column === column) {
    return { column, direction: current.direction === 'ascending' ? 'descending' : 'ascending' };
  }
  return { column, direction: column === 'size' ? 'descending' : 'ascending' };
}

/** Whole days since the last use, as the formats take them; very large when nobody knows. */
export function daysSince(last: number, now: number): number {
  if (last <= 0) return Number.MAX_SAFE_INTEGER;
  return Math.max(0, Math.trunc((now - last) / 86_400));
}
