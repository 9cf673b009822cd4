// A case with more than 84,000 parameters, and an object with 20,000. Only what is on the screen may be in the page.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { closeBrowser, eventually, field, form, hits, openBrowser, shows, source, treeItem, withPage } from './harness.mjs';

let folder;
before(async () => {
  folder = mkdtempSync(join(tmpdir(), 'web-rules-'));
  await openBrowser();
});
after(async () => {
  rmSync(folder, { recursive: true });
  await closeBrowser();
});

/** The case of the benchmarks: each domain has turbulence, heat and five boundaries. */
function largeCase(domains) {
  const lines = ['Flow Regime = Turbulent', 'Time Dependence = Transient', 'Energy Equation = true'].map((line) => `/Case/${line}`);
  const kinds = ['Inlet', 'Outlet', 'Wall', 'Inlet', 'Outlet'];
  const ofKind = {
    Inlet: ['Velocity = 5', 'Turbulence Intensity = 0.1', 'Temperature = 300', 'Supersonic = false'],
    Outlet: ['Pressure = 10', 'Supersonic = false'],
    Wall: ['Wall Model = NoSlip', 'Roughness = 0.5', 'Temperature = 300'],
  };
  for (let d = 0; d < domains; d++) {
    const at = `/Case/Domain:d${d}`;
    const values = ['Material = Water', 'Reference Pressure = 101325', 'Motion = Rotating', 'Angular Velocity = 10', 'Time Step = 0.1', 'Buoyant = true', 'Gravity = 9.81', 'Reference Temperature = 300', `Notes = note for d${d}`, `Label = L${d}`];
    for (const value of values) lines.push(`${at}/${value}`);
    lines.push(`${at}/Turbulence/Model = SST`, `${at}/Turbulence/Intensity = 0.05`, `${at}/Heat/Option = Total`, `${at}/Heat/Viscous Work = true`);
    kinds.forEach((kind, b) => {
      lines.push(`${at}/Boundary:b${b}/Kind = ${kind}`);
      for (const value of ofKind[kind]) lines.push(`${at}/Boundary:b${b}/${value}`);
    });
  }
  return { rules: join(source, 'benchmarks/case.rules.yaml'), text: `${lines.join('\n')}\n`, parameters: lines.length };
}

const elements = (page) => page.evaluate(() => document.querySelectorAll('*').length);

/** Milliseconds from a key to the first frame that shows a text, and the methods that were called for it together. */
async function keyToFrame(page, key, shown) {
  const calls = [];
  const listen = (request) => {
    if (!request.url().endsWith('/rpc')) return;
    const methods = [JSON.parse(request.postData())].flat().map(({ method }) => method);
    // A review of the edit before can fall between.
    if (methods.some((method) => ['edit', 'form', 'look', 'lookParam', 'outline'].includes(method))) calls.push(methods.join(' '));
  };
  page.on('request', listen);
  await page.evaluate((text) => {
    window.frameTime = new Promise((resolve) => {
      addEventListener('keydown', (event) => {
        const pressed = event.timeStamp;
        const look = () => {
          if (document.body.innerText.includes(text)) resolve(performance.now() - pressed);
          else requestAnimationFrame(look);
        };
        requestAnimationFrame(look);
      }, { once: true, capture: true });
    });
  }, shown);
  await page.keyboard.press(key);
  const time = await page.evaluate(() => window.frameTime);
  page.off('request', listen);
  return { time, calls };
}

const large = largeCase(2500);

test(
  `a case with ${large.parameters} parameters renders what is on the screen and nothing else`,
  withPage(large, {}, async ({ t, server, page }) => {
    assert.ok(large.parameters >= 84_000, String(large.parameters));
    await shows(page, 'Case');
    await treeItem(page, /^Domain 2,500/).waitFor();
    const few = 2000;
    assert.ok((await elements(page)) < few);
    assert.ok((await page.getByRole('treeitem').count()) < 100);

    // To the last domain and back by keyboard. Assistive technology hears how many there are.
    await treeItem(page, /^Domain 2,500/).click();
    await treeItem(page, /^d0$/).waitFor();
    await page.keyboard.press('End');
    const last = page.locator('[role=treeitem][aria-posinset="2500"][aria-setsize="2500"]');
    await last.getByText(/^d\d+$/).waitFor();
    await last.and(page.locator(':focus')).waitFor();
    assert.ok((await page.getByRole('treeitem').count()) < 100);
    await page.keyboard.press('Home');

    await page.getByRole('searchbox').fill('d1234');
    await hits(page).getByRole('treeitem', { name: /d1234/ }).last().click();
    await shows(page, 'd1234');
    const notes = field(page, 'Notes').getByRole('textbox');
    const times = [];
    for (let i = 0; i < 5; i++) {
      await notes.fill(`edit number ${i}`);
      const before = (await server.document()).revision;
      times.push(await keyToFrame(page, 'Enter', `step ${i + 1}`));
      await eventually(async () => (await server.document()).revision > before, true);
    }
    t.diagnostic(`from Enter to the frame with the confirmed value: ${times.map(({ time }) => `${Math.round(time)} ms`).join(', ')}`);
    // The edit and the form after it are one request.
    for (const { calls } of times) assert.deepEqual(calls, ['edit form']);
    assert.ok((await elements(page)) < few);
  }),
);

test('an object with 20,000 parameters renders the rows on the screen, and keeps what is typed in one that left it', async (t) => {
  const count = 20_000;
  const rules = join(folder, 'flat.rules.yaml');
  const name = (i) => `Option ${String(i).padStart(5, '0')}`;
  const entries = Array.from({ length: count }, (_, i) => `      ${name(i)}: {Parameter Type: String, Required: Yes, Default Value: "v${i}"}`);
  writeFileSync(rules, `Rule Database: 1\nPertinent Roots: [System]\nObjects:\n  /System:\n    Parameters:\n${entries.join('\n')}\n`);
  await withPage({ rules, text: 'System:\nEND # System:\n' }, {}, async ({ page }) => {
    await shows(page, 'System');
    const first = field(page, name(0)).getByRole('textbox');
    await first.waitFor();
    const isWindowed = async () => (await form(page).getByRole('group').count()) < 100;
    await eventually(isWindowed, true);
    await first.fill('half a val');
    await page.getByRole('searchbox').fill(name(19_990));
    await hits(page).getByRole('treeitem', { name: name(19_990) }).last().click();
    await field(page, name(19_990)).getByRole('textbox').and(page.locator(':focus')).waitFor();
    assert.ok(await isWindowed());
    await page.keyboard.type('typed');
    await page.keyboard.press('Enter');
    await field(page, name(19_990)).getByText('set by you').waitFor();
    await page.getByRole('searchbox').fill(name(0));
    await hits(page).getByRole('treeitem', { name: name(0) }).last().click();
    await eventually(() => first.inputValue(), 'half a val');
  })(t);
});
