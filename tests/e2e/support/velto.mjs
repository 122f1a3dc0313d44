// The real program on a desktop of its own, in a made home.
import { cpSync, mkdirSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { run } from '../../../tools/desktop/children.mjs';
import { startDesktop } from '../../../tools/desktop/desktop.mjs';
import { startProgram } from '../../../tools/desktop/program.mjs';
import { atEnd } from './home.mjs';

const root = join(dirname(fileURLToPath(import.meta.url)), '..', '..', '..');

export const program = process.env.VELTO_PROGRAM ?? join(root, 'build', 'release', 'velto');
export const bundleName = 'Velto_velto_app.bundle';

export const line = {
  noSaved: 'Velto ▶ arranque: sin análisis previo',
  saved: 'Velto ▶ arranque: análisis guardado hace ',
  booted: 'Velto ▶ estado de arranque aplicado: ',
  started: 'Velto ▶ análisis iniciado',
  walked: 'Velto ▶ recorrido completo: ',
  processed: 'Velto ▶ post-proceso listo (duplicados: ',
  finished: 'Velto ▶ análisis terminado: ',
  intent: (name) => `Velto ▶ intención: ${name} payload: `,
};

/** A desktop that goes when the test ends. */
export async function desktopFor(test, size) {
  const desktop = await startDesktop(size);
  atEnd(test, () => desktop.stop());
  return desktop;
}

/**
 * Starts the program in `home`; it is ended with the test if the test has not ended it. Where it is
 * `detailed`, its log tells whole what the page sends: that is how test pages report.
 */
export function start(test, home, desktop, {
  file = program, args = [], variables = {}, detailed = true,
} = {}) {
  const velto = startProgram(file, detailed ? [...args, '--debug-log'] : args, {
    ...home.variables,
    ...desktop.variables,
    ...variables,
  });
  atEnd(test, () => velto.stop());
  return velto;
}

/** Runs the program to its end without a desktop. */
export function runHeadless(home, args, { file = program, variables = {} } = {}) {
  const env = {};
  const all = {
    ...process.env,
    ...home.variables,
    DISPLAY: undefined,
    DBUS_SESSION_BUS_ADDRESS: undefined,
    ...variables,
  };
  for (const [name, value] of Object.entries(all)) if (value !== undefined) env[name] = value;
  return run(file, args, { env });
}

/**
 * A copy of the program, and of its worker, beside a bundle made of `files` (name to text); no bundle
 * when null.
 */
export function programWith(folder, files) {
  const copy = join(folder, 'velto');
  cpSync(program, copy);
  cpSync(join(dirname(program), 'velto-icons'), join(folder, 'velto-icons'));
  if (files) {
    mkdirSync(join(folder, bundleName), { recursive: true });
    for (const [name, text] of Object.entries(files)) {
      writeFileSync(join(folder, bundleName, name), text);
    }
  }
  return copy;
}

/** The text after `start` in a log line. */
export const after = (text, start) => text.slice(text.indexOf(start) + start.length);

/** Fails unless the log holds these texts in this order. */
export function expectInOrder(lines, texts) {
  let from = 0;
  for (const text of texts) {
    const found = lines.findIndex((one, index) => index >= from && one.includes(text));
    if (found < 0) {
      throw new Error(`"${text}" is missing after line ${from}; log:\n${lines.join('\n')}`);
    }
    from = found + 1;
  }
}
