/** The things a view can ask to have done with files. */
import { language } from '../language/language.svelte.ts';
import { fileUrl, hasStrayBytes } from '../names/bytes.ts';
import { plainName } from '../names/marks.ts';
import { shortInMiddle } from '../names/middle.ts';
import { send } from '../protocol/connection.ts';
import type { DuplicateGroup, Refusal } from '../protocol/protocol.ts';
import { cleanables } from './cleanables.svelte.ts';
import { leftBehind } from './leftBehind.svelte.ts';
import { questions } from './questions.svelte.ts';
import { questionOfRest, refusalSentences, takeRefusal } from './refusals.ts';
import { requests, type RequestKind } from './requests.svelte.ts';
import { selectionChecks } from './selectionChecks.svelte.ts';
import { session } from './session.svelte.ts';
import { toasts } from './toasts.svelte.ts';

/** The group that would be left without a single copy, if there is one. */
export function groupLosingAll(groups: readonly DuplicateGroup[], going: ReadonlySet<string>): DuplicateGroup | null {
  return groups.find(({ paths }) => paths.every((path) => going.has(path))) ?? null;
}

/** Asks the program first: what can go, when the user agrees to leave out what cannot. */
async function movableOf(paths: string[]): Promise<string[]> {
  const release = requests.hold(paths);
  const check = await selectionChecks.check(paths);
  release();
  if (!check.stays.length) return check.movable;
  const gone = check.stays.flatMap(({ path, reason }) => (reason === 'gone' ? [path] : []));
  cleanables.forget(gone);
  leftBehind.forget(gone);
  const agreed = await questions.ask(questionOfRest(check));
  return agreed ? check.movable.filter((path) => !requests.busy.has(path)) : [];
}

/** Moves the paths as one operation; "cleanPaths" is the intent for what the cleaning rules proposed. */
export async function moveToTrash(paths: string[], intent: 'deleteFiles' | 'cleanPaths' = 'deleteFiles'): Promise<void> {
  const waiting = paths.filter((path) => !requests.busy.has(path));
  if (waiting.length === 0) return;
  const group = groupLosingAll(session.disk?.dupGroups ?? [], new Set([...waiting, ...requests.busy]));
  if (group) {
    const words = language.words.lists;
    toasts.show(words.everyCopyTitle, words.everyCopyText(shortInMiddle(plainName(group.name), 48)));
    return;
  }
  toasts.dismissActions();
  const going = await movableOf(waiting);
  if (going.length === 0) return;
  const answer = requests.ask('remove', going);
  if (intent === 'cleanPaths') send('cleanPaths', { paths: going });
  else send('deleteFiles', { paths: going, kind: 'wind' });
  if ((await answer) !== 'done') return;
  cleanables.forget(going);
  leftBehind.forget(going);
}

/** Shows a message of the program; what answers a request of the page says what that means. */
export function showAnswer(title: string, detail: string): void {
  const answer = requests.answer(title);
  const refusal = takeRefusal();
  if (!answer) {
    toasts.show(title, refusal ? refusalSentences(refusal).join(' ') : detail, { undo: undoOfExclusion(title) });
    return;
  }
  const failed = answer.outcome === 'failed';
  if (failed && refusal) {
    showRefusal(title, answer.kind, refusal);
    return;
  }
  if (answer.kind === 'remove' && !failed) {
    toasts.dismissUndo();
    toasts.show(title, inWords(detail), { canUndo: true });
    return;
  }
  const note = failed ? noteOnFailure(answer.kind) : answer.kind === 'empty' ? noteOnEmptied() : '';
  if (!failed) toasts.dismissOfTrash();
  toasts.show(title, inWords(detail), { note });
}

/** The message comes before the list without what was deleted. */
function noteOnEmptied(): string {
  const gb = session.trash?.reduce((sum, item) => sum + item.gb, 0) ?? 0;
  return gb > 0 ? language.words.trash.freeAgain(gb) : '';
}

/** The program writes "2.0 GB" in either language; the page says sizes as it does everywhere. */
export function inWords(detail: string): string {
  return detail.replace(/(\d+\.\d)(?=[ \u00a0]GB)/g, (figure) => language.formats.amount(Number(figure)));
}

/** Which items stopped it and, where others could go without them, the way to move those. */
function showRefusal(title: string, kind: RequestKind, refusal: Refusal): void {
  const { rest } = refusal;
  const words = language.words.trash;
  toasts.show(title, refusalSentences(refusal).join(' '), {
    note: noteOnFailure(kind),
    ...(kind === 'remove' &&
      rest.length > 0 && { action: { label: words.moveRest(rest.length), run: () => void moveToTrash(rest) } }),
  });
}

/** What did not happen, and that nothing was lost. */
function noteOnFailure(kind: RequestKind): string {
  const words = language.words.trash;
  if (kind === 'remove') return words.nothingMoved;
  if (kind === 'deleteNow') return words.nothingDeleted;
  return kind === 'undo' || kind === 'restore' ? words.notPutBack : words.notDeleted;
}

export function revealInFolder(path: string): void {
  send('revealPath', path);
  toasts.sign(language.words.lists.showing);
}

/** What has been left out just now, at the page's request; its message follows. */
let excluded: string | null = null;
const excludedTitles = ['Excluido del análisis', 'Excluded from the analysis'];

export function excludeFromAnalysis(path: string): void {
  send('addExclusion', path);
}

export function includeInAnalysis(path: string): void {
  send('removeExclusion', path);
}

export function holdExclusion(path: string): void {
  excluded = path;
}

/** The way back of an exclusion that was asked for here; of one that stood already nobody is told. */
function undoOfExclusion(title: string): (() => void) | null {
  if (!excludedTitles.includes(title)) return null;
  const path = excluded;
  excluded = null;
  return path ? () => includeInAnalysis(path) : null;
}

/**
 * Puts the paths on the clipboard, one a line; works without the clipboard permission. A path that no
 * text can say goes as a file URL.
 */
export function copyPaths(paths: string[]): void {
  const words = language.words.lists;
  copyText(
    paths.map((path) => (hasStrayBytes(path) ? fileUrl(path) : path)).join('\n'),
    paths.length === 1 ? words.copied : words.copiedMany(paths.length),
  );
}

/** `sign` tells that it is done. */
export function copyText(text: string, sign: string): void {
  const fill = (event: ClipboardEvent) => {
    event.clipboardData?.setData('text/plain', text);
    event.preventDefault();
    event.stopPropagation();
  };
  // Where nothing is selected WebKit copies only when somebody has announced to fill the clipboard.
  const announce = (event: Event) => event.preventDefault();
  document.addEventListener('beforecopy', announce, { capture: true });
  document.addEventListener('copy', fill, { capture: true });
  document.execCommand('copy');
  document.removeEventListener('copy', fill, { capture: true });
  document.removeEventListener('beforecopy', announce, { capture: true });
  toasts.sign(sign);
}
