/** What was measured, and how exactly. Sizes are bytes here. */

/** Bytes by path, of the trash's items by id; a part that is missing is as it was. */
export interface ExactSizes {
  files?: ReadonlyMap<string, number>;
  copies?: ReadonlyMap<string, number>;
  cleanables?: ReadonlyMap<string, number>;
  trash?: ReadonlyMap<string, number>;
}

/** By group id: lists of copies that are names of one file. */
export type LinkedCopies = ReadonlyMap<string, string[][]>;

export interface MeasuredVolume {
  path: string;
  /** Null when the volume could not be asked. */
  bytes: number | null;
}

/** The parts of which the space in use is made, and what was not measured. */
export interface Measurement {
  disk: {
    total: number;
    free: number;
    /** Free, but kept for the system: no part of `free`. */
    reserved: number;
    /** Part of `free`: in use now, given back when it is needed. */
    purgeable: number;
  };
  /** In the categories. */
  home: number;
  /** Measured, and in no category; null when it was not told apart. */
  hidden: number | null;
  volumes: MeasuredVolume[];
  withheld: string[];
  excluded: string[];
  unreadable: { count: number; paths: string[] };
  /** In use, and in none of the above. */
  outside: number;
  compared: {
    complete: boolean;
    /** Files that were not compared. */
    left: number;
    /** The program knows which, and can go on. */
    canContinue: boolean;
    running: boolean;
  };
}
