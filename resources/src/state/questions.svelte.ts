/** One of the things that a question is about. */
export interface Note {
  sentence: string;
  /** What only some want to read: the whole path, and what the system says. */
  details: string[];
}

/** Asked before what cannot be undone, and where less can be done than was asked for. */
export interface Question {
  title: string;
  paragraphs: string[];
  notes?: Note[];
  /** The verb on the button; null where there is nothing to agree to. */
  confirm: string | null;
  /** What the other button says; to cancel, where it is left out. */
  decline?: string;
  /** Nothing is deleted by it. */
  harmless?: boolean;
}

class Questions {
  current = $state.raw<Question | null>(null);
  private settle: ((answer: boolean) => void) | null = null;

  ask(question: Question): Promise<boolean> {
    this.answer(false);
    this.current = question;
    return new Promise((resolve) => (this.settle = resolve));
  }

  answer(confirmed: boolean): void {
    const settle = this.settle;
    this.settle = null;
    this.current = null;
    settle?.(confirmed);
  }
}

export const questions = new Questions();
