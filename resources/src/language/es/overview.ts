import type { overview as english } from '../en/overview.ts';
import { formats } from '../formats.ts';

const { plural, size } = formats.es;

/** The program sends these category names and sentences itself; they stand in where it does not. */
export const overview: typeof english = {
  analysedNow: 'Analizado ahora mismo',
  analysed: (when) => `Analizado ${when}`,
  free: 'libres',
  usedOf: (used, total) => `${size(used)} de ${size(total)} en uso`,
  inTrash: (gb) => `${size(gb)} de ellos en la Papelera de Velto`,
  barLabel: (used, free, total) => `${size(used)} en uso y ${size(free)} libres, de ${size(total)}`,
  scoreLabel: 'Margen libre',
  scoreOf: (score) => `${score} de 100`,
  scoreWords: { roomy: 'De sobra', comfortable: 'Cómodo', tight: 'Va justo', full: 'Muy poco' },
  scoreWhy: 'Se calcula con la parte libre del disco: un 10 % libre da 50, un 30 % libre da 70.',
  mapTitle: 'Dónde está el espacio',
  mapLabel: 'Mapa del disco por categorías',
  mapHelp: 'Cada área es tan grande como el espacio que ocupa. Elige un archivo para verlo en la lista.',
  mapAlternative: 'La tabla siguiente da las mismas cifras.',
  cell: (name, gb, category) => `${name}, ${size(gb)}, ${category}`,
  remainder: 'Todo lo demás',
  remainderLabel: (gb, category) => `${category}: todo lo demás, ${size(gb)}`,
  tableTitle: 'Por categorías',
  columns: { category: 'Categoría', files: 'Archivos', size: 'Tamaño' },
  categories: {
    fotos: 'Fotos y vídeo',
    apps: 'Aplicaciones',
    docs: 'Documentos',
    descargas: 'Descargas',
    musica: 'Música y audio',
    sistema: 'macOS y Datos del sistema',
  },
  systemElsewhere: 'Sistema y todo lo demás',
  equivalences: {
    fotos: 'aprox. 150.000 fotos o un año de vídeos caseros',
    apps: 'como 40 juegos grandes',
    docs: 'como 8.000 libros digitales',
    descargas: 'como 190 películas en HD',
    musica: 'como 6.500 canciones',
    sistema: 'el espacio esencial para que tu Mac funcione',
  },
  equivalenceSystemElsewhere: 'el espacio esencial para que tu ordenador funcione',
  accessTitle: 'Hay lugares sin medir',
  accessTitleBefore: 'Hay lugares que aún no se pueden medir',
  accessText: (places) =>
    `Sin acceso total al disco quedan sin leer: ${places}. Su espacio cuenta como datos del sistema; todo lo demás funciona.`,
  accessTextUnknown: 'Sin acceso total al disco algunas carpetas quedan sin leer. Todo lo demás funciona.',
  accessGrant: 'Dar acceso…',
  accessAlready: 'Ya lo he dado',
  accessAnyway: 'Analizar igualmente',
  places: {
    desktop: 'Escritorio',
    documents: 'Documentos',
    downloads: 'Descargas',
    photos: 'la fototeca de Fotos',
    icloud: 'iCloud Drive',
    mail: 'Mail',
    messages: 'Mensajes',
    safari: 'Safari',
    calendars: 'Calendario',
    contacts: 'Contactos',
    iphone: 'las copias del iPhone',
  },
  largeFiles: (count) =>
    plural(count, { one: 'Ver # archivo grande', many: 'Ver # de archivos grandes', other: 'Ver # archivos grandes' }),
};
