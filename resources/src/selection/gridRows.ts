/** What every list of rows does at its rows, whatever it lists. */
import { rowWithKey } from './gridKeys.ts';

export interface FocusedRows {
  /** The row reached last. */
  focused: string | null;
  readonly keys: readonly string[];
}

export interface ChosenRows extends FocusedRows {
  toggle(key: string): void;
  extend(key: string): void;
}

/** The one tab stop: the row reached last, or the first one. */
export function tabStop({ focused, keys }: FocusedRows): string | null {
  return focused !== null && keys.includes(focused) ? focused : (keys[0] ?? null);
}

export function focusRow(rows: FocusedRows, grid: HTMLElement, key: string): void {
  rows.focused = key;
  rowWithKey(grid, key)?.focus();
}

/** A press anywhere on a row but on its buttons: with Shift it extends the selection, with Ctrl or Command it adds. */
export function pressRow(rows: ChosenRows, grid: HTMLElement, event: MouseEvent, key: string): void {
  if ((event.target as HTMLElement).closest('button')) return;
  if (event.shiftKey) rows.extend(key);
  else if (event.metaKey || event.ctrlKey) rows.toggle(key);
  focusRow(rows, grid, key);
}

/** A press on a row's tick, which the row sees as well. */
export function tickRow(rows: ChosenRows, event: MouseEvent, key: string): void {
  if (!event.shiftKey && !event.metaKey && !event.ctrlKey) rows.toggle(key);
}
