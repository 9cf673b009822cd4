// Runs the unit tests. They are bundled first, because the oldest supported Node cannot read TypeScript.
//
//   npm test
import { spawnSync } from 'node:child_process';
import { mkdtempSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const here = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const tests = readdirSync(join(here, 'tests')).filter((name) => /\.test\.tsx?$/.test(name));
if (tests.length === 0) throw new Error('no tests were found');
const out = mkdtempSync(join(tmpdir(), 'web-editor-tests-'));
try {
  await build({
    absWorkingDir: here,
    entryPoints: tests.map((name) => join('tests', name)),
    outdir: out,
    outExtension: { '.js': '.mjs' },
    bundle: true,
    platform: 'node',
    format: 'esm',
    target: 'node18',
    sourcemap: 'inline',
    logLevel: 'warning',
  });
  const files = tests.map((name) => join(out, name.replace(/\.tsx?$/, '.mjs')));
  const run = spawnSync(process.execPath, ['--enable-source-maps', '--test', ...files], { stdio: 'inherit' });
  process.exitCode = run.status ?? 1;
} finally {
  rmSync(out, { recursive: true, force: true });
}
