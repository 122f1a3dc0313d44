/** The installed applications: the list comes at once, the sizes follow when they have been measured. */
import { send } from '../protocol/connection.ts';
import type { InstalledApp } from '../protocol/protocol.ts';
import type { LookPhase } from './cleanables.svelte.ts';

/** Reading some hundred small files; after this long the page says that it takes a while. */
const late = 10_000;
/** After this long nothing is on its way any more. */
const tooLate = 60_000;
/** What is older is read again when the view is shown: applications start, end and are updated. */
const fresh = 60_000;

class InstalledApps {
  /** Null until the program has answered. */
  list = $state.raw<InstalledApp[] | null>(null);
  phase = $state<LookPhase>('idle');
  /** By path. What was measured earlier stands until it is measured again. */
  private sizes = $state.raw<Readonly<Record<string, number>>>({});
  private measured = $state(false);
  private answeredAt = 0;
  private timers: ReturnType<typeof setTimeout>[] = [];

  readonly looking: boolean = $derived(this.phase === 'looking' || this.phase === 'late');

  look(): void {
    if (this.looking) return;
    this.stopTimers();
    this.phase = 'looking';
    this.timers = [
      setTimeout(() => (this.phase = 'late'), late),
      setTimeout(() => (this.phase = 'failed'), tooLate),
    ];
    send('appsList');
  }

  lookIfNeeded(): void {
    if (this.list === null ? this.phase === 'idle' : Date.now() - this.answeredAt > fresh) this.look();
  }

  receive(list: InstalledApp[]): void {
    this.stopTimers();
    this.phase = 'idle';
    this.answeredAt = Date.now();
    this.list = list;
    this.measured = list.every(({ path }) => path in this.sizes);
  }

  receiveSizes(sizes: Record<string, number>): void {
    this.sizes = { ...this.sizes, ...sizes };
    this.measured = true;
  }

  /** In GB; null while it is being measured, 0 when nobody knows it. */
  sizeOf({ path, gb }: InstalledApp): number | null {
    const known = this.sizes[path] ?? gb;
    return known > 0 || this.measured ? known : null;
  }

  /** Takes out what has just been removed; the next list confirms it. */
  forget(path: string): void {
    this.list = this.list?.filter((app) => app.path !== path) ?? null;
  }

  private stopTimers(): void {
    for (const timer of this.timers) clearTimeout(timer);
    this.timers = [];
  }
}

export const installedApps = new InstalledApps();
