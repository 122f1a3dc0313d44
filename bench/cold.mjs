// The walk of a home that is in no cache, as after a start of the machine: on the file system of the
// made data and, where they can be made, on XFS and btrfs in a file. As root only.
import { existsSync } from 'node:fs';
import { join } from 'node:path';
import { compareProcesses, dropCaches, output, table } from './measure.mjs';
import { mounted } from './volumes.mjs';

const target = 0.4; // of the fastest peer's time

function compare(title, home, programs, runs) {
  console.log(`\nWalk of what is in no cache, ${title}`);
  const results = compareProcesses([
    { name: 'velto scan', command: [programs.scan, home] },
    { name: 'floor', command: [programs.floor, home] },
    { name: 'du', command: ['du', '-s', home] },
    { name: 'ncdu', command: ['ncdu', '-0', '-o', '/dev/null', home] },
    { name: 'gdu', command: ['gdu', '-npc', home] },
  ], runs, dropCaches);
  table(results, 'velto scan');
  const [own, , ...peers] = results;
  if (peers.length === 0) return;
  const fastest = peers.reduce((one, other) => (other.median < one.median ? other : one));
  console.log(`against the fastest peer, ${fastest.name}: ` +
    `${(own.median / fastest.median).toFixed(2)} (target: at most ${target.toFixed(2)})`);
}

/** `programs`: the paths of the scanner and of the bare floor. */
export function compareCold(home, data, programs, runs) {
  if (process.getuid() !== 0 || !existsSync('/proc/sys/vm/drop_caches')) {
    console.log('\nLeft out: the walk of what is in no cache (only root may empty the caches)');
    return;
  }
  compare('on the disk of the made data', home, programs, runs);
  for (const kind of ['xfs', 'btrfs']) {
    const done = mounted(kind, join(data, `cold-${kind}`), 8e9, (folder) => {
      // The shape of the small home; claimed sizes take no room.
      output(['cp', '--archive', '--sparse=always', home, folder]);
      compare(`on ${kind} in a file`, folder, programs, runs);
    });
    if (!done) console.log(`\nLeft out: ${kind} cannot be made or mounted here`);
  }
}
