// Runs the program on a virtual display until it shows an analysis, prints the summary and takes
// a screenshot: `node run_virtual.mjs PROGRAM SCREENSHOT LOG [ARGUMENT...]`.
import { readFileSync, writeFileSync, existsSync } from 'node:fs';
import { homedir } from 'node:os';
import { join, relative } from 'node:path';
import { startDesktop } from './desktop/desktop.mjs';
import { startProgram } from './desktop/program.mjs';
import { summaryLines } from './desktop/summary.mjs';

const [program, screenshot, logFile, ...args] = process.argv.slice(2);
const analysisLimit = 30 * 60_000; // a home of many millions of files on a slow disk

/** Where the program keeps its last analysis: the layout of the home decides, as in the program. */
function savedAnalysis() {
  const home = homedir();
  const library = join(home, 'Library');
  const support = join(library, 'Application Support');
  const macLayout = existsSync(support) || existsSync(join(library, 'Caches'));
  const data = process.env.XDG_DATA_HOME || join(home, '.local', 'share');
  return join(macLayout ? support : data, 'Velto', 'lastScan.json');
}

const finished = 'Velto ▶ análisis terminado:';
const failed = ['Velto ▶ error de análisis:', 'Velto ▶ análisis cancelado'];
const applied = 'Velto ▶ estado de arranque aplicado:';

async function main() {
  const desktop = await startDesktop();
  const velto = startProgram(program, args, desktop.variables);
  try {
    const boot = await velto.waitFor(applied, { limit: 120_000 });
    if (boot.includes(`${applied} real`)) {
      console.log('A saved analysis exists; the program shows it and does not scan.\n');
    } else {
      const line = await velto.waitFor([finished, ...failed], { limit: analysisLimit });
      if (!line.includes(finished)) throw new Error(line);
    }
    await velto.waitFor('intención: webReady', { limit: 60_000 });
    console.log(summaryLines(JSON.parse(readFileSync(savedAnalysis(), 'utf8'))).join('\n'));
    // A page that goes on moving is pictured all the same.
    await desktop.steady(10_000).catch(() => {});
    await desktop.screenshot(screenshot);
    console.log(`\nWindow: ${relative(process.cwd(), screenshot)}`);
    console.log(`Log:    ${relative(process.cwd(), logFile)}`);
  } finally {
    await velto.stop();
    await desktop.stop();
    writeFileSync(logFile, velto.lines.map((line) => `${line}\n`).join(''));
  }
}

main().catch((error) => {
  console.error(`dev: ${error.message}`);
  process.exitCode = 1;
});
