/** Asking an application to quit and, when it stays open, ending it. */
import { language } from '../../language/language.svelte.ts';
import { plainName } from '../../names/marks.ts';
import { quitting } from '../../state/quitting.svelte.ts';
import { questions } from '../../state/questions.svelte.ts';

interface Application {
  pid: number;
  name: string;
}

/** What the button of an application does next: the first time it asks, the next time it ends. */
export async function quitOrEnd({ pid, name }: Application): Promise<void> {
  if (quitting.stage(pid) !== 'open') return quitting.ask(pid);
  const words = language.words.system;
  const confirmed = await questions.ask({
    title: words.endTitle(plainName(name)),
    paragraphs: [words.endText],
    confirm: words.end,
  });
  if (confirmed) quitting.end(pid);
}
