/** What the rules of the program's rule files have found. */
import type { LanguageCode } from './records.ts';

export const furtherReasons = ['madeAgain', 'unknown', 'running', 'unread'] as const;
export type FurtherReason = (typeof furtherReasons)[number];

/** A rule as its file says it. */
export interface FurtherRule {
  id: string;
  group: string;
  name: Record<LanguageCode, string>;
  /** Places, or names with one of the markers beside them. */
  where: string[];
  names: string[];
  markers: string[];
  again: Record<LanguageCode, string>;
  /** What a person would type; empty: nothing. */
  command: string;
  /** Nothing of it can be selected: another program takes it away. */
  explained: boolean;
  idleDays: number;
}

export interface FurtherItem {
  path: string;
  bytes: number;
  /** Of these, in files that have another name elsewhere: they stay. */
  linked: number;
  days: number;
  certain: boolean;
  reason: FurtherReason;
}

/** A part of what a tool keeps, and the command that gives it back. */
export interface FurtherPart {
  name: string;
  bytes: number;
  command: string;
}

export interface FurtherGroup {
  rule: FurtherRule;
  items: FurtherItem[];
  /** Of what is explained; null when nobody tells. */
  bytes: number | null;
  parts: FurtherPart[];
}

export interface FurtherCleanables {
  groups: FurtherGroup[];
  /** Tools are still being asked how much they keep. */
  asking: boolean;
}
