/** The folder that is looked at and the search over all folders: asked of the program, and what it answers. */
import { send } from '../protocol/connection.ts';
import type { FolderContents, FolderGrowth, FolderSearch, GrowthSince } from '../protocol/protocol.ts';

/** Reading a folder takes milliseconds; one on a disk that does not answer is said to be late. */
const longestWait = 10_000;

/** One question after another: an answer to an older one is no answer any more. */
class Question {
  late = $state(false);
  private number = 0;
  private isOpen = $state(false);
  private timer: ReturnType<typeof setTimeout> | undefined;

  get waiting(): boolean {
    return this.isOpen;
  }

  ask(put: (request: number) => void): void {
    clearTimeout(this.timer);
    this.number += 1;
    this.isOpen = true;
    this.late = false;
    this.timer = setTimeout(() => (this.late = true), longestWait);
    put(this.number);
  }

  answers(request: number): boolean {
    if (!this.isOpen || request !== this.number) return false;
    this.drop();
    return true;
  }

  drop(): void {
    clearTimeout(this.timer);
    this.isOpen = false;
    this.late = false;
  }
}

class Folders {
  /** The folder that is wanted; "" is the home. */
  path = $state('');
  /** What was answered last; of `path` unless it is still awaited. */
  contents = $state.raw<FolderContents | null>(null);
  /** As the program calls it; "" until it has said so. */
  home = $state('');
  found = $state.raw<FolderSearch | null>(null);
  /** Of the folder it names, which may have been left since. */
  growth = $state.raw<FolderGrowth | null>(null);
  /** What growth is counted from. */
  since = $state<GrowthSince>('last');
  /** The last analysis has no folders at all, rather than not the one that was asked for. */
  readonly areNone: boolean = $derived(this.contents?.state === 'unmeasured' && this.contents.measured === 0);
  readonly reading = new Question();
  readonly searching = new Question();

  /** Where the home is comes first: every path is shown from there. */
  private afterHome = '';

  open(path: string): void {
    this.path = path;
    this.afterHome = this.home ? '' : path;
    const asked = this.home ? path : '';
    this.reading.ask((request) => send('folder', { path: asked, request }));
  }

  /** Files are read when they are asked for; what is shown may have gone since. */
  refresh(): void {
    this.open(this.path);
  }

  receive(contents: FolderContents): void {
    if (!this.reading.answers(contents.request)) return;
    this.home ||= contents.path;
    if (this.afterHome && contents.found && this.afterHome !== contents.path) {
      this.open(this.afterHome);
      return;
    }
    this.contents = contents;
    if (!contents.found) return;
    this.path = contents.path;
    this.askGrowth();
  }

  /** Of the folder that is shown; again when there is something else to compare. */
  askGrowth(): void {
    if (this.contents?.found) send('folderGrowth', { path: this.contents.path, since: this.since });
  }

  /** Of what a reset has taken away nothing is shown, and nothing can be done with it. */
  forget(): void {
    this.reading.drop();
    this.endSearch();
    this.path = '';
    this.contents = null;
    this.growth = null;
  }

  search(text: string): void {
    this.searching.ask((request) => send('searchFolders', { text, request }));
  }

  endSearch(): void {
    this.searching.drop();
    this.found = null;
  }

  receiveSearch(found: FolderSearch): void {
    if (this.searching.answers(found.request)) this.found = found;
  }

  receiveGrowth(growth: FolderGrowth): void {
    this.growth = growth;
  }
}

export const folders = new Folders();
