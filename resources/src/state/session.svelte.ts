/** What the program has told the page so far. Views read it; only `start.ts` listens for it. */
import type {
  AnalysisPhase, BigFile, DiskState, ExactSizes, HomeFolders, LinkedCopies, MaintenanceRule, MaintenanceStatus, Measurement, RuleId, Running,
  SettingsChange, TrashItem, WaitingItem,
} from '../protocol/protocol.ts';
import { send } from '../protocol/connection.ts';
import { exactly } from './exactly.ts';

export type Access = 'unknown' | 'granted' | 'missing';
/** "stopping" runs still. */
export type ScanPhase = 'idle' | 'running' | 'stopping' | 'stopped' | 'failed';

/** Of the volume that holds the home, in GB. */
export interface Space {
  total: number;
  free: number;
}

type Rules = MaintenanceStatus['rules'];

/** The rules with what was measured of them before. */
function withFigures(rules: Rules, before: Rules = {}): Rules {
  const merged: Rules = {};
  for (const [id, rule] of Object.entries(rules) as [RuleId, MaintenanceRule][]) merged[id] = { ...before[id], ...rule };
  return merged;
}

class Session {
  /** Null until the program has sent a state. */
  disk = $state.raw<DiskState | null>(null);
  /** The newest figures of the disk, whoever has told them: what every view shows. Null while nobody has. */
  space = $state.raw<Space | null>(null);
  /** When the shown analysis was made, seconds since 1970. */
  stamp = $state<number | undefined>();
  /** The first state is on screen; what the first frame can do without may follow. */
  painted = $state(false);
  access = $state<Access>('unknown');
  scanPhase = $state<ScanPhase>('idle');
  /** What the running analysis is at; the figures are those of this phase. */
  scanStage = $state<AnalysisPhase>('counting');
  /** How many have ended with a new state since the page was opened. */
  analyses = $state(0);
  /** How many places on screen show how the analysis goes. */
  scanShown = $state(0);
  scanFiles = $state(0);
  scanGb = $state(0);
  /** Milliseconds since 1970. */
  scanStartedAt = $state(0);
  /** Null until the program has answered. */
  exclusions = $state.raw<string[] | null>(null);
  /** Null until the program has answered. */
  maintenance = $state.raw<MaintenanceStatus | null>(null);
  /** What the rules of maintenance would move is being measured. */
  measuring = $state(false);
  /** Where the home is; null until the program has said so. */
  home = $state<string | null>(null);
  /** Which folders the home has for what; null until the program has said so. */
  homeFolders = $state.raw<HomeFolders | null>(null);
  /** Sizes to the byte, as far as they are known. */
  sizes = $state.raw<ExactSizes>({});
  /** Copies that are names of one file, by group. */
  linked = $state.raw<LinkedCopies>(new Map());
  /** When each copy was changed last, by path: seconds since 1970. */
  copyDates = $state.raw<ReadonlyMap<string, number>>(new Map());
  /** What the analysis has measured, and what it has not; null until the program has told. */
  measurement = $state.raw<Measurement | null>(null);
  /** The large files, to the byte where that is known. */
  readonly files: BigFile[] = $derived(exactly(this.disk?.files ?? [], this.sizes.files, ({ path }) => path));
  /** What the program has said that Velto Trash holds, before it lists it. */
  toldTrashGb = $state(0);
  /** What the program lists of Velto Trash, in the order it arrived there; null until it has said so. */
  listed = $state.raw<TrashItem[] | null>(null);
  /** What is on its way to or from a disk that is away; not to be put back or deleted for now. */
  waiting = $state.raw<WaitingItem[]>([]);
  /** What of the list is really there: what waits has a list of its own. */
  private readonly exact: TrashItem[] | null = $derived(this.listed && exactly(this.listed, this.sizes.trash, ({ id }) => id));
  readonly trash: TrashItem[] | null = $derived(this.withoutWaiting(this.exact));
  readonly trashGb: number = $derived(this.exact?.reduce((sum, { gb }) => sum + gb, 0) ?? this.toldTrashGb);
  /** Items that went back under another name than their own, by id: where they are. */
  renamed = $state.raw<ReadonlyMap<string, string>>(new Map());
  /** Items that could not go back to their place, by id: what stands on the way there. */
  blocked = $state.raw<ReadonlyMap<string, string>>(new Map());

  /** The program ends as soon as this is done; null while nobody has asked it to. */
  quitting = $state<Running | null>(null);

  /** The state of a program that has never analysed carries no categories. */
  analysed = $derived((this.disk?.cats.length ?? 0) > 0);
  scanning = $derived(this.scanPhase === 'running' || this.scanPhase === 'stopping');

  /** Whether the home has a folder of that category to show; as long as nobody knows, it may. */
  leadsToFolders(category: string): boolean {
    return this.homeFolders?.categories.has(category) ?? true;
  }

  private withoutWaiting(items: TrashItem[] | null): TrashItem[] | null {
    if (!items || this.waiting.length === 0) return items;
    const waiting = new Set(this.waiting.map(({ id }) => id));
    return items.filter(({ id }) => !waiting.has(id));
  }

  startScan(): void {
    if (!this.scanning) send('scan');
  }

  stopScan(): void {
    if (this.scanPhase !== 'running') return;
    this.scanPhase = 'stopping';
    send('stopAnalysis');
  }

  askForMaintenance(): void {
    send('maintenanceStatus');
  }

  measureMaintenance(): void {
    this.measuring = true;
    send('measureMaintenance');
  }

  /** What the settings of maintenance speak of beyond that: what caches would come to. */
  foretellCaches(): void {
    send('foretellCaches');
  }

  keepCaches(days: number): void {
    send('keepCaches', { days });
    if (this.maintenance) this.maintenance = { ...this.maintenance, cacheDays: days };
  }

  sayWhenFull(gb: number): void {
    send('fullDiskNotice', { gb });
    if (this.maintenance) this.maintenance = { ...this.maintenance, fullDiskGB: gb };
  }

  /** A state says again what it said last unless something was measured since: that is no news. */
  receiveDisk(disk: DiskState): void {
    const { total, free } = disk;
    if (total > 0 && (this.disk?.total !== total || this.disk.free !== free)) this.space = { total, free };
    this.disk = disk;
  }

  /** A status without measurements leaves the last ones standing. */
  receiveMaintenance(status: MaintenanceStatus): void {
    const isMeasured = Object.values(status.rules).some((rule) => rule.items !== undefined);
    if (isMeasured) this.measuring = false;
    this.maintenance = isMeasured ? status : { ...status, rules: withFigures(status.rules, this.maintenance?.rules) };
  }

  /** Shows the empty history at once; the program confirms it with its next state. */
  clearHistory(): void {
    send('clearHistory');
    if (this.disk) this.disk = { ...this.disk, history: [] };
  }

  /** Shows the change at once; the program confirms it with its next state. */
  changeSettings(change: SettingsChange): void {
    send('settings', change);
    if (!this.disk) return;
    const { enabled, rules, boot: _boot, ...plain } = change;
    const current = this.disk.settings;
    this.disk = {
      ...this.disk,
      settings: {
        ...current,
        ...plain,
        ...(enabled !== undefined && { autoMaintenance: enabled }),
        ...(rules && { rules: { ...current.rules, ...rules } }),
      },
    };
  }
}

export const session = new Session();
