/** Made-up samples of a machine, as the program would send them. */
import type { ProcessGroup, SystemActivity, SystemDetails, SystemSample } from '../../src/protocol/protocol.ts';
import { picture } from './pictures.ts';
import { hostileNames } from './states.ts';

export function group(name: string, cpu: number, mem: number, change: Partial<ProcessGroup> = {}): ProcessGroup {
  return { name, pid: 100 + name.length, kind: 'app', procs: 1, cpu, mem, icon: '', ...change };
}

export function someGroups(): ProcessGroup[] {
  return [
    group('Borealis', 142.3, 3180, { procs: 31, pid: 501, icon: picture(38, 110, 214) }),
    group('Acme Studio', 48.1, 2210, { procs: 4, pid: 612, icon: picture(232, 122, 32) }),
    group('indexador', 12.4, 88, { kind: 'other', pid: 77 }),
    group('Notas rápidas', 3.2, 412, { procs: 2, pid: 733, icon: picture(240, 190, 40) }),
    group('Velto', 1.1, 190, { procs: 3, pid: 901, icon: picture(14, 104, 88) }),
    group('servidor-de-sonido', 0.6, 21, { kind: 'other', pid: 310 }),
    group('Cadencia', 0, 640, { procs: 2, pid: 1201, icon: picture(186, 56, 122) }),
    group('base de datos', 0, 512, { kind: 'other', pid: 88 }),
  ];
}

export function someSample(change: Partial<SystemSample> = {}): SystemSample {
  return {
    cpu: { pct: 23.4, cores: 8, load: 2.3 },
    mem: {
      total: 17.2, used: 10.9, pct: 63.4, app: 5.9, wired: 2.4, compressed: 2.6, cached: 4.1,
      pressure: 'normal', swapUsed: 0.4, swapTotal: 2.1,
    },
    disk: { total: 994.7, free: 312.4, pct: 68.6 },
    thermal: { state: 'nominal', lowPower: false },
    battery: { avail: true, pct: 81, state: 'discharging', minutes: 312, cycles: 77 },
    net: { avail: true, iface: 'en0', down: 1_240_000, up: 84_000 },
    procs: someGroups(),
    ...change,
  };
}

/** What comes before such a sample: two applications of the user's own. */
export function someActivity(change: Partial<SystemActivity> = {}): SystemActivity {
  return {
    disk: { read: 3_400_000, written: 96_000 },
    temperature: { celsius: 54, part: 'processor' },
    gpu: { pct: 12.4 },
    procs: [
      { pid: 501, read: 1_200_000, written: 40_000, canQuit: true },
      { pid: 612, read: 0, written: 0, canQuit: true },
      { pid: 77, read: 52_000, written: 0, canQuit: false },
      { pid: 310, canQuit: false },
    ],
    ...change,
  };
}

/** The same groups by their names; of the largest one more processes than are told one by one. */
export function someDetails(change: Partial<SystemDetails> = {}): SystemDetails {
  const members = [
    { pid: 501, name: 'borealis', cpu: 92.1, mem: 1180, read: 1_000_000, written: 40_000 },
    { pid: 502, name: 'borealis: pestaña', cpu: 30.2, mem: 800 },
  ];
  return {
    groups: someGroups().map(({ icon: _icon, ...each }) => ({
      ...each, canQuit: each.pid === 501, members: each.pid === 501 ? members : [],
    })),
    unseen: [],
    ...change,
  };
}

/** The first sample after a start: nothing to compare with yet. */
export function firstSample(): SystemSample {
  const { cpu: _cpu, net: _net, ...rest } = someSample({ procs: someGroups().map((each) => ({ ...each, cpu: 0 })) });
  return rest;
}

/** A machine that reports next to nothing. */
export function bareSample(): unknown {
  return {
    cpu: { pct: 3, cores: 1, load: 0 },
    mem: { total: 2.1, used: 2, pct: 96, app: 1.9, wired: 0.1, compressed: 0, cached: 0, pressure: 'critical', swapUsed: 0, swapTotal: 0 },
    thermal: { state: 'tepid' }, battery: { avail: false }, procs: [],
  };
}

/** Figures as large as they can be, and a button on every row. */
export function hostileActivity(): unknown {
  return {
    ...someActivity({ disk: { read: 9e12, written: 9e12 }, gpu: { pct: 100 }, temperature: { celsius: 149, part: 'graphics' } }),
    procs: Array.from({ length: 50 }, (_, pid) => ({ pid, read: 9e12, written: 9e12, canQuit: true })),
  };
}

export function hostileSample(): unknown {
  return {
    ...someSample({ net: { avail: true, iface: hostileNames[2]!, down: 9e12, up: 0 } }),
    battery: { avail: true, pct: 400, state: '<b>', minutes: -4, cycles: 1e9 },
    procs: [
      ...hostileNames.map((name, index) => group(name, 1000 - index, 90_000 / (index + 1), { procs: 9999, pid: index, icon: 'https://example.org/pixel.png' })),
      group(hostileNames[0]!, 1, 1, { pid: 44 }), { name: 4 }, null,
    ],
  };
}
