/** The program's free-space score (5 to 99) in a word. 10% free scores 50, 30% free scores 70. */
export type ScoreWord = 'roomy' | 'comfortable' | 'tight' | 'full';

export function scoreWord(score: number): ScoreWord {
  if (score >= 65) return 'roomy';
  if (score >= 50) return 'comfortable';
  if (score >= 40) return 'tight';
  return 'full';
}
