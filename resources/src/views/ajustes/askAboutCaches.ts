/** Asked once, when maintenance is switched on for the first time. Whatever is answered can be changed in the settings. */
import { language } from '../../language/language.svelte.ts';
import { questions } from '../../state/questions.svelte.ts';
import { session } from '../../state/session.svelte.ts';

const recommended = 3;

export async function askAboutCaches(retention: number): Promise<void> {
  const status = session.maintenance;
  if (!status || status.cacheDays !== null) return;
  const words = language.words.settings;
  const [all, few] = [status.foretold.get(0), status.foretold.get(recommended)];
  const agreed = await questions.ask({
    title: words.askCachesTitle,
    paragraphs: [
      words.askCachesText(words.days(retention)),
      ...(all && few && all > few ? [words.askCachesForetold(all, few)] : []),
      words.askCachesAdvice,
    ],
    confirm: words.askCachesConfirm,
    decline: words.asEverything,
    harmless: true,
  });
  session.keepCaches(agreed ? recommended : 0);
}
