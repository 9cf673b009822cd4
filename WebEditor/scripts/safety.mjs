// Refuses sources that could make markup, script or style out of a text. Names and values of a model are the user's.
import { readdirSync, readFileSync } from 'node:fs';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const banned =
  /\b(innerHTML|outerHTML|insertAdjacentHTML|dangerouslySetInnerHTML|createContextualFragment|parseFromString|setHTMLUnsafe|srcdoc|cssText)\b|document\.write|\beval\(|new Function\b|\bstyle="|<script(?! type="module" src=)/;

let found = 0;
for (const entry of readdirSync(join(here, 'src'), { withFileTypes: true, recursive: true })) {
  if (!entry.isFile()) continue;
  const file = join(entry.parentPath ?? entry.path, entry.name);
  readFileSync(file, 'utf8')
    .split('\n')
    .forEach((line, i) => {
      if (!banned.test(line)) return;
      found += 1;
      console.error(`${file}:${i + 1}: ${line.trim()}`);
    });
}
if (found > 0) {
  console.error('Show texts as text nodes only.');
  process.exitCode = 1;
}
