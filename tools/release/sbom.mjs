// The bill of materials of a release (CycloneDX): what is in the page and in the program, what the
// program is linked to on this machine, and what the page was built with.
//   node tools/release/sbom.mjs >velto.cdx.json
// Needs the built page (resources/dist) and pkg-config. Without a network.
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

/** As pkg-config calls each. Of what the system brings, its packages know the licence. */
export const libraries = [
  { name: 'nlohmann_json', license: 'MIT', isInside: true },
  { name: 'fmt', license: 'MIT', isInside: true },
  { name: 'gtk4' },
  { name: 'webkitgtk-6.0' },
  { name: 'gio-unix-2.0' },
  { name: 'icu-uc' },
  { name: 'libcrypto' },
  { name: 'libplist-2.0' },
  { name: 'gdk-pixbuf-2.0' },
  { name: 'libsoup-3.0' },
];

/** The packages whose code is in the page: "name version (licence)" heads each in NOTICES.txt. */
export function packagesIn(notices) {
  return [...notices.matchAll(/^-{40,}\n\n(\S+) (\d\S*) \([^)]+\)$/gm)].map(([, name, version]) => `${name}@${version}`);
}

const linked = ({ name, version, license, isInside }) => ({
  type: 'library',
  'bom-ref': `${name}@${version}`,
  name,
  version,
  scope: 'required',
  ...(license && { licenses: [{ license: { id: license } }] }),
  properties: [{ name: 'velto:use', value: isInside ? 'compiled in' : 'linked, of the system' }],
});

/**
 * `npm` is what `npm sbom` says of the lock file, `inPage` names what the page holds, `native` the
 * libraries with their versions, `moment` the time of the sources (seconds since 1970).
 */
export function sbomOf({ npm, inPage, native, version, moment }) {
  const known = new Set(npm.components.map((each) => `${each.name}@${each.version}`));
  const unknown = inPage.filter((name) => !known.has(name));
  if (unknown.length || !inPage.length) throw new Error(`the page holds what the lock file does not know: ${unknown}`);
  const page = npm.components.map((each) => {
    const isInside = inPage.includes(`${each.name}@${each.version}`);
    const use = { name: 'velto:use', value: isInside ? 'in the page' : 'builds or tests the page' };
    return { ...each, scope: isInside ? 'required' : 'excluded', properties: [use] };
  });
  return {
    bomFormat: 'CycloneDX',
    specVersion: npm.specVersion,
    version: 1,
    metadata: {
      timestamp: new Date(moment * 1000).toISOString(),
      component: { type: 'application', 'bom-ref': `velto@${version}`, name: 'velto', version, licenses: [{ license: { id: 'MIT' } }] },
    },
    components: [...native.map(linked), ...page],
    dependencies: [
      {
        ref: `velto@${version}`,
        dependsOn: [...native.map((each) => `${each.name}@${each.version}`), ...page.filter(({ scope }) => scope === 'required').map((each) => each['bom-ref'])],
      },
    ],
  };
}

const root = fileURLToPath(new URL('../..', import.meta.url));
const read = (path) => readFileSync(`${root}/${path}`, 'utf8');
const run = (command, args, cwd = root) =>
  execFileSync(command, args, { cwd, encoding: 'utf8', maxBuffer: 64 << 20, stdio: ['ignore', 'pipe', 'inherit'] }).trim();

function main() {
  const version = /project\(velto VERSION ([\d.]+)/.exec(read('CMakeLists.txt'))[1];
  const sbom = sbomOf({
    npm: JSON.parse(run('npm', ['sbom', '--sbom-format', 'cyclonedx', '--package-lock-only'], `${root}/resources`)),
    inPage: packagesIn(read('resources/dist/NOTICES.txt')),
    native: libraries.map((each) => ({ ...each, version: run('pkg-config', ['--modversion', each.name]) })),
    version,
    moment: Number(process.env.SOURCE_DATE_EPOCH || run('git', ['log', '-1', '--format=%ct'])),
  });
  process.stdout.write(`${JSON.stringify(sbom, null, 1)}\n`);
}

if (process.argv[1] === fileURLToPath(import.meta.url)) main();
