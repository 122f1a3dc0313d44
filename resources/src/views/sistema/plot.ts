/** Curves over the latest stretch of time, drawn by uPlot; every colour comes from the style sheet. */
import uPlot from 'uplot';
import 'uplot/dist/uPlot.min.css';

export interface Plot {
  /** The last `span` seconds of what was measured. */
  show(times: readonly number[], values: readonly (number | null)[][], span: number): void;
  /** Glides to another top of the scale, so that the curve is seen to be the same. */
  scaleTo(top: number): void;
  /** After the theme has changed. */
  takeColours(): void;
  destroy(): void;
}

const glide = 200; // milliseconds
const dashes = [4, 3];

export function createPlot(host: HTMLElement, count: number, firstTop: number): Plot {
  let top = firstTop || 1;
  let frame = 0;
  let colours = read();

  function read() {
    const of = (name: string) => getComputedStyle(host.querySelector(`.${name}`)!);
    return {
      lines: [of('first').color, of('second').color],
      areas: [of('first').backgroundColor, of('second').backgroundColor],
      grid: of('grid').color,
    };
  }

  const chart = new uPlot(
    {
      width: Math.max(1, host.clientWidth),
      height: Math.max(1, host.clientHeight),
      padding: [2, 1, 2, 0],
      cursor: { show: false },
      legend: { show: false },
      select: { show: false, left: 0, top: 0, width: 0, height: 0 },
      scales: { x: { time: false, auto: false }, y: { auto: false, range: () => [0, top] } },
      axes: [
        { show: false },
        {
          size: 0,
          gap: 0,
          splits: () => [0, top / 2, top],
          values: () => [],
          ticks: { show: false },
          grid: { stroke: () => colours.grid, width: 1 },
        },
      ],
      series: [
        {},
        ...Array.from({ length: count }, (_, index): uPlot.Series => ({
          stroke: () => colours.lines[index]!,
          fill: () => colours.areas[index]!,
          width: 1.75,
          points: { show: false },
          ...(index > 0 && { dash: dashes }),
        })),
      ],
    },
    [[], ...Array.from({ length: count }, () => [])],
    host,
  );

  const watcher = new ResizeObserver(() => {
    const { clientWidth: width, clientHeight: height } = host;
    if (width > 0 && (width !== chart.width || height !== chart.height)) chart.setSize({ width, height });
  });
  watcher.observe(host);

  const setTop = (value: number) => {
    top = value;
    chart.setScale('y', { min: 0, max: value });
  };

  return {
    show(times, values, span) {
      const last = times.at(-1) ?? 0;
      chart.batch(() => {
        chart.setData([[...times], ...values.map((line) => [...line])], false);
        chart.setScale('x', { min: last - span, max: last });
        chart.setScale('y', { min: 0, max: top });
      });
    },
    scaleTo(wanted) {
      cancelAnimationFrame(frame);
      if (wanted <= 0 || wanted === top) return;
      if (matchMedia('(prefers-reduced-motion: reduce)').matches) return setTop(wanted);
      const from = top;
      let start: number | null = null;
      const step = (now: number) => {
        start ??= now;
        const done = Math.min(1, (now - start) / glide);
        setTop(from + (wanted - from) * (1 - (1 - done) ** 3));
        if (done < 1) frame = requestAnimationFrame(step);
      };
      frame = requestAnimationFrame(step);
    },
    takeColours() {
      colours = read();
      chart.redraw(false);
    },
    destroy() {
      cancelAnimationFrame(frame);
      watcher.disconnect();
      chart.destroy();
    },
  };
}
