/** Which large files are shown, and in which order. */
import { oldestKnownUse } from '../../language/formats.ts';
import { createSearch, folded } from '../../names/folded.ts';
import type { BigFile } from '../../protocol/protocol.ts';
import { categoryOf } from '../inicio/parents.ts';
import { kindOf, type FileKind } from './kinds.ts';

export type SortColumn = 'name' | 'path' | 'size' | 'kind' | 'lastUse';
export type Direction = 'ascending' | 'descending';
export type AgeFilter = 'any' | 'days30' | 'days180' | 'days365';

export interface Order {
  column: SortColumn;
  direction: Direction;
}

export interface Filter {
  search: string;
  kind: FileKind | 'any';
  age: AgeFilter;
  /** In GB; 0 when any size will do. */
  least: number;
  /** One of the categories of the overview. */
  category: string;
}

export const everything: Filter = { search: '', kind: 'any', age: 'any', least: 0, category: 'any' };
export const largestFirst: Order = { column: 'size', direction: 'descending' };

const leastDays: Record<AgeFilter, number> = { any: 0, days30: 30, days180: 180, days365: 365 };

/** An age filter shows known ages only: a missing date is no proof of a long time. */
export function filterFiles(files: readonly BigFile[], filter: Filter, fold = folded): BigFile[] {
  const found = createSearch(filter.search, fold);
  const days = leastDays[filter.age];
  return files.filter((file) => {
    if (filter.kind !== 'any' && kindOf(file) !== filter.kind) return false;
    if (file.gb < filter.least) return false;
    if (filter.category !== 'any' && categoryOf(file) !== filter.category) return false;
    if (days > 0 && (file.lastN < days || file.lastN > oldestKnownUse)) return false;
    return found(file.path);
  });
}

type Compare = (left: string, right: string) => number;

/** Equal rows keep the order of their paths, so that a list never shuffles. */
export function sortFiles(
  files: readonly BigFile[],
  { column, direction }: Order,
  compare: Compare,
  kindName: (file: BigFile) => string,
): BigFile[] {
  const by: Record<SortColumn, (left: BigFile, right: BigFile) => number> = {
    name: (left, right) => compare(left.name, right.name),
    path: (left, right) => compare(left.path, right.path),
    size: (left, right) => left.gb - right.gb,
    kind: (left, right) => compare(kindName(left), kindName(right)),
    lastUse: (left, right) => left.lastN - right.lastN,
  };
  const sign = direction === 'ascending' ? 1 : -1;
  return [...files].sort((left, right) => sign * by[column](left, right) || compare(left.path, right.path));
}

/** A second press turns the order round; sizes and ages start with the largest. */
export function nextOrder(current: Order, column: SortColumn): Order {
  if (current.column === column) {
    return { column, direction: current.direction === 'ascending' ? 'descending' : 'ascending' };
  }
  return { column, direction: column === 'size' || column === 'lastUse' ? 'descending' : 'ascending' };
}
