/** What can be done with a copy, with its folder and with its group. */
import ClipboardCopy from '@lucide/svelte/icons/clipboard-copy';
import Copy from '@lucide/svelte/icons/copy';
import FolderCheck from '@lucide/svelte/icons/folder-check';
import FolderLock from '@lucide/svelte/icons/folder-lock';
import Eye from '@lucide/svelte/icons/eye';
import FolderOpen from '@lucide/svelte/icons/folder-open';
import Pin from '@lucide/svelte/icons/pin';
import type { MenuItem } from '../../common/ContextMenu.svelte';
import { language } from '../../language/language.svelte.ts';
import { fromHome } from '../../names/home.ts';
import { plainName } from '../../names/marks.ts';
import { folderOf, shortInMiddle } from '../../names/middle.ts';
import type { DuplicateGroup } from '../../protocol/protocol.ts';
import { copyPaths, revealInFolder } from '../../state/removal.ts';
import { session } from '../../state/session.svelte.ts';
import { sharing } from '../../state/sharing.svelte.ts';
import { toasts } from '../../state/toasts.svelte.ts';
import { keepRules } from './choices.ts';
import { duplicates } from './state.svelte.ts';

export function menuOf(group: DuplicateGroup, path: string, showPreview: (path: string) => void): MenuItem[] {
  const words = language.words.lists;
  const folder = folderOf(path);
  const folderWord = shortInMiddle(plainName(fromHome(folder, session.home)), 40);
  const able = sharing.able.get(group.id);
  const selected = duplicates.selectedShown;
  return [
    { label: words.preview, icon: Eye, run: () => showPreview(path) },
    ...(duplicates.kept(group) === path ? [] : [{ label: words.keep, icon: Pin, run: () => duplicates.keep(path) }]),
    ...keepRules.map((rule) => ({ label: words.ruleHere[rule], icon: Pin, run: () => duplicates.keepBy(group, rule) })),
    {
      label: words.selectInFolder(folderWord),
      icon: FolderCheck,
      run: () => toasts.sign(words.selectedInFolder(duplicates.selectIn(folder))),
    },
    ...(duplicates.reference === folder
      ? [{ label: words.referenceNone, icon: FolderLock, run: () => (duplicates.reference = null) }]
      : [{ label: words.referenceSet(folderWord), icon: FolderLock, run: () => (duplicates.reference = folder) }]),
    ...(able && !sharing.progress
      ? [{ label: words.shareGroup(able.bytes / 1e9), icon: Copy, run: () => sharing.share(duplicates.sharingGroups([group])) }]
      : []),
    { label: words.reveal, icon: FolderOpen, run: () => revealInFolder(path) },
    { label: words.copyPaths, icon: ClipboardCopy, run: () => copyPaths(selected.includes(path) ? selected : [path]) },
  ];
}
