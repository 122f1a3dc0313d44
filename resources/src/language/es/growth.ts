import type { growth as english } from '../en/growth.ts';
import { formats } from '../formats.ts';
import { fileSize } from '../measures.ts';

const { date, moment } = formats.es;
const size = (bytes: number) => fileSize(Math.abs(bytes), formats.es);
const day = new Intl.DateTimeFormat('es-ES', { month: 'long', day: 'numeric' });
const time = new Intl.DateTimeFormat('es-ES', { hour: 'numeric', minute: '2-digit' });

export const growth: typeof english = {
  since: (stamp, now) => {
    const [then, today] = [new Date(stamp * 1000), new Date(now * 1000)];
    if (then.toDateString() === today.toDateString()) {
      return `Desde ${then.getHours() === 1 ? 'la' : 'las'} ${time.format(then)} de hoy`;
    }
    return `Desde el ${then.getFullYear() === today.getFullYear() ? day.format(then) : date(stamp)}`;
  },
  more: (since, bytes) => `${since}, ${size(bytes)} más`,
  less: (since, bytes) => `${since}, ${size(bytes)} menos`,
  same: (since) => `${since}, más o menos lo mismo que antes`,
  nothing: (since) => `${since} no ha cambiado nada grande.`,
  whole: (beginning, parts) => (parts ? `${beginning}: ${parts}.` : `${beginning}.`),
  in: (bytes, place) => `${size(bytes)} en ${place}`,
  moreIn: (bytes, place) => `${size(bytes)} más en ${place}`,
  lessIn: (bytes, place) => `${size(bytes)} menos en ${place}`,
  across: 'varios sitios de la carpeta personal',
  panel: 'Lo que ha cambiado',
  compareWith: 'Comparar con',
  choices: { last: 'El análisis anterior', week: 'Una semana antes', month: 'Un mes antes' },
  moment: (stamp) => moment(stamp),
  compared: (since, until) => `Del análisis del ${moment(since)} al del ${moment(until)}.`,
  asking: 'Comparando…',
  kinds: { grown: 'Han crecido', new: 'Nuevas', shrunk: 'Han menguado', gone: 'Ya no están' },
  renamed: 'Con otro nombre o en otro sitio',
  from: 'antes:',
  home: 'Carpeta personal, en varios sitios',
  change: (bytes) => `${bytes > 0 ? '+' : '\u2212'}${size(bytes)}`,
  size: (bytes) => size(bytes),
  none: 'Ninguna carpeta ha cambiado en 10 MB o más.',
  note: 'Cada carpeta cuenta solo lo que no cuentan las que tiene dentro. Una carpeta figura como nueva o como que ya no está si el otro día ocupaba menos de 1 MB. No figuran los cambios de menos de 10 MB ni lo que uno de los dos análisis no midió.',
  forget: 'Olvidar…',
  forgetTitle: '¿Olvidar los análisis anteriores?',
  forgetText: 'Velto ha guardado cuánto ocupaban tus carpetas en análisis anteriores. Sin ello no habrá con qué comparar hasta los dos próximos análisis. No se toca ningún archivo tuyo.',
  forgetConfirm: 'Olvidar',
};
