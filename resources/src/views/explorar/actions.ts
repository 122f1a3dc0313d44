/** What can be done with the rows of a folder. */
import { language } from '../../language/language.svelte.ts';
import { plainName } from '../../names/marks.ts';
import { shortInMiddle } from '../../names/middle.ts';
import { announcer } from '../../state/announcer.svelte.ts';
import { questions } from '../../state/questions.svelte.ts';
import { copyPaths, moveToTrash, revealInFolder } from '../../state/removal.ts';
import { amountOf, canOpen, isLarge, type Row } from './rows.ts';
import { explorer } from './state.svelte.ts';
import type { Arrival } from './state.svelte.ts';

/** It can be taken back; so much at once is asked about all the same, and so is what nobody has measured. */
export async function removeRows(rows: readonly Row[]): Promise<void> {
  const going = rows.filter(({ key }) => explorer.selectable(key));
  const [first] = going;
  if (!first) return;
  const amount = amountOf(going);
  if (isLarge(amount)) {
    const words = language.words.folders;
    const confirmed = await questions.ask({
      title: words.removeTitle(going.length, shortInMiddle(plainName(first.name), 48)),
      paragraphs: [
        words.removeAmount(amount.bytes, amount.files),
        ...(amount.isPartial ? [words.removePartial] : []),
        words.removeBack,
      ],
      confirm: words.removeConfirm,
      harmless: true,
    });
    if (!confirmed) return;
  }
  await moveToTrash(going.map(({ key }) => key));
}

export function copyRows(rows: readonly Row[]): void {
  if (!rows.length) return;
  copyPaths(rows.map(({ key }) => key));
  announcer.say(language.words.folders.copied);
}

/** Into a folder; what has nothing to see inside is shown where it lies. */
export function openRow(row: Row, part: Arrival['part']): void {
  if (canOpen(row)) explorer.open(row.key, { part, key: null });
  else revealInFolder(row.key);
}
