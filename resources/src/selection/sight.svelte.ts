/** What is seen of a long list, so that only that much of it is made. */
import { around, indicesInSight, scrollToRow, type Sight } from './windowing.ts';

/** What is near enough for a first guess: asking would lay everything out before its time. */
const usualRow = 44;
const usualShare = 0.7;
/** Beyond the edges of a list that stands still: two notches of a wheel, 120 pixels each, turn less. */
const aroundAtRest = 6;

/** The part of an element that its scroller shows, below a head that stays in place. */
export class SeenPart {
  /** Counted from the element's own top, in pixels. */
  top = $state(0);
  height = $state((globalThis.innerHeight ?? 0) * usualShare);
  width = $state(0);
  /** How many rows beyond the edges are worth having. */
  beyond = $state(aroundAtRest);
  private element: HTMLElement | null = null;
  private scroller: HTMLElement | null = null;

  /** An attachment for the element that holds the rows. */
  readonly watch = (element: HTMLElement): (() => void) => {
    const scroller = element.closest<HTMLElement>('.scroller, .content')!;
    Object.assign(this, { element, scroller });
    const observer = new ResizeObserver(this.look);
    // What stands above the rows moves them when it changes.
    for (const part of [scroller, ...scroller.children, element]) observer.observe(part);
    const scrolled = () => {
      this.beyond = around;
      this.look();
    };
    scroller.addEventListener('scroll', scrolled, { passive: true });
    return () => {
      observer.disconnect();
      scroller.removeEventListener('scroll', scrolled);
      this.element = this.scroller = null;
    };
  };

  private readonly look = (): void => {
    if (!this.element || !this.scroller) return;
    const head = this.scroller.querySelector<HTMLElement>('.grid-head.sticky')?.offsetHeight ?? 0;
    const start = this.element.getBoundingClientRect().top - this.scroller.getBoundingClientRect().top - this.scroller.clientTop;
    this.top = Math.max(0, head - start);
    this.height = Math.max(0, this.scroller.clientHeight - start - this.top);
    this.width = this.scroller.clientWidth;
  };

  /** Scrolls as far as it takes to show the element from there; does nothing when that is where it is. */
  showFrom(place: number): void {
    if (!this.scroller || place === this.top) return;
    this.scroller.scrollTop += place - this.top;
    this.look();
  }
}

/** A list of rows of equal height. */
export class RowsInSight {
  readonly seen = new SeenPart();
  /** What is as tall as a row is right now. */
  probe = $state<DOMRectReadOnly>();
  private readonly sight: Sight = $derived({ top: this.seen.top, height: this.seen.height, row: this.probe?.height ?? usualRow });

  /** Which rows to make; the one that holds the focus is always among them. */
  indices(count: number, always: number): number[] {
    return indicesInSight(this.sight, count, always, this.seen.beyond);
  }

  show(index: number): void {
    if (index >= 0 && this.sight.row > 0) this.seen.showFrom(scrollToRow(this.sight, index));
  }

  showAtTop(): void {
    if (this.seen.top > 0) this.seen.showFrom(0);
  }
}
