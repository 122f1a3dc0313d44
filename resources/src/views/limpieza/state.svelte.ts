/** What the cleanup remembers while another view is shown: what is selected. */
import { onListChange } from '../../selection/leftRows.svelte.ts';
import { extend, keepListed, nothing, selectAll, toggle, type Selection } from '../../selection/selection.ts';
import { cleanables } from '../../state/cleanables.svelte.ts';
import { further } from '../../state/further.svelte.ts';
import { totalGb } from '../../state/operations.ts';
import type { FurtherGroup } from '../../protocol/protocol.ts';
import { exactly } from '../../state/exactly.ts';
import { requests } from '../../state/requests.svelte.ts';
import { session } from '../../state/session.svelte.ts';
import { furtherGroupsOf, groupsOf, isSelectable, preselected, type Group, type Proposal } from './candidates.ts';

/** The rows of whole kinds stand among those of the items; a path begins with a slash. */
const kindPrefix = 'kind:';

export function kindKey(id: string): string {
  return kindPrefix + id;
}

class Cleanup {
  focused = $state<string | null>(null);
  /** Null until the user has chosen anything. */
  private chosen = $state.raw<Selection | null>(null);
  private listedBefore: readonly string[] = [];
  /** What has been on the list and is not: should it come back, it is not proposed a second time. */
  private left = $state.raw<ReadonlySet<string>>(new Set());

  readonly groups: Group[] = $derived([
    ...groupsOf(exactly(cleanables.list ?? [], session.sizes.cleanables, ({ path }) => path), cleanables.facts),
    ...furtherGroupsOf(further.groups ?? [], cleanables.list ?? []),
  ]);
  /** What other programs take away. */
  readonly explained: FurtherGroup[] = $derived((further.groups ?? []).filter(({ rule }) => rule.explained));
  readonly items: Proposal[] = $derived(this.groups.flatMap(({ items }) => items));
  readonly gb: number = $derived(totalGb(this.items));
  /** The rows in the order shown. */
  readonly keys: string[] = $derived(
    this.groups.flatMap(({ id, items }) => [kindKey(id), ...items.map(({ path }) => path)]),
  );
  private readonly selectablePaths: string[] = $derived(this.items.filter(isSelectable).map(({ path }) => path));
  private readonly selectableSet: ReadonlySet<string> = $derived(new Set(this.selectablePaths));
  readonly selection: Selection = $derived(
    keepListed(this.chosen ?? { selected: preselected(this.groups, this.left), anchor: null }, this.selectablePaths),
  );
  readonly selectedItems: Proposal[] = $derived(this.items.filter(({ path }) => this.selection.selected.has(path)));
  readonly selectedGb: number = $derived(totalGb(this.selectedItems));

  /** Chosen by the user and by nobody else, and all of it is made again: it may be deleted for good. */
  readonly mayDeleteNow: boolean = $derived(
    this.chosen !== null && this.selectedItems.length > 0 && this.selectedItems.every(({ certain, further }) => certain && !further),
  );

  private readonly selectable = (path: string): boolean => this.selectableSet.has(path) && !requests.busy.has(path);

  constructor() {
    onListChange(() => this.selectablePaths, (listed) => this.noteList(listed));
  }

  private noteList(listed: readonly string[]): void {
    const there = new Set(listed);
    const gone = this.listedBefore.filter((path) => !there.has(path));
    this.listedBefore = listed;
    if (gone.length) this.left = new Set([...this.left, ...gone]);
    if (this.chosen) this.chosen = keepListed(this.chosen, listed);
  }

  selectedIn(group: Group): number {
    return group.items.filter(({ path }) => this.selection.selected.has(path)).length;
  }

  /** A kind is on when everything of it that can be selected is. */
  isOn(group: Group): boolean | 'some' {
    const count = this.selectedIn(group);
    if (count === 0) return false;
    return count === group.items.filter(isSelectable).length ? true : 'some';
  }

  toggle(key: string): void {
    const group = this.groups.find(({ id }) => kindKey(id) === key);
    if (group) this.toggleGroup(group);
    else this.chosen = toggle(this.selection, key, this.selectable);
  }

  private toggleGroup(group: Group): void {
    const paths = group.items.map(({ path }) => path).filter(this.selectable);
    const rest = [...this.selection.selected].filter((path) => !paths.includes(path));
    this.chosen = { selected: new Set(this.isOn(group) === true ? rest : [...rest, ...paths]), anchor: null };
  }

  extend(key: string): void {
    this.chosen = extend(this.selection, key, this.keys, this.selectable);
  }

  selectAll(): void {
    this.chosen = selectAll(this.selectablePaths, this.selectable);
  }

  clear(): void {
    this.chosen = nothing;
  }

  /** The paths that a row stands for: its own, or those of its kind. */
  pathsOf(key: string): string[] {
    const group = this.groups.find(({ id }) => kindKey(id) === key);
    return group ? group.items.map(({ path }) => path) : [key];
  }
}

export const cleanup = new Cleanup();
