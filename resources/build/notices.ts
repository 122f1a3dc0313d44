/** One package whose code is in the page, as Vite lists it. */
export interface PackageNotice {
  name: string;
  version: string;
  /** SPDX expression. */
  identifier?: string;
  /** Of the package's licence file. */
  text?: string;
}

const line = '-'.repeat(72);

/**
 * One text: the program's own licence, then whose code is in it and under which terms. A package that
 * says nothing of its terms cannot be passed on, so it is an error.
 */
export function joinNotices(own: string, libraries: string[], packages: PackageNotice[]): string {
  const silent = packages.filter(({ identifier, text }) => !identifier || !text?.trim());
  if (silent.length) throw new Error(`no licence text for ${silent.map(({ name }) => name).join(', ')}`);
  const ofPage = packages.map(({ name, version, identifier, text }) => `${name} ${version} (${identifier})\n\n${text!.trim()}`);
  return [
    `Velto\n\n${own.trim()}`,
    'Parts of the following are in the program or in its page. What the system brings is not listed.',
    ...libraries.map((text) => text.trim()),
    ...ofPage,
  ].join(`\n\n${line}\n\n`) + '\n';
}
