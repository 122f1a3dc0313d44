import { fileSize, sizeChange } from '../measures.ts';
import { formats } from '../formats.ts';

const { plural } = formats.en;

const size = (bytes: number) => fileSize(bytes, formats.en);
const items = { one: '# item', other: '# items' };
const files = { one: '# file', other: '# files' };

/** The folders of the disk. */
export const folders = {
  home: 'Home',
  way: 'Location',
  back: 'Back',
  up: 'Folder above',
  skipped: (names: string) => `Folders in between: ${names}`,
  summary: (bytes: number, count: number) => `${size(bytes)} · ${plural(count, files)}`,
  measuredOn: (when: string) => `Sizes as analyzed ${when}`,
  measuredNow: 'Sizes as analyzed just now',
  search: 'Search all folders',
  clearSearch: 'Clear search',
  columns: {
    select: 'Selection', name: 'Name', size: 'Size', files: 'Files', changed: 'Last change', growth: 'Growth',
    actions: 'Actions', path: 'Location',
  },
  gridLabel: (name: string) => `What is in ${name}`,
  gridHelp: 'Arrow keys move, letters jump to a name, Enter opens a folder, Backspace goes to the folder above, Space selects, Shift extends, right arrow reaches the actions of a row, up from the first row the column headers.',
  mapLabel: (name: string) => `Map of ${name}`,
  mapHelp: 'Arrow keys move, Enter opens a folder, Backspace goes to the folder above, Space selects. The table has the same content.',
  cell: (name: string, bytes: number, share: string) => `${name}, ${size(bytes)}, ${share}`,
  folderCell: (name: string, bytes: number, share: string) => `Folder ${name}, ${size(bytes)}, ${share}`,
  smaller: (count: number) => plural(count, { one: '# smaller one', other: '# smaller ones' }),
  smallerLabel: (count: number, bytes: number) =>
    `${plural(count, { one: '# smaller item', other: '# smaller items' })}, ${size(bytes)}`,
  folder: 'Folder',
  file: 'File',
  states: {
    new: 'New since the analysis', unreadable: 'Cannot be read', withheld: 'Kept back by the system', excluded: 'Excluded',
    own: 'Left out', otherVolume: 'Another disk', alreadyWalked: 'Counted elsewhere',
  },
  stateWhy: {
    new: 'It appeared after the analysis; the next one measures it.',
    unreadable: 'Your account may not read it, so nobody knows what it takes.',
    withheld: 'Without Full Disk Access the system does not let Velto read it.',
    excluded: 'You left it out of the analysis, so it was not measured.',
    own: 'Velto’s own data, or the system’s trash: neither is measured, nor moved from here.',
    otherVolume: 'It is a disk of its own and does not count to this folder.',
    alreadyWalked: 'The same folder under another name; its content is counted there.',
  },
  excludedNext: 'Excluded from the next analysis',
  linked: 'Several names',
  linkedWhy: 'This file has several names and is counted under one of them only. Removing one frees nothing.',
  unreadableInside: (count: number) => plural(count, { one: '# not read', other: '# not read' }),
  unreadableInsideWhy: (count: number) =>
    `${plural(count, { one: '# item inside could not be read', other: '# items inside could not be read' })}; what they take is not in these figures.`,
  usedOf: (bytes: number, total: number) => `${size(bytes)} of ${size(total)}`,
  unknownSize: 'Not measured',
  unknown: 'Not known',
  grown: (bytes: number) => `${size(bytes)} more`,
  shrunk: (bytes: number) => `${size(-bytes)} less`,
  change: (bytes: number) => sizeChange(bytes, formats.en),
  unchanged: 'Unchanged',
  locks: {
    protected: 'Protected: photo libraries, backups, mail and messages are never removed from here.',
    homeFolder: 'Your system or programs look for this folder. Open it to choose something inside.',
  },
  more: (count: number) => plural(count, { one: '# link or special file is not listed.', other: '# links and special files are not listed.' }),
  include: (name: string) => `Include ${name} in the analysis again`,
  copyNamed: (name: string) => `Copy the location of ${name}`,
  removeNamed: (name: string) => `Move ${name} to Velto Trash`,
  copied: 'Location copied.',
  removeTitle: (count: number, name: string) =>
    count === 1 ? `Move “${name}” to Velto Trash?` : `Move ${plural(count, items)} to Velto Trash?`,
  removeAmount: (bytes: number, count: number) => `${size(bytes)} in ${plural(count, files)} would go.`,
  removePartial: 'Some of it was not measured, so it may be more.',
  removeBack: 'Everything can be put back from Velto Trash, and nothing is deleted now.',
  removeConfirm: 'Move to Velto Trash',
  loading: 'Reading the folder…',
  unmeasuredTitle: 'The last analysis has no folders',
  unmeasuredText: 'It was made before Velto kept them. A new analysis shows which folder takes how much; it changes nothing.',
  emptyTitle: 'This folder is empty',
  emptyText: 'There is nothing in it that takes space.',
  lateTitle: 'No answer yet',
  lateText: 'The folder has not been read so far. Its disk may be slow or away; nothing was changed.',
  goneTitle: 'This folder is not there any more',
  goneText: 'It was moved or removed since the analysis, or it was not part of it.',
  toHome: 'Go to the home folder',
  toAbove: 'Go to the folder above',
  searchLabel: 'Folders found',
  searchHelp: 'Arrow keys move, Enter opens the folder, Escape ends the search.',
  foundSome: (shown: number, total: number) =>
    shown < total
      ? `The ${shown} largest of ${plural(total, { one: '# folder', other: '# folders' })}`
      : plural(total, { one: '# folder', other: '# folders' }),
  searching: 'Searching…',
  notFoundTitle: 'No folder has this name',
  notFoundText: 'The search looks at the names of all measured folders.',
  searchLate: 'The search has had no answer so far.',
  opened: (name: string, count: number, bytes: number) => `${name}: ${plural(count, items)}, ${size(bytes)}.`,
};
