/** The keys that the table and the map of a folder have in common. */
import { copyRows, openRow, removeRows } from './actions.ts';
import { findTyped } from './rows.ts';
import { explorer, type Arrival } from './state.svelte.ts';

/** What is typed within a second of each other is one name. */
const pause = 1000;
let typed = '';
let typedAt = 0;

/** Backspace is the way up here, and Alt with an arrow what it is in every browser of files. */
export function handleWayKey(event: KeyboardEvent, part: Arrival['part']): boolean {
  if (event.ctrlKey) return false;
  const up = (event.key === 'Backspace' && !event.metaKey) || (event.key === 'ArrowUp' && (event.altKey || event.metaKey));
  const back = event.key === 'ArrowLeft' && event.altKey;
  if (!up && !back) return false;
  if (up) explorer.up(part);
  else explorer.back(part);
  event.preventDefault();
  return true;
}

/** Letters jump to the next name that begins with them. */
export function handleTyping(event: KeyboardEvent, focus: (key: string) => void): boolean {
  if (event.key.length !== 1 || event.key === ' ' || event.ctrlKey || event.metaKey || event.altKey) return false;
  typed = event.timeStamp - typedAt < pause ? typed + event.key : event.key;
  typedAt = event.timeStamp;
  const found = findTyped(explorer.rows, explorer.stop === null ? -1 : explorer.keys.indexOf(explorer.stop), typed);
  if (found) focus(found.key);
  return true;
}

/** What the keys of a list do with the rows, which it shows in this order. */
export function listActions(part: Arrival['part'], focus: (key: string) => void, order: readonly string[]) {
  return {
    order,
    focused: explorer.stop,
    focus,
    toggle: (key: string) => explorer.toggle(key),
    extend: (key: string) => explorer.extend(key, order),
    selectAll: () => explorer.selectAll(),
    clear: () => explorer.clear(),
    remove: () => void removeRows(explorer.selected),
    copy: () => {
      const row = explorer.stop === null ? undefined : explorer.byKey.get(explorer.stop);
      copyRows(explorer.selected.length ? explorer.selected : row ? [row] : []);
    },
    other: (event: KeyboardEvent) => {
      const row = explorer.stop === null ? undefined : explorer.byKey.get(explorer.stop);
      if (event.key === 'Enter' && row) {
        openRow(row, part);
        return true;
      }
      return handleTyping(event, focus);
    },
  };
}
