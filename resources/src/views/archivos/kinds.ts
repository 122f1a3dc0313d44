/** What people call a file by what it is. The program's own kinds say where it lies. */
import type { BigFile } from '../../protocol/protocol.ts';

export const fileKinds = ['video', 'picture', 'archive', 'diskImage', 'installer', 'virtualMachine', 'other'] as const;
export type FileKind = (typeof fileKinds)[number];

const endings: Record<Exclude<FileKind, 'other'>, string> = {
  video: 'mov mp4 m4v mkv avi webm wmv mpg mpeg m2ts mts flv 3gp vob',
  picture: 'jpg jpeg png heic heif tif tiff gif psd psb bmp webp avif dng cr2 cr3 nef arw orf raf rw2 raw',
  archive: 'zip tar gz tgz bz2 tbz xz txz zst lz4 7z rar cpio',
  diskImage: 'dmg iso img sparseimage sparsebundle toast wim',
  installer: 'pkg mpkg xip msi exe deb rpm appimage flatpakref run apk',
  virtualMachine: 'vmdk vdi qcow qcow2 vhd vhdx hdd utm pvm ova vmem vmsn',
};

const kindOfEnding: ReadonlyMap<string, FileKind> = new Map(
  Object.entries(endings).flatMap(([kind, list]) => list.split(' ').map((ending) => [ending, kind as FileKind] as const)),
);

/** The disk of a virtual machine or of containers has names that pictures have, too. */
const machineFolder = /\/(vms?|virtual ?machines|máquinas virtuales|libvirt|com\.docker\.docker)\//iu;

export function kindOf({ path, kind }: Pick<BigFile, 'path' | 'kind'>): FileKind {
  const name = path.slice(path.lastIndexOf('/') + 1);
  const dot = name.lastIndexOf('.');
  const found = dot > 0 ? (kindOfEnding.get(name.slice(dot + 1).toLowerCase()) ?? 'other') : 'other';
  if ((found === 'picture' || found === 'diskImage') && /\.(raw|img)$/i.test(name) && machineFolder.test(path)) return 'virtualMachine';
  // What was downloaded to be opened once is an installer.
  return found === 'diskImage' && kind === 'descarga' && /\.dmg$/i.test(name) ? 'installer' : found;
}
