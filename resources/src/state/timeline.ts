/** The last two minutes of a few figures, with a gap where nothing was heard. */
export const span = 120;

/** Samples come every two seconds; after this many without one the line is broken. */
const longestWait = 3.75;

export type Figures<Name extends string> = Record<Name, number | null>;

export class Timeline<Name extends string> {
  /** Seconds on any steady clock. */
  times: number[] = [];
  values: Record<Name, (number | null)[]>;

  constructor(private readonly names: readonly Name[]) {
    this.values = Object.fromEntries(names.map((name) => [name, []])) as unknown as Record<Name, (number | null)[]>;
  }

  add(time: number, figures: Figures<Name>): void {
    const last = this.times.at(-1);
    if (last !== undefined && time <= last) return;
    if (last !== undefined && time - last > longestWait) this.push(last + 1, null);
    this.push(time, figures);
    // One sample from before the span stays: the line reaches the edge.
    const first = this.times.findIndex((other) => other >= time - span);
    const old = Math.max(0, first - 1);
    if (old === 0) return;
    this.times = this.times.slice(old);
    for (const name of this.names) this.values[name] = this.values[name].slice(old);
  }

  private push(time: number, figures: Figures<Name> | null): void {
    this.times.push(time);
    for (const name of this.names) this.values[name].push(figures?.[name] ?? null);
  }

  /** Lowest and highest value known; null when there is none. */
  range(name: Name): { lowest: number; highest: number } | null {
    const known = this.values[name].filter((value) => value !== null);
    return known.length ? { lowest: Math.min(...known), highest: Math.max(...known) } : null;
  }
}
