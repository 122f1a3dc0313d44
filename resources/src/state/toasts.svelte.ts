/** Short messages. Each stays at least ten seconds, longer while the pointer or the focus is on it. */

export interface Toast {
  id: number;
  title: string;
  detail: string;
  /** What it means: a sentence of the page's own. */
  note: string;
  /** The message reports something that can be taken back. */
  canUndo: boolean;
  /** Takes back what the message reports, where that is no cleanup. */
  undo: (() => void) | null;
  /** Only says that something was heard. */
  isSign: boolean;
  /** Says what lies in Velto Trash. */
  isOfTrash: boolean;
  /** Something that the message offers; it stays until it is taken up, refused or out of date. */
  action: ToastAction | null;
}

export interface ToastAction {
  /** The verb on the button. */
  label: string;
  run: () => void;
}

interface Extras {
  canUndo?: boolean;
  undo?: (() => void) | null;
  note?: string;
  isSign?: boolean;
  action?: ToastAction | null;
}

const shownFor = 10_000;
/** A sign that something was heard needs no reading. */
const shownForSign = 3_000;
const shownForUndo = 15_000;
const mostAtOnce = 4;

class Toasts {
  list = $state<Toast[]>([]);
  private lastId = 0;
  private timers = new Map<number, ReturnType<typeof setTimeout>>();

  show(title: string, detail: string, { canUndo = false, undo = null, note = '', action = null, isSign = false }: Extras = {}): void {
    // The same words again take the place of the first ones, whose way back stays good.
    const same = this.list.find((other) => !other.canUndo && other.title === title && other.detail === detail);
    if (same) this.dismiss(same.id);
    const toast: Toast = { id: ++this.lastId, title, detail, note, canUndo, undo: undo ?? same?.undo ?? null, action, isSign, isOfTrash: canUndo };
    this.list = [...this.list, toast].slice(-mostAtOnce);
    this.resume(toast);
  }

  /** That it was heard; the last one takes the place of the one before. */
  sign(title: string): void {
    for (const { id, isSign } of this.list) if (isSign) this.dismiss(id);
    this.show(title, '', { isSign: true });
  }

  /** What a message said of Velto Trash is not true any more. */
  dismissOfTrash(): void {
    for (const { id, isOfTrash } of this.list) if (isOfTrash) this.dismiss(id);
  }

  /** The language has changed: only what can still be taken back stays, in its few words. */
  translate(titleOf: (title: string) => string): void {
    this.list = this.list
      .filter(({ canUndo, undo }) => canUndo || undo)
      .map((toast) => ({ ...toast, title: titleOf(toast.title), detail: '', note: '' }));
  }

  dismiss(id: number): void {
    this.pause(id);
    this.list = this.list.filter((toast) => toast.id !== id);
  }

  /** Only the last cleanup can be undone from here, and only until something else happens to the trash. */
  withdrawUndo(): void {
    this.list = this.list.map((toast) => (toast.canUndo ? { ...toast, canUndo: false } : toast));
  }

  /** The message of a newer cleanup takes the place of the one before: two would cover the list. */
  dismissUndo(): void {
    for (const { id, canUndo } of this.list) if (canUndo) this.dismiss(id);
  }

  /** What a message offers belongs to the selection as it was. */
  dismissActions(): void {
    for (const { id, action } of this.list) if (action) this.dismiss(id);
  }

  pause(id: number): void {
    clearTimeout(this.timers.get(id));
    this.timers.delete(id);
  }

  resume(toast: Toast): void {
    this.pause(toast.id);
    if (toast.action) return;
    const time = toast.isSign ? shownForSign : toast.canUndo || toast.undo ? shownForUndo : shownFor;
    this.timers.set(toast.id, setTimeout(() => this.dismiss(toast.id), time));
  }
}

export const toasts = new Toasts();
