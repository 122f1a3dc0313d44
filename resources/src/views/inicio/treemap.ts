/** Where each category, big file and remainder lies on the map, in pixels. */
import { hierarchy, treemap, treemapSquarify } from 'd3-hierarchy';
import type { BigFile, Category, Measurement } from '../../protocol/protocol.ts';
import { categoryOf } from './parents.ts';

export interface Box {
  left: number;
  top: number;
  width: number;
  height: number;
}

export interface FileCell extends Box {
  file: BigFile;
}

export interface CategoryArea extends Box {
  id: string;
  gb: number;
  hasHeader: boolean;
  files: FileCell[];
  /** What is not shown file by file; null when nothing is left. */
  rest: (Box & { gb: number }) | null;
}

interface Leaf {
  gb: number;
  file: BigFile | null;
}

interface Branch {
  category: Category;
  children: Leaf[];
}

interface Root {
  children: Branch[];
}

const headerHeight = 26;
/** A file's area must be at least this large (square pixels) to be a cell of its own. */
const leastArea = 900;

const elsewhere = 'sistema';

/** What of the categories no walk has seen file by file, in GB; it is all in one of them. */
export function unmeasuredIn(categories: readonly Category[], { disk, home }: Measurement): number {
  const holder = categories.find(({ id }) => id === elsewhere);
  const unseen = Math.max(0, disk.total - disk.free - home) / 1e9;
  return Math.min(holder?.gb ?? 0, Math.round(unseen * 10) / 10);
}

/** The categories as far as they were measured. */
export function withoutUnmeasured(categories: readonly Category[], unmeasured: number): Category[] {
  return categories.map((category) =>
    category.id === elsewhere ? { ...category, gb: Math.round((category.gb - unmeasured) * 10) / 10 } : category,
  );
}

/** One branch a category: its big files that are large enough to see, and one remainder. */
export function branches(categories: readonly Category[], files: readonly BigFile[], leastGb: number): Branch[] {
  return categories
    .map((category) => {
      const own = files.filter((file) => file.gb >= leastGb && categoryOf(file) === category.id);
      const shown = own.reduce((sum, file) => sum + file.gb, 0);
      // Of a size with one decimal: what is left of it has no more.
      const rest = Math.max(0, Math.round((category.gb - shown) * 10) / 10);
      const leaves: Leaf[] = own.map((file) => ({ gb: file.gb, file }));
      return { category, children: rest > 0 ? [...leaves, { gb: rest, file: null }] : leaves };
    })
    .filter(({ children }) => children.length > 0);
}

/** The header of an area is as tall as its text, so the text size comes along. */
export function layOut(
  categories: readonly Category[],
  files: readonly BigFile[],
  width: number,
  height: number,
  textScale = 1,
): CategoryArea[] {
  const used = categories.reduce((sum, category) => sum + category.gb, 0);
  if (used <= 0 || width <= 0 || height <= 0) return [];
  const header = headerHeight * textScale;
  const leastGb = (used * leastArea * textScale) / (width * height);
  const data: Root = { children: branches(categories, files, leastGb) };
  const root = hierarchy<Root | Branch | Leaf>(data, (node) => ('children' in node ? node.children : undefined))
    .sum((node) => ('gb' in node ? node.gb : 0))
    .sort(restLast);
  const laidOut = treemap<Root | Branch | Leaf>()
    .tile(treemapSquarify.ratio(1.4))
    .size([width, height])
    .paddingInner((node) => (node.depth === 0 ? 6 : 2))
    .paddingTop((node) => (node.depth === 1 && fitsHeader(node, header) ? header : 0))
    .round(true)(root);

  return (laidOut.children ?? []).map((node) => {
    const branch = node.data as Branch;
    const area: CategoryArea = {
      ...boxOf(node),
      id: branch.category.id,
      gb: branch.category.gb,
      hasHeader: fitsHeader(node, header),
      files: [],
      rest: null,
    };
    for (const child of node.children ?? []) {
      const leaf = child.data as Leaf;
      if (leaf.file) area.files.push({ ...boxOf(child), file: leaf.file });
      else area.rest = { ...boxOf(child), gb: leaf.gb };
    }
    return area;
  });
}

interface Placed {
  x0: number;
  x1: number;
  y0: number;
  y1: number;
}

function fitsHeader(node: Placed, header: number): boolean {
  return node.x1 - node.x0 >= header * 2.4 && node.y1 - node.y0 >= header * 1.6;
}

function boxOf({ x0, x1, y0, y1 }: Placed): Box {
  return { left: x0, top: y0, width: x1 - x0, height: y1 - y0 };
}

interface Sortable {
  value?: number;
  data: Root | Branch | Leaf;
}

/** Largest first, but the remainder of a category always comes last. */
function restLast(left: Sortable, right: Sortable): number {
  const isRest = (node: Sortable) => 'file' in node.data && node.data.file === null;
  if (isRest(left) !== isRest(right)) return isRest(left) ? 1 : -1;
  return (right.value ?? 0) - (left.value ?? 0);
}
