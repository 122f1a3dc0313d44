/** The time, for "3 minutes ago" and for how long an analysis has been running. */
class Clock {
  /** Milliseconds since 1970. */
  now = $state(Date.now());
  private timer: ReturnType<typeof setInterval> | null = null;

  /** Ticks every second while something runs, otherwise twice a minute. */
  run(fast: boolean): void {
    if (this.timer) clearInterval(this.timer);
    this.now = Date.now();
    this.timer = setInterval(() => (this.now = Date.now()), fast ? 1000 : 30_000);
  }
}

export const clock = new Clock();
