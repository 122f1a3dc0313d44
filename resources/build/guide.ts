/**
 * The user's guide from Markdown to what the page shows. Understands what the guide uses: headings,
 * paragraphs, lists, tables, fenced text, pictures, links inside the guide, bold, code. Anything that
 * looks like more is an error, so that nothing is shown half done.
 */
export interface GuideSection {
  id: string;
  title: string;
}

export interface Guide {
  title: string;
  sections: GuideSection[];
  html: string;
  /** File names, in the folder of the guide. */
  pictures: string[];
}

const escapes: Record<string, string> = { '&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;' };
const escaped = (text: string): string => text.replace(/[&<>"]/g, (sign) => escapes[sign]!);

/** As GitHub makes them, so that the links work there too. */
export function anchorOf(title: string): string {
  return title.toLowerCase().replace(/[^\p{L}\p{N}\s-]/gu, '').trim().replace(/\s/g, '-');
}

function inline(text: string): string {
  return escaped(text)
    .split(/(`[^`]+`)/)
    .map((part) => {
      if (part.startsWith('`') && part.length > 1) return `<code>${part.slice(1, -1)}</code>`;
      return part
        .replace(/\*\*([^*]+)\*\*/g, '<strong>$1</strong>')
        .replace(/\[([^\]]+)\]\(#([^)]+)\)/g, '<a href="#$2">$1</a>');
    })
    .join('');
}

const row = (text: string): string[] => text.replace(/^\||\|$/g, '').split('|').map((cell) => cell.trim());

/** Cells of the first row are named `th` by role: some engines cannot be asked for the element's own. */
function tableOf(lines: string[]): string {
  const [head, , ...rows] = lines.map(row);
  const cells = (of: string[], role: string) => of.map((cell) => `<div role="${role}">${inline(cell)}</div>`).join('');
  return [
    '<div class="table" role="table">',
    `<div role="row" class="head">${cells(head!, 'columnheader')}</div>`,
    ...rows.map((of) => `<div role="row">${cells(of, 'cell')}</div>`),
    '</div>',
  ].join('');
}

function listOf(lines: string[], tag: 'ul' | 'ol'): string {
  const items: string[] = [];
  for (const line of lines) {
    const item = /^(?:-|\d+\.) (.*)$/.exec(line);
    if (item) items.push(item[1]!);
    else items[items.length - 1] += ` ${line.trim()}`;
  }
  return `<${tag}>${items.map((item) => `<li>${inline(item)}</li>`).join('')}</${tag}>`;
}

export function guideOf(source: string): Guide {
  const guide: Guide = { title: '', sections: [], html: '', pictures: [] };
  const html: string[] = [];
  for (const block of source.trim().split(/\n{2,}/)) {
    const lines = block.split('\n');
    const first = lines[0]!;
    const heading = /^(#{1,3}) (.*)$/.exec(first);
    const picture = /^!\[([^\]]+)\]\(([\w-]+\.png)\)$/.exec(block);
    if (heading && lines.length > 1) throw new Error(`a heading wants a line of its own: ${first}`);
    if (heading?.[1] === '#') guide.title = heading[2]!;
    else if (heading) {
      const id = anchorOf(heading[2]!);
      const level = heading[1]!.length;
      if (level === 2) guide.sections.push({ id, title: heading[2]! });
      html.push(`<h${level} id="${id}" tabindex="-1">${inline(heading[2]!)}</h${level}>`);
    } else if (picture) {
      guide.pictures.push(picture[2]!);
      html.push(`<img src="./${picture[2]}" alt="${escaped(picture[1]!)}" />`);
    } else if (first === '```') {
      if (lines.at(-1) !== '```') throw new Error('fenced text with an empty line in it, or without its end');
      html.push(`<pre>${escaped(lines.slice(1, -1).join('\n'))}</pre>`);
    } else if (first.startsWith('|')) html.push(tableOf(lines));
    else if (first.startsWith('- ')) html.push(listOf(lines, 'ul'));
    else if (first.startsWith('1. ')) html.push(listOf(lines, 'ol'));
    else if (/^(?:[>#~!]|\* )|\]\((?!#)/.test(block)) throw new Error(`the guide cannot show this: ${first}`);
    else html.push(`<p>${inline(lines.join(' '))}</p>`);
  }
  guide.html = html.join('\n');
  const anchors = new Set([...guide.html.matchAll(/ id="([^"]+)"/g)].map(([, id]) => id));
  for (const [, target] of guide.html.matchAll(/href="#([^"]+)"/g)) {
    if (!anchors.has(target!)) throw new Error(`a link of the guide leads nowhere: #${target}`);
  }
  return guide;
}
