// jimp with what the tests need of it: PNG files and text.
import { createJimp } from '@jimp/core';
import png from '@jimp/js-png';
import { methods } from '@jimp/plugin-print';

export { loadFont } from '@jimp/plugin-print/load-font';
export const Jimp = createJimp({ formats: [png], plugins: [methods] });
