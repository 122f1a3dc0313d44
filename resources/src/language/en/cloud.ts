import { formats } from '../formats.ts';

const { plural, size } = formats.en;

const files = { one: '# file', other: '# files' };
const listed = new Intl.ListFormat('en', { type: 'conjunction' });

/** Moving to iCloud Drive. */
export const cloud = {
  action: 'Move to iCloud Drive…',
  title: (count: number) => `Move ${plural(count, files)} to iCloud Drive?`,
  where: (gb: number) => `They go to the folder “Velto” in iCloud Drive and take up ${size(gb)} of your iCloud storage.`,
  space: 'On this disk nothing becomes free yet. Once they are uploaded, the system can remove the copies here when space runs low.',
  back: 'They can be moved back.',
  move: 'Move to iCloud Drive',
  movedTitle: 'Moved to iCloud Drive',
  moved: (count: number) => plural(count, { one: '# file is in its folder “Velto” now.', other: '# files are in its folder “Velto” now.' }),
  returnedTitle: 'Moved back',
  returned: (count: number) => plural(count, { one: '# file is back from iCloud Drive.', other: '# files are back from iCloud Drive.' }),
  notMovedTitle: 'Nothing was moved',
  failed: (names: string[], more: number) =>
    `Not moved: ${listed.format([...names.map((name) => `“${name}”`), ...(more > 0 ? [plural(more, { one: '# more', other: '# more' })] : [])])}. Something of that name stands there, or the file is gone.`,
};
