/** The latest stretch of a few figures, with a gap where nothing was heard. */

/** Seconds that the close look shows. */
export const minutes = 120;
/** Seconds that the far look shows, in averages of `part` seconds. */
export const hour = 3600;
export const part = 10;

/** Samples come every two seconds; after this many without one the line is broken. */
const longestWait = 3.75;

export type Figures<Name extends string> = Record<Name, number | null>;

export class Timeline<Name extends string> {
  /** Seconds on any steady clock. */
  times: number[] = [];
  values: Record<Name, (number | null)[]>;

  constructor(protected readonly names: readonly Name[], readonly span: number = minutes) {
    this.values = Object.fromEntries(names.map((name) => [name, []])) as unknown as Record<Name, (number | null)[]>;
  }

  add(time: number, figures: Figures<Name>): void {
    const last = this.times.at(-1);
    if (last !== undefined && time <= last) return;
    if (last !== undefined && time - last > longestWait) this.push(last + 1, null);
    this.push(time, figures);
    this.forgetBefore(time - this.span);
  }

  /** One sample from before the span stays: the line reaches the edge. */
  protected forgetBefore(oldest: number): void {
    const first = this.times.findIndex((other) => other >= oldest);
    const old = Math.max(0, first - 1);
    if (old === 0) return;
    this.times = this.times.slice(old);
    for (const name of this.names) this.values[name] = this.values[name].slice(old);
  }

  protected push(time: number, figures: Figures<Name> | null): void {
    this.times.push(time);
    for (const name of this.names) this.values[name].push(figures?.[name] ?? null);
  }

  /** Lowest and highest value known; null when there is none. */
  range(name: Name): { lowest: number; highest: number } | null {
    const known = this.values[name].filter((value) => value !== null);
    return known.length ? { lowest: Math.min(...known), highest: Math.max(...known) } : null;
  }
}

/** The last hour, each ten seconds as their average; the one that is not over yet as far as it is known. */
export class Averages<Name extends string> extends Timeline<Name> {
  private heard = -Infinity;
  private begun = -Infinity;
  private sums = new Map<Name, { sum: number; count: number }>();

  constructor(names: readonly Name[]) {
    super(names, hour);
  }

  override add(time: number, figures: Figures<Name>): void {
    if (time <= this.heard) return;
    const begins = Math.floor(time / part) * part;
    if (begins !== this.begun) this.begin(begins, time - this.heard > part && this.times.length > 0);
    this.heard = time;
    for (const name of this.names) {
      const figure = figures[name];
      if (figure === null) continue;
      const { sum, count } = this.sums.get(name) ?? { sum: 0, count: 0 };
      this.sums.set(name, { sum: sum + figure, count: count + 1 });
      this.values[name][this.times.length - 1] = (sum + figure) / (count + 1);
    }
  }

  private begin(begins: number, isAfterGap: boolean): void {
    if (isAfterGap) this.push(Math.min(this.begun + part, begins) - part / 4, null);
    this.begun = begins;
    this.sums.clear();
    this.push(begins, null);
    this.forgetBefore(begins - this.span);
  }
}
