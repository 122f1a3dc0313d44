import type { Plugin } from 'vite';

type Shape = [tag: string, attributes: Record<string, string>];

const iconFile = /\/@lucide\/svelte\/dist\/icons\/[\w-]+\.svelte$/;

function markup([tag, attributes]: Shape): string {
  const written = Object.entries(attributes)
    .filter(([name]) => name !== 'key')
    .map(([name, value]) => ` ${name}="${value}"`);
  return `<${tag}${written.join('')} />`;
}

/** The icon's source holds its data as JSON. */
function shapesOf(source: string, id: string): Shape[] {
  const text = /const iconData = (\{.*\});/.exec(source)?.[1];
  if (!text) throw new Error(`${id} holds no shapes where they are expected`);
  return (JSON.parse(text) as { node: Shape[] }).node;
}

/**
 * Lucide's own component puts every icon together from a list, attribute by attribute, each time it
 * is shown; with a dozen icons in the first frame that can be felt. Each becomes a drawing that is
 * copied in one piece. It takes `size` and `strokeWidth`; the words always stand beside an icon, so
 * no screen reader is told of it.
 */
export function staticIcons(): Plugin {
  return {
    name: 'velto:static-icons',
    enforce: 'pre',
    transform(source, id) {
      if (!iconFile.test(id)) return null;
      const shapes = shapesOf(source, id).map(markup).join('');
      const code = [
        '<script>let { size = 24, strokeWidth = 2 } = $props();</script>',
        '<svg viewBox="0 0 24 24" fill="none" stroke="currentColor" stroke-linecap="round"',
        '  stroke-linejoin="round" aria-hidden="true" width={size} height={size}',
        `  stroke-width={strokeWidth}>${shapes}</svg>`,
      ];
      return { code: code.join('\n'), map: null };
    },
  };
}
