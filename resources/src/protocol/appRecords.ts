/** What is told of installed applications, what they left behind and how they go. */
export interface InstalledApp {
  bid: string;
  name: string;
  version: string;
  exec: string;
  path: string;
  gb: number;
  /** 0 when unknown. */
  last: number;
  running: boolean;
  apple: boolean;
  store: boolean;
  team: string;
  /** PNG data URL, present only when an icon could be made. */
  icon?: string;
}

/** In the order in which they are shown. */
export const leftoverKeys = [
  'app', 'support', 'caches', 'prefs', 'state', 'containers', 'group', 'web', 'logs', 'agents',
] as const;
export type LeftoverGroupKey = (typeof leftoverKeys)[number];

export interface LeftoverItem {
  id: string;
  name: string;
  path: string;
  gb: number;
  conf: 'certain' | 'possible';
  admin: boolean;
  nested: boolean;
  cat: LeftoverGroupKey;
}

/** A leftover that is a link, or lies behind one. */
export interface LeftoverLink {
  path: string;
  target: string;
  /** Only the link goes; else what it leads to does. */
  kept: boolean;
}

/** What says that the application is gone: no such Flatpak, nothing of that identifier, no such package. */
export const leftBehindReasons = ['flatpak', 'identifier', 'package'] as const;
export type LeftBehindReason = (typeof leftBehindReasons)[number];

/** The data of an application that is not installed any more. */
export interface LeftBehindItem {
  path: string;
  /** Of the application, or the name of its package. */
  identifier: string;
  why: LeftBehindReason;
  gb: number;
  /** The last change, seconds since 1970; 0 when unknown. */
  last: number;
}

/** Who has installed an application for all users. */
export const packageKeepers = ['distribution', 'flatpak', 'snap'] as const;
export type PackageKeeper = (typeof packageKeepers)[number];

/** How an application goes that the system has installed. */
export interface PackagePlan {
  keeper: PackageKeeper;
  /** Of the package; empty when nobody can tell. */
  name: string;
  /** The packages that would go with it. */
  others: string[];
  /** The one among them all that must stay, so that nothing goes; else empty. */
  kept: string;
  /** What to type where nobody answers; else empty. */
  command: string;
}

export const packageReasons = ['unavailable', 'refused', 'missing', 'busy', 'changed', 'kept', 'failed'] as const;
export type PackageReason = (typeof packageReasons)[number];

/** The end of a package's removal. */
export interface PackageEnd {
  done: boolean;
  /** Empty when it is done. */
  reason: PackageReason | '';
  /** In the system's words; may be empty. */
  detail: string;
}

/** Why an application itself stays. "entry": only its entry in the menu can go. */
export const stayReasons = ['admin', 'system', 'shared', 'protected', 'entry'] as const;
export type StayReason = (typeof stayReasons)[number];

/** Whether an application itself can be removed, told before its analysis. */
export interface AppRemoval {
  /** Null when it can. */
  stays: StayReason | null;
  /** Of a program that goes as a single file: its folder, which stays; else empty. */
  folder: string;
}

export interface AppAnalysis {
  bid: string;
  name: string;
  path: string;
  version: string;
  icon: string;
  gb: number;
  running: boolean;
  team: string;
  groups: { key: LeftoverGroupKey; items: LeftoverItem[] }[];
  total: number;
  certain: number;
  possible: number;
  adminCount: number;
  possibleCount: number;
  count: number;
}

export const uninstallStages = ['stop', 'files', 'clean', 'done'] as const;
export type UninstallStage = (typeof uninstallStages)[number];
export const failureReasons = ['admin', 'perm', 'busy', 'gone', 'protected', 'other'] as const;
export type FailureReason = (typeof failureReasons)[number];

export interface UninstallResult {
  name: string;
  removed: number;
  freed: number;
  closed: number;
  failures: { name: string; path: string; reason: FailureReason }[];
}
