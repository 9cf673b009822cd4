// From an empty case to a sound one, by mouse and by keyboard.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { after, before, test } from 'node:test';
import { closeBrowser, eventually, field, flow, form, hits, hold, openBrowser, program, shows, side, status, tab, title, tree, treeItem, valueAt, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

const empty = { ...flow, text: 'Case:\nEND # Case:\n', name: 'empty.tdf' };

/** The findings of `zev validate` about the saved file: none. */
function assertSound(server) {
  const options = { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] };
  const printed = execFileSync(program, ['validate', '--rules', server.rules, server.file], options);
  assert.equal(printed, '');
}

test(
  'by mouse: findings lead to fields, a choice shows what it would do, an object is added, and the file is saved',
  withPage(empty, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    await tab(page, 'Findings 2').click();
    const findings = side(page).getByRole('list').first();
    await findings.getByRole('button', { name: 'Domain:Domain 1 / Location' }).click();
    await shows(page, 'Domain 1');
    await field(page, 'Location').getByRole('textbox').fill('AIR');
    await field(page, 'Location').getByRole('textbox').press('Enter');
    await findings.getByRole('button', { name: /Boundary:Default \/ Location/ }).click();
    await shows(page, 'Default');
    await field(page, 'Location').getByRole('textbox').fill('DUCT');
    await tab(page, 'Findings').click();
    await side(page).getByText('Nothing found.').waitFor();

    // A choice shows its consequences before it is made, and the net effect afterwards.
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    const type = field(page, 'Analysis Type');
    await type.getByRole('radio', { name: 'Transient' }).hover();
    await type.getByText('Transient would do this').waitFor();
    await type.getByText(/Time Step/).first().waitFor();
    assert.equal(await type.getByRole('radio', { name: 'Steady' }).getAttribute('aria-checked'), 'true');
    await type.getByRole('radio', { name: 'Transient' }).click();
    await field(page, 'Total Time').waitFor();
    await tab(page, 'Effects').click();
    await side(page).getByRole('button', { name: /Total Time$/ }).first().click();
    await field(page, 'Total Time').locator(':focus').waitFor();
    await page.getByRole('button', { name: 'Undo', exact: true }).click();
    await field(page, 'Total Time').waitFor({ state: 'detached' });
    await page.getByRole('button', { name: 'Redo', exact: true }).click();
    await field(page, 'Total Time').waitFor();

    // A number with units; a slip is refused at the field, with the text kept.
    const time = field(page, 'Total Time').getByRole('textbox');
    await time.fill('1,5');
    await time.press('Enter');
    await field(page, 'Total Time').getByRole('button', { name: 'Use 1.5' }).click();
    await eventually(() => time.inputValue(), '1.5');

    // A new object, with a name of the user's choice.
    await treeItem(page, /^Domain 1/).click();
    await shows(page, 'Domain 1');
    await form(page).getByRole('button', { name: 'Add Boundary' }).click();
    await page.getByRole('dialog').getByRole('textbox', { name: 'Name' }).fill('inlet');
    await page.getByRole('dialog').getByRole('button', { name: 'Add', exact: true }).click();
    await shows(page, 'inlet');
    await field(page, 'Location').getByRole('textbox').fill('AIR IN');
    await field(page, 'Location').getByRole('textbox').press('Enter');
    await tab(page, 'Findings').click();
    await side(page).getByText('Nothing found.').waitFor();

    await page.getByRole('button', { name: 'Save', exact: true }).click();
    await page.getByText('not saved', { exact: true }).waitFor({ state: 'detached' });
    assert.match(server.saved(), /Location = AIR IN/);
    assertSound(server);
  }),
);

test(
  'by keyboard alone: the search leads to fields, arrows through the tree and choices, and Ctrl+S saves',
  withPage(empty, {}, async ({ server, page }) => {
    const { keyboard } = page;
    await shows(page, 'Case');
    const focused = () => page.locator(':focus');
    const go = async (text, above) => {
      await keyboard.press('/');
      await page.getByRole('searchbox').and(focused()).waitFor();
      await keyboard.type(text);
      await hits(page).getByRole('treeitem', { name: /^Location/ }).first().waitFor();
      // Enter would go to the best hit. The arrows go to any.
      await keyboard.press('ArrowDown');
      await hits(page).locator(':focus').waitFor();
      const names = (await hits(page).getByRole('treeitem').allInnerTexts()).map((one) => one.split('\n')[0]);
      const wanted = names.indexOf('Location', names.indexOf(above));
      const at = () => hits(page).getByRole('treeitem').evaluateAll((rows) => rows.indexOf(document.activeElement));
      await keyboard.press('Home');
      await eventually(at, 0);
      for (let i = 1; i <= wanted; i++) {
        await keyboard.press('ArrowDown');
        await eventually(at, i);
      }
      await keyboard.press('Enter');
    };
    await go('location', 'Domain 1');
    await shows(page, 'Domain 1');
    await field(page, 'Location').getByRole('textbox').and(focused()).waitFor();
    await keyboard.type('AIR');
    await keyboard.press('Enter');
    await field(page, 'Location').getByText('set by you').waitFor();
    // Leaving a field is enough, too.
    await keyboard.press('Tab');
    await go('location', 'Default');
    await shows(page, 'Default');
    await field(page, 'Location').getByRole('textbox').and(focused()).waitFor();
    await keyboard.type('DUCT');
    await keyboard.press('Tab');
    await field(page, 'Location').getByText('set by you').waitFor();

    // The tree is one stop of the Tab key, and F6 goes to it.
    await keyboard.press('/');
    await keyboard.press('Escape');
    await tree(page).waitFor();
    for (let i = 0; i < 5 && (await page.getByRole('treeitem').and(focused()).count()) === 0; i++) await keyboard.press('F6');
    await keyboard.press('Home');
    await treeItem(page, /^Case/).and(focused()).waitFor();
    await keyboard.press('ArrowDown');
    await treeItem(page, 'Analysis').and(focused()).waitFor();
    await keyboard.press('Enter');
    await shows(page, 'Analysis');
    await keyboard.press('F6');
    for (let i = 0; i < 20 && (await field(page, 'Analysis Type').locator(':focus').count()) === 0; i++) await keyboard.press('Tab');
    await keyboard.press('ArrowRight');
    await field(page, 'Analysis Type').getByRole('radio', { name: 'Transient' }).and(focused()).waitFor();
    await field(page, 'Analysis Type').getByText('Transient would do this').waitFor();
    await keyboard.press('Enter');
    await field(page, 'Total Time').waitFor();
    // "w" asks why, and the proof names the value that was set.
    await keyboard.press('w');
    await side(page).getByText(/Analysis Type/).first().waitFor();
    await keyboard.press('Control+z');
    await field(page, 'Total Time').waitFor({ state: 'detached' });
    await keyboard.press('Control+Shift+Z');
    await field(page, 'Total Time').waitFor();

    await keyboard.press('Control+s');
    await page.getByText('not saved', { exact: true }).waitFor({ state: 'detached' });
    assert.match(server.saved(), /Analysis Type = Transient/);
    assertSound(server);
  }),
);

test(
  'what is unavailable says why on demand, and how to get it',
  withPage(flow, {}, async ({ page }) => {
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    assert.equal(await field(page, 'Time Step').count(), 0);
    await form(page).getByRole('button', { name: /unavailable/ }).first().click();
    const row = field(page, 'Time Step');
    await row.getByRole('button', { name: 'Why Time Step' }).click();
    await side(page).getByText(/Analysis Type/).first().waitFor();
    await row.getByRole('button', { name: 'How to get Time Step' }).click();
    await side(page).getByText('Each of these was tried.').waitFor();
    await side(page).getByRole('button', { name: 'Do it' }).first().click();
    await field(page, 'Time Step').getByRole('textbox').waitFor();
  }),
);

test(
  'values that the rules withdraw wait, and come back',
  withPage(flow, {}, async ({ page }) => {
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    await field(page, 'Analysis Type').getByRole('radio', { name: 'Transient' }).click();
    await page.getByRole('group', { name: 'Filters' }).getByRole('button', { name: /Waiting [1-9]/ }).waitFor();
    await field(page, 'Length Scale').getByText('waiting', { exact: true }).waitFor();
    await field(page, 'Analysis Type').getByRole('radio', { name: 'Steady' }).click();
    const box = field(page, 'Length Scale').getByRole('textbox');
    await box.waitFor();
    assert.equal(await box.inputValue(), '0.02');
  }),
);

test(
  'objects are copied, renamed and removed; undo brings back what was removed',
  withPage(flow, {}, async ({ page }) => {
    const more = async (choice) => {
      await form(page).getByRole('button', { name: 'More about this object' }).click();
      await page.getByRole('menuitem', { name: choice }).click();
    };
    const name = async (text, button) => {
      await page.getByRole('dialog').getByRole('textbox').fill(text);
      await page.getByRole('dialog').getByRole('button', { name: button, exact: true }).click();
    };
    await treeItem(page, /^Air /).click();
    await shows(page, 'Air');
    await more('Copy');
    await name('Warm Air', 'Copy');
    await shows(page, 'Warm Air');
    await more('Rename');
    await name('Hot Air', 'Rename');
    await shows(page, 'Hot Air');
    await treeItem(page, /^Hot Air /).waitFor();
    await more('Remove');
    await treeItem(page, /^Hot Air /).waitFor({ state: 'detached' });
    await page.getByRole('button', { name: 'Undo', exact: true }).click();
    await treeItem(page, /^Hot Air /).waitFor();
    assert.ok((await status(page).innerText()).length > 0);
  }),
);

test(
  'a search shows the tree with the hits and the objects above them; Enter goes to the best, Escape back to the tree',
  withPage(flow, {}, async ({ page }) => {
    await shows(page, 'Case');
    const { keyboard } = page;
    await keyboard.press('/');
    await keyboard.type('settled');
    const names = async () => (await hits(page).getByRole('treeitem').allInnerTexts()).map((text) => text.split('\n')[0]);
    await eventually(async () => (await names()).join(' > '), 'Case > Output > drop of pressure > Settled Within > hot spot > Settled Within');
    const levels = await hits(page).getByRole('treeitem').evaluateAll((rows) => rows.map((row) => row.ariaLevel).join(''));
    assert.equal(levels, '123434');
    // A closed object says how many hits are below it.
    await keyboard.press('ArrowDown');
    await hits(page).getByRole('treeitem', { name: 'Settled Within' }).and(page.locator(':focus')).waitFor();
    await keyboard.press('ArrowLeft');
    await keyboard.press('ArrowLeft');
    await hits(page).getByRole('treeitem', { name: '1 hit below' }).waitFor();
    await keyboard.press('Escape');
    await tree(page).waitFor();
    await page.getByRole('searchbox').and(page.locator(':focus')).waitFor();
    await keyboard.type('settled within');
    await keyboard.press('Enter');
    await shows(page, 'drop of pressure');
    await field(page, 'Settled Within').locator(':focus').waitFor();
  }),
);

test(
  'a list has a box for each item; items are added and removed, and a comma divides one',
  withPage(flow, {}, async ({ server, page }) => {
    const { keyboard } = page;
    const location = () => valueAt(server, '/Case/Domain:sink', 'Location');
    await treeItem(page, /^sink/).click();
    await shows(page, 'sink');
    const row = field(page, 'Location');
    const first = row.getByRole('textbox', { name: 'Location, item 1 of 1' });
    await first.fill('FINS');
    await row.getByRole('button', { name: 'Item of Location' }).click();
    await row.getByRole('textbox', { name: 'Location, item 2 of 2' }).and(page.locator(':focus')).waitFor();
    await keyboard.type('BASE');
    await keyboard.press('Enter');
    await eventually(location, 'FINS, BASE');
    // A comma divides, and typing goes on behind it.
    await keyboard.type(',FOOT, TIP');
    await row.getByRole('textbox', { name: 'Location, item 4 of 4' }).and(page.locator(':focus')).waitFor();
    await keyboard.press('Enter');
    await eventually(location, 'FINS, BASE, FOOT, TIP');
    await row.getByRole('button', { name: 'Remove item 1 of Location' }).click();
    assert.equal(await location(), 'FINS, BASE, FOOT, TIP');
    await row.getByRole('textbox').first().press('Enter');
    await eventually(location, 'BASE, FOOT, TIP');
    await keyboard.press('Control+z');
    await eventually(location, 'FINS, BASE, FOOT, TIP');
  }),
);

test(
  'Ctrl+Z right after Enter takes back the edit that is on its way to the server',
  withPage(flow, {}, async ({ server, page }) => {
    const location = () => valueAt(server, '/Case/Domain:sink', 'Location');
    await treeItem(page, /^sink/).click();
    await shows(page, 'sink');
    const before = await location();
    const release = await hold(page, 'edit');
    const box = field(page, 'Location').getByRole('textbox').first();
    await box.fill('FINS');
    await box.press('Enter');
    await page.keyboard.press('Control+z');
    release();
    await tab(page, 'Effects').click();
    await side(page).getByText('Undone').first().waitFor();
    assert.equal(await location(), before);
    await eventually(() => box.inputValue(), before);
  }),
);

test(
  'a choice of several values says what each would do, before it is made and before it is taken back',
  withPage(flow, {}, async ({ page }) => {
    await treeItem(page, 'Output').click();
    await shows(page, 'Output');
    const row = field(page, 'Extra Variables');
    await row.getByRole('button', { name: /^Extra Variables/ }).click();
    await row.getByRole('option', { name: 'Yplus' }).hover();
    await row.getByText('Without Yplus this would happen').waitFor();
    await row.getByRole('option', { selected: false }).first().hover();
    await row.getByText(/^With .* this would happen$/).waitFor();
    await row.getByText('Nothing else would change.').waitFor();
  }),
);

test(
  'the items of a list of truth values are chosen, by mouse and by keyboard',
  withPage(flow, {}, async ({ server, page }) => {
    const { keyboard } = page;
    const directions = async () => (await valueAt(server, '/Case/Domain:channel', 'Periodic Directions')).replaceAll(' ', '');
    await treeItem(page, /^channel/).click();
    await shows(page, 'channel');
    const row = field(page, 'Periodic Directions');
    const item = (number, total) => row.getByRole('combobox', { name: `Periodic Directions, item ${number} of ${total}` });
    await item(1, 3).waitFor();
    assert.deepEqual(await item(2, 3).locator('option').allInnerTexts(), ['Choose', 'Yes', 'No']);
    await item(1, 3).selectOption('Yes');
    // Nothing is set before Enter, or before the row is left.
    assert.equal(await directions(), 'no,yes,no');
    await item(1, 3).press('Enter');
    await eventually(directions, 'yes,yes,no');
    await item(2, 3).focus();
    await keyboard.type('n');
    await keyboard.press('Enter');
    await eventually(directions, 'yes,no,no');
    await row.getByRole('button', { name: 'Remove item 1 of Periodic Directions' }).click();
    await item(1, 2).press('Enter');
    await eventually(directions, 'no,no');
    await row.getByRole('button', { name: 'Item of Periodic Directions' }).click();
    await item(3, 3).and(page.locator(':focus')).waitFor();
    await keyboard.type('y');
    await keyboard.press('Tab');
    await eventually(directions, 'no,no,yes');
  }),
);

test(
  'a value that is out of its bounds says so at once, and no longer when it is mended',
  withPage(flow, {}, async ({ server, page }) => {
    await treeItem(page, /^channel/).click();
    await shows(page, 'channel');
    const row = field(page, 'Reference Pressure');
    const box = row.getByRole('textbox');
    const said = row.getByText('The value is below its lower bound 0 [Pa].');
    const release = await hold(page, 'review');
    await box.fill('-5');
    await box.press('Enter');
    await said.waitFor();
    assert.equal(await box.getAttribute('aria-invalid'), 'true');
    release();
    // The review says the same, once.
    await tab(page, /^Findings [1-9]/).waitFor();
    assert.equal(await row.getByText(/below its lower bound/).count(), 1);
    await box.fill('5');
    await box.press('Enter');
    await said.waitFor({ state: 'detached' });
    assert.equal(await box.getAttribute('aria-invalid'), null);
    assert.equal(await valueAt(server, '/Case/Domain:channel', 'Reference Pressure'), '5 [Pa]');
  }),
);
