/** What the duplicates remember while another view is shown: what stays, what is selected and how they are looked at. */
import { language } from '../../language/language.svelte.ts';
import { createSearch, foldedOnce } from '../../names/folded.ts';
import { fromHome } from '../../names/home.ts';
import type { DuplicateGroup, SharingGroup } from '../../protocol/protocol.ts';
import { onListChange } from '../../selection/leftRows.svelte.ts';
import { extend, keepListed, nothing, selectAll, selectShown, toggle, type Selection } from '../../selection/selection.ts';
import { session } from '../../state/session.svelte.ts';
import { sharing } from '../../state/sharing.svelte.ts';
import {
  foldersOfCopies, foundGroups, keepsOf, keptByRule, orderedGroups, selectInFolder, type GroupOrder, type KeepRule,
} from './choices.ts';
import {
  extraPaths, isInReference, isRemovable, keptPath, linkOf, removablePaths, selectedSize, totalWasted, type CopyFacts,
  type Keeps,
} from './duplicates.ts';

const mostFolders = 40;

class Duplicates {
  focused = $state<string | null>(null);
  /** Ids of the groups that the list has made. */
  made = $state.raw<ReadonlySet<string>>(new Set());
  search = $state('');
  ordering = $state<GroupOrder>('space');
  private byHand = $state.raw<Keeps>(new Map());
  private chosenRule = $state<KeepRule>('newest');
  private chosenReference = $state<string | null>(null);
  private chosen = $state.raw<Selection>(nothing);
  private readonly fold = foldedOnce();

  readonly facts: CopyFacts = $derived({
    sizes: session.sizes.copies, linked: session.linked, one: sharing.one, reference: this.chosenReference,
  });
  readonly all: DuplicateGroup[] = $derived(
    orderedGroups(session.disk?.dupGroups ?? [], this.ordering, language.formats.compare, this.facts),
  );
  private readonly matches = $derived(createSearch(this.search, this.fold));
  /** Those that the search finds. */
  readonly shown: DuplicateGroup[] = $derived(
    this.search.trim() ? foundGroups(this.all, (text) => this.matches(fromHome(text, session.home))) : this.all,
  );
  /** What stays of each group. */
  private readonly keeps: Keeps = $derived(
    keepsOf(this.all, { byHand: this.byHand, reference: this.chosenReference, rule: this.chosenRule }, session.copyDates),
  );
  readonly wasted: number = $derived(totalWasted(this.all, this.facts));
  /** The copies in the order shown. */
  readonly order: string[] = $derived(this.shown.flatMap(({ paths }) => paths));
  /** Whatever happens elsewhere, a kept copy is never part of the selection. */
  private readonly removable: string[] = $derived(removablePaths(this.all, this.keeps, this.facts));
  private readonly extras: string[] = $derived(extraPaths(this.shown, this.keeps, this.facts));
  readonly selection: Selection = $derived(keepListed(this.chosen, this.removable));
  private readonly inSight: ReadonlySet<string> = $derived(new Set(this.order));
  /** What is selected among the groups shown. */
  readonly selectedShown: string[] = $derived([...this.selection.selected].filter((path) => this.inSight.has(path)));
  readonly selectedHidden: number = $derived(this.selection.selected.size - this.selectedShown.length);
  readonly selectedGb: number = $derived(selectedSize(this.shown, new Set(this.selectedShown), this.facts));
  readonly hasExtras: boolean = $derived(this.extras.length > 0);
  readonly allExtrasSelected: boolean = $derived(this.extras.every((path) => this.selection.selected.has(path)));
  /** Folders that could be the one whose copies stay. */
  readonly folders: string[] = $derived.by(() => {
    const found = foldersOfCopies(this.all, session.home ?? '', mostFolders);
    return this.chosenReference === null || found.includes(this.chosenReference) ? found : [this.chosenReference, ...found];
  });

  private readonly groupOf = $derived(
    new Map(this.all.flatMap((group) => group.paths.map((path) => [path, group] as const))),
  );

  private readonly selectable = (path: string): boolean => {
    const group = this.groupOf.get(path);
    return group !== undefined && isRemovable(group, path, this.keeps, this.facts);
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

  get rule(): KeepRule {
    return this.chosenRule;
  }

  /** For all groups: what was chosen by hand gives way. */
  set rule(rule: KeepRule) {
    this.chosenRule = rule;
    this.byHand = new Map();
  }

  get reference(): string | null {
    return this.chosenReference;
  }

  set reference(folder: string | null) {
    this.chosenReference = folder;
    this.byHand = new Map();
  }

  groupAt(path: string): DuplicateGroup | undefined {
    return this.groupOf.get(path);
  }

  kept(group: DuplicateGroup): string {
    return keptPath(group, this.keeps);
  }

  isInReference(path: string): boolean {
    return isInReference(path, this.facts);
  }

  linkOf(group: DuplicateGroup, path: string): ReturnType<typeof linkOf> {
    return linkOf(group, path, this.keeps, this.facts);
  }

  /** The copy that stays leaves the selection; the one that stayed before is not selected for it. */
  keep(path: string): void {
    const group = this.groupOf.get(path);
    if (group) this.byHand = new Map(this.byHand).set(group.id, path);
  }

  /** The same of one group by a rule. */
  keepBy(group: DuplicateGroup, rule: KeepRule): void {
    this.keep(keptByRule(group, group.paths, rule, session.copyDates));
  }

  toggle(path: string): void {
    this.chosen = toggle(this.selection, path, this.selectable);
  }

  extend(path: string): void {
    this.chosen = extend(this.selection, path, this.order, this.selectable);
  }

  selectExtras(): void {
    this.chosen = this.search.trim()
      ? selectShown(this.selection, this.extras, this.selectable)
      : selectAll(this.extras, this.selectable);
  }

  /** Every copy in the folder that can go, of the groups shown; each group keeps one, elsewhere where there is one. */
  selectIn(folder: string): number {
    const { keeps, paths } = selectInFolder(this.shown, folder, this.keeps, this.chosenRule, session.copyDates);
    if (keeps.size) this.byHand = new Map([...this.byHand, ...keeps]);
    const before = this.selection.selected.size;
    this.chosen = selectShown(this.selection, paths, this.selectable);
    return this.chosen.selected.size - before;
  }

  /** What sharing is asked about: each group with the copy that stays. */
  sharingGroups(groups: readonly DuplicateGroup[] = this.all): SharingGroup[] {
    return groups.map((group) => ({ id: group.id, kept: this.kept(group) }));
  }

  /** Groups that are looked at, or of which a copy is selected. */
  get looked(): DuplicateGroup[] {
    return this.shown.filter(({ id, paths }) => this.made.has(id) || paths.some((path) => this.selection.selected.has(path)));
  }

  clear(): void {
    this.chosen = nothing;
  }
}

export const duplicates = new Duplicates();
