import { describe, expect, it } from 'vitest';
import { extend, keepListed, nothing, selectAll, selectShown, toggle, type Selection } from '../../src/selection/selection.ts';

const order = ['a', 'b', 'locked', 'd', 'e'];
const selectable = (key: string) => key !== 'locked';
const keys = (selection: Selection) => [...selection.selected].sort();

describe('selecting', () => {
  it('toggles one row without touching the others', () => {
    const one = toggle(nothing, 'b', selectable);
    const two = toggle(one, 'd', selectable);
    expect(keys(two)).toEqual(['b', 'd']);
    expect(keys(toggle(two, 'b', selectable))).toEqual(['d']);
    expect(keys(one)).toEqual(['b']);
  });

  it('a protected row is never selected, whichever way', () => {
    expect(keys(toggle(nothing, 'locked', selectable))).toEqual([]);
    expect(keys(selectAll(order, selectable))).toEqual(['a', 'b', 'd', 'e']);
    expect(keys(extend(toggle(nothing, 'a', selectable), 'e', order, selectable))).toEqual(['a', 'b', 'd', 'e']);
    expect(keys(extend(nothing, 'locked', order, selectable))).toEqual([]);
  });

  it('extends from the anchor in either direction and keeps the anchor', () => {
    const anchored = toggle(nothing, 'd', selectable);
    const up = extend(anchored, 'a', order, selectable);
    expect(keys(up)).toEqual(['a', 'b', 'd']);
    expect(up.anchor).toBe('d');
    expect(keys(extend(anchored, 'e', order, selectable))).toEqual(['d', 'e']);
  });

  it('everything shown joins what a search hides', () => {
    const hidden = toggle(nothing, 'e', selectable);
    expect(keys(selectShown(hidden, ['a', 'locked'], selectable))).toEqual(['a', 'e']);
  });

  it('extending without an anchor selects the row itself', () => {
    expect(extend(nothing, 'b', order, selectable)).toEqual({ selected: new Set(['b']), anchor: 'b' });
  });

  it('a row that is not there changes nothing', () => {
    const one = toggle(nothing, 'a', selectable);
    expect(extend(one, 'zzz', order, selectable)).toBe(one);
  });

  it('what leaves the list leaves the selection', () => {
    const two = toggle(toggle(nothing, 'a', selectable), 'd', selectable);
    const narrowed = keepListed(two, ['a', 'b']);
    expect(keys(narrowed)).toEqual(['a']);
    expect(narrowed.anchor).toBeNull();
    expect(keepListed(two, order)).toBe(two);
  });
});
