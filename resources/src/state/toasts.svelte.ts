/** Short messages. Each stays at least ten seconds, longer while the pointer or the focus is on it. */
import { send } from '../protocol/connection.ts';

export interface Toast {
  id: number;
  title: string;
  detail: string;
  /** The message reports something that can be taken back. */
  canUndo: boolean;
}

const shownFor = 10_000;
const shownForUndo = 15_000;
const mostAtOnce = 4;

/** Titles with which the program answers a removal that worked. */
const removedTitles = ['Eliminado', 'Removed'];

class Toasts {
  list = $state<Toast[]>([]);
  private lastId = 0;
  private timers = new Map<number, ReturnType<typeof setTimeout>>();
  private removalAsked = false;

  /** The next answer to a removal carries an Undo. */
  expectRemoval(): void {
    this.removalAsked = true;
  }

  show(title: string, detail: string): void {
    const canUndo = this.removalAsked && removedTitles.includes(title);
    if (this.removalAsked) this.removalAsked = false;
    const toast: Toast = { id: ++this.lastId, title, detail, canUndo };
    this.list = [...this.list, toast].slice(-mostAtOnce);
    this.resume(toast);
  }

  dismiss(id: number): void {
    this.pause(id);
    this.list = this.list.filter((toast) => toast.id !== id);
  }

  undo(id: number): void {
    this.dismiss(id);
    send('undoLast');
  }

  pause(id: number): void {
    clearTimeout(this.timers.get(id));
    this.timers.delete(id);
  }

  resume(toast: Toast): void {
    this.pause(toast.id);
    const time = toast.canUndo ? shownForUndo : shownFor;
    this.timers.set(toast.id, setTimeout(() => this.dismiss(toast.id), time));
  }
}

export const toasts = new Toasts();
