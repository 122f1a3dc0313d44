/** What can be done with a row of the large files, or with all that is selected when the row is part of it. */
import ClipboardCopy from '@lucide/svelte/icons/clipboard-copy';
import Eye from '@lucide/svelte/icons/eye';
import EyeOff from '@lucide/svelte/icons/eye-off';
import FolderOpen from '@lucide/svelte/icons/folder-open';
import FolderTree from '@lucide/svelte/icons/folder-tree';
import FolderX from '@lucide/svelte/icons/folder-x';
import Trash from '@lucide/svelte/icons/trash';
import type { MenuItem } from '../../common/ContextMenu.svelte';
import { language } from '../../language/language.svelte.ts';
import { folderOf } from '../../names/middle.ts';
import type { BigFile } from '../../protocol/protocol.ts';
import { navigation } from '../../state/navigation.svelte.ts';
import { copyPaths, excludeFromAnalysis, moveToTrash, revealInFolder } from '../../state/removal.ts';
import { session } from '../../state/session.svelte.ts';
import { isKeptFolder } from '../explorar/homeFolders.ts';

export function menuOf(file: BigFile, selected: readonly BigFile[], showPreview: (path: string) => void): MenuItem[] {
  const words = language.words.lists;
  const { path } = file;
  const folder = folderOf(path);
  const several = selected.some((other) => other.path === path) ? selected.map((other) => other.path) : [path];
  const home = session.home ?? '';
  const canExcludeFolder = home !== '' && folder.startsWith(`${home}/`) && !isKeptFolder(folder, home, session.homeFolders);
  return [
    { label: words.preview, icon: Eye, run: () => showPreview(path) },
    { label: words.reveal, icon: FolderOpen, run: () => revealInFolder(path) },
    { label: words.openFolder, icon: FolderTree, run: () => navigation.openFolder(folder) },
    { label: words.copyPaths, icon: ClipboardCopy, run: () => copyPaths(several) },
    { label: words.exclude, icon: EyeOff, run: () => excludeFromAnalysis(path) },
    ...(canExcludeFolder ? [{ label: words.excludeFolder, icon: FolderX, run: () => excludeFromAnalysis(folder) }] : []),
    ...(file.isProtected ? [] : [{ label: words.remove, icon: Trash, run: () => void moveToTrash(several) }]),
  ];
}
