/** What has changed from one analysis to a later one, in whole bytes; times are seconds since 1970. */
import type { GrowthSince } from './folderRecords.ts';

export const growthKinds = ['grown', 'new', 'shrunk', 'gone'] as const;
export type GrowthKind = (typeof growthKinds)[number];

/** No byte is told twice: what folders below tell for themselves is no part of it. */
export interface GrowthChange {
  path: string;
  /** Below zero when it has shrunk or gone. */
  bytes: number;
  kind: GrowthKind;
}

export interface GrowthRename {
  from: string;
  to: string;
  /** That the folder holds now; by how much it has changed is told apart. */
  bytes: number;
}

export interface Growth {
  /** As it was asked for. */
  asked: GrowthSince;
  /** The analyses that were really compared. */
  since: number;
  until: number;
  /** What can be compared with, newest first; empty when there is nothing yet. */
  available: number[];
  home: string;
  /** Of the whole home, later minus earlier, in what both have measured. */
  bytes: number;
  grown: GrowthChange[];
  shrunk: GrowthChange[];
  renamed: GrowthRename[];
}
