/** The history by month, newest first, and the twelve months of the chart. */
import type { HistoryEntry } from '../../protocol/protocol.ts';
import { totalGb } from '../../state/operations.ts';

export interface Month {
  /** A time inside the month, seconds since 1970; 0 for entries without a date. */
  stamp: number;
  gb: number;
  entries: HistoryEntry[];
}

const monthsOfChart = 12;

/** Months counted from year 0, in the local calendar. */
function monthNumber(stamp: number): number {
  const date = new Date(stamp * 1000);
  return date.getFullYear() * 12 + date.getMonth();
}

function middleOf(month: number): number {
  return new Date(Math.floor(month / 12), month % 12, 15).getTime() / 1000;
}

/** What was removed: where space is shared every file stays. */
export function removedGb(entries: readonly HistoryEntry[]): number {
  return totalGb(entries.filter(({ kind }) => kind !== 'share'));
}

export function monthsOf(history: readonly HistoryEntry[]): Month[] {
  const dated = history.filter(({ ts }) => ts > 0).sort((left, right) => right.ts - left.ts);
  const undated = history.filter(({ ts }) => ts <= 0);
  const months = new Map<number, HistoryEntry[]>();
  for (const entry of dated) {
    const month = monthNumber(entry.ts);
    const entries = months.get(month);
    if (entries) entries.push(entry);
    else months.set(month, [entry]);
  }
  return [
    ...[...months].map(([month, entries]) => ({ stamp: middleOf(month), gb: removedGb(entries), entries })),
    ...(undated.length ? [{ stamp: 0, gb: removedGb(undated), entries: undated }] : []),
  ];
}

export interface Bar {
  stamp: number;
  gb: number;
  /** Of the highest bar, 0 to 1. */
  share: number;
}

/** The last twelve months up to now, oldest first; a month without entries has no bar. */
export function chartOf(months: readonly Month[], now: number): Bar[] {
  const current = monthNumber(now);
  const amounts = new Map(months.filter(({ stamp }) => stamp > 0).map(({ stamp, gb }) => [monthNumber(stamp), gb]));
  const shown = Array.from({ length: monthsOfChart }, (_, index) => current - monthsOfChart + 1 + index);
  const highest = Math.max(...shown.map((month) => amounts.get(month) ?? 0));
  return shown.map((month) => {
    const gb = amounts.get(month) ?? 0;
    return { stamp: middleOf(month), gb, share: highest > 0 ? gb / highest : 0 };
  });
}
