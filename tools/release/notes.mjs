// What a release says of itself: the part of CHANGELOG.md about one version.
//   node tools/release/notes.mjs VERSION
import { readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

/**
 * The section under the heading "## VERSION", with or without brackets and a date. Where a page shows
 * each line break, wrapped lines would be torn: they are put together again. An unknown version and an
 * empty section are errors: nothing is released with another version's words, or without any.
 */
export function notesOf(changelog, version) {
  const sections = changelog.split(/^## /m).slice(1);
  const section = sections.find((each) => {
    const [, named] = /^\[?([^\]\s]+)\]?(?:\s.*)?$/.exec(each.split('\n')[0]) ?? [];
    return named === version;
  });
  if (section === undefined) throw new Error(`CHANGELOG.md has no section for ${version}`);
  const text = section.slice(section.indexOf('\n') + 1);
  const notes = text.replace(/\n[ \t]+(?=[^\s-])/g, ' ').replace(/\n{3,}/g, '\n\n').trim();
  if (!/^- /m.test(notes)) throw new Error(`CHANGELOG.md says nothing about ${version}`);
  return `${notes}\n`;
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const file = new URL('../../CHANGELOG.md', import.meta.url);
  try {
    process.stdout.write(notesOf(readFileSync(file, 'utf8'), process.argv[2] ?? ''));
  } catch (error) {
    console.error(`notes: ${error.message}`);
    process.exitCode = 1;
  }
}
