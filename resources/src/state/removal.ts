/** The things a view can ask to have done with files. */
import { features } from '../features.ts';
import { send } from '../protocol/connection.ts';
import { toasts } from './toasts.svelte.ts';

export function moveToTrash(paths: string[]): void {
  if (!features.trash || paths.length === 0) return;
  toasts.expectRemoval();
  send('deleteFiles', { paths, kind: 'wind' });
}

export function undoLastCleanup(): void {
  if (features.trash) send('undoLast');
}

export function revealInFolder(path: string): void {
  send('revealPath', path);
}

export function excludeFromAnalysis(path: string): void {
  send('addExclusion', path);
}

/** Puts the paths on the clipboard, one a line; works without the clipboard permission. */
export function copyPaths(paths: string[]): void {
  const fill = (event: ClipboardEvent) => {
    event.clipboardData?.setData('text/plain', paths.join('\n'));
    event.preventDefault();
    event.stopPropagation();
  };
  document.addEventListener('copy', fill, { capture: true, once: true });
  document.execCommand('copy');
  document.removeEventListener('copy', fill, { capture: true });
}
