/** What is chosen of what applications have left behind that are gone; nothing to begin with. */
import type { LeftBehindItem } from '../../protocol/protocol.ts';
import { onListChange } from '../../selection/leftRows.svelte.ts';
import { extend, keepListed, nothing, selectAll, toggle, type Selection } from '../../selection/selection.ts';
import { leftBehind } from '../../state/leftBehind.svelte.ts';
import { totalGb } from '../../state/operations.ts';
import { requests } from '../../state/requests.svelte.ts';

class LeftBehindChoice {
  focused = $state<string | null>(null);
  private chosen = $state.raw<Selection>(nothing);

  readonly items: LeftBehindItem[] = $derived(leftBehind.items);
  readonly keys: string[] = $derived(this.items.map(({ path }) => path));
  readonly gb: number = $derived(totalGb(this.items));
  readonly selection: Selection = $derived(keepListed(this.chosen, this.keys));
  readonly selected: LeftBehindItem[] = $derived(this.items.filter(({ path }) => this.selection.selected.has(path)));
  readonly selectedGb: number = $derived(totalGb(this.selected));

  constructor() {
    onListChange(() => this.keys, (keys) => (this.chosen = keepListed(this.chosen, keys)));
  }

  private readonly selectable = (path: string): boolean => this.keys.includes(path) && !requests.busy.has(path);

  toggle(key: string): void {
    this.chosen = toggle(this.selection, key, this.selectable);
  }

  extend(key: string): void {
    this.chosen = extend(this.selection, key, this.keys, this.selectable);
  }

  selectAll(): void {
    this.chosen = selectAll(this.keys, this.selectable);
  }

  clear(): void {
    this.chosen = nothing;
  }
}

export const leftBehindChoice = new LeftBehindChoice();
