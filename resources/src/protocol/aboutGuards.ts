/** Reads what the program says of itself; see `guards.ts`. */
import { placeRoles, type About, type AppUses } from './aboutRecords.ts';
import { fieldsOf, list, number, text } from './guards.ts';

export function about(value: unknown): About | null {
  const fields = fieldsOf(value);
  return fields && {
    version: text(fields.version),
    license: text(fields.license),
    places: list(fields.places, ({ role, path, there }) => {
      const known = placeRoles.find((each) => each === role);
      return known && text(path) ? { role: known, path: text(path), there: there === true } : null;
    }),
  };
}

/** As long as nobody says that nothing is recorded, it is. */
export function appUses(value: unknown): AppUses | null {
  const fields = fieldsOf(value);
  return fields && { recording: fields.recording !== false, applications: Math.max(0, number(fields.applications)) };
}
