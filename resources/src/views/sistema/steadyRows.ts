/**
 * The heaviest applications as rows that can be read: figures change with every sample, places at
 * most with every other one, and not at all while the pointer or the focus is on one of them.
 */
import type { GroupActivity, GroupMember, NamedGroup, ProcessGroup } from '../../protocol/protocol.ts';

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
  /** The heaviest of its processes, where there are several; left out where they are not told. */
  members?: readonly GroupMember[];
}

export interface ProcessRow extends HeavyGroup {
  key: string;
  /** No longer among the heaviest: its place is kept until places may change. */
  gone: boolean;
}

export const busiestFirst: ProcessOrder = { column: 'cpu', direction: 'descending' };

/** While places are held, rows that are gone would gather without end. */
const mostRows = 24;

type Traffic = Pick<GroupActivity, 'read' | 'written'>;

function diskOf({ read, written }: Traffic): Pick<HeavyGroup, 'disk'> {
  return read !== undefined && written !== undefined ? { disk: read + written } : {};
}

/** Groups that come with their processes; the sample they belong to has most of their icons. */
export function withIcons(groups: readonly NamedGroup[], sampled: readonly ProcessGroup[]): HeavyGroup[] {
  const icons = new Map(sampled.map(({ pid, icon }) => [pid, icon]));
  return groups.map(({ name, pid, kind, procs, cpu, mem, canQuit, members, icon, ...traffic }) => ({
    name, pid, kind, procs, cpu, mem, members,
    icon: icon ?? icons.get(pid) ?? '',
    ...diskOf(traffic),
    ...(canQuit && kind === 'app' && { canQuit }),
  }));
}

/** The processes of a group as rows of their own. */
export function membersAsGroups({ members = [] }: HeavyGroup): HeavyGroup[] {
  return members.map(({ pid, name, cpu, mem, ...traffic }) => ({
    name, pid, cpu, mem, kind: 'other', procs: 1, icon: '', ...diskOf(traffic),
  }));
}

/** What of a group is not told one by one, so that its parts make up its sum; null where all is. */
export function restOf(group: HeavyGroup): { procs: number; cpu: number; mem: number } | null {
  const { members = [], procs, cpu, mem } = group;
  if (!members.length || procs <= members.length) return null;
  const sum = (figure: 'cpu' | 'mem') => members.reduce((total, one) => total + one[figure], 0);
  return { procs: procs - members.length, cpu: Math.max(0, cpu - sum('cpu')), mem: Math.max(0, mem - sum('mem')) };
}

export function withActivity(groups: readonly ProcessGroup[], activity: readonly GroupActivity[]): HeavyGroup[] {
  const byPid = new Map(activity.map((each) => [each.pid, each]));
  return groups.map((group) => {
    const told = byPid.get(group.pid);
    if (!told) return group;
    return { ...group, ...diskOf(told), ...(told.canQuit && group.kind === 'app' && { canQuit: true }) };
  });
}

type Compare = (left: string, right: string) => number;

/** An application keeps its row when the process that stands for it changes; two of one name have two rows. */
export function keyed(groups: readonly HeavyGroup[]): ProcessRow[] {
  const seen = new Map<string, number>();
  return groups.map((group) => {
    const name = group.members ? `name:${group.name}` : `pid:${group.pid}:${group.name}`;
    const key = group.kind === 'app' ? `app:${group.name}` : name;
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

  constructor(private readonly most: number = mostRows) {}

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
    return [...kept, ...added].slice(0, this.most);
  }
}
