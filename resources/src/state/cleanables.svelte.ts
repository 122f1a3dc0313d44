/** What the program proposes to clean up. There is no failure to hear of, only an answer that does not come. */
import { untrack } from 'svelte';
import { hasGoneWith } from '../names/gone.ts';
import { send } from '../protocol/connection.ts';
import type { Cleanable, CleanableFacts } from '../protocol/protocol.ts';
import { further } from './further.svelte.ts';
import { session } from './session.svelte.ts';

export type LookPhase = 'idle' | 'looking' | 'late' | 'failed';

/** Measuring large folders takes its time; after this long the page says so. */
const late = 15_000;
/** After this long nothing is on its way any more. */
const tooLate = 180_000;

class Cleanables {
  /** Null until the program has answered. */
  list = $state.raw<Cleanable[] | null>(null);
  /** How certain each cache is to be made again; comes before the list that it is about. */
  facts = $state.raw<CleanableFacts>(new Map());
  phase = $state<LookPhase>('idle');
  /** Something was put back since: the list may lack it. */
  outdated = $state(false);
  /** Everything that was proposed has been moved. */
  emptied = $state(false);
  private ages: ReadonlyMap<string, number> = new Map();
  private timers: ReturnType<typeof setTimeout>[] = [];

  constructor() {
    // An analysis has seen the same files: what was found before it is as old as the last one.
    $effect.root(() => {
      $effect(() => {
        if (session.analyses) untrack(() => (this.outdated = this.list !== null));
      });
    });
  }

  readonly looking: boolean = $derived(this.phase === 'looking' || this.phase === 'late');

  look(): void {
    if (this.looking) return;
    this.stopTimers();
    this.phase = 'looking';
    this.outdated = false;
    this.timers = [
      setTimeout(() => (this.phase = 'late'), late),
      setTimeout(() => (this.phase = 'failed'), tooLate),
    ];
    send('scanCleanables');
  }

  /** What the view does when it is shown: looks once, and again when something has changed. */
  lookIfNeeded(): void {
    if ((this.list === null && this.phase === 'idle') || this.outdated) this.look();
  }

  receiveFacts(facts: CleanableFacts): void {
    this.facts = facts;
  }

  receiveAges(ages: ReadonlyMap<string, number>): void {
    this.ages = ages;
  }

  /** A folder's own date tells only what came into it and left it: what has changed inside counts. */
  private withAgesInside(list: Cleanable[]): Cleanable[] {
    return list.map((item) => ({ ...item, daysOld: Math.min(item.daysOld, this.ages.get(item.path) ?? item.daysOld) }));
  }

  receive(list: Cleanable[]): void {
    this.stopTimers();
    this.phase = 'idle';
    this.list = this.withAgesInside(list);
    this.emptied = false;
    // Afterwards: what is on this list is on no other.
    further.look();
  }

  /** Takes out what lies in Velto Trash now, with a folder all that is in it. */
  forget(paths: readonly string[]): void {
    further.forget(paths);
    if (!this.list) return;
    const gone = new Set(paths);
    const left = this.list.filter(({ path }) => !hasGoneWith(path, gone));
    this.emptied ||= this.list.length > 0 && left.length === 0;
    this.list = left;
  }

  private stopTimers(): void {
    for (const timer of this.timers) clearTimeout(timer);
    this.timers = [];
  }
}

export const cleanables = new Cleanables();
