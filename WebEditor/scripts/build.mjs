// Builds the page: index.html, the icon, and a script, a style and a font whose names have a hash of their bytes, so that
// browsers may keep them. The same sources give the same bytes.
//
//   npm run build -- --out DIR      default: dist
import { copyFileSync, mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { basename, dirname, extname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { parseArgs } from 'node:util';
import { build } from 'esbuild';

const here = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const { values } = parseArgs({ options: { out: { type: 'string', default: join(here, 'dist') } } });
const out = resolve(values.out);

rmSync(out, { recursive: true, force: true });
mkdirSync(out, { recursive: true });
const { metafile } = await build({
  absWorkingDir: here,
  entryPoints: { editor: 'src/main.tsx' },
  entryNames: '[name]-[hash]',
  assetNames: '[name]-[hash]',
  loader: { '.woff2': 'file' },
  outdir: out,
  metafile: true,
  bundle: true,
  minify: true,
  format: 'esm',
  target: 'es2022',
  charset: 'utf8',
  legalComments: 'inline',
  logLevel: 'warning',
});
copyFileSync(join(here, 'src/icon.svg'), join(out, 'icon.svg'));
// The licence of the font goes where the font goes.
copyFileSync(join(here, 'node_modules/@fontsource-variable/inter/LICENSE'), join(out, 'inter-license.txt'));
let page = readFileSync(join(here, 'src/index.html'), 'utf8');
const outputs = Object.keys(metafile.outputs).map((path) => basename(path));
for (const name of outputs.filter((one) => /\.(js|css)$/.test(one))) {
  const plain = `"editor${extname(name)}"`;
  if (!page.includes(plain)) throw new Error(`index.html does not name ${plain}`);
  page = page.replace(plain, `"${name}"`);
}
writeFileSync(join(out, 'index.html'), page);
