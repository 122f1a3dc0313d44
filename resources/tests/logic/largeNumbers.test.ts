/** Lists that have grown for years: nothing fails at their length, and nothing is gone through once for each of its entries. */
import { describe, expect, it } from 'vitest';
import type { HistoryEntry, TrashItem } from '../../src/protocol/protocol.ts';
import { operationsOf } from '../../src/state/operations.ts';
import { monthsOf } from '../../src/views/historial/months.ts';

/** How many elements of lists `act` goes through by iterating, copies with `...` among it. */
function stepsOf(act: () => void): number {
  const iterate = Array.prototype[Symbol.iterator];
  let steps = 0;
  Array.prototype[Symbol.iterator] = function* counted<Entry>(this: Entry[]) {
    for (let index = 0; index < this.length; index += 1) {
      steps += 1;
      yield this[index]!;
    }
  } as typeof iterate;
  try {
    act();
  } finally {
    Array.prototype[Symbol.iterator] = iterate;
  }
  return steps;
}

describe('large numbers', () => {
  it('an operation of more items than a call takes arguments is shown', () => {
    const items: TrashItem[] = Array.from({ length: 300_000 }, (_, index) => ({
      id: `it${index}`, opID: 'op1', name: 'a', path: '/home/a', gb: 0.1, taken: 1000 + (index % 7),
    }));
    const [operation, ...others] = operationsOf(items);
    expect(others).toEqual([]);
    expect(operation!.items.length).toBe(items.length);
    expect(operation!.taken).toBe(1006);
  });

  it('a month of many cleanups is gone through once', () => {
    const entries = (count: number): HistoryEntry[] => Array.from({ length: count }, (_, index) => ({
      id: `op${index}`, ts: 1_700_000_000 + index, gb: 1, kind: 'wind', items: [],
    }));
    const few = stepsOf(() => monthsOf(entries(500)));
    const many = stepsOf(() => expect(monthsOf(entries(2000))[0]!.entries).toHaveLength(2000));
    expect(few).toBeGreaterThan(0);
    expect(many).toBeLessThan(few * 5);
  });
});
