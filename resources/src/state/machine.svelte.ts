/** The live samples of the machine: asked for while somebody looks at them, and not otherwise. */
import { send } from '../protocol/connection.ts';
import type { SystemActivity, SystemDetails, SystemSample } from '../protocol/protocol.ts';
import { quitting } from './quitting.svelte.ts';
import { session } from './session.svelte.ts';
import { Averages, Timeline } from './timeline.ts';

/** Seconds without a sample after which what is shown is no longer now. */
const late = 7;

const figures = ['cpu', 'mem', 'down', 'up'] as const;
export type Figure = (typeof figures)[number];

/** How far back the curves go. */
export type Look = 'minutes' | 'hour';

/** Steady seconds that go on while the computer sleeps, as the page's own do not everywhere. */
class Stopwatch {
  private offset = 0;
  private before = { steady: performance.now(), wall: Date.now() };

  read(): number {
    const now = { steady: performance.now(), wall: Date.now() };
    const slept = now.wall - this.before.wall - (now.steady - this.before.steady);
    if (slept > late * 1000) this.offset += slept;
    this.before = now;
    return (now.steady + this.offset) / 1000;
  }
}

class Machine {
  /** The latest one; null until one has come. */
  sample = $state.raw<SystemSample | null>(null);
  /** What was told beside it; null where nothing was. */
  activity = $state.raw<SystemActivity | null>(null);
  details = $state.raw<SystemDetails | null>(null);
  /** Grows with every sample; the timeline itself is not watched. */
  count = $state(0);
  paused = $state(false);
  /** Samples have been asked for and do not come. */
  late = $state(false);
  look = $state<Look>('minutes');
  /** Both go on whichever is looked at, and stay while another view is shown. */
  readonly timelines: Record<Look, Timeline<Figure>> = { minutes: new Timeline(figures), hour: new Averages(figures) };
  /** Comes before the sample it belongs to, so that both are shown at once. */
  private coming: SystemActivity | null = null;
  private comingDetails: SystemDetails | null = null;
  private readonly stopwatch = new Stopwatch();
  private shown = false;
  private watching = false;
  private heardAt = -Infinity;
  private timer: ReturnType<typeof setTimeout> | undefined;

  /** For as long as a view shows the machine; answers how to end it. */
  show(): () => void {
    this.shown = true;
    // What was paused is still what it was when it is looked at again.
    if (!this.paused && this.age() > late) this.sample = null;
    const update = () => this.update();
    // The program goes on with samples across a reload, for whoever comes; this page is leaving.
    const leave = () => {
      this.shown = false;
      this.update();
    };
    document.addEventListener('visibilitychange', update);
    window.addEventListener('pagehide', leave);
    update();
    return () => {
      document.removeEventListener('visibilitychange', update);
      window.removeEventListener('pagehide', leave);
      leave();
    };
  }

  togglePause(): void {
    this.paused = !this.paused;
    this.update();
  }

  receiveActivity(activity: SystemActivity): void {
    if (this.watching) this.coming = activity;
  }

  receiveDetails(details: SystemDetails): void {
    if (this.watching) this.comingDetails = details;
  }

  get timeline(): Timeline<Figure> {
    return this.timelines[this.look];
  }

  receive(sample: SystemSample): void {
    if (!this.watching) return; // one that was on its way
    this.activity = this.coming;
    this.details = this.comingDetails;
    this.coming = null;
    this.comingDetails = null;
    quitting.keep(new Set([...(sample.procs ?? []), ...(this.details?.groups ?? [])].map(({ pid }) => pid)));
    if (sample.disk) session.space = { total: sample.disk.total, free: sample.disk.free };
    this.heardAt = performance.now();
    const time = this.stopwatch.read();
    const heard = {
      cpu: sample.cpu?.pct ?? null,
      mem: sample.mem?.pct ?? null,
      down: sample.net?.down ?? null,
      up: sample.net?.up ?? null,
    };
    this.timelines.minutes.add(time, heard);
    this.timelines.hour.add(time, heard);
    this.sample = sample;
    this.count += 1;
    this.expectNext();
  }

  private update(): void {
    const wanted = this.shown && !this.paused && document.visibilityState !== 'hidden';
    if (wanted === this.watching) return;
    this.watching = wanted;
    send('systemWatch', { on: wanted });
    if (wanted) this.expectNext();
    else clearTimeout(this.timer);
  }

  private expectNext(): void {
    clearTimeout(this.timer);
    this.late = false;
    this.timer = setTimeout(() => (this.late = true), late * 1000);
  }

  private age(): number {
    return (performance.now() - this.heardAt) / 1000;
  }
}

export const machine = new Machine();
