/** The program says which system it runs on before the page starts. */
export function onMac(): boolean {
  return document.documentElement.dataset.platform === 'macos';
}
