// Writes FOLDER/build.ninja, which has clang-tidy look at what BUILD compiles, and again only at what has changed
// since it passed: the source, what it includes, how it is compiled, or what is looked for.
//   node tools/tidy.mjs BUILD FOLDER TIDY [PLACE...]
// BUILD: where compile_commands.json is. TIDY: clang-tidy with its arguments. PLACEs: only sources below these.
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join, relative, resolve } from 'node:path';

const [, , build, folder, tidy, ...places] = process.argv;
const root = process.cwd();
const sources = JSON.parse(readFileSync(join(build, 'compile_commands.json'), 'utf8'))
  .map((entry) => ({ ...entry, name: relative(root, entry.file) }))
  .filter(({ name }) => places.length === 0 || places.some((place) => name.startsWith(`${place}/`)));
if (sources.length === 0) throw new Error(`${build} compiles none of the sources`);

const inNinja = (text) => text.replaceAll('$', '$$$$');
const asPath = (text) => inNinja(text).replaceAll(/[ :]/g, '$$$&');
/** Has the compiler tell what a source includes. */
const including = ({ directory, command }) => `cd ${directory} && ${command.replace(/ -o \S+ -c /, ' ')} -MM`;

const rule = `builddir = .
rule tidy
  command = ($including -MF ${resolve(folder)}/$out.d -MT $out) && (${tidy} -p . --quiet $in 2>$out.log || (cat $out.log >&2; exit 1)) && touch $out
  depfile = $out.d
  deps = gcc
`;
const steps = sources.map((source) =>
  `build ${asPath(source.name)}.ok: tidy ${asPath(source.file)} | ${asPath(join(root, '.clang-tidy'))}
  including = ${inNinja(including(source))}
`);
for (const { name } of sources) mkdirSync(dirname(join(folder, name)), { recursive: true });
writeFileSync(join(folder, 'build.ninja'), rule + steps.join(''));
// Debian's clang knows C++23 by its working name.
writeFileSync(join(folder, 'compile_commands.json'), JSON.stringify(sources
  .map(({ directory, file, command }) => ({ directory, file, command: command.replace('-std=c++23', '-std=c++2b') }))));
