/**
 * The second script: whatever is not on screen at the start. What the first script imports as well
 * stands there once and is shared.
 */
import type { Component } from 'svelte';
import '../style/grids.css';
import type { ViewName } from '../protocol/protocol.ts';
import Ajustes from './ajustes/Ajustes.svelte';
import Apps from './apps/Apps.svelte';
import Archivos from './archivos/Archivos.svelte';
import Avisos from './avisos/Avisos.svelte';
import Duplicados from './duplicados/Duplicados.svelte';
import Explorar from './explorar/Explorar.svelte';
import GrowthCard from './explorar/growth/GrowthCard.svelte';
import Guia from './guia/Guia.svelte';
import Historial from './historial/Historial.svelte';
import MapStrip from './inicio/measured/MapStrip.svelte';
import NotMeasured from './inicio/measured/NotMeasured.svelte';
import SystemParts from './inicio/measured/SystemParts.svelte';
import Limpieza from './limpieza/Limpieza.svelte';
import Papelera from './papelera/Papelera.svelte';
import Sistema from './sistema/Sistema.svelte';

const contents: Record<Exclude<ViewName, 'inicio'>, Component> = {
  explorar: Explorar,
  archivos: Archivos,
  duplicados: Duplicados,
  limpieza: Limpieza,
  papelera: Papelera,
  historial: Historial,
  apps: Apps,
  sistema: Sistema,
  ajustes: Ajustes,
  guia: Guia,
  avisos: Avisos,
};

export { default as Overlays } from '../frame/Overlays.svelte';
export { startLater } from '../state/startLater.ts';

/** Parts of the view at the start that wait for what the program tells after it. */
export const overviewParts = { GrowthCard, MapStrip, NotMeasured, SystemParts };

/** Null for the view at the start. */
export function contentOf(name: ViewName): Component | null {
  return name === 'inicio' ? null : contents[name];
}
