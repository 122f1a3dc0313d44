/** What a listed file holds, shown over the list that it was asked from. */
import { send } from '../protocol/connection.ts';
import type { FilePreview } from '../protocol/protocol.ts';

export interface PreviewList {
  /** The rows, in the order shown. */
  order: readonly string[];
  /** The copies of a file, itself among them; nothing where the list has no copies. */
  copies?: (path: string) => readonly string[];
  /** Called with the row that was shown last. */
  onclose: (path: string) => void;
}

class Preview {
  path = $state<string | null>(null);
  /** Null while it is read. */
  shown = $state.raw<FilePreview | null>(null);
  private list: PreviewList | null = null;
  private request = 0;

  get copies(): readonly string[] {
    return this.path === null ? [] : (this.list?.copies?.(this.path) ?? []);
  }

  open(path: string, list: PreviewList): void {
    this.list = list;
    this.ask(path);
  }

  /** To the row before or after it. */
  step(by: number): void {
    const order = this.list?.order ?? [];
    const next = this.path === null ? undefined : order[order.indexOf(this.path) + by];
    if (next !== undefined) this.ask(next);
  }

  close(): void {
    const path = this.path;
    if (path === null) return;
    this.path = null;
    this.shown = null;
    this.request += 1;
    send('preview', { request: this.request });
    this.list?.onclose(path);
    this.list = null;
  }

  /** The answer to an earlier question does not count any more. */
  receive(told: FilePreview): void {
    if (told.request === this.request && told.path === this.path) this.shown = told;
  }

  private ask(path: string): void {
    this.path = path;
    this.shown = null;
    this.request += 1;
    send('preview', { request: this.request, path });
  }
}

export const preview = new Preview();
