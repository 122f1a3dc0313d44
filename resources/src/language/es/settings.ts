import type { settings as english } from '../en/settings.ts';
import { formats } from '../formats.ts';

const { date, list, moment, plural, size } = formats.es;

export const settings: typeof english = {
  general: 'General',
  language: 'Idioma',
  theme: 'Tema',
  themeOfSystem: 'Como el sistema',
  trash: 'Papelera de Velto',
  retention: 'Conservar lo que quitas durante',
  retentionHelp: 'En ese tiempo puedes recuperar lo que hayas quitado. Después, el mantenimiento automático lo borra definitivamente.',
  days: (count) => plural(count, { one: '# día', many: '# de días', other: '# días' }),
  keepCaches: 'Conservar las cachés durante',
  keepCachesHelp: 'Las que ha movido el mantenimiento. Las aplicaciones las vuelven a crear en pocos días, así que guardar mucho tiempo las copias llena el disco.',
  asEverything: 'Lo mismo que todo',
  foretold: (bytes) => `La Papelera de Velto llegaría a guardar hasta ${size(bytes / 1e9)} de cachés.`,
  held: 'Lo que guarda el mantenimiento',
  heldNothing: 'Nada de lo que hay en la Papelera de Velto lo ha movido el mantenimiento.',
  heldSome: (bytes, returns) =>
    `${size(bytes / 1e9)} en la Papelera de Velto. Se recuperan ${list(returns.map((one) => `${size(one.bytes / 1e9)} a partir del ${date(one.from)}`))}.`,
  heldStays: (bytes) => `${size(bytes / 1e9)} en la Papelera de Velto. Con el mantenimiento desactivado se quedan ahí.`,
  fullDisk: 'Avisar cuando quede poco espacio',
  fullDiskHelp: 'Una notificación tras una pasada de mantenimiento, como mucho una vez por semana mientras siga lleno.',
  fullDiskNeeds: 'Llega con el mantenimiento, que está desactivado.',
  never: 'Nunca',
  below: (gb) => `Con menos de ${size(gb)} libres`,
  ruleNeedsAccess: 'No hace nada sin acceso total al disco.',
  askCachesTitle: '¿Cuánto tiempo conservar las cachés?',
  askCachesText: (days) =>
    `El mantenimiento lleva las cachés a la Papelera de Velto en cada pasada, y las aplicaciones las vuelven a crear. Si se conservan ${days}, como todo lo demás, las copias se acumulan.`,
  askCachesForetold: (all, few) => `Podrían llegar a ocupar ${size(all / 1e9)}; con 3 días, ${size(few / 1e9)}.`,
  askCachesAdvice: 'Con 3 días basta para recuperar lo que resulte que hacía falta.',
  askCachesConfirm: 'Conservarlas 3 días',
  maintenance: 'Mantenimiento automático',
  enabled: 'Hacer mantenimiento automáticamente',
  enabledHelp: 'Mueve lo prescindible a la Papelera de Velto y borra definitivamente lo que lleva allí más tiempo del que lo conservas.',
  frequency: 'Cada cuánto',
  frequencies: { daily: 'Cada día', weekends: 'Cada semana', monthly: 'Cada mes' },
  nextRun: (stamp) => `La próxima pasada toca el ${date(stamp)}.`,
  lastRun: 'Última pasada',
  neverRun: 'El mantenimiento aún no ha hecho ninguna pasada.',
  lastOutcome: ({ ts, freed, moved, movedGB }) => {
    const outcome = [
      moved > 0
        ? `${plural(moved, { one: '# elemento', many: '# de elementos', other: '# elementos' })} (${size(movedGB)}) a la Papelera de Velto`
        : '',
      freed > 0 ? `${size(freed)} borrados definitivamente` : '',
    ].filter(Boolean);
    return `${moment(ts)}: ${outcome.join(', ') || 'no había nada que hacer'}.`;
  },
  rules: 'Qué revisa el mantenimiento',
  rulePlaces: 'Dónde',
  ruleNow: (count, gb) =>
    count > 0
      ? `Ahora: ${plural(count, { one: '# elemento', many: '# de elementos', other: '# elementos' })}, ${size(gb)}`
      : 'Ahora: nada',
  measureLabel: '¿Cuánto se movería ahora?',
  measureHelp: 'Mide todas las reglas, también las desactivadas. No se mueve nada.',
  measure: 'Medir',
  measuring: 'Midiendo…',
  ruleNames: {
    systemTrash: 'Papelera del sistema',
    oldDownloads: 'Descargas antiguas',
    caches: 'Cachés de aplicaciones',
    duplicates: 'Duplicados',
  },
  ruleHelp: {
    systemTrash: 'Lo que lleva más de 30 días en la papelera del sistema.',
    oldDownloads: 'Archivos de Descargas sin abrir desde hace un año.',
    caches: 'Archivos de trabajo que las aplicaciones, Xcode entre ellas, vuelven a crear cuando los necesitan. Lo que pueda guardar algo más y lo que esté en uso se queda.',
    duplicates: 'Copias de más en Descargas, Escritorio y Documentos, como mucho cada 30 días. Siempre queda una.',
  },
  exclusions: 'Excluido del análisis',
  exclusionsHelp: 'Estos lugares ni se leen ni se cuentan. Un cambio vale a partir del próximo análisis.',
  exclusionsEmpty: 'No hay nada excluido.',
  exclusionsEmptyHelp: 'Los archivos y las carpetas también se pueden excluir donde aparecen.',
  exclusionsToFiles: 'Ir a archivos grandes',
  exclusionsChoose: 'Dejar fuera otra carpeta',
  exclusionsChooseHelp: 'Elige cualquier carpeta de tu carpeta personal. No se cambia nada en ella.',
  exclusionsChooseButton: 'Excluir una carpeta…',
  exclusionsWaiting: 'Leyendo la lista…',
  exclusionsFailed: 'No se pudo leer la lista. Las exclusiones siguen como estaban.',
  exclusionsCount: (count) => plural(count, { one: '# lugar', many: '# de lugares', other: '# lugares' }),
  include: 'Volver a incluir',
  includeNamed: (path) => `Volver a incluir ${path}`,
  access: 'Acceso al disco',
  accessGranted: 'El acceso total al disco está concedido',
  accessGrantedHelp: 'Velto puede medir todas tus carpetas.',
  accessMissing: 'El acceso total al disco no está concedido',
  accessMissingHelp: 'Velto funciona sin él; algunas carpetas quedan sin medir.',
  accessUnknown: 'Aún no se ha comprobado el acceso',
  accessUnknownHelp: 'La respuesta llega con el próximo análisis.',
  accessFree: 'En este sistema no hace falta ningún permiso',
  accessFreeHelp: 'Velto lee lo mismo que puede leer tu cuenta.',
  openSettings: 'Abrir ajustes del sistema',
  resetAccess: 'Restablecer el acceso',
  resetAccessLabel: '¿Concedido, pero no funciona?',
  resetAccessHelp: 'Suele ayudar restablecer el acceso y darlo de nuevo.',
  reset: 'Empezar de cero',
  resetLabel: 'Restablecer Velto',
  resetHelp: 'Elimina el mantenimiento automático, el análisis guardado, las exclusiones, el historial y la Papelera de Velto con todo lo que contiene.',
  resetButton: 'Restablecer Velto…',
  resetFirstTitle: '¿Restablecer Velto?',
  resetFirstText: 'Se eliminan el análisis guardado, las exclusiones, el historial y el mantenimiento automático. Tus ajustes se conservan.',
  resetTrash: (gb) =>
    gb > 0
      ? `La Papelera de Velto contiene ${size(gb)}. Se elimina definitivamente.`
      : 'Lo que haya en la Papelera de Velto se elimina definitivamente.',
  resetContinue: 'Continuar…',
  resetSecondTitle: 'Esto no se puede deshacer',
  resetSecondText: 'Velto elimina ahora sus datos locales. Los archivos que no están en la Papelera de Velto no se tocan.',
  resetConfirm: 'Restablecer Velto',
};
