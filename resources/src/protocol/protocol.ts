/**
 * Everything the page can ask of the native program (intents) and everything the program can tell
 * the page (events). docs/protocol.md shows an example of each.
 */
import type { About, AppUses } from './aboutRecords.ts';
import type {
  AppAnalysis, AppRemoval, InstalledApp, LeftBehindItem, LeftoverLink, PackageEnd, PackagePlan, UninstallResult,
  UninstallStage,
} from './appRecords.ts';
import type { FolderContents, FolderGrowth, FolderSearch, GrowthSince, HomeFolders } from './folderRecords.ts';
import type { FurtherCleanables } from './furtherRecords.ts';
import type { Growth } from './growthRecords.ts';
import type { ExactSizes, LinkedCopies, Measurement } from './measurementRecords.ts';
import type {
  Cleanable, CleanableFacts, CloudMove, DiskState, Frequency, LanguageCode, MaintenanceStatus, Permissions, PutBack, Refusal,
  RestoreBlock, RuleId, Running, SelectionCheck, SystemActivity, SystemDetails, SystemSample, TrashItem, WaitingItem,
} from './records.ts';
import type { FilePreview } from './previewRecords.ts';
import type { Sharable, SharingEnd, SharingGroup, SharingProgress } from './sharingRecords.ts';

export type * from './aboutRecords.ts';
export type * from './appRecords.ts';
export type * from './folderRecords.ts';
export type * from './furtherRecords.ts';
export type * from './growthRecords.ts';
export type * from './measurementRecords.ts';
export type * from './previewRecords.ts';
export type * from './records.ts';
export type * from './sharingRecords.ts';
export { growthKinds } from './growthRecords.ts';
export { sharingReasons } from './sharingRecords.ts';
export { cacheDayChoices, frequencies, ruleIds } from './records.ts';

/** Only what changed is sent; the program pushes the state again afterwards. */
export interface SettingsChange {
  retention?: number;
  frequency?: Frequency;
  enabled?: boolean;
  rules?: Partial<Record<RuleId, boolean>>;
  language?: LanguageCode;
  /** Marks a push made while the page starts; this page never makes one. */
  boot?: boolean;
}

export type ViewName =
  | 'inicio' | 'explorar' | 'archivos' | 'duplicados' | 'limpieza' | 'papelera'
  | 'historial' | 'apps' | 'sistema' | 'ajustes' | 'guia' | 'avisos';

/** Intent name to payload; `void` means that nothing is sent along. */
export interface Intents {
  webReady: void;
  settings: SettingsChange;
  setTheme: { theme: 'light' | 'dark' };
  followSystemTheme: void;
  scan: void;
  stopAnalysis: void;
  folder: { path: string; request: number };
  searchFolders: { text: string; request: number };
  folderGrowth: { path: string; since: GrowthSince };
  growth: { since: GrowthSince };
  forgetGrowth: void;
  systemWatch: { on: boolean };
  quitApplication: { pid: number };
  endApplication: { pid: number };
  appsList: void;
  appAnalysis: { path: string };
  leftBehind: void;
  appPackage: { path: string };
  removePackage: { path: string; others: string[] };
  removeUnusedRuntimes: { ofAllUsers: boolean };
  uninstall: { path: string; paths: string[]; sizes: Record<string, number> };
  revealPath: string;
  checkSelection: { paths: string[]; request: number };
  deleteFiles: { paths: string[]; kind: string };
  undoLast: void;
  restoreItem: string;
  restoreItemTo: { id: string };
  giveUpWaiting: { id: string };
  purgeItem: string;
  purgeOperation: { id: string };
  purgeTrash: void;
  clearHistory: void;
  openFDASettings: void;
  requestAccess: void;
  checkAccess: void;
  resetAccess: void;
  addExclusion: string;
  chooseExclusion: void;
  exclusions: void;
  removeExclusion: string;
  maintenanceStatus: void;
  measureMaintenance: void;
  foretellCaches: void;
  keepCaches: { days: number };
  fullDiskNotice: { gb: number };
  scanCleanables: void;
  scanFurther: void;
  continueComparison: void;
  stopComparison: void;
  foretellSharing: { request: number; groups: SharingGroup[] };
  shareSpace: { groups: SharingGroup[] };
  stopSharing: void;
  /** Without a path: nothing is to be read any more. */
  preview: { request: number; path?: string };
  deleteNow: { paths: string[] };
  cleanPaths: { paths: string[] };
  moveCloud: { paths: string[]; direction: 'to' | 'from' };
  about: void;
  appUses: void;
  recordAppUses: { on: boolean };
  resetVelto: void;
  goView: ViewName;
  setAutoMaintenance: SettingsChange;
}

export type IntentName = keyof Intents;

export type AnalysisPhase = 'counting' | 'comparing';

/** Event name to the arguments it is called with. */
export interface Events {
  setState: [state: DiskState, stamp: number | undefined];
  onScanStarted: [];
  onScanProgress: [files: number, gb: number];
  /** What the analysis is at; while files are compared, how many it has looked into and how much it has read. */
  onAnalysisPhase: [phase: AnalysisPhase, files: number, gb: number];
  onScanFinished: [];
  /** Comes before the event that ends the analysis: it was stopped, it did not fail. */
  onAnalysisStopped: [];
  onScanFailed: [];
  onPermissions: [permissions: Permissions];
  toast: [title: string, detail: string];
  onExclusions: [paths: string[]];
  /** Comes before its `toast`. */
  onExcluded: [path: string];
  onAbout: [about: About];
  onAppUses: [uses: AppUses];
  onHome: [path: string];
  onHomeFolders: [folders: HomeFolders];
  onExactSizes: [sizes: ExactSizes];
  onLinkedCopies: [groups: LinkedCopies];
  /** When each copy was changed last, by path: seconds since 1970. */
  onCopyDates: [dates: ReadonlyMap<string, number>];
  onSharable: [told: Sharable];
  onSharing: [progress: SharingProgress];
  onShared: [end: SharingEnd];
  onPreview: [preview: FilePreview];
  onMeasurement: [measurement: Measurement];
  onMaintenance: [status: MaintenanceStatus];
  onFolder: [contents: FolderContents];
  onFolderSearch: [search: FolderSearch];
  onFolderGrowth: [growth: FolderGrowth];
  onGrowth: [growth: Growth];
  onCleanables: [candidates: Cleanable[]];
  /** Whole days by path: what has changed inside since. Comes before the list. */
  onCleanableAges: [ages: ReadonlyMap<string, number>];
  onCleanableFacts: [facts: CleanableFacts];
  onFurtherCleanables: [further: FurtherCleanables];
  onTrashState: [items: TrashItem[]];
  /** Comes before the `onTrashState` that may hold some of the same items. */
  onTrashWaiting: [items: WaitingItem[]];
  onTrashEmptying: [done: number, of: number];
  onTrashChanged: [gb: number];
  onRefused: [refusal: Refusal];
  onSelection: [check: SelectionCheck];
  /** Comes before the `onTrashState` without them. */
  onPutBack: [items: PutBack[]];
  onRestoreBlocked: [block: RestoreBlock];
  /** There is a cloud drive that files can be moved to. */
  onCloudDrive: [isThere: boolean];
  onCloudMove: [result: CloudMove];
  onApps: [apps: InstalledApp[]];
  onAppSizes: [sizes: Record<string, number>];
  onLeftoverLinks: [application: string, links: LeftoverLink[]];
  onAppRemoval: [application: string, removal: AppRemoval];
  onAppAnalysis: [analysis: AppAnalysis];
  onLeftBehind: [items: LeftBehindItem[]];
  onAppPackage: [application: string, plan: PackagePlan | null];
  onPackageRemoval: [application: string, end: PackageEnd];
  onUnusedRuntimes: [end: PackageEnd];
  onUninstallProgress: [stage: UninstallStage, percent: number, detail?: string];
  onUninstallResult: [result: UninstallResult];
  onSystemActivity: [activity: SystemActivity];
  onSystemDetails: [details: SystemDetails];
  onSystem: [sample: SystemSample];
  onApplicationStopped: [pid: number, ended: boolean];
  /** The program ends as soon as what runs is done. */
  onQuitting: [running: Running];
}

export type EventName = keyof Events;
export type Listeners = { [Name in EventName]?: (...values: Events[Name]) => void };
