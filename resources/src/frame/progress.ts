/** How far an analysis has come, in words. There is no total, so there is no percentage. */
import type { AnalysisPhase } from '../protocol/protocol.ts';
import type { Formats } from '../language/formats.ts';
import type { Dictionary } from '../language/language.svelte.ts';

export interface Progress {
  scanStage: AnalysisPhase;
  scanFiles: number;
  scanGb: number;
  scanStartedAt: number;
}

export function elapsedSeconds(progress: Progress, now: number): number {
  return Math.max(0, Math.trunc((now - progress.scanStartedAt) / 1000));
}

export function progressSentence(
  words: Dictionary['frame'],
  { size, duration }: Formats,
  progress: Progress,
  now: number,
): string {
  const time = duration(elapsedSeconds(progress, now));
  const { scanStage: stage, scanFiles, scanGb } = progress;
  const figures = `${words.filesDone[stage](scanFiles)}, ${words.amountDone[stage](size(scanGb))}`;
  return words.progressStatus(words.stages[stage], figures, time);
}
