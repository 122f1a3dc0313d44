/**
 * The records that travel between the native program and the page. Sizes are decimal gigabytes
 * (1 GB = 1,000,000,000 bytes), times are seconds since 1970, ages are whole days.
 */

export type CategoryId = 'fotos' | 'apps' | 'docs' | 'descargas' | 'musica' | 'sistema';

export interface Category {
  id: string;
  /** Spanish; the page translates by id. */
  name: string;
  gb: number;
  icon: string;
  /** "#" and six hexadecimal digits. */
  col: string;
  /** Spanish equivalence sentence; the page translates by id. */
  eq: string;
  sub: string[][];
  files: number;
}

export type FileKind = 'video' | 'descarga' | 'app' | 'doc';

export interface BigFile {
  name: string;
  gb: number;
  kind: string;
  /** Spanish relative time; the page computes its own from `lastN`. */
  last: string;
  /** Whole days since the last use; very large when the date is unknown. */
  lastN: number;
  path: string;
  isProtected: boolean;
}

export interface DuplicateGroup {
  /** SHA-256 of the content the copies share. */
  id: string;
  name: string;
  /** One entry a path: a list with one pair of file name and size in GB ("%.1f"). */
  pairs: string[][][];
  paths: string[];
  /** Index into `paths` of the copy proposed to be kept. */
  recommended: number;
}

export interface HistoryItem {
  name: string;
  gb: number;
}

export interface HistoryEntry {
  /** The id of the trash operation. */
  id: string;
  ts: number;
  gb: number;
  items: HistoryItem[];
  kind: string;
}

export type LanguageCode = 'es' | 'en';
export type Frequency = 'daily' | 'weekends' | 'monthly';
export type RuleId = 'systemTrash' | 'oldDownloads' | 'caches' | 'duplicates';

export const ruleIds: readonly RuleId[] = ['systemTrash', 'oldDownloads', 'caches', 'duplicates'];
export const frequencies: readonly Frequency[] = ['daily', 'weekends', 'monthly'];

export interface Settings {
  retention: number;
  autoMaintenance: boolean;
  frequency: Frequency;
  language: LanguageCode;
  rules?: Partial<Record<RuleId, boolean>>;
}

/** What one rule looks at and, once it was measured, what it would move now. */
export interface MaintenanceRule {
  places: string[];
  /** Without Full Disk Access, which is missing, it does nothing. */
  needsAccess: boolean;
  items?: number;
  gb?: number;
}

export interface MaintenanceStatus {
  installed: boolean;
  /** The last run: when it ended, what it deleted for good, what it moved to Velto Trash. */
  last: { ts: number; freed: number; moved: number; movedGB: number } | null;
  /** When the next run starts; null when nothing is scheduled. */
  next: number | null;
  rules: Partial<Record<RuleId, MaintenanceRule>>;
  held: Holdings;
  /** Days that caches stay; 0 as long as everything, null while nobody has said. */
  cacheDays: number | null;
  /** Free space below which a notification comes; 0 for never. */
  fullDiskGB: number;
  /** Bytes of caches that Velto Trash would come to hold, by the days they are kept; empty until measured. */
  foretold: ReadonlyMap<number, number>;
}

/** What maintenance has moved to Velto Trash, and from when on a run gives it back. */
export interface Holdings {
  items: number;
  bytes: number;
  /** Earliest first. */
  returns: { from: number; bytes: number }[];
  /** Days, by item, of what does not stay as long as everything else. */
  days: ReadonlyMap<string, number>;
}

/** The choices for how long caches are kept; 0: as long as everything. */
export const cacheDayChoices: readonly number[] = [0, 7, 3, 1];

export interface DiskState {
  total: number;
  free: number;
  /** Free-space score, 5 to 99. */
  ser: number;
  cats: Category[];
  /** Largest first, at most 500. */
  files: BigFile[];
  dupGroups: DuplicateGroup[];
  history: HistoryEntry[];
  settings: Settings;
  /** Identifiers of the places that were not measured. */
  protected?: string[];
}

export interface Permissions {
  fda: boolean;
}

/** An item of Velto Trash; `path` is where it came from. */
export interface TrashItem {
  id: string;
  name: string;
  gb: number;
  taken: number;
  path: string;
  opID: string;
}

export const waitReasons = ['absent', 'refused', 'unsettled'] as const;
export type WaitReason = (typeof waitReasons)[number];

/** An item whose move to or from another disk was cut off; it is finished once `folder` can be used. */
export interface WaitingItem {
  id: string;
  name: string;
  gb: number;
  /** Its place outside Velto Trash: where it came from. */
  path: string;
  folder: string;
  /** Into Velto Trash, or out of it. */
  way: 'in' | 'out';
  reason: WaitReason;
  /** What lies in Velto Trash is known to be all of it. */
  whole: boolean;
}

/** An item that could not go back; `path` is what stands on the way to its place. */
export interface RestoreBlock {
  id: string;
  path: string;
}

/** Why the trash does not take something, or cannot give it back. "link": it is one, or lies behind one. */
export const refusalReasons = ['link', 'outside', 'protected', 'gone', 'trash'] as const;
export type RefusalReason = (typeof refusalReasons)[number];

/** Nothing was moved because of `refused`; `rest` could go. An item that nobody knows has no path. */
export interface Refusal {
  refused: { path: string; reason: RefusalReason }[];
  rest: string[];
}

export const selectionReasons = [...refusalReasons, 'closed', 'readOnly', 'mounted', 'other'] as const;
export type SelectionReason = (typeof selectionReasons)[number];

/** What cannot be moved, why, and what the system says of it in its own words. */
export interface Stay {
  path: string;
  reason: SelectionReason;
  detail: string;
}

/** What of a selection could be moved at that moment. */
export interface SelectionCheck {
  request: number;
  movable: string[];
  stays: Stay[];
}

/** An item that went back under another name than its own. */
export interface PutBack {
  id: string;
  path: string;
}

export interface Cleanable {
  ruleID: string;
  path: string;
  gb: number;
  daysOld: number;
  /** Spanish. */
  label: string;
}

/** Why a cache is certain to be made again (the first), or only possible. */
export const cacheReasons = ['madeAgain', 'unknown', 'keeps', 'running'] as const;
export type CacheReason = (typeof cacheReasons)[number];

export interface CacheFact {
  certain: boolean;
  reason: CacheReason;
}

/** By the path of the candidate. */
export type CleanableFacts = ReadonlyMap<string, CacheFact>;

export interface CloudMove {
  moved: string[];
  failed: string[];
  direction: 'to' | 'from';
}

/** What the program finishes before it ends. */
export type Running = 'uninstall' | 'cleanup';

export interface ProcessGroup {
  name: string;
  pid: number;
  kind: 'app' | 'other';
  procs: number;
  /** Percent of one processor. */
  cpu: number;
  /** Mebibytes. */
  mem: number;
  icon: string;
}

export const pressures = ['normal', 'warning', 'critical'] as const;
export const thermalStates = ['nominal', 'fair', 'serious', 'critical'] as const;
export const batteryStates = ['charged', 'charging', 'ac', 'discharging'] as const;

/** One sample of the machine; the first one after a start has no `cpu` and no `net`. */
export interface SystemSample {
  cpu?: { pct: number; cores: number; load: number };
  mem?: {
    total: number; used: number; pct: number;
    app: number; wired: number; compressed: number; cached: number;
    pressure: (typeof pressures)[number];
    swapUsed: number; swapTotal: number;
  };
  disk?: { total: number; free: number; pct: number };
  thermal?: { state: (typeof thermalStates)[number] | 'unknown'; lowPower: boolean };
  battery?: {
    avail: boolean; pct?: number;
    /** Until it is full or empty; left out when nobody knows. */
    minutes?: number;
    cycles?: number;
    state?: (typeof batteryStates)[number];
  };
  /** Bytes a second. */
  net?: { avail: boolean; iface: string; down: number; up: number };
  procs?: ProcessGroup[];
}

export const heatedParts = ['processor', 'graphics', 'disk', 'machine'] as const;

/** What there is to know of a group of processes beside its weight. */
export interface GroupActivity {
  /** The process of the group. */
  pid: number;
  /** Bytes a second to and from the disks, of those processes that may be asked. */
  read?: number;
  written?: number;
  /** It is an application of the user's own. */
  canQuit: boolean;
}

/** What a machine may have and the system does not tell this program. */
export const unseenParts = ['processes', 'temperature', 'graphics'] as const;

/** One process of a group; what is not known is left out. */
export interface GroupMember {
  pid: number;
  name: string;
  cpu: number;
  mem: number;
  read?: number;
  written?: number;
}

/** Everything of one application, or all processes of one name. */
export interface NamedGroup extends Omit<ProcessGroup, 'icon'>, GroupActivity {
  /** Left out where the sample that follows has it. */
  icon?: string;
  /** The heaviest of its processes, where there are several. */
  members: GroupMember[];
}

/** The groups of the sample that follows by their names, and what cannot be seen. */
export interface SystemDetails {
  groups: NamedGroup[];
  unseen: (typeof unseenParts)[number][];
}

/** What there is to tell beside the sample that follows; what is not known is left out. */
export interface SystemActivity {
  /** Bytes a second, of all disks together. */
  disk?: { read: number; written: number };
  temperature?: { celsius: number; part: (typeof heatedParts)[number] };
  /** Percent of the busiest graphics processor. */
  gpu?: { pct: number };
  procs: GroupActivity[];
}
