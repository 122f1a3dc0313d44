import type { cloud as english } from '../en/cloud.ts';
import { formats } from '../formats.ts';

const { plural, size } = formats.es;

const files = { one: '# archivo', many: '# de archivos', other: '# archivos' };
const listed = new Intl.ListFormat('es', { type: 'conjunction' });

export const cloud: typeof english = {
  action: 'Mover a iCloud Drive…',
  title: (count) => `¿Mover ${plural(count, files)} a iCloud Drive?`,
  where: (gb) => `Van a la carpeta «Velto» de iCloud Drive y ocupan ${size(gb)} de tu espacio de iCloud.`,
  space: 'En este disco aún no se libera nada. Cuando se hayan subido, el sistema puede quitar las copias de aquí si falta espacio.',
  back: 'Se pueden traer de vuelta.',
  move: 'Mover a iCloud Drive',
  movedTitle: 'Movido a iCloud Drive',
  moved: (count) => plural(count, { one: '# archivo está ahora en su carpeta «Velto».', other: '# archivos están ahora en su carpeta «Velto».' }),
  returnedTitle: 'De vuelta en su sitio',
  returned: (count) => plural(count, { one: '# archivo ha vuelto de iCloud Drive.', other: '# archivos han vuelto de iCloud Drive.' }),
  notMovedTitle: 'No se ha movido nada',
  failed: (names, more) =>
    `No se ha movido: ${listed.format([...names.map((name) => `«${name}»`), ...(more > 0 ? [plural(more, { one: '# más', other: '# más' })] : [])])}. Ahí hay algo con ese nombre, o el archivo ya no está.`,
};
