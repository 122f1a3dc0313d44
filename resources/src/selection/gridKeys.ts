import { hasStrayBytes } from '../names/bytes.ts';

/**
 * Keys of a list with one tab stop. Rows carry `data-key`; the actions inside a row are reached
 * with the right arrow and left with the left one.
 */
export interface ListActions {
  /** The keys of the rows, in the order shown. */
  order: readonly string[];
  focused: string | null;
  focus(key: string): void;
  toggle(key: string): void;
  extend(key: string): void;
  selectAll(): void;
  clear(): void;
  remove(): void;
  copy(): void;
  /** Any other key of the list; answers whether it was taken. */
  other?(event: KeyboardEvent): boolean;
}

const rowsPerPage = 10;

/** The row of a key inside `list`. */
export function rowWithKey(list: ParentNode | null | undefined, key: string): HTMLElement | null {
  if (!list) return null;
  // Selectors know no U+0000, which stands for a byte of a name that is no text.
  if (!hasStrayBytes(key)) return list.querySelector<HTMLElement>(`[data-key="${CSS.escape(key)}"]`);
  return [...list.querySelectorAll<HTMLElement>('[data-key]')].find((row) => row.dataset.key === key) ?? null;
}

function target(event: KeyboardEvent, index: number, count: number): number | null {
  switch (event.key) {
    case 'ArrowDown':
      return index + 1;
    case 'ArrowUp':
      return index - 1;
    case 'PageDown':
      return index + rowsPerPage;
    case 'PageUp':
      return index - rowsPerPage;
    case 'Home':
      return 0;
    case 'End':
      return count - 1;
    default:
      return null;
  }
}

/** Moves between a row and the buttons inside it; answers whether the key was one of those. */
function moveInsideRow(event: KeyboardEvent): boolean {
  if (event.key !== 'ArrowRight' && event.key !== 'ArrowLeft') return false;
  const from = event.target as HTMLElement;
  const row = from.closest<HTMLElement>('[data-key]');
  if (!row) return false;
  const stops = [row, ...row.querySelectorAll<HTMLElement>('button')];
  const next = stops.indexOf(from) + (event.key === 'ArrowRight' ? 1 : -1);
  stops[next]?.focus();
  return true;
}

function moveBetweenRows(event: KeyboardEvent, actions: ListActions): boolean {
  const index = actions.focused === null ? -1 : actions.order.indexOf(actions.focused);
  const wanted = target(event, index, actions.order.length);
  if (wanted === null) return false;
  const key = actions.order[Math.min(Math.max(wanted, 0), actions.order.length - 1)];
  if (key === undefined) return false;
  if (event.shiftKey) {
    if (actions.focused !== null) actions.extend(actions.focused);
    actions.extend(key);
  }
  actions.focus(key);
  return true;
}

/**
 * A row's own menu, where it has one. A letter asks for it: a Mac's keyboards have no menu key, and WebKitGTK answers that
 * key itself, with an empty menu in the window's corner, before the page hears of it.
 */
function openMenu(event: KeyboardEvent): boolean {
  return !event.target!.dispatchEvent(new MouseEvent('contextmenu', { bubbles: true, cancelable: true }));
}

function act(event: KeyboardEvent, actions: ListActions): boolean {
  const command = (event.metaKey || event.ctrlKey) && !event.altKey;
  const key = event.key.toLowerCase();
  if (command && key === 'a') actions.selectAll();
  else if (command && key === 'c') actions.copy();
  else if (command) return false;
  else if (event.key === 'Escape') actions.clear();
  else if (event.key === 'Delete' || event.key === 'Backspace') actions.remove();
  else if (key === 'm' && openMenu(event)) return true;
  else if (event.key === ' ' && actions.focused !== null) {
    if (event.shiftKey) actions.extend(actions.focused);
    else actions.toggle(actions.focused);
  } else return actions.other?.(event) ?? false;
  return true;
}

/**
 * The column headers belong to the list's one tab stop: up from the first row, left and right
 * between them, down to the row again. Answers whether the key was meant for them.
 */
export function handleHeaderKey(event: KeyboardEvent, grid: HTMLElement, row: HTMLElement | null): boolean {
  const headers = [...grid.querySelectorAll<HTMLElement>('[role="columnheader"] button')];
  const index = headers.indexOf(event.target as HTMLElement);
  let next: HTMLElement | null | undefined;
  if (index < 0) {
    const isFirst = row !== null && event.target === row && !row.previousElementSibling?.matches('[data-key]');
    if (event.key !== 'ArrowUp' || event.shiftKey || !isFirst) return false;
    next = grid.querySelector<HTMLElement>('[aria-sort$="ending"] button') ?? headers[0];
  } else if (event.key === 'ArrowRight') next = headers[index + 1];
  else if (event.key === 'ArrowLeft') next = headers[index - 1];
  else if (event.key === 'ArrowDown') next = row;
  else return true;
  event.preventDefault();
  next?.focus();
  return true;
}

export function handleListKey(event: KeyboardEvent, actions: ListActions): void {
  const inButton = (event.target as HTMLElement).matches('button');
  const pressesButton = inButton && (event.key === ' ' || event.key === 'Enter');
  if (pressesButton) return;
  if (moveBetweenRows(event, actions) || moveInsideRow(event) || act(event, actions)) event.preventDefault();
}
