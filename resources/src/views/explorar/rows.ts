/** The rows of a folder: its folders and files together, in which order, and what may be done with each. */
import { folded } from '../../names/folded.ts';
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { FolderContents, FolderState, HomeFolders } from '../../protocol/protocol.ts';
import { isKeptFolder } from './homeFolders.ts';
import { pathBelow } from './paths.ts';

export { folderAbove, pathBelow } from './paths.ts';

export type SortColumn = 'name' | 'size' | 'files' | 'changed' | 'growth';
export type Direction = 'ascending' | 'descending';

export interface Order {
  column: SortColumn;
  direction: Direction;
}

/** Why something is not moved to Velto Trash from here. */
export type Lock = 'protected' | 'homeFolder' | 'notMeasured';

export interface Row {
  kind: 'folder' | 'file';
  /** Its path; no two rows have the same. */
  key: string;
  name: string;
  state: FolderState;
  /** Null when nobody has measured it. */
  bytes: number | null;
  /** Of a folder. */
  files: number | null;
  /** Last change; 0 when unknown. */
  changed: number;
  unreadable: number;
  linked: boolean;
  /** Of a file with several names: the same for each of them that is here. */
  inode: string | null;
  /** Of another volume: how large it is. */
  total: number | null;
  lock: Lock | null;
}

export const largestFirst: Order = { column: 'size', direction: 'descending' };

/** What counts to the size of the folder that holds it. */
export function counts({ kind, state, bytes }: Row): boolean {
  return bytes !== null && (kind === 'file' || state === 'measured' || state === 'unreadable');
}

/** There may be something to see inside. */
export function canOpen({ kind, state, bytes }: Row): boolean {
  return kind === 'folder' && (state === 'measured' || (state === 'unreadable' && (bytes ?? 0) > 0));
}

export function canExclude({ kind, state }: Row): boolean {
  return kind === 'file' || state === 'measured' || state === 'new' || state === 'unreadable';
}

function lockOf(path: string, home: string, state: FolderState, told: HomeFolders | null): Lock | null {
  if (isProtectedPath(path)) return 'protected';
  if (state !== 'measured' && state !== 'new') return 'notMeasured';
  return isKeptFolder(path, home, told) ? 'homeFolder' : null;
}

/** Of a folder that was not entered nothing is known, whatever figure came along. */
function knownBytes(state: FolderState, bytes: number | null): number | null {
  if (state === 'measured' || state === 'otherVolume') return bytes;
  return state === 'unreadable' && bytes ? bytes : null;
}

export function rowsOf(contents: FolderContents, home: string, told: HomeFolders | null): Row[] {
  const folders = contents.folders.map((folder): Row => {
    const key = pathBelow(contents.path, folder.name);
    const bytes = knownBytes(folder.state, folder.bytes);
    return {
      kind: 'folder', key, name: folder.name, state: folder.state, bytes,
      files: bytes === null || folder.state === 'otherVolume' ? null : folder.files,
      changed: folder.latest, unreadable: folder.unreadable, linked: false, inode: null, total: folder.total ?? null,
      lock: lockOf(key, home, folder.state, told),
    };
  });
  const files = contents.entries.map((entry): Row => {
    const key = pathBelow(contents.path, entry.name);
    return {
      kind: 'file', key, name: entry.name, state: 'measured', bytes: entry.bytes, files: null, changed: entry.modified,
      unreadable: 0, linked: entry.linked, inode: entry.inode ?? null, total: null, lock: isProtectedPath(key) ? 'protected' : null,
    };
  });
  return [...folders, ...files];
}

/** Of the names of one file only the first. */
function eachFileOnce(rows: readonly Row[]): readonly Row[] {
  if (!rows.some(({ inode }) => inode !== null)) return rows;
  const seen = new Set<string>();
  return rows.filter(({ inode }) => inode === null || (!seen.has(inode) && seen.add(inode)));
}

/** What all rows take that count. */
export function totalBytes(rows: readonly Row[]): number {
  return eachFileOnce(rows).reduce((sum, row) => sum + (counts(row) ? (row.bytes ?? 0) : 0), 0);
}

type Compare = (left: string, right: string) => number;

/**
 * What is unknown, or does not count here, comes last in either direction: it is neither large nor small.
 * Equal rows stand by their names, so that a list never shuffles.
 */
export function sortRows(
  rows: readonly Row[],
  { column, direction }: Order,
  compare: Compare,
  growth: ReadonlyMap<string, number> = new Map(),
): Row[] {
  const sign = direction === 'ascending' ? 1 : -1;
  if (column === 'name') return [...rows].sort((left, right) => sign * compare(left.name, right.name));
  const value = (row: Row): number | null => {
    if (column === 'size') return counts(row) ? row.bytes : null;
    if (column === 'files') return row.files;
    if (column === 'growth') return row.kind === 'folder' ? (growth.get(row.name) ?? null) : null;
    return row.changed || null;
  };
  const valued = rows.map((row) => ({ row, value: value(row) }));
  valued.sort((left, right) => {
    if (left.value === null || right.value === null) {
      return Number(left.value === null) - Number(right.value === null) || compare(left.row.name, right.row.name);
    }
    return sign * (left.value - right.value) || compare(left.row.name, right.row.name);
  });
  return valued.map(({ row }) => row);
}

/** A second press turns the order round; names start with A, everything else with the most. */
export function nextOrder(current: Order, column: SortColumn): Order {
  if (current.column === column) {
    return { column, direction: current.direction === 'ascending' ? 'descending' : 'ascending' };
  }
  return { column, direction: column === 'name' ? 'ascending' : 'descending' };
}

/** Moving this much is asked about before, though it can be taken back. */
const manyBytes = 1_000_000_000;
const manyFiles = 1000;

export interface Amount {
  bytes: number;
  files: number;
  /** Something of it was never measured. */
  isPartial: boolean;
}

export function amountOf(rows: readonly Row[]): Amount {
  return {
    bytes: eachFileOnce(rows).reduce((sum, { bytes }) => sum + (bytes ?? 0), 0),
    files: rows.reduce((sum, { kind, files }) => sum + (kind === 'file' ? 1 : (files ?? 0)), 0),
    isPartial: rows.some(({ bytes, unreadable }) => bytes === null || unreadable > 0),
  };
}

export function isLarge({ bytes, files, isPartial }: Amount): boolean {
  return isPartial || bytes > manyBytes || files > manyFiles;
}

/** The next row after `from`, round the end, whose name begins with what was typed. */
export function findTyped(rows: readonly Row[], from: number, typed: string): Row | null {
  const wanted = folded(typed);
  // What goes on being typed may still be the row that it began with.
  const first = typed.length > 1 ? Math.max(0, from) : from + 1;
  for (let step = 0; step < rows.length; step += 1) {
    const row = rows[(first + step) % rows.length]!;
    if (folded(row.name).startsWith(wanted)) return row;
  }
  return null;
}
