/** Which rows of a long list are worth having: those in sight and some around them. */

export interface Sight {
  /** How far the list is scrolled, how much of it is seen, how tall a row is; all in pixels. */
  top: number;
  height: number;
  row: number;
}

/** Beyond the edges: as much as a wheel turns before the next frame. */
export const around = 12;

/** Indices from `first` up to, not including, `last`. */
export function rowsInSight({ top, height, row }: Sight, count: number, beyond = around): { first: number; last: number } {
  if (row <= 0) return { first: 0, last: Math.min(count, around) };
  const first = Math.max(0, Math.floor(top / row) - beyond);
  const last = Math.min(count, Math.ceil((top + height) / row) + beyond);
  return { first: Math.min(first, Math.max(0, count - 1)), last };
}

/** The same, with one more row that is never left out: the one that holds the focus. */
export function indicesInSight(sight: Sight, count: number, always: number, beyond = around): number[] {
  const { first, last } = rowsInSight(sight, count, beyond);
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

/** The same for parts of different heights: `ends` has where each of them ends, spaces between them included. */
export function partsInSight(ends: readonly number[], { top, height }: Omit<Sight, 'row'>, beyond: number, always: number): number[] {
  const first = firstEndingAfter(ends, top - beyond);
  const indices: number[] = [];
  for (let index = first; index < ends.length && (ends[index - 1] ?? 0) < top + height + beyond; index += 1) indices.push(index);
  if (always < 0 || always >= ends.length || indices.includes(always)) return indices;
  return always < first ? [always, ...indices] : [...indices, always];
}

function firstEndingAfter(ends: readonly number[], place: number): number {
  let low = 0;
  let high = ends.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (ends[middle]! > place) high = middle;
    else low = middle + 1;
  }
  return low;
}
