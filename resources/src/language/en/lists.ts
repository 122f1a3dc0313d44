import { formats } from '../formats.ts';

const { plural, size } = formats.en;

/** Large files and duplicates. */
export const lists = {
  search: 'Search',
  searchFiles: 'Search names and locations',
  clearSearch: 'Clear search',
  kind: 'Kind',
  anyKind: 'Any kind',
  lastUse: 'Last used',
  anyTime: 'Any time',
  olderThan: { days30: 'Over a month ago', days180: 'Over six months ago', days365: 'Over a year ago' },
  columns: { select: 'Selection', name: 'Name', path: 'Location', size: 'Size', kind: 'Kind', lastUse: 'Last used', actions: 'Actions' },
  shown: (count: number, gb: number) =>
    `${plural(count, { one: '# file', other: '# files' })} · ${size(gb)}`,
  shownOf: (count: number, all: number, gb: number) =>
    `${count} of ${plural(all, { one: '# file', other: '# files' })} · ${size(gb)}`,
  filesLabel: 'Large files',
  filesHelp: 'Arrow keys move, Space selects, Shift extends, Escape clears the selection, right arrow reaches the actions of a row, up from the first row the column headers.',
  filesIntro: 'The largest files of the analysis, from 0.3 GB up.',
  noLargeTitle: 'No large files',
  noLargeText: 'No single file of 0.3 GB or more was found. The space is spread over many small ones.',
  noMatchTitle: 'Nothing matches',
  noMatchText: 'No file fits the search and the filters.',
  clearFilters: 'Show all files',
  reveal: 'Show in folder',
  revealNamed: (name: string) => `Show ${name} in its folder`,
  exclude: 'Exclude from the analysis',
  excludeNamed: (name: string) => `Exclude ${name} from the analysis`,
  copyPaths: 'Copy location',
  selectAll: 'Select all',
  remove: 'Move to Velto Trash',
  selected: (count: number) => plural(count, { one: '# selected', other: '# selected' }),
  hiddenBySearch: (count: number) =>
    plural(count, { one: '# more selected, hidden by the search', other: '# more selected, hidden by the search' }),
  hiddenByFilter: (count: number) =>
    plural(count, { one: '# more selected, hidden by the filter', other: '# more selected, hidden by the filter' }),
  removing: (count: number) => plural(count, { one: 'Moving # item to Velto Trash…', other: 'Moving # items to Velto Trash…' }),
  nothingSelected: 'Nothing selected',
  clearSelection: 'Clear selection',
  trashNote: 'Moving to Velto Trash frees nothing yet; the space comes back when the trash is emptied.',
  partial: 'Some places were not measured.',
  partialMore: 'See why',
  selectionStatus: (count: number, gb: number) =>
    count ? `${plural(count, { one: '# selected', other: '# selected' })}, ${size(gb)}` : 'Nothing selected',
  duplicatesLabel: 'Groups of identical files',
  duplicatesHelp: 'Arrow keys move, Space selects a copy for removal, K keeps a copy, Escape clears the selection.',
  duplicatesIntro: 'Files with exactly the same content, compared by all of their content. One copy of each group always stays.',
  wasted: (gb: number) => `About ${size(gb)} in extra copies`,
  wastedNone: 'Less than 0.1 GB in extra copies',
  groups: (count: number) => plural(count, { one: '# group', other: '# groups' }),
  /** Of one file, and of one that has several names. */
  copiesOf: (files: number, names: number) => {
    if (files === names) return plural(files, { one: '# copy', other: '# copies' });
    const all = plural(names, { one: '# name', other: '# names' });
    return files === 1 ? `One file under ${all}` : `${plural(files, { one: '# copy', other: '# copies' })} under ${all}`;
  },
  each: (gb: number) => `${gb > 0 ? size(gb) : `less than ${size(0.1)}`} each`,
  extra: (gb: number) => `${gb > 0 ? size(gb) : `less than ${size(0.1)}`} extra`,
  extraNothing: 'nothing extra',
  nameOfKept: 'Same file as the one that stays',
  nameOfKeptWhy: 'Another name of the very same file: removing it frees no space.',
  nameOfExtra: (names: number) => `One file, ${plural(names, { one: '# name', other: '# names' })}`,
  nameOfExtraWhy: (names: number) =>
    `The very same file under ${plural(names, { one: '# name', other: '# names' })}: its space comes back only when all of them are removed.`,
  groupLabel: (name: string, copies: string, extra: string) => `${name}: ${copies}, ${extra}`,
  keep: 'Keep this one',
  keepNamed: (path: string) => `Keep this one: ${path}`,
  kept: 'Stays',
  keptWhy: 'This is the copy that stays. Keep another one to be able to remove it.',
  keptTitle: 'One copy always stays',
  everyCopyTitle: 'Nothing was moved',
  everyCopyText: (name: string) => `Every copy of “${name}” is selected. Leave one of them out and try again.`,
  keptProposed: 'most recent',
  selectExtras: 'Select all but the kept copies',
  noDuplicatesTitle: 'No duplicates',
  noDuplicatesText: 'Velto found no two files over 1 MB with the same content.',
  protected: 'Protected',
};
