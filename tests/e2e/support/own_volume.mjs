// A volume that only the test and its program see: in an image of its own, mounted in private.
import { execFileSync } from 'node:child_process';
import { truncateSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { startChild, stopChild } from '../../../tools/desktop/children.mjs';
import { atEnd, temporaryFolder } from './home.mjs';

/** Where an ordinary user's path does not look. */
export const toolPath = `${process.env.PATH}:/usr/sbin:/sbin`;
const makers = {
  btrfs: { tool: 'mkfs.btrfs', args: ['-q'] },
  xfs: { tool: 'mkfs.xfs', args: ['-q', '-m', 'reflink=1'] },
};

/** How `home`, which must be empty, lies on a volume of that kind; `missing` says why it cannot. */
export async function onOwnVolume(t, home, kind, bytes = 512 * 1024 * 1024) {
  const { tool, args } = makers[kind];
  if (process.platform !== 'linux' || process.getuid() !== 0) return { missing: 'only root mounts volumes' };
  const image = join(temporaryFolder(t), 'image');
  writeFileSync(image, '');
  truncateSync(image, bytes);
  try {
    execFileSync(tool, [...args, image], { env: { ...process.env, PATH: toolPath }, stdio: 'pipe' });
  } catch (error) {
    return { missing: error.code === 'ENOENT' ? `${tool} is not installed` : `${tool}: ${error.stderr}` };
  }
  // The mounts end with this shell, which ends with its input.
  const script = 'mount -o loop "$1" "$2" && echo mounted && exec cat';
  const holder = startChild(
    'unshare', ['--mount', '--propagation', 'private', 'sh', '-c', script, 'sh', image, home.path],
    { env: { ...process.env, PATH: toolPath }, stdio: ['pipe', 'pipe', 'pipe'] },
  );
  atEnd(t, () => stopChild(holder));
  const isMounted = await new Promise((resolve) => {
    holder.stdout.once('data', () => resolve(true));
    holder.ended.then(() => resolve(false));
  });
  if (!isMounted) return { missing: `no ${kind} volume can be mounted here` };
  return {
    /** Runs a program where the volume is. */
    through: ['nsenter', `--mount=/proc/${holder.pid}/ns/mnt`, '--'],
    /** The same home, seen from here. */
    home: Object.assign(Object.create(home), { path: `/proc/${holder.pid}/root${home.path}` }),
  };
}
