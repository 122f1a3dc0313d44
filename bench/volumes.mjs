// File systems in a file, made for a measurement and gone after it. As root only.
import { spawnSync } from 'node:child_process';
import { mkdirSync, rmSync, truncateSync, writeFileSync } from 'node:fs';
import { output } from './measure.mjs';

/**
 * Runs `action(folder)` with a fresh file system of a kind mounted at `folder`; false when there is no such kind here,
 * or no file of so many bytes. The file is sparse.
 */
export function mounted(kind, folder, bytes, action) {
  const image = `${folder}.image`;
  const succeeds = (...command) => spawnSync(command[0], command.slice(1), { stdio: 'ignore' }).status === 0;
  mkdirSync(folder, { recursive: true });
  try {
    writeFileSync(image, '');
    try {
      truncateSync(image, bytes);
    } catch {
      return false;
    }
    if (!succeeds(`mkfs.${kind}`, '-q', image) || !succeeds('mount', '-o', 'loop', image, folder)) return false;
    try {
      action(folder);
    } finally {
      output(['umount', folder]);
    }
    return true;
  } finally {
    rmSync(image, { force: true });
    rmSync(folder, { recursive: true });
  }
}
