/** Reads what arrives about what was measured; see guards.ts. */
import { fieldsOf, list, size, text, texts } from './guards.ts';
import type { ExactSizes, LinkedCopies, Measurement } from './measurementRecords.ts';

const parts = ['files', 'copies', 'cleanables', 'trash'] as const;

/** Whole numbers by path or id; what is none is left out. */
export function bytesByKey(value: unknown): ReadonlyMap<string, number> | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const known = Object.entries(fields).filter(
    (entry): entry is [string, number] => typeof entry[1] === 'number' && Number.isFinite(entry[1]) && entry[1] >= 0,
  );
  return new Map(known);
}

export function exactSizes(value: unknown): ExactSizes {
  const fields = fieldsOf(value) ?? {};
  return Object.fromEntries(
    parts.flatMap((part) => {
      const sizes = bytesByKey(fields[part]);
      return sizes ? [[part, sizes] as const] : [];
    }),
  );
}

export function linkedCopies(value: unknown): LinkedCopies {
  return new Map(
    Object.entries(fieldsOf(value) ?? {}).map(([group, files]): [string, string[][]] => [
      group,
      (Array.isArray(files) ? files : []).map(texts).filter((names) => names.length > 1),
    ]),
  );
}

export function measurement(value: unknown): Measurement | null {
  const fields = fieldsOf(value);
  const disk = fieldsOf(fields?.disk);
  if (!fields || !disk) return null;
  const unreadable = fieldsOf(fields.unreadable) ?? {};
  const compared = fieldsOf(fields.compared) ?? {};
  return {
    disk: {
      total: size(disk.total), free: size(disk.free), reserved: size(disk.reserved), purgeable: size(disk.purgeable),
    },
    home: size(fields.home),
    hidden: typeof fields.hidden === 'number' ? size(fields.hidden) : null,
    volumes: list(fields.volumes, (volume) =>
      text(volume.path)
        ? { path: text(volume.path), bytes: typeof volume.bytes === 'number' ? size(volume.bytes) : null }
        : null,
    ),
    withheld: texts(fields.withheld),
    excluded: texts(fields.excluded),
    unreadable: { count: Math.trunc(size(unreadable.count)), paths: texts(unreadable.paths) },
    outside: size(fields.outside),
    compared: {
      complete: compared.complete !== false,
      left: Math.trunc(size(compared.left)),
      canContinue: compared.canContinue === true,
      running: compared.running === true,
    },
  };
}
