/** Reads what arrives about the folders of the disk; see guards.ts. */
import { folderStates, type FileEntry, type FolderContents, type FolderGrowth, type FolderSearch, type FolderState, type HomeFolders, type SubFolder } from './folderRecords.ts';
import { distinct, fieldsOf, list, number, size, text, texts, type Fields } from './guards.ts';

const count = (value: unknown) => Math.trunc(size(value));

/** Paths are put together from names: what is no single component is left out. */
function component(value: unknown): string {
  const name = text(value);
  return name.includes('/') || name === '.' || name === '..' ? '' : name;
}

function absolute(value: unknown): string {
  const path = text(value);
  return path.startsWith('/') ? path : '';
}

/** A folder that nobody says was measured is shown without figures and cannot be acted on. */
function folderState(value: unknown): FolderState {
  return folderStates.find((known) => known === value) ?? 'unreadable';
}

function subFolder(fields: Fields): SubFolder | null {
  const name = component(fields.name);
  if (!name) return null;
  const isKnown = typeof fields.bytes === 'number' && Number.isFinite(fields.bytes) && fields.bytes >= 0;
  return {
    name, bytes: isKnown ? count(fields.bytes) : null, files: count(fields.files), latest: size(fields.latest),
    state: folderState(fields.state), unreadable: count(fields.unreadable),
    ...(size(fields.total) > 0 && { total: count(fields.total) }),
  };
}

function fileEntry(fields: Fields): FileEntry | null {
  const name = component(fields.name);
  if (!name) return null;
  const linked = fields.linked === true;
  const inode = linked ? text(fields.inode) : '';
  return { name, bytes: count(fields.bytes), modified: size(fields.modified), linked, ...(inode && inode !== '0' && { inode }) };
}

export function folderContents(value: unknown): FolderContents | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const path = absolute(fields.path);
  const folders = distinct(list(fields.folders, subFolder), ({ name }) => name);
  const names = new Set(folders.map(({ name }) => name));
  return {
    request: number(fields.request), path,
    found: fields.found === true && path !== '',
    state: fields.state === 'unmeasured' || fields.state === 'gone' ? fields.state : folderState(fields.state),
    bytes: count(fields.bytes), files: count(fields.files), unreadable: count(fields.unreadable),
    latest: size(fields.latest), measured: size(fields.measured),
    folders,
    entries: distinct(list(fields.entries, fileEntry), ({ name }) => name).filter(({ name }) => !names.has(name)),
    more: count(fields.more),
  };
}

const absolutes = (value: unknown) => texts(value).filter(absolute);

export function homeFolders(value: unknown): HomeFolders | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const categories = Object.entries(fieldsOf(fields.categories) ?? {}).map(([id, paths]) => [id, absolutes(paths)] as const);
  return { kept: new Set(absolutes(fields.kept)), categories: new Map(categories.filter(([, paths]) => paths.length > 0)) };
}

export function folderSearch(value: unknown): FolderSearch | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const found = list(fields.found, (folder) =>
    absolute(folder.path)
      ? { path: absolute(folder.path), bytes: count(folder.bytes), files: count(folder.files), latest: size(folder.latest) }
      : null,
  );
  return {
    request: number(fields.request), text: text(fields.text), found: distinct(found, ({ path }) => path),
    total: Math.max(count(fields.total), found.length),
  };
}

export function folderGrowth(value: unknown): FolderGrowth | null {
  const fields = fieldsOf(value);
  const path = absolute(fields?.path);
  if (!fields || !path) return null;
  const changes = Object.entries(fieldsOf(fields.folders) ?? {});
  const known = changes.filter((change): change is [string, number] => typeof change[1] === 'number' && Number.isFinite(change[1]));
  return { path, since: size(fields.since), folders: new Map(known) };
}
