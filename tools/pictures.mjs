// Takes the pictures of the guide from the real program, in both languages, on a virtual display:
// `node tools/pictures.mjs [PROGRAM]`. Needs what `./dev run` needs there, and 10 GB of disk for the
// home that is shown, which goes afterwards.
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { startDesktop } from './desktop/desktop.mjs';
import { startProgram } from './desktop/program.mjs';

const root = fileURLToPath(new URL('..', import.meta.url));
const program = resolve(process.argv[2] ?? join(root, 'build/release/velto'));
const size = { width: 960, height: 640 };

/** In this order: the name of the picture, and how the program comes to show it. */
const pictures = [
  ['overview', async () => {}],
  ['folders', async ({ desktop, velto }) => {
    const from = velto.lines.length;
    await desktop.input('key', 'ctrl+2');
    await velto.waitFor('intención: folder ', { from });
  }],
  ['cleanup', async ({ desktop, velto }) => {
    const from = velto.lines.length;
    await desktop.input('key', 'ctrl+5');
    await velto.waitFor('intención: scanCleanables', { from });
    await desktop.steady();
    await desktop.input('key', 'F6', 'F6', 'space'); // by the rail to the list: the first kind
  }],
  ['trash', async ({ desktop, velto }) => {
    const from = velto.lines.length;
    await desktop.input('key', 'Delete');
    await velto.waitFor('intención: cleanPaths', { from });
    await desktop.steady(20_000);
    await desktop.input('key', 'ctrl+6');
  }],
];

/** Few colours and no more: half a dozen pictures lie in every copy of the program. */
async function take(desktop, file) {
  await desktop.steady(20_000).catch(() => {}); // what moves on its own is pictured all the same
  await desktop.screenshot(file);
  execFileSync('convert', [file, '+dither', '-colors', '96', '-strip', '-define', 'png:compression-level=9', `PNG8:${file}`]);
}

async function picturesIn(language, home) {
  const settings = join(home, '.config/velto');
  mkdirSync(settings, { recursive: true, mode: 0o700 });
  writeFileSync(join(settings, 'settings.json'), JSON.stringify({ 'velto.language': language }));
  const desktop = await startDesktop(size);
  const own = { HOME: home, XDG_RUNTIME_DIR: home };
  for (const name of ['CONFIG', 'DATA', 'CACHE', 'STATE']) own[`XDG_${name}_HOME`] = undefined;
  const velto = startProgram(program, [], { ...desktop.variables, ...own });
  try {
    await velto.waitFor('Velto ▶ análisis terminado:', { limit: 300_000 });
    await velto.waitFor('intención: webReady');
    for (const [name, come] of pictures) {
      await come({ desktop, velto });
      const file = `guide-${name}-${language}.png`;
      await take(desktop, join(root, 'docs/guide', language, file));
      console.log(file);
    }
  } finally {
    await velto.stop();
    await desktop.stop();
  }
}

for (const language of ['en', 'es']) {
  const home = mkdtempSync(join(tmpdir(), 'velto-pictures-'));
  try {
    execFileSync(process.execPath, [join(root, 'tools/sample_home.mjs'), home, '0.25']);
    await picturesIn(language, home);
  } finally {
    rmSync(home, { recursive: true, force: true });
  }
}
