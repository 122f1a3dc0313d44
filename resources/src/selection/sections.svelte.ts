/** A long list in cards: only the cards in sight are made, and room is left for the others. */
import { SvelteMap } from 'svelte/reactivity';
import { SeenPart } from './sight.svelte.ts';
import { partsInSight } from './windowing.ts';

export interface Section {
  id: string;
  /** Without its head. */
  rows: number;
}

/** Until cards of so many rows have been laid out. */
const usualHead = 46;
const usualRow = 44;
const gap = 12;

export interface PlacedSection {
  index: number;
  /** How much is left out between the card before and this one, the space between cards included; in pixels. */
  space: number;
  /** How many rows stand above its head. */
  rowsBefore: number;
}

export class SectionsInSight {
  readonly seen = new SeenPart();
  private readonly list: readonly Section[] = $derived.by(() => this.given());
  /** Cards that were laid out, by id; what is of another width is measured anew. */
  private readonly measured = new SvelteMap<string, { rows: number; height: number }>();
  /** The last height of a card with so many rows. */
  private readonly usual = new Map<number, number>();
  private measuredWidth = 0;

  private readonly ends: readonly number[] = $derived.by(() => {
    let end = -gap;
    return this.list.map((section) => (end += gap + this.heightOf(section)));
  });
  private readonly rowsBefore: readonly number[] = $derived.by(() => {
    let rows = 0;
    return this.list.map((section) => (rows += 1 + section.rows) - 1 - section.rows);
  });
  readonly height: number = $derived(Math.max(0, this.ends.at(-1) ?? 0));
  readonly rowCount: number = $derived(this.list.reduce((sum, { rows }) => sum + 1 + rows, 0));
  private readonly indexOf: ReadonlyMap<string, number> = $derived(new Map(this.list.map(({ id }, index) => [id, index])));

  constructor(private readonly given: () => readonly Section[]) {}

  /** Which cards to make; the one with the focus is always among them. */
  placed(always: string | null): PlacedSection[] {
    const beyond = this.seen.beyond * usualRow;
    const kept = always === null ? -1 : (this.indexOf.get(always) ?? -1);
    let end = 0;
    return partsInSight(this.ends, this.seen, beyond, kept).map((index) => {
      const start = this.startOf(index);
      const space = start - end;
      end = this.ends[index]!;
      return { index, space, rowsBefore: this.rowsBefore[index]! };
    });
  }

  /** Scrolls until the card is made; its rows scroll themselves into sight then. */
  show(id: string): void {
    const index = this.indexOf.get(id);
    if (index === undefined) return;
    const { top, height } = this.seen;
    const start = this.startOf(index);
    const end = this.ends[index]!;
    if (end <= top || start >= top + height) this.seen.showFrom(Math.max(0, start - height / 3));
  }

  /** An attachment for a card. */
  measure(id: string): (card: HTMLElement) => () => void {
    return (card) => {
      const observer = new ResizeObserver(() => this.take(id, card.offsetHeight));
      observer.observe(card);
      return () => observer.disconnect();
    };
  }

  private startOf(index: number): number {
    return index === 0 ? 0 : this.ends[index - 1]! + gap;
  }

  private heightOf({ id, rows }: Section): number {
    const known = this.measured.get(id);
    return known?.rows === rows ? known.height : (this.usual.get(rows) ?? usualHead + rows * usualRow);
  }

  private take(id: string, height: number): void {
    const index = this.indexOf.get(id);
    if (index === undefined || height === 0) return;
    if (this.seen.width !== this.measuredWidth) {
      this.measuredWidth = this.seen.width;
      this.measured.clear();
      this.usual.clear();
    }
    const section = this.list[index]!;
    if (this.heightOf(section) === height) return;
    this.usual.set(section.rows, height);
    this.measured.set(id, { rows: section.rows, height });
  }
}
