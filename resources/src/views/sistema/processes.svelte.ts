/** The rows of the heaviest applications as they stand on the page. */
import { untrack } from 'svelte';
import { language } from '../../language/language.svelte.ts';
import { machine } from '../../state/machine.svelte.ts';
import {
  busiestFirst, membersAsGroups, nextProcessOrder, restOf, SteadyRows, weighs, withActivity, withIcons,
  type HeavyGroup, type ProcessColumn, type ProcessOrder, type ProcessRow,
} from './steadyRows.ts';

/** A row of the list: a group, one of its processes, or the lighter ones of it together. */
export interface ShownRow extends ProcessRow {
  /** The key of the group that a process belongs to. */
  of?: string;
  isRest?: boolean;
}

/** As many processes of a group as are told, and room for those that have just gone. */
const mostMembers = 60;

class Processes {
  rows = $state.raw<ProcessRow[]>([]);
  order = $state.raw<ProcessOrder>(busiestFirst);
  focused = $state<string | null>(null);
  pointed = $state(false);
  hasFocus = $state(false);
  /** The groups whose processes are shown. */
  open = $state.raw<ReadonlySet<string>>(new Set());
  readonly held: boolean = $derived(this.pointed || this.hasFocus);
  readonly shown: ShownRow[] = $derived(this.rows.flatMap((row) => [row, ...this.insideOf(row)]));
  private readonly steady = new SteadyRows();
  private readonly inside = new Map<string, SteadyRows>();

  /** Run as an effect: takes every sample in as it comes. */
  follow(): void {
    const { sample } = machine;
    untrack(() => {
      if (!sample?.procs) return;
      const told: HeavyGroup[] = machine.details
        ? withIcons(machine.details.groups, sample.procs)
        : withActivity(sample.procs, machine.activity?.procs ?? []);
      const rows = this.steady.take(told.filter(weighs), this.order, language.formats.compare, this.held);
      for (const row of rows) {
        if (this.open.has(row.key)) this.takeInside(row);
      }
      this.rows = rows;
    });
  }

  /** The list goes from the screen, and with it whoever was in it. */
  leave(): void {
    this.pointed = false;
    this.hasFocus = false;
    this.steady.restart();
    this.inside.clear();
  }

  sortBy(column: ProcessColumn): void {
    this.order = nextProcessOrder(this.order, column);
    for (const steady of this.inside.values()) steady.sort(this.order, language.formats.compare);
    this.rows = this.steady.sort(this.order, language.formats.compare);
  }

  canOpen({ members, gone }: ProcessRow): boolean {
    return !gone && (members?.length ?? 0) > 1;
  }

  /** Of a process its group is meant. */
  toggle(row: ShownRow): void {
    const key = row.of ?? row.key;
    const group = this.rows.find((one) => one.key === key);
    if (!group) return;
    const open = new Set(this.open);
    if (open.delete(key)) this.inside.delete(key);
    else if (this.canOpen(group)) {
      open.add(key);
      this.takeInside(group);
    } else return;
    if (row.of) this.focused = key;
    this.open = open;
  }

  private takeInside(group: ProcessRow): void {
    const steady = this.inside.get(group.key) ?? new SteadyRows(mostMembers);
    this.inside.set(group.key, steady);
    steady.take(membersAsGroups(group), this.order, language.formats.compare, this.held);
  }

  private insideOf(group: ProcessRow): ShownRow[] {
    if (!this.open.has(group.key) || !this.canOpen(group)) return [];
    const rows = this.inside.get(group.key)?.rows ?? [];
    const inside = rows.map((row) => ({ ...row, key: `${group.key}>${row.key}`, of: group.key }));
    const rest = restOf(group);
    if (!rest) return inside;
    return [...inside, { ...rest, key: `${group.key}>rest`, of: group.key, isRest: true, name: '', pid: 0, kind: 'other', icon: '', gone: false }];
  }
}

export const processes = new Processes();
