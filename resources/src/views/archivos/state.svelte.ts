/** What the list of large files remembers while another view is shown. */
import { language } from '../../language/language.svelte.ts';
import type { BigFile } from '../../protocol/protocol.ts';
import { foldedOnce } from '../../names/folded.ts';
import { onListChange } from '../../selection/leftRows.svelte.ts';
import { extend, keepListed, nothing, selectShown, toggle, type Selection } from '../../selection/selection.ts';
import { session } from '../../state/session.svelte.ts';
import { kindOf, type FileKind } from './kinds.ts';
import { everything, filterFiles, largestFirst, sortFiles, type Filter, type Order } from './filtering.ts';

class LargeFiles {
  filter = $state.raw<Filter>(everything);
  order = $state.raw<Order>(largestFirst);
  focused = $state<string | null>(null);
  private chosen = $state.raw<Selection>(nothing);

  readonly all: BigFile[] = $derived(session.files);
  private readonly fold = $derived.by(() => {
    void this.all; // the paths of an earlier analysis are forgotten
    return foldedOnce();
  });
  /** Sorted once, not again with each key of the search. */
  private readonly sorted: BigFile[] = $derived(
    sortFiles(this.all, this.order, language.formats.compare, (file) => kindName(kindOf(file))),
  );
  readonly shown: BigFile[] = $derived(filterFiles(this.sorted, this.filter, this.fold));
  readonly keys: string[] = $derived(this.shown.map(({ path }) => path));
  private readonly listed: string[] = $derived(this.all.map(({ path }) => path));
  /** Also of what the search hides. */
  readonly selection: Selection = $derived(keepListed(this.chosen, this.listed));
  /** What is selected and in sight: nothing else is ever removed. */
  readonly selectedFiles: BigFile[] = $derived(this.shown.filter(({ path }) => this.selection.selected.has(path)));
  readonly hiddenSelected: number = $derived(this.selection.selected.size - this.selectedFiles.length);
  readonly selectedGb: number = $derived(this.selectedFiles.reduce((sum, { gb }) => sum + gb, 0));
  readonly largest: number = $derived(this.all.reduce((most, { gb }) => Math.max(most, gb), 0.1));
  /** What of the rows shown can be selected is: all, some or none of it. */
  readonly isAllSelected: boolean | 'some' = $derived.by(() => {
    const count = this.keys.filter(this.selectable).length;
    if (this.selectedFiles.length === 0) return false;
    return this.selectedFiles.length === count ? true : 'some';
  });
  readonly isFiltered: boolean = $derived(
    this.filter.search.trim() !== '' || this.filter.kind !== 'any' || this.filter.age !== 'any' || this.filter.least > 0 ||
      this.filter.category !== 'any',
  );
  private readonly locked: ReadonlySet<string> = $derived(
    new Set(this.all.filter(({ isProtected }) => isProtected).map(({ path }) => path)),
  );

  private readonly selectable = (path: string): boolean => !this.locked.has(path);

  constructor() {
    onListChange(() => this.listed, (listed) => (this.chosen = keepListed(this.chosen, listed)));
  }

  narrow(change: Partial<Filter>): void {
    this.filter = { ...this.filter, ...change };
  }

  /** Before the first key of a search, which then finds the paths folded. */
  prepareSearch(): void {
    for (const { path } of this.all) this.fold(path);
  }

  toggle(path: string): void {
    this.chosen = toggle(this.selection, path, this.selectable);
  }

  extend(path: string): void {
    this.chosen = extend(this.selection, path, this.keys, this.selectable);
  }

  selectAll(): void {
    this.chosen = selectShown(this.selection, this.keys, this.selectable);
  }

  toggleAll(): void {
    if (this.isAllSelected === true) this.clear();
    else this.selectAll();
  }

  clear(): void {
    this.chosen = nothing;
  }

  /** Shows a file that another view pointed at, whatever the filter was. */
  pointAt(path: string): void {
    if (!this.all.some((file) => file.path === path)) return;
    if (!this.keys.includes(path)) this.narrow(everything);
    this.focused = path;
  }
}

export function kindName(kind: FileKind): string {
  return language.words.lists.kinds[kind];
}

export const largeFiles = new LargeFiles();
