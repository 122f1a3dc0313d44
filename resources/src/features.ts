/**
 * What this version of the program can do. A view asks here before it offers something; what is
 * still missing is shown as missing and never pretended.
 */
export const features = {
  /** The scheduled pass behind the automatic maintenance settings. */
  maintenance: __AHEAD__,
};
