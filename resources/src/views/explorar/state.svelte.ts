/** What the view of the folders remembers while another one is shown, and moving between folders. */
import { untrack } from 'svelte';
import { language } from '../../language/language.svelte.ts';
import { fileSize } from '../../language/measures.ts';
import { plainName } from '../../names/marks.ts';
import { lastComponent } from '../../names/middle.ts';
import { onListChange } from '../../selection/leftRows.svelte.ts';
import { extend, keepListed, nothing, selectAll, toggle, type Selection } from '../../selection/selection.ts';
import { announcer } from '../../state/announcer.svelte.ts';
import { folders } from '../../state/folders.svelte.ts';
import { requests } from '../../state/requests.svelte.ts';
import { session } from '../../state/session.svelte.ts';
import { placesOfCategory } from './homeFolders.ts';
import {
  folderAbove, largestFirst, nextOrder, pathBelow, rowsOf, sortRows, totalBytes, type Order, type Row, type SortColumn,
} from './rows.ts';

/** Where the focus goes once the folder that was asked for is there. */
export interface Arrival {
  part: 'table' | 'map';
  /** The row that is wanted; null for the first one. */
  key: string | null;
}

const longestTrail = 100;

class Explorer {
  private wantedOrder = $state.raw<Order>(largestFirst);
  /** The row reached last, in the table or on the map: both show it. */
  focused = $state<string | null>(null);
  search = $state('');
  /** Taken by the table or the map. */
  arrival = $state.raw<Arrival | null>(null);
  private chosen = $state.raw<Selection>(nothing);
  private trail = $state.raw<readonly string[]>([]);

  readonly contents = $derived(folders.contents?.found ? folders.contents : null);
  readonly growth: ReadonlyMap<string, number> | null = $derived(this.growthShown());
  /** Of a folder whose growth is not known nothing can be sorted by it. */
  readonly order: Order = $derived(this.wantedOrder.column === 'growth' && !this.growth ? largestFirst : this.wantedOrder);
  private readonly all: Row[] = $derived(this.contents ? rowsOf(this.contents, folders.home, session.homeFolders) : []);
  readonly rows: Row[] = $derived(
    sortRows(this.all, this.order, language.formats.compare, this.growth ?? undefined),
  );
  readonly keys: string[] = $derived(this.rows.map(({ key }) => key));
  readonly byKey: ReadonlyMap<string, Row> = $derived(new Map(this.all.map((row) => [row.key, row])));
  /** What shares are shares of: the folder as it was measured, or more by now. */
  private readonly total: number = $derived(Math.max(this.contents?.bytes ?? 0, totalBytes(this.all)));
  readonly selection: Selection = $derived(keepListed(this.chosen, this.keys));
  readonly selected: Row[] = $derived(this.rows.filter(({ key }) => this.selection.selected.has(key)));
  /** The one tab stop of the table, and of the map where it has that row. */
  readonly stop: string | null = $derived(
    this.focused !== null && this.byKey.has(this.focused) ? this.focused : (this.keys[0] ?? null),
  );
  /** The folder above the one that is wanted, which may still be awaited. */
  readonly above: string | null = $derived(folders.path === folders.home ? null : folderAbove(folders.path));
  readonly canGoBack: boolean = $derived(this.trail.length > 0);

  constructor() {
    onListChange(() => this.keys, (keys) => (this.chosen = keepListed(this.chosen, keys)));
  }

  private growthShown(): ReadonlyMap<string, number> | null {
    const { growth } = folders;
    return growth && growth.folders.size > 0 && growth.path === this.contents?.path ? growth.folders : null;
  }

  readonly selectable = (key: string): boolean => {
    const row = this.byKey.get(key);
    return row !== undefined && row.lock === null && !requests.busy.has(key);
  };

  /** With the analysis everything goes that was reached in its folders. */
  start(): void {
    $effect.root(() => {
      $effect(() => {
        if (!session.analysed) untrack(() => this.forget());
      });
    });
  }

  private forget(): void {
    folders.forget();
    this.chosen = nothing;
    this.trail = [];
    this.focused = null;
    this.arrival = null;
    this.search = '';
  }

  /** The share of the open folder, 0 to 1. */
  share({ bytes }: Row): number {
    return this.total > 0 && bytes !== null ? Math.min(1, bytes / this.total) : 0;
  }

  sortBy(column: SortColumn): void {
    this.wantedOrder = nextOrder(this.order, column);
  }

  /** Of one that cannot be selected it is said why. */
  toggle(key: string): void {
    const row = this.byKey.get(key);
    if (row?.lock) announcer.say(lockWords(row));
    this.chosen = toggle(this.selection, key, this.selectable);
  }

  /** Up to the key in the order in which the rows are shown: the map has another one than the table. */
  extend(key: string, order: readonly string[] = this.keys): void {
    this.chosen = extend(this.selection, key, order, this.selectable);
  }

  selectAll(): void {
    this.chosen = selectAll(this.keys, this.selectable);
  }

  clear(): void {
    this.chosen = nothing;
  }

  /** Goes to a folder; what is selected stays behind. */
  open(path: string, arrival: Arrival | null = null): void {
    if (folders.path && path !== folders.path) this.trail = [...this.trail, folders.path].slice(-longestTrail);
    this.show(path, arrival);
  }

  private show(path: string, arrival: Arrival | null): void {
    this.search = '';
    folders.endSearch();
    this.arrival = arrival;
    this.focused = arrival?.key ?? null;
    if (path !== folders.contents?.path) this.chosen = nothing;
    folders.open(path);
  }

  /** The folder that is left keeps the focus. */
  up(part: Arrival['part'] | null = null): void {
    if (this.above === null) return;
    const left = folders.path;
    this.open(this.above, part && { part, key: left });
    this.focused = left;
  }

  back(part: Arrival['part'] | null = null): void {
    const path = this.trail.at(-1);
    if (path === undefined) {
      this.up(part);
      return;
    }
    this.trail = this.trail.slice(0, -1);
    const left = folders.path;
    const key = left.startsWith(`${path}/`) ? pathBelow(path, left.slice(path.length + 1).split('/')[0]!) : null;
    this.show(path, part && { part, key });
    this.focused = key;
  }

  /** From a category: into its folder where the home has one of it, else to the home with the largest of them in sight. */
  followCategory(id: string): void {
    if (!this.contents || this.contents.path !== folders.home) return;
    const [first, second] = placesOfCategory(id, folders.home, this.contents.folders, session.homeFolders);
    if (!first) return;
    if (second) this.focused = first.key;
    else this.open(first.path);
  }

  /** What is said of a folder that has been opened. */
  sentence(): string {
    if (!this.contents) return '';
    const name = this.contents.path === folders.home ? language.words.folders.home : plainName(lastComponent(this.contents.path));
    return language.words.folders.opened(name, this.rows.length, this.contents.bytes);
  }
}

export const explorer = new Explorer();

/** A share in words: what is there never reads "0%". */
export function shareText(share: number): string {
  if (share > 0 && share < 0.005) return `<\u00a0${language.formats.share(0.01)}`;
  return language.formats.share(share);
}

export function sizeText(bytes: number): string {
  return fileSize(bytes, language.formats);
}

/** Why a row cannot be selected; nothing of one that can. */
export function lockWords({ lock, state }: Row): string {
  const words = language.words.folders;
  if (lock === null) return '';
  if (lock !== 'notMeasured') return words.locks[lock];
  return state === 'measured' ? '' : words.stateWhy[state];
}
