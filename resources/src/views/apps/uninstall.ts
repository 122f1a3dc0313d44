/** Asks before an application and what was chosen of its leftovers are deleted for good. */
import { language } from '../../language/language.svelte.ts';
import { plainName } from '../../names/marks.ts';
import { shortInMiddle } from '../../names/middle.ts';
import { leftovers } from '../../state/leftovers.svelte.ts';
import { navigation } from '../../state/navigation.svelte.ts';
import { questions } from '../../state/questions.svelte.ts';
import { uninstalling } from '../../state/uninstalling.svelte.ts';
import { choice } from './state.svelte.ts';

export async function askAndUninstall(): Promise<void> {
  const { analysis } = leftovers;
  const { plan, selected } = choice;
  if (!analysis || !plan || !selected.length || uninstalling.run) return;
  const words = language.words.apps;
  const name = shortInMiddle(plainName(analysis.name), 48);
  const keeps = plan.app === 'kept' || plan.app === 'entry';
  const confirmed = await questions.ask({
    title: keeps ? words.questionTitleKept(name) : words.questionTitle(name),
    paragraphs: [
      ...(plan.closes ? [words.planCloses(name)] : []),
      ...(plan.count ? [words.questionText(plan.count, plan.gb)] : []),
      ...(plan.because ? [words.appStays[plan.because](name)] : []),
      ...(plan.restsIn ? [words.planFolderStays(shortInMiddle(plainName(plan.restsIn), 64))] : []),
      ...(plan.app === 'out of reach' ? [words.planOutOfReach] : []),
      words.questionNothingElse,
    ],
    confirm: keeps ? words.questionConfirmKept : words.questionConfirm,
  });
  // Another removal, or another application, may have come while the question stood.
  if (!confirmed || uninstalling.run || leftovers.analysis !== analysis) return;
  uninstalling.begin(analysis.path, analysis.name, selected, leftovers.removal);
  navigation.arrive('apps');
}
