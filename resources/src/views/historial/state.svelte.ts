/** What the history remembers while another view is shown: the focus and what is unfolded. */
import type { HistoryEntry } from '../../protocol/protocol.ts';
import { session } from '../../state/session.svelte.ts';
import { monthsOf, type Month } from './months.ts';

const entriesAtOnce = 100;

/** An entry and the key of its row: two entries of the same id are still two rows. */
export interface Row {
  key: string;
  entry: HistoryEntry;
}

export interface MonthRows {
  stamp: number;
  gb: number;
  count: number;
  rows: Row[];
}

class History {
  focused = $state<string | null>(null);
  private limit = $state(entriesAtOnce);
  private unfolded = $state.raw<ReadonlySet<string>>(new Set());

  readonly all: HistoryEntry[] = $derived(session.disk?.history ?? []);
  readonly months: Month[] = $derived(monthsOf(this.all));
  /** The first entries, by month; totals are those of the whole month. */
  readonly shown: MonthRows[] = $derived.by(() => {
    const seen = new Map<string, number>();
    let room = this.limit;
    return this.months.flatMap(({ stamp, gb, entries }) => {
      const some = entries.slice(0, room);
      room -= some.length;
      const rows = some.map((entry) => {
        const times = seen.get(entry.id) ?? 0;
        seen.set(entry.id, times + 1);
        return { key: times ? `${entry.id} ${times}` : entry.id, entry };
      });
      return rows.length ? [{ stamp, gb, count: entries.length, rows }] : [];
    });
  });
  readonly keys: string[] = $derived(this.shown.flatMap(({ rows }) => rows.map(({ key }) => key)));
  /** How many items of each operation lie in Velto Trash. */
  readonly inTrash: ReadonlyMap<string, number> = $derived.by(() => {
    const counts = new Map<string, number>();
    for (const { opID } of session.trash ?? []) counts.set(opID, (counts.get(opID) ?? 0) + 1);
    return counts;
  });

  isOpen(key: string): boolean {
    return this.unfolded.has(key);
  }

  toggle(key: string): void {
    const unfolded = new Set(this.unfolded);
    if (!unfolded.delete(key)) unfolded.add(key);
    this.unfolded = unfolded;
  }

  showMore(): void {
    this.limit += entriesAtOnce;
  }
}

export const history = new History();
