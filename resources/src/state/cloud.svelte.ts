/** Moving files to the user's cloud drive, and back. */
import { language } from '../language/language.svelte.ts';
import { plainName } from '../names/marks.ts';
import { lastComponent, shortInMiddle } from '../names/middle.ts';
import { send } from '../protocol/connection.ts';
import type { CloudMove } from '../protocol/protocol.ts';
import { questions } from './questions.svelte.ts';
import { requests } from './requests.svelte.ts';
import { toasts } from './toasts.svelte.ts';

const mostNamed = 3;

class Cloud {
  /** There is a drive to move to. */
  isThere = $state(false);
  /** What is under way, in the order of the answers. */
  private readonly underWay: (() => void)[] = [];

  /** What it means for the space is said before anything moves. */
  async moveTo(paths: string[], gb: number): Promise<void> {
    const waiting = paths.filter((path) => !requests.busy.has(path));
    if (!waiting.length) return;
    const words = language.words.cloud;
    const agreed = await questions.ask({
      title: words.title(waiting.length),
      paragraphs: [words.where(gb), words.space, words.back],
      confirm: words.move,
      harmless: true,
    });
    if (agreed) this.move(waiting.filter((path) => !requests.busy.has(path)), 'to');
  }

  private move(paths: string[], direction: CloudMove['direction']): void {
    if (!paths.length) return;
    this.underWay.push(requests.hold(paths));
    send('moveCloud', { paths, direction });
  }

  receive({ moved, failed, direction }: CloudMove): void {
    this.underWay.shift()?.();
    const words = language.words.cloud;
    const names = failed.slice(0, mostNamed).map((path) => shortInMiddle(plainName(lastComponent(path)), 40));
    const note = failed.length ? words.failed(names, failed.length - names.length) : '';
    if (!moved.length) {
      toasts.show(words.notMovedTitle, note);
      return;
    }
    const isTo = direction === 'to';
    toasts.show(isTo ? words.movedTitle : words.returnedTitle, isTo ? words.moved(moved.length) : words.returned(moved.length), {
      note,
      undo: isTo ? () => this.move(moved, 'from') : null,
    });
  }
}

export const cloud = new Cloud();
