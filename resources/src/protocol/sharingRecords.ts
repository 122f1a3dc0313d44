/** What is said of duplicates that share their space instead of being removed. */

/** A group and the copy whose blocks the others get; without one the recommended copy. */
export interface SharingGroup {
  id: string;
  kept?: string;
}

export const sharingReasons = [
  'one', 'linked', 'changed', 'gone', 'refused', 'otherDisk', 'cannot', 'closed', 'inUse', 'keptFile', 'stopped', 'other',
] as const;
/** Why a copy stays as it is. */
export type SharingReason = (typeof sharingReasons)[number];

export interface SharingCopy {
  path: string;
  /** That come back, or have come back. */
  bytes: number;
  /** Else at most so much. */
  exact: boolean;
  /** Absent: it can share, or does now. */
  reason?: SharingReason;
}

export interface Sharable {
  request: number;
  /** By id. */
  groups: ReadonlyMap<string, { kept: string; copies: SharingCopy[] }>;
}

/** Copies that are done, and bytes of the one under way. */
export interface SharingProgress {
  done: number;
  of: number;
  bytes: number;
}

export interface SharingEnd {
  files: number;
  bytes: number;
  exact: boolean;
  stopped: boolean;
  stays: SharingCopy[];
}
