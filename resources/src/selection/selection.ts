/** Selecting rows of a list. The focused row is not the selection; every function answers anew. */
export interface Selection {
  readonly selected: ReadonlySet<string>;
  /** Where an extension with Shift starts. */
  readonly anchor: string | null;
}

export const nothing: Selection = { selected: new Set(), anchor: null };

export function toggle(selection: Selection, key: string, selectable: (key: string) => boolean): Selection {
  if (!selectable(key)) return selection;
  const selected = new Set(selection.selected);
  if (!selected.delete(key)) selected.add(key);
  return { selected, anchor: key };
}

/** Adds everything between the anchor and the key, in the order shown. */
export function extend(
  selection: Selection,
  key: string,
  order: readonly string[],
  selectable: (key: string) => boolean,
): Selection {
  const start = selection.anchor === null ? -1 : order.indexOf(selection.anchor);
  const end = order.indexOf(key);
  if (end < 0) return selection;
  const from = start < 0 ? end : Math.min(start, end);
  const to = start < 0 ? end : Math.max(start, end);
  const range = order.slice(from, to + 1).filter(selectable);
  return {
    selected: new Set([...selection.selected, ...range]),
    anchor: start < 0 ? key : selection.anchor,
  };
}

/** Everything shown; what a search hides stays as it is. */
export function selectShown(selection: Selection, order: readonly string[], selectable: (key: string) => boolean): Selection {
  return { selected: new Set([...selection.selected, ...order.filter(selectable)]), anchor: null };
}

export function selectAll(order: readonly string[], selectable: (key: string) => boolean): Selection {
  return { selected: new Set(order.filter(selectable)), anchor: null };
}

/** Only what is listed is ever selected: what left the list leaves the selection. */
export function keepListed(selection: Selection, order: readonly string[]): Selection {
  const shown = new Set(order);
  const selected = new Set([...selection.selected].filter((key) => shown.has(key)));
  const anchor = selection.anchor !== null && shown.has(selection.anchor) ? selection.anchor : null;
  const unchanged = selected.size === selection.selected.size && anchor === selection.anchor;
  return unchanged ? selection : { selected, anchor };
}
