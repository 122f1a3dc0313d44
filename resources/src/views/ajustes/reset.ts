/** The reset cannot be taken back, so it is asked twice. */
import { language } from '../../language/language.svelte.ts';
import { send } from '../../protocol/connection.ts';
import { questions } from '../../state/questions.svelte.ts';
import { session } from '../../state/session.svelte.ts';

export async function askAndReset(): Promise<void> {
  const words = language.words.settings;
  const first = await questions.ask({
    title: words.resetFirstTitle,
    paragraphs: [words.resetFirstText, words.resetTrash(session.trashGb)],
    confirm: words.resetContinue,
  });
  if (!first) return;
  const second = await questions.ask({
    title: words.resetSecondTitle,
    paragraphs: [words.resetSecondText],
    confirm: words.resetConfirm,
  });
  if (second) send('resetVelto');
}
