/**
 * The heaviest applications as rows that can be read: figures change with every sample, places at
 * most with every other one, and not at all while the pointer or the focus is on one of them.
 */
import type { GroupActivity, ProcessGroup } from '../../protocol/protocol.ts';

/** Threads of the kernel have no memory of their own: idle, they weigh nothing at all. */
export function weighs({ cpu, mem }: { cpu: number; mem: number }): boolean {
  return cpu >= 0.05 || mem >= 0.05;
}

export type ProcessColumn = 'name' | 'procs' | 'cpu' | 'mem' | 'disk';

export interface ProcessOrder {
  column: ProcessColumn;
  direction: 'ascending' | 'descending';
}

/** A group with what was told beside it. */
export interface HeavyGroup extends ProcessGroup {
  /** Bytes a second, read and written together; left out when nobody knows. */
  disk?: number;
  canQuit?: boolean;
}

export interface ProcessRow extends HeavyGroup {
  key: string;
  /** No longer among the heaviest: its place is kept until places may change. */
  gone: boolean;
}

export const busiestFirst: ProcessOrder = { column: 'cpu', direction: 'descending' };

/** While places are held, rows that are gone would gather without end. */
const mostRows = 24;

export function withActivity(groups: readonly ProcessGroup[], activity: readonly GroupActivity[]): HeavyGroup[] {
  const byPid = new Map(activity.map((each) => [each.pid, each]));
  return groups.map((group) => {
    const told = byPid.get(group.pid);
    if (!told) return group;
    const { read, written, canQuit } = told;
    return {
      ...group,
      ...(read !== undefined && written !== undefined && { disk: read + written }),
      ...(canQuit && group.kind === 'app' && { canQuit }),
    };
  });
}

type Compare = (left: string, right: string) => number;

/** An application keeps its row when the process that stands for it changes; two of one name have two rows. */
export function keyed(groups: readonly HeavyGroup[]): ProcessRow[] {
  const seen = new Map<string, number>();
  return groups.map((group) => {
    const key = group.kind === 'app' ? `app:${group.name}` : `pid:${group.pid}:${group.name}`;
    const again = seen.get(key) ?? 0;
    seen.set(key, again + 1);
    return { ...group, key: again ? `${key}#${again}` : key, gone: false };
  });
}

/** What nobody knows comes after everything known. */
function figure(row: ProcessRow, column: Exclude<ProcessColumn, 'name'>): number {
  return row[column] ?? -1;
}

export function sortRows(rows: readonly ProcessRow[], { column, direction }: ProcessOrder, compare: Compare): ProcessRow[] {
  const sign = direction === 'ascending' ? 1 : -1;
  const by = (left: ProcessRow, right: ProcessRow) =>
    column === 'name' ? compare(left.name, right.name) : figure(left, column) - figure(right, column);
  return [...rows].sort((left, right) => sign * by(left, right) || compare(left.name, right.name) || left.pid - right.pid);
}

export function nextProcessOrder(current: ProcessOrder, column: ProcessColumn): ProcessOrder {
  if (current.column === column) {
    return { column, direction: current.direction === 'ascending' ? 'descending' : 'ascending' };
  }
  return { column, direction: column === 'name' ? 'ascending' : 'descending' };
}

export class SteadyRows {
  rows: ProcessRow[] = [];
  private samples = 0;

  /** Takes a sample in; places change only with every other one, and never while they are held. */
  take(groups: readonly HeavyGroup[], order: ProcessOrder, compare: Compare, held: boolean): ProcessRow[] {
    const fresh = keyed(groups);
    const turn = this.samples % 2 === 0;
    this.samples += 1;
    if (!this.rows.length || (turn && !held)) this.rows = sortRows(fresh, order, compare);
    else this.rows = this.inPlace(fresh, turn);
    return this.rows;
  }

  /** Nobody was looking for a while: the next sample is the first one again. */
  restart(): void {
    this.rows = [];
    this.samples = 0;
  }

  /** The user chose another order: that counts at once. */
  sort(order: ProcessOrder, compare: Compare): ProcessRow[] {
    this.rows = sortRows(this.rows.filter(({ gone }) => !gone), order, compare);
    return this.rows;
  }

  private inPlace(fresh: readonly ProcessRow[], addsNew: boolean): ProcessRow[] {
    const byKey = new Map(fresh.map((row) => [row.key, row]));
    const kept = this.rows.map((row) => byKey.get(row.key) ?? { ...row, gone: true });
    if (!addsNew) return kept;
    const known = new Set(kept.map(({ key }) => key));
    const added = fresh.filter(({ key }) => !known.has(key));
    return [...kept, ...added].slice(0, mostRows);
  }
}
