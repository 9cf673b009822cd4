// The page that `zev doc` writes, opened as a file: it can be searched with the keyboard, and axe finds no error in it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { pathToFileURL } from 'node:url';
import { assertAccessible, closeBrowser, flow, openBrowser, openPage, program } from './harness.mjs';

const folder = mkdtempSync(join(tmpdir(), 'reference-'));
const hostile = join(folder, 'hostile.rules.yaml');
writeFileSync(
  hostile,
  `Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Description: "</script><img src=x onerror=alert(1)>"
    Parameters:
      "<img onerror=alert(1) src=x>": {Parameter Type: String, Description: "</ul><script>alert(1)</script>"}
      find: {Parameter Type: String}
      constructor: {Parameter Type: String}
`,
);

/** A page with the reference of these rules. */
async function withReference(rules, options, body) {
  const file = join(folder, 'index.html');
  writeFileSync(file, execFileSync(program, ['doc', '--rules', rules], { maxBuffer: 1 << 26 }));
  const page = await openPage({ url: pathToFileURL(file).href }, options);
  try {
    await body(page);
  } finally {
    await page.close();
  }
  assert.deepEqual(page.wrong, []);
}

const results = (page) => page.locator('#found a').allTextContents();
const count = (page) => page.getByRole('status').textContent();

before(openBrowser);
after(async () => {
  await closeBrowser();
  rmSync(folder, { recursive: true });
});

test('the keyboard finds an entry and goes there', () =>
  withReference(flow.rules, {}, async (page) => {
    await page.keyboard.press('/');
    await page.keyboard.type('time step');
    const names = await results(page);
    assert.equal(names[0], 'Time Step');
    assert.match(await count(page), /^\d+ found.*\.$/);
    await page.keyboard.press('ArrowDown');
    assert.equal(await page.evaluate(() => document.activeElement.textContent), 'Time Step');
    await page.keyboard.press('ArrowDown');
    assert.equal(await page.evaluate(() => document.activeElement.textContent), names[1]);
    await page.keyboard.press('ArrowUp');
    await page.keyboard.press('Enter');
    await page.waitForURL(/#Case-Analysis-Time-Step$/);
  }));

test('Enter goes to the first result, and Escape clears the search', () =>
  withReference(flow.rules, {}, async (page) => {
    const input = page.getByRole('searchbox', { name: 'Find' });
    await input.fill('/case/domain/motion');
    await input.press('Enter');
    await page.waitForURL(/#Case-Domain-Motion/);
    await input.press('Escape');
    assert.equal(await input.inputValue(), '');
    assert.deepEqual(await results(page), []);
    await input.fill('no such thing');
    assert.equal(await count(page), 'Nothing found.');
  }));

test('a description is found when no name has the text', () =>
  withReference(flow.rules, {}, async (page) => {
    await page.getByRole('searchbox').fill('tells this case from others');
    assert.deepEqual(await results(page), ['Title']);
  }));

test('texts of the rules stay texts', () =>
  withReference(hostile, {}, async (page) => {
    const input = page.getByRole('searchbox');
    await input.fill('img');
    assert.deepEqual((await results(page)).sort(), ['/Case', '<img onerror=alert(1) src=x>']);
    await input.fill('constructor');
    assert.deepEqual(await results(page), ['constructor']);
    assert.equal(await page.locator('img').count(), 0);
  }));

for (const width of [1280, 400]) {
  for (const theme of ['light', 'dark']) {
    test(`axe finds nothing at ${width} pixels, ${theme}`, () =>
      withReference(flow.rules, { width, theme }, async (page) => {
        // axe measures sections that are not laid out as if they were on top of each other.
        await page.addStyleTag({ content: '.type { content-visibility: visible; }' });
        await assertAccessible(page, `reference, ${theme}, ${width} pixels`);
        await page.getByRole('searchbox').fill('step');
        await assertAccessible(page, `reference with results, ${theme}, ${width} pixels`);
      }));
  }
}
