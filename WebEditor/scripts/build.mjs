// Builds the page: index.html, editor.js, editor.css and icon.svg. The same sources give the same bytes.
//
//   npm run build -- --out DIR      default: dist
import { copyFileSync, mkdirSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { parseArgs } from 'node:util';
import { build } from 'esbuild';

const here = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const { values } = parseArgs({ options: { out: { type: 'string', default: join(here, 'dist') } } });
const out = resolve(values.out);

mkdirSync(out, { recursive: true });
await build({
  absWorkingDir: here,
  entryPoints: { editor: 'src/main.tsx' },
  outdir: out,
  bundle: true,
  minify: true,
  format: 'esm',
  target: 'es2022',
  charset: 'utf8',
  legalComments: 'inline',
  logLevel: 'warning',
});
for (const file of ['index.html', 'icon.svg']) copyFileSync(join(here, 'src', file), join(out, file));
