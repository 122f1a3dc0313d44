// Applications of a made Linux home that weigh on the machine, for the live view to show.
import { execFileSync } from 'node:child_process';
import { chmodSync, copyFileSync, readFileSync } from 'node:fs';
import { once } from 'node:events';
import { startChild, stopChild } from '../../../tools/desktop/children.mjs';
import { atEnd } from './home.mjs';

const load = process.env.LOAD ?? 'build/release/tests/load';

/** Puts an application into the home, with a desktop entry and an icon; answers its program. */
export function install(home, id, name, colour) {
  const program = home.folder(`Applications/${id}`).at(`Applications/${id}/${id}`);
  copyFileSync(load, program);
  chmodSync(program, 0o755);
  home.text(
    `.local/share/applications/${id}.desktop`,
    `[Desktop Entry]\nType=Application\nName=${name}\nIcon=${id}\nExec=${program} %F\n`,
  );
  const icon = `.local/share/icons/hicolor/48x48/apps/${id}.png`;
  home.text(icon, '');
  const circle = ['-fill', colour, '-draw', 'circle 24,24 24,2'];
  execFileSync('convert', ['-size', '48x48', 'xc:none', ...circle, home.at(icon)]);
  return program;
}

/** Runs an installed application until the test ends; resolves once it weighs what it will. */
export async function run(t, program, ...work) {
  const child = startChild(program, work.map(String), { stdio: ['ignore', 'pipe', 'inherit'] });
  atEnd(t, () => stopChild(child));
  await Promise.race([
    once(child.stdout, 'data'),
    child.ended.then(({ error, status }) => {
      throw new Error(`${program} did not start: ${error?.message ?? `status ${status}`}`);
    }),
  ]);
  return child;
}

/** Bytes that an interface has received so far. */
export function received(name) {
  const found = readFileSync('/proc/net/dev', 'utf8').match(new RegExp(`^\\s*${name}:\\s*(\\d+)`, 'm'));
  return found ? Number(found[1]) : 0;
}
