/** The one application that is looked at, and what the program found of it. */
import { send } from '../protocol/connection.ts';
import type { AppAnalysis, AppRemoval, InstalledApp, LeftoverLink } from '../protocol/protocol.ts';
import type { LookPhase } from './cleanables.svelte.ts';

const late = 15_000;
const tooLate = 180_000;
const failedTitles = ['No se pudo analizar', "Couldn't analyze"];

class Leftovers {
  /** Null while the list of applications is shown. */
  app = $state.raw<InstalledApp | null>(null);
  analysis = $state.raw<AppAnalysis | null>(null);
  /** Which of the leftovers are links, or lie behind one, by path. */
  links = $state.raw<ReadonlyMap<string, LeftoverLink>>(new Map());
  /** Whether the application itself can go; null as long as nothing is said of it. */
  removal = $state.raw<AppRemoval | null>(null);
  phase = $state<LookPhase>('idle');
  /** Why it failed, in the program's words; may be empty. */
  failure = $state('');
  /** What has been asked and not answered, oldest first. */
  private asked: string[] = [];
  private timers: ReturnType<typeof setTimeout>[] = [];

  readonly looking: boolean = $derived(this.phase === 'looking' || this.phase === 'late');

  open(app: InstalledApp): void {
    this.app = app;
    this.look();
  }

  /** Without looking: what is found of an application that is being removed is gone a moment later. */
  show(app: InstalledApp): void {
    this.close();
    this.app = app;
  }

  close(): void {
    this.stopTimers();
    this.app = null;
    this.analysis = null;
    this.links = new Map();
    this.removal = null;
    this.phase = 'idle';
  }

  look(): void {
    if (!this.app) return;
    this.stopTimers();
    this.analysis = null;
    this.links = new Map();
    this.removal = null;
    this.failure = '';
    this.phase = 'looking';
    this.timers = [
      setTimeout(() => (this.phase = 'late'), late),
      setTimeout(() => this.fail(''), tooLate),
    ];
    const { path } = this.app;
    if (this.asked.includes(path)) return; // the answer is on its way
    this.asked.push(path);
    send('appAnalysis', { path });
  }

  /** Comes before the analysis, so that no link is ever shown as anything else. */
  receiveLinks(application: string, links: readonly LeftoverLink[]): void {
    if (application === this.app?.path) this.links = new Map(links.map((link) => [link.path, link]));
  }

  /** Comes before the analysis as well: what can be selected goes by it. */
  receiveRemoval(application: string, removal: AppRemoval): void {
    if (application === this.app?.path) this.removal = removal;
  }

  receive(analysis: AppAnalysis): void {
    this.asked = this.asked.filter((path) => path !== analysis.path);
    if (analysis.path !== this.app?.path) return;
    this.stopTimers();
    this.phase = 'idle';
    this.analysis = analysis;
  }

  /** Whether a toast says that an analysis failed: the oldest one that is still awaited. */
  takeFailure(title: string, detail: string): boolean {
    if (!failedTitles.includes(title)) return false;
    const path = this.asked.shift();
    if (path === undefined || path !== this.app?.path) return false;
    this.fail(detail);
    return true;
  }

  private fail(why: string): void {
    this.stopTimers();
    this.asked = this.asked.filter((path) => path !== this.app?.path);
    this.failure = why;
    this.phase = 'failed';
  }

  private stopTimers(): void {
    for (const timer of this.timers) clearTimeout(timer);
    this.timers = [];
  }
}

export const leftovers = new Leftovers();
