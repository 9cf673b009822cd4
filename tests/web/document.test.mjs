// docs/web.md says what is so: its keys are those of the page, its labels are there, and its pictures exist.
import assert from 'node:assert/strict';
import { existsSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { closeBrowser, field, flow, form, openBrowser, read, shows, side, source, tab, treeItem, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

const page = read('docs/web.md');

test('every picture is there, and every picture is shown', async () => {
  const { readdirSync } = await import('node:fs');
  const named = [...page.matchAll(/\]\((images\/[^)]+)\)/g)].map(([, file]) => file);
  assert.ok(named.length >= 4);
  for (const file of named) assert.ok(existsSync(join(source, 'docs', file)), file);
  const shown = named.map((file) => file.slice('images/'.length)).sort();
  assert.deepEqual(readdirSync(join(source, 'docs/images')).filter((file) => file.startsWith('web-')).sort(), [...new Set(shown)]);
});

test(
  'the words that the document quotes are on the page',
  withPage(flow, {}, async ({ page: editor }) => {
    await shows(editor, 'Case');
    for (const label of ['Effects', 'Why', 'Findings', 'Changes']) {
      assert.ok(page.includes(`"${label}"`), label);
      await tab(editor, label).waitFor();
    }
    // A unit that is typed is converted, and the row or the effect says so.
    await treeItem(editor, 'Analysis').click();
    await shows(editor, 'Analysis');
    await field(editor, 'Analysis Type').getByRole('radio', { name: 'Transient' }).click();
    const step = field(editor, 'Time Step').getByRole('textbox');
    await step.fill('20 ms');
    await step.press('Enter');
    await side(editor).getByText('Given as 20 [ms], set as 0.02 [s].').waitFor();
    await side(editor).getByRole('button', { name: 'Undo this edit' }).waitFor();
    await form(editor).getByRole('button', { name: /unavailable/ }).first().waitFor();
    await editor.getByText('not saved', { exact: true }).waitFor();
  }),
);

test(
  'the list of keys on the page has the keys of the document',
  withPage(flow, {}, async ({ page: editor }) => {
    await shows(editor, 'Case');
    await editor.keyboard.press('?');
    const help = editor.getByRole('dialog');
    await help.waitFor();
    const listed = await help.innerText();
    for (const key of ['F6', 'Ctrl+Z', 'Ctrl+Shift+Z', 'Ctrl+S', 'Enter', 'Esc']) {
      assert.ok(page.includes(key), key);
      assert.ok(listed.includes(key), key);
    }
  }),
);
