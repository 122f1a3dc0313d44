/** Where each row of a folder lies on its map, in pixels. */
import { hierarchy, treemap, treemapSquarify } from 'd3-hierarchy';
import type { Box } from '../inicio/treemap.ts';
import { counts, type Row } from './rows.ts';

export interface Cell extends Box {
  row: Row;
}

export interface FolderMapLayout {
  /** Largest first. */
  cells: Cell[];
  /** What is too small to be told apart; null when nothing is. */
  small: (Box & { count: number; bytes: number }) | null;
}

interface Leaf {
  bytes: number;
  row: Row | null;
  children?: Leaf[];
}

/** A row's area must be at least this large (square pixels) to be told apart. */
const leastArea = 700;
const mostCells = 300;

export function layOutFolder(rows: readonly Row[], width: number, height: number, textScale = 1): FolderMapLayout {
  const all = rows.filter((row) => counts(row) && (row.bytes ?? 0) > 0);
  const total = all.reduce((sum, { bytes }) => sum + bytes!, 0);
  if (total <= 0 || width <= 0 || height <= 0) return { cells: [], small: null };
  const least = (total * leastArea * textScale) / (width * height);
  const bySize = [...all].sort((left, right) => right.bytes! - left.bytes!);
  const shown = bySize.filter(({ bytes }) => bytes! >= least).slice(0, mostCells);
  const rest = bySize.slice(shown.length);
  const restBytes = rest.reduce((sum, { bytes }) => sum + bytes!, 0);
  const leaves: Leaf[] = shown.map((row) => ({ bytes: row.bytes!, row }));
  if (restBytes > 0) leaves.push({ bytes: restBytes, row: null });
  const root = hierarchy<Leaf>({ bytes: 0, row: null, children: leaves }, ({ children }) => children)
    .sum(({ bytes }) => bytes)
    .sort((left, right) => Number(left.data.row === null) - Number(right.data.row === null) || right.value! - left.value!);
  const laidOut = treemap<Leaf>().tile(treemapSquarify.ratio(1.4)).size([width, height]).paddingInner(2).round(true)(root);
  const layout: FolderMapLayout = { cells: [], small: null };
  for (const { data, x0, x1, y0, y1 } of laidOut.children ?? []) {
    const box = { left: x0, top: y0, width: x1 - x0, height: y1 - y0 };
    if (data.row) layout.cells.push({ ...box, row: data.row });
    else layout.small = { ...box, count: rest.length, bytes: restBytes };
  }
  return layout;
}
