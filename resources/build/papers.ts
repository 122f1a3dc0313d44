/**
 * What the program says about itself and how it is used: licence notices and the guide. Each text is
 * a classic script of its own that puts one record into the table of `classicPage`, and is read only
 * when somebody wants to see it.
 */
import { copyFileSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import type { Plugin } from 'vite';
import { inAscii, table } from './classicPage.ts';
import { guideOf } from './guide.ts';
import { joinNotices, type PackageNotice } from './notices.ts';

/** What Vite writes of the packages in the bundle (`build.license`). */
export const licenseList = 'licenses.json';

function script(name: string, record: object): string {
  return `${table}[${JSON.stringify(`./${name}`)}]=${inAscii(JSON.stringify(record))};\n`;
}

/** `root` is the project's folder. */
export function papers(root: string): Plugin {
  return {
    name: 'velto:papers',
    apply: 'build',
    writeBundle({ dir }) {
      const write = (name: string, content: string) => writeFileSync(join(dir!, name), content);
      const packages = JSON.parse(readFileSync(join(dir!, licenseList), 'utf8')) as PackageNotice[];
      rmSync(join(dir!, licenseList));
      const folder = join(root, 'packaging/notices');
      const libraries = readdirSync(folder).sort().map((name) => readFileSync(join(folder, name), 'utf8'));
      const text = joinNotices(readFileSync(join(root, 'LICENSE'), 'utf8'), libraries, packages);
      write('NOTICES.txt', text);
      write('notices.js', script('notices.js', { text }));
      for (const language of ['en', 'es']) {
        const from = join(root, 'docs/guide', language);
        const { pictures, sections, html } = guideOf(readFileSync(join(from, 'guide.md'), 'utf8'));
        for (const picture of pictures) copyFileSync(join(from, picture), join(dir!, picture));
        write(`guide-${language}.js`, script(`guide-${language}.js`, { sections, html }));
      }
    },
  };
}
