/** Taking things out of Velto Trash: back to their places, or for good. */
import { language } from '../language/language.svelte.ts';
import { plainName } from '../names/marks.ts';
import { fromHome } from '../names/home.ts';
import { folderOf, lastComponent, shortInMiddle } from '../names/middle.ts';
import { send } from '../protocol/connection.ts';
import type { TrashItem, WaitingItem } from '../protocol/protocol.ts';
import { cleanables } from './cleanables.svelte.ts';
import { operationsOf, totalGb, type Operation } from './operations.ts';
import { questions } from './questions.svelte.ts';
import { leftBehind } from './leftBehind.svelte.ts';
import { requests, type Outcome } from './requests.svelte.ts';
import { session } from './session.svelte.ts';
import { toasts } from './toasts.svelte.ts';

const idsOf = (items: readonly TrashItem[]) => items.map(({ id }) => id);

function sayPutBack(items: readonly TrashItem[]): void {
  const words = language.words.trash;
  cleanables.outdated = cleanables.list !== null;
  leftBehind.outdated = leftBehind.hasAnswered;
  const [only] = items;
  const renamed = items.flatMap(({ id }) => session.renamed.get(id) ?? []);
  const newName = (path: string) => shortInMiddle(plainName(lastComponent(path)), 48);
  const note = renamed.length === 0 || items.length === 1 ? '' : words.putBackRenamed(renamed.length, newName(renamed[0]!));
  const [path] = renamed;
  const place = (one: TrashItem) => plainName(fromHome(folderOf(one.path), session.home));
  toasts.show(
    words.putBackDone,
    items.length === 1 && only
      ? path === undefined
        ? words.putBackOne(shortInMiddle(plainName(only.name), 48), place(only))
        : words.putBackOneAs(shortInMiddle(plainName(only.name), 48), newName(path), place(only))
      : words.putBackMany(items.length, totalGb(items)),
    { note },
  );
}

/** Undoes what the program knows as the last cleanup. */
export async function undoLastCleanup(): Promise<void> {
  toasts.withdrawUndo();
  if (session.listed?.length === 0 && requests.moving === 0) {
    const words = language.words.trash;
    toasts.show(words.nothingToUndo, words.nothingToUndoText);
    return;
  }
  const [last] = operationsOf(session.listed ?? []);
  // While something is still on its way into the trash, that is what will be undone.
  if (!last || requests.moving > 0) {
    send('undoLast');
    return;
  }
  if (last.items.some(({ id }) => requests.busy.has(id))) return;
  const answer = requests.ask('undo', idsOf(last.items));
  send('undoLast');
  if ((await answer) === 'done') sayPutBack(last.items);
}

/** It is tried again: what stood on the way may be gone. */
function forgetBlock({ id }: TrashItem): void {
  session.blocked = new Map([...session.blocked].filter(([blocked]) => blocked !== id));
}

function restore(item: TrashItem): Promise<Outcome> {
  const answer = requests.ask('restore', [item.id]);
  send('restoreItem', item.id);
  return answer;
}

/** The program asks for the folder and says how it went; the user may also think better of it. */
export function putBackElsewhere(item: TrashItem): void {
  if (requests.busy.has(item.id)) return;
  toasts.withdrawUndo();
  send('restoreItemTo', { id: item.id });
}

export async function putBack(item: TrashItem): Promise<void> {
  if (requests.busy.has(item.id)) return;
  toasts.withdrawUndo();
  forgetBlock(item);
  if ((await restore(item)) === 'done') sayPutBack([item]);
}

/**
 * Puts everything of an operation back. The last one is undone as a whole; for an older one the
 * items are asked for one after the other, and the first that fails ends it.
 */
export async function putBackAll(operation: Operation): Promise<void> {
  if (operation.items.some(({ id }) => requests.busy.has(id))) return;
  // The program's last operation may hold what waits, too.
  if (operationsOf(session.listed ?? [])[0]?.id === operation.id && requests.moving === 0) return undoLastCleanup();
  toasts.withdrawUndo();
  const release = requests.hold(idsOf(operation.items));
  const back: TrashItem[] = [];
  for (const item of operation.items) {
    if ((await restore(item)) !== 'done') break;
    back.push(item);
  }
  release();
  if (back.length) sayPutBack(back);
}

export async function purge(item: TrashItem): Promise<void> {
  if (requests.busy.has(item.id)) return;
  const words = language.words.trash;
  const confirmed = await questions.ask({
    title: words.purgeTitle(shortInMiddle(plainName(item.name), 48)),
    paragraphs: [words.purgeText(item.gb), words.noWayBack],
    confirm: words.purgeConfirm,
  });
  // It may have gone while the question stood.
  if (!confirmed || !session.trash?.some(({ id }) => id === item.id) || requests.busy.has(item.id)) return;
  toasts.withdrawUndo();
  void requests.ask('purge', [item.id]);
  send('purgeItem', item.id);
}

/** What there is of an item that waits stays in Velto Trash, as an item like any other. */
export async function giveUpWaiting(item: WaitingItem): Promise<void> {
  const words = language.words.trash;
  const confirmed = await questions.ask({
    title: words.giveUpTitle(shortInMiddle(plainName(item.name), 48)),
    paragraphs: [
      item.whole ? words.giveUpWhole : words.giveUpPart,
      item.way === 'in' ? words.giveUpIn : words.giveUpOut,
      words.giveUpSafe,
    ],
    confirm: words.giveUpConfirm,
    harmless: true,
  });
  // Its disk may have come while the question stood.
  if (!confirmed || !session.waiting.some(({ id }) => id === item.id)) return;
  toasts.withdrawUndo();
  send('giveUpWaiting', { id: item.id });
}

export async function purgeAll(operation: Operation): Promise<void> {
  const words = language.words.trash;
  const isBusy = () => operation.items.some(({ id }) => requests.busy.has(id));
  if (isBusy()) return;
  const confirmed = await questions.ask({
    title: words.purgeAllTitle(operation.items.length),
    paragraphs: [words.purgeText(operation.gb), words.noWayBackAll],
    confirm: words.purgeConfirm,
  });
  // Part of it may have gone while the question stood.
  const left = (session.trash ?? []).filter(({ opID }) => opID === operation.id);
  if (!confirmed || !left.length || isBusy()) return;
  toasts.withdrawUndo();
  void requests.ask('purge', idsOf(left));
  send('purgeOperation', { id: operation.id });
}

export async function emptyTrash(): Promise<void> {
  const items = session.trash ?? [];
  if (!items.length || requests.emptying) return;
  const words = language.words.trash;
  const confirmed = await questions.ask({
    title: words.emptyTitle,
    paragraphs: [words.emptyText(items.length, totalGb(items)), words.noWayBack],
    confirm: words.emptyConfirm,
  });
  if (!confirmed || requests.emptying) return;
  toasts.withdrawUndo();
  void requests.ask('empty', idsOf(session.trash ?? []));
  send('purgeTrash');
}
