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
  /** Its large files that are too small for cells of their own; null when there are none, or hardly any. */
  together: (Box & { gb: number; count: number }) | null;
  /** What is not shown file by file; null when nothing is left. */
  rest: (Box & { gb: number }) | null;
}

interface Leaf {
  gb: number;
  file: BigFile | null;
  /** How many files it stands for; 0 for what is not known file by file. */
  count: number;
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
      const all = files.filter((file) => categoryOf(file) === category.id);
      const own = all.filter((file) => file.gb >= leastGb);
      const small = all.filter((file) => file.gb < leastGb);
      const smallGb = small.reduce((sum, file) => sum + file.gb, 0);
      const isGroup = small.length > 1 && smallGb >= leastGb;
      const shown = own.reduce((sum, file) => sum + file.gb, isGroup ? smallGb : 0);
      // Of a size with one decimal: what is left of it has no more.
      const rest = Math.max(0, Math.round((category.gb - shown) * 10) / 10);
      const leaves: Leaf[] = own.map((file) => ({ gb: file.gb, file, count: 1 }));
      if (isGroup) leaves.push({ gb: smallGb, file: null, count: small.length });
      return { category, children: rest > 0 ? [...leaves, { gb: rest, file: null, count: 0 }] : leaves };
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
      together: null,
      rest: null,
    };
    for (const child of node.children ?? []) {
      const leaf = child.data as Leaf;
      if (leaf.file) area.files.push({ ...boxOf(child), file: leaf.file });
      else if (leaf.count) area.together = { ...boxOf(child), gb: leaf.gb, count: leaf.count };
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

/** Largest first, but what is no single file comes last, and of that the remainder. */
function restLast(left: Sortable, right: Sortable): number {
  const place = ({ data }: Sortable) => ('count' in data && data.file === null ? (data.count ? 1 : 2) : 0);
  if (place(left) !== place(right)) return place(left) - place(right);
  return (right.value ?? 0) - (left.value ?? 0);
}
