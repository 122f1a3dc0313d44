/**
 * The folders of the analysis and what is in one of them. Unlike the older records these tell whole
 * bytes, as the disk allocates them; times are seconds since 1970.
 */

/** What the analysis has made of a folder; "new" has appeared since. */
export const folderStates = [
  'measured', 'new', 'unreadable', 'withheld', 'excluded', 'own', 'otherVolume', 'alreadyWalked',
] as const;
export type FolderState = (typeof folderStates)[number];

/** A folder directly inside the one that was asked for. */
export interface SubFolder {
  name: string;
  /** With everything below it; null when it was not measured. Of another volume: what is used there. */
  bytes: number | null;
  files: number;
  /** Last change of anything in it; 0 when unknown. */
  latest: number;
  state: FolderState;
  /** Items inside that could not be read. */
  unreadable: number;
  /** Of another volume: how large it is. */
  total?: number;
}

/** A regular file directly inside it, read when it was asked for. */
export interface FileEntry {
  name: string;
  bytes: number;
  /** 0 when unknown. */
  modified: number;
  /** It has several names, and is counted under one of them only. */
  linked: boolean;
  /** Of one with several names: what it has in common with the others in its folder; missing when unknown. */
  inode?: string;
}

export interface FolderContents {
  /** The number that came with the question. */
  request: number;
  path: string;
  /** False when there is nothing to show; `state` says why. */
  found: boolean;
  /** "unmeasured": no analysis has been there; with `measured` 0 the last one has no folders at all. "gone": it was measured, and is not there now. */
  state: FolderState | 'unmeasured' | 'gone';
  bytes: number;
  files: number;
  unreadable: number;
  latest: number;
  /** When the analysis was made; 0 without one that has folders. */
  measured: number;
  folders: SubFolder[];
  entries: FileEntry[];
  /** Links and special files, which are not listed. */
  more: number;
}

/** The folders of this home, whatever they are called here. */
export interface HomeFolders {
  /** Not to be moved as a whole: the system or programs look for them, or for something inside. */
  kept: ReadonlySet<string>;
  /** The folders that are a category's own, by its id; one that has none is not there. */
  categories: ReadonlyMap<string, readonly string[]>;
}

export interface FoundFolder {
  path: string;
  bytes: number;
  files: number;
  latest: number;
}

export interface FolderSearch {
  request: number;
  text: string;
  /** How many there are; `found` holds the largest of them. */
  total: number;
  found: FoundFolder[];
}

export type GrowthSince = 'last' | 'week' | 'month' | number;

/** By how much the folders inside `path` have grown (or, below zero, shrunk), by name. */
export interface FolderGrowth {
  path: string;
  since: number;
  folders: ReadonlyMap<string, number>;
}
