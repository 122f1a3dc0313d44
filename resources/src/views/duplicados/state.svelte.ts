/** What the duplicates remember while another view is shown: what stays and what is selected. */
import { language } from '../../language/language.svelte.ts';
import type { DuplicateGroup } from '../../protocol/protocol.ts';
import { onListChange } from '../../selection/leftRows.svelte.ts';
import { extend, keepListed, nothing, selectAll, toggle, type Selection } from '../../selection/selection.ts';
import { session } from '../../state/session.svelte.ts';
import {
  extraPaths, isRemovable, keptPath, linkOf, mostWastefulFirst, removablePaths, selectedSize, totalWasted, type CopyFacts,
  type Keeps,
} from './duplicates.ts';

class Duplicates {
  focused = $state<string | null>(null);
  private keeps = $state.raw<Keeps>(new Map());
  private chosen = $state.raw<Selection>(nothing);

  readonly facts: CopyFacts = $derived({ sizes: session.sizes.copies, linked: session.linked });
  readonly all: DuplicateGroup[] = $derived(
    mostWastefulFirst(session.disk?.dupGroups ?? [], language.formats.compare, this.facts),
  );
  readonly wasted: number = $derived(totalWasted(this.all, this.facts));
  /** The copies in the order shown. */
  readonly order: string[] = $derived(this.all.flatMap(({ paths }) => paths));
  /** Whatever happens elsewhere, a kept copy is never part of the selection. */
  private readonly removable: string[] = $derived(removablePaths(this.all, this.keeps));
  private readonly extras: string[] = $derived(extraPaths(this.all, this.keeps, this.facts));
  readonly selection: Selection = $derived(keepListed(this.chosen, this.removable));
  readonly selectedGb: number = $derived(selectedSize(this.all, this.selection.selected, this.facts));
  readonly hasExtras: boolean = $derived(this.extras.length > 0);
  readonly allExtrasSelected: boolean = $derived(this.extras.every((path) => this.selection.selected.has(path)));

  private readonly groupOf = $derived(
    new Map(this.all.flatMap((group) => group.paths.map((path) => [path, group] as const))),
  );

  private readonly selectable = (path: string): boolean => {
    const group = this.groupOf.get(path);
    return group !== undefined && isRemovable(group, path, this.keeps);
  };

  /** There were some in the analysis that is shown: what is not listed any more was removed. */
  hadGroups = $state(false);
  private stamp: number | undefined;

  constructor() {
    onListChange(
      () => this.all.map(({ id }) => id).concat(String(session.stamp ?? '')),
      () => {
        this.hadGroups = this.all.length > 0 || (this.hadGroups && this.stamp === session.stamp);
        this.stamp = session.stamp;
      },
    );
    onListChange(() => this.removable, (removable) => (this.chosen = keepListed(this.chosen, removable)));
  }

  groupAt(path: string): DuplicateGroup | undefined {
    return this.groupOf.get(path);
  }

  kept(group: DuplicateGroup): string {
    return keptPath(group, this.keeps);
  }

  linkOf(group: DuplicateGroup, path: string): ReturnType<typeof linkOf> {
    return linkOf(group, path, this.keeps, this.facts);
  }

  /** The copy that stays leaves the selection; the one that stayed before is not selected for it. */
  keep(path: string): void {
    const group = this.groupOf.get(path);
    if (group) this.keeps = new Map(this.keeps).set(group.id, path);
  }

  toggle(path: string): void {
    this.chosen = toggle(this.selection, path, this.selectable);
  }

  extend(path: string): void {
    this.chosen = extend(this.selection, path, this.order, this.selectable);
  }

  selectExtras(): void {
    this.chosen = selectAll(this.extras, this.selectable);
  }

  clear(): void {
    this.chosen = nothing;
  }
}

export const duplicates = new Duplicates();
