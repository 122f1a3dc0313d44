/** Which applications have been asked to quit, by the process of their group. */
import { send } from '../protocol/connection.ts';

/** `open`: it did not quit when it was asked, and can be ended. */
export type Stage = 'asked' | 'open' | 'ending' | 'gone';

class Quitting {
  private stages = $state.raw<ReadonlyMap<number, Stage>>(new Map());

  stage(pid: number): Stage | undefined {
    return this.stages.get(pid);
  }

  ask(pid: number): void {
    if (this.stages.has(pid)) return;
    this.change(pid, 'asked');
    send('quitApplication', { pid });
  }

  end(pid: number): void {
    if (this.stages.get(pid) !== 'open') return;
    this.change(pid, 'ending');
    send('endApplication', { pid });
  }

  receive(pid: number, ended: boolean): void {
    if (this.stages.has(pid)) this.change(pid, ended ? 'gone' : 'open');
  }

  /** What is not there any more may come again under its number. */
  keep(pids: ReadonlySet<number>): void {
    const left = [...this.stages].filter(([pid, stage]) => pids.has(pid) || stage === 'asked' || stage === 'ending');
    if (left.length < this.stages.size) this.stages = new Map(left);
  }

  private change(pid: number, stage: Stage): void {
    this.stages = new Map(this.stages).set(pid, stage);
  }
}

export const quitting = new Quitting();
