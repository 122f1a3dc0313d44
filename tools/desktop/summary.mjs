// The last analysis as lines for a terminal.

const gb = (value) => `${value.toFixed(1)} GB`.padStart(10);

/** Every other column of names is as wide as its longest, up to `most`. */
function middle(text, most) {
  const shown = [...text.replace(/[\p{Cc}\p{Cf}]/gu, '\u{FFFD}')];
  if (shown.length <= most) return shown.join('');
  const head = Math.floor((most - 1) / 2);
  return [...shown.slice(0, head), '…', ...shown.slice(head + 1 - most)].join('');
}

/** `entry` is what lastScan.json holds: {ts, state}. */
export function summaryLines({ ts, state }) {
  const lines = [
    `Analysis of ${new Date(ts * 1000).toLocaleString('sv-SE')}`,
    '',
    `  total ${gb(state.total)}    free ${gb(state.free)}    score ${state.ser}`,
    '',
    'Categories',
    ...state.cats.map((cat) => `${gb(cat.gb)}  ${cat.name} (${cat.files} files)`),
    '',
    `Largest files (${Math.min(10, state.files.length)} of ${state.files.length})`,
    ...state.files.slice(0, 10).map((file) => `${gb(file.gb)}  ${middle(file.path, 78)}`),
  ];
  if (state.files.length === 0) lines.push('            none of 0.3 GB or more');
  lines.push('', `Duplicate groups (${state.dupGroups.length})`);
  for (const group of state.dupGroups.slice(0, 10)) {
    const each = Number(group.pairs[0]?.[0]?.[1] ?? 0);
    lines.push(`${gb(each)}  ${middle(group.name, 60)} × ${group.paths.length}`);
  }
  if (state.dupGroups.length === 0) lines.push('            none');
  if (state.dupGroups.length > 10) lines.push(`            and ${state.dupGroups.length - 10} more`);
  if (state.protected?.length) {
    lines.push('', `Not measured without full access: ${state.protected.join(', ')}`);
  }
  return lines;
}
