/** Deleting for good, past Velto Trash, what is certain to be made again: on a disk that is nearly full alone. */
import { language } from '../../language/language.svelte.ts';
import { send } from '../../protocol/connection.ts';
import { cleanables } from '../../state/cleanables.svelte.ts';
import { questions } from '../../state/questions.svelte.ts';
import { requests } from '../../state/requests.svelte.ts';
import { toasts } from '../../state/toasts.svelte.ts';

/** Asks first. The program looks again whether all of it is certain, and moves it through its trash. */
export async function deleteNow(paths: string[], gb: number): Promise<void> {
  const waiting = paths.filter((path) => !requests.busy.has(path));
  if (waiting.length === 0) return;
  const words = language.words.cleanup;
  const confirmed = await questions.ask({
    title: words.deleteTitle(waiting.length),
    paragraphs: [words.deleteText, words.deleteFrees(gb)],
    confirm: words.deleteConfirm,
  });
  const going = waiting.filter((path) => !requests.busy.has(path));
  if (!confirmed || going.length !== waiting.length) return;
  toasts.dismissActions();
  const answer = requests.ask('deleteNow', going);
  send('deleteNow', { paths: going });
  if ((await answer) === 'done') cleanables.forget(going);
}
