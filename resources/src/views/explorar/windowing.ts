/** Which rows of a long list are worth having: those in sight and some around them. */

export interface Sight {
  /** How far the list is scrolled, how much of it is seen, how tall a row is; all in pixels. */
  top: number;
  height: number;
  row: number;
}

/** Beyond the edges: as much as a wheel turns before the next frame. */
const around = 12;

/** Indices from `first` up to, not including, `last`. */
export function rowsInSight({ top, height, row }: Sight, count: number): { first: number; last: number } {
  if (row <= 0) return { first: 0, last: Math.min(count, around) };
  const first = Math.max(0, Math.floor(top / row) - around);
  const last = Math.min(count, Math.ceil((top + height) / row) + around);
  return { first: Math.min(first, Math.max(0, count - 1)), last };
}

/** The same, with one more row that is never left out: the one that holds the focus. */
export function indicesInSight(sight: Sight, count: number, always: number): number[] {
  const { first, last } = rowsInSight(sight, count);
  const indices = Array.from({ length: Math.max(0, last - first) }, (_, offset) => first + offset);
  if (always < 0 || always >= count || (always >= first && always < last)) return indices;
  return always < first ? [always, ...indices] : [...indices, always];
}

/** Where to scroll so that a row is seen whole; where it is when it is seen already. */
export function scrollToRow({ top, height, row }: Sight, index: number): number {
  const start = index * row;
  if (start < top) return start;
  return start + row > top + height ? start + row - height : top;
}
