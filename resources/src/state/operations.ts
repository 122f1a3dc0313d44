/** The contents of Velto Trash by operation: what went in one step, and comes back in one. */
import type { TrashItem } from '../protocol/protocol.ts';

export interface Operation {
  id: string;
  /** When it was moved, seconds since 1970. */
  taken: number;
  gb: number;
  /** Largest first. */
  items: TrashItem[];
}

export function totalGb(items: readonly { gb: number }[]): number {
  return items.reduce((sum, { gb }) => sum + gb, 0);
}

/** In a loop: a call takes only some ten thousand arguments, and an operation may have more items. */
function newest(items: readonly TrashItem[]): number {
  return items.reduce((latest, { taken }) => Math.max(latest, taken), -Infinity);
}

/** Newest first. The program tells the items in the order they arrived, so of equal times the later one is newer. */
export function operationsOf(items: readonly TrashItem[]): Operation[] {
  const groups = new Map<string, TrashItem[]>();
  for (const item of items) {
    const group = groups.get(item.opID);
    if (group) group.push(item);
    else groups.set(item.opID, [item]);
  }
  return [...groups]
    .map(([id, members]) => ({
      id,
      taken: newest(members),
      gb: totalGb(members),
      items: [...members].sort((left, right) => right.gb - left.gb),
    }))
    .reverse()
    .sort((left, right) => right.taken - left.taken);
}

const day = 86_400;

/** Whole days until the retention is over, never more than it is long; 0 when it is over. */
export function daysLeft(taken: number, retention: number, now: number): number {
  return Math.min(retention, Math.max(0, Math.ceil((taken + retention * day - now) / day)));
}
