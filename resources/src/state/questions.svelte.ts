/** Asked only before what cannot be undone. */
export interface Question {
  title: string;
  paragraphs: string[];
  /** The verb on the button. */
  confirm: string;
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
