import { describe, expect, it } from 'vitest';
import { formats } from '../../src/language/formats.ts';
import { memory, rate } from '../../src/language/measures.ts';
import { Averages, hour, minutes, part, Timeline } from '../../src/state/timeline.ts';
import { memoryParts } from '../../src/views/sistema/memoryParts.ts';
import { nextTop, roundUp } from '../../src/views/sistema/scale.ts';
import { busiestFirst, keyed, nextProcessOrder, restOf, sortRows, SteadyRows, weighs, withActivity, withIcons } from '../../src/views/sistema/steadyRows.ts';
import { group, someActivity, someDetails, someGroups, someSample } from '../support/system.ts';

const { compare } = formats.en;
const plain = (text: string) => text.replaceAll('\u00a0', ' ');

describe('the last two minutes', () => {
  const timeline = () => new Timeline(['cpu']);

  it('holds two minutes and no more, however long it runs', () => {
    const line = timeline();
    for (let time = 0; time <= 4000; time += 2) line.add(time, { cpu: 1 });
    expect(line.times.length).toBeLessThanOrEqual(minutes / 2 + 2);
    expect(line.times[0]).toBeLessThanOrEqual(4000 - minutes);
    expect(line.values.cpu).toHaveLength(line.times.length);
  });

  it('leaves a gap where samples are missing, and none for a late one', () => {
    const line = timeline();
    for (const time of [10, 12, 15.5, 40]) line.add(time, { cpu: 7 });
    expect(line.values.cpu).toEqual([7, 7, 7, null, 7]);
    expect(line.times).toEqual([10, 12, 15.5, 16.5, 40]);
  });

  it('leaves a gap where one sample is missing', () => {
    const line = timeline();
    for (const time of [10, 12, 16]) line.add(time, { cpu: 7 });
    expect(line.values.cpu).toEqual([7, 7, null, 7]);
  });

  it('a figure that a sample lacks is a gap and no zero', () => {
    const line = timeline();
    line.add(1, { cpu: null });
    expect(line.range('cpu')).toBeNull();
    line.add(3, { cpu: 40 });
    line.add(5, { cpu: 10 });
    expect(line.range('cpu')).toEqual({ lowest: 10, highest: 40 });
  });

  it('never runs backwards', () => {
    const line = timeline();
    line.add(5, { cpu: 1 });
    line.add(5, { cpu: 2 });
    line.add(4, { cpu: 3 });
    expect(line.values.cpu).toEqual([1]);
  });
});

describe('the last hour', () => {
  const averages = () => new Averages(['cpu']);

  it('holds an hour and no more, each ten seconds as their average', () => {
    const line = averages();
    for (let time = 0; time < 20_000; time += 2) line.add(time, { cpu: time % 10 });
    expect(line.times.length).toBeLessThanOrEqual(hour / part + 2);
    expect(line.times[0]).toBeLessThanOrEqual(20_000 - hour);
    expect(new Set(line.values.cpu)).toEqual(new Set([4]));
    expect(line.values.cpu).toHaveLength(line.times.length);
  });

  it('what is not over yet counts as far as it is known', () => {
    const line = averages();
    for (const [time, cpu] of [[10, 20], [12, 40], [20, 90]] as const) line.add(time, { cpu });
    expect(line.times).toEqual([10, 20]);
    expect(line.values.cpu).toEqual([30, 90]);
  });

  it('where nobody looked there is a gap, however short, and none for a sample that is late', () => {
    const line = averages();
    for (const time of [10, 12, 21, 32, 2000]) line.add(time, { cpu: 5 });
    expect(line.values.cpu).toEqual([5, 5, null, 5, null, 5]);
    expect([...line.times].sort((left, right) => left - right)).toEqual(line.times);
    expect(new Set(line.times).size).toBe(line.times.length);
  });

  it('a figure that is missing is no zero in the average', () => {
    const line = averages();
    line.add(1, { cpu: null });
    expect(line.values.cpu).toEqual([null]);
    line.add(3, { cpu: 40 });
    expect(line.values.cpu).toEqual([40]);
  });
});

describe('groups with their processes', () => {
  it('take their icons from the sample, and what is not told one by one makes up the sum', () => {
    const [first] = withIcons(someDetails().groups, someGroups());
    expect(first).toMatchObject({ name: 'Borealis', icon: someGroups()[0]!.icon, canQuit: true });
    const rest = restOf(first!)!;
    expect(rest.procs).toBe(29);
    expect(rest.mem + 1180 + 800).toBeCloseTo(first!.mem);
    expect(rest.cpu + 92.1 + 30.2).toBeCloseTo(first!.cpu);
    expect(restOf({ ...first!, procs: 2 })).toBeNull();
  });
});

describe('the scale of the network', () => {
  it('is a round figure that holds the value', () => {
    expect([0, 9_999, 10_001, 1_240_000, 5_000_000, 5_000_001].map(roundUp)).toEqual([
      10_000, 10_000, 20_000, 2_000_000, 5_000_000, 10_000_000,
    ]);
  });

  it('grows at once and shrinks only when little of it is used', () => {
    expect(nextTop(10_000, 1_200_000)).toBe(2_000_000);
    expect(nextTop(2_000_000, 700_000)).toBe(2_000_000);
    expect(nextTop(2_000_000, 500_000)).toBe(1_000_000);
    expect(nextTop(2_000_000, 0)).toBe(10_000);
  });

  it('does not swing between two figures when the value stays', () => {
    for (const value of [1, 40_000, 299_999, 1e6, 3.1e7]) {
      const settled = nextTop(nextTop(1e9, value), value);
      expect(nextTop(settled, value)).toBe(settled);
      expect(settled).toBeGreaterThanOrEqual(value);
    }
  });
});

describe('the heaviest applications', () => {
  const names = (rows: readonly { name: string }[]) => rows.map(({ name }) => name);
  const two = (first: number, second: number) => [group('a', first, 10), group('b', second, 20)];

  it('change their places at most every other sample, their figures with every one', () => {
    const steady = new SteadyRows();
    expect(names(steady.take(two(9, 1), busiestFirst, compare, false))).toEqual(['a', 'b']);
    const between = steady.take(two(1, 9), busiestFirst, compare, false);
    expect(names(between)).toEqual(['a', 'b']);
    expect(between.map(({ cpu }) => cpu)).toEqual([1, 9]);
    expect(names(steady.take(two(1, 9), busiestFirst, compare, false))).toEqual(['b', 'a']);
  });

  it('stand still while somebody is in the list; new ones come below, and what is gone keeps its place', () => {
    const steady = new SteadyRows();
    steady.take(two(9, 1), busiestFirst, compare, false);
    for (let sample = 0; sample < 4; sample += 1) {
      steady.take([group('b', 50, 1), group('c', 90, 1)], busiestFirst, compare, true);
    }
    expect(steady.rows.map(({ name, gone }) => [name, gone])).toEqual([['a', true], ['b', false], ['c', false]]);
    steady.take([group('b', 50, 1), group('c', 90, 1)], busiestFirst, compare, true);
    expect(names(steady.take([group('b', 50, 1), group('c', 90, 1)], busiestFirst, compare, false)).slice(0, 1)).not.toEqual([]);
    const freed = steady.take([group('b', 50, 1), group('c', 90, 1)], busiestFirst, compare, false);
    expect(names(freed)).toEqual(['c', 'b']);
  });

  it('begin anew when they were not looked at for a while', () => {
    const steady = new SteadyRows();
    steady.take(two(9, 1), busiestFirst, compare, false);
    steady.restart();
    const rows = steady.take([group('c', 5, 1), group('d', 7, 1)], busiestFirst, compare, false);
    expect(rows.map(({ name, gone }) => [name, gone])).toEqual([['d', false], ['c', false]]);
  });

  it('do not pile up while they are held', () => {
    const steady = new SteadyRows();
    for (let sample = 0; sample < 200; sample += 1) {
      steady.take([group(`p${sample}`, 1, 1, { kind: 'other', pid: sample })], busiestFirst, compare, true);
    }
    expect(steady.rows.length).toBeLessThanOrEqual(24);
  });

  it('obey another order at once', () => {
    const steady = new SteadyRows();
    steady.take(two(9, 1), busiestFirst, compare, false);
    expect(names(steady.sort({ column: 'mem', direction: 'descending' }, compare))).toEqual(['b', 'a']);
    expect(nextProcessOrder(busiestFirst, 'mem').direction).toBe('descending');
    expect(nextProcessOrder(busiestFirst, 'cpu').direction).toBe('ascending');
    expect(nextProcessOrder(busiestFirst, 'name').direction).toBe('ascending');
  });

  it('an application keeps its row when another process stands for it, and two of one name have two', () => {
    const [first] = keyed([group('a', 1, 1, { pid: 4 })]);
    const [again] = keyed([group('a', 1, 1, { pid: 9 })]);
    expect(first!.key).toBe(again!.key);
    const keys = keyed([...someGroups(), ...someGroups()]).map(({ key }) => key);
    expect(new Set(keys).size).toBe(keys.length);
  });
});

describe('what weighs', () => {
  it('is what takes memory or the processor: an idle thread of the kernel is neither', () => {
    expect(weighs({ cpu: 0, mem: 0 })).toBe(false);
    expect(weighs({ cpu: 0.04, mem: 0 })).toBe(false);
    expect(weighs({ cpu: 12, mem: 0 })).toBe(true);
    expect(weighs({ cpu: 0, mem: 0.5 })).toBe(true);
  });
});

describe('what is told beside a group', () => {
  it('is its traffic and whether it can be quit, by its process', () => {
    const rows = withActivity(someGroups(), someActivity().procs);
    expect(rows.map(({ disk }) => disk)).toEqual([1_240_000, 0, 52_000, undefined, undefined, undefined, undefined, undefined]);
    expect(rows.map(({ canQuit }) => canQuit === true)).toEqual([true, true, false, false, false, false, false, false]);
  });

  it('never makes anything but an application one that can be quit', () => {
    const [row] = withActivity([group('servicio', 1, 1, { kind: 'other', pid: 5 })], [{ pid: 5, canQuit: true }]);
    expect(row!.canQuit).toBeUndefined();
  });

  it('puts what nobody knows after everything known', () => {
    const rows = keyed(withActivity(someGroups(), someActivity().procs));
    const sorted = sortRows(rows, { column: 'disk', direction: 'descending' }, compare);
    expect(sorted.slice(0, 3).map(({ name }) => name)).toEqual(['Borealis', 'indexador', 'Acme Studio']);
  });
});

describe('what the memory holds', () => {
  it('adds up to the whole', () => {
    const parts = memoryParts(someSample().mem!);
    expect(parts.reduce((sum, { share }) => sum + share, 0)).toBeCloseTo(1);
    expect(parts.find(({ name }) => name === 'free')!.gb).toBeCloseTo(2.2);
  });

  it('never runs over, even where pages are counted twice', () => {
    const parts = memoryParts({ ...someSample().mem!, app: 30 });
    expect(parts.reduce((sum, { share }) => sum + share, 0)).toBeCloseTo(1);
    expect(parts.find(({ name }) => name === 'free')!.gb).toBe(0);
  });
});

describe('rates and amounts of memory', () => {
  it.each([
    [0, '0 KB/s'], [40, '0 KB/s'], [4_096, '4.1 KB/s'], [20_480, '20 KB/s'], [999_600, '1 MB/s'], [1_240_000, '1.2 MB/s'],
    [84_000_000, '84 MB/s'], [2.5e9, '2.5 GB/s'], [-5, '0 KB/s'],
  ])('%d bytes a second read %s', (bytes, text) => expect(plain(rate(bytes as number, formats.en))).toBe(text));

  it.each([[0, '0 MB'], [640.5, '672 MB'], [953, '999 MB'], [2048, '2.1 GB'], [-1, '0 MB']])(
    '%d mebibytes read %s',
    (mebibytes, text) => expect(plain(memory(mebibytes as number, formats.en))).toBe(text),
  );
});
