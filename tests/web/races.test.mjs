// A person is faster than the server. Requests are held back here, so a test acts before the answer on any machine.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { closeBrowser, eventually, field, flow, form, hold, openBrowser, shows, side, status, tab, treeItem, valueAt, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

const box = (page, name) => field(page, name).getByRole('textbox').first();
const valueOfTitle = (server) => valueAt(server, '/Case', 'Title');

/** An edit that another client makes. */
async function editElsewhere(server, ...edits) {
  const { document, revision } = await server.document();
  const { result } = await server.call('edit', { document, revision, edits, client: 'another' });
  assert.equal(result.applied, true);
}

/** Collects every text about another edit that the page ever shows. */
async function watchForOthers(page) {
  await page.evaluate(() => {
    window.saidByPage = [];
    new MutationObserver(() => {
      const told = document.querySelector('.elsewhere');
      if (told) window.saidByPage.push(told.textContent);
    }).observe(document.body, { subtree: true, childList: true, characterData: true });
  });
  return () => page.evaluate(() => window.saidByPage);
}

test(
  'of two choices that follow quickly the second counts',
  withPage(flow, {}, async ({ server, page }) => {
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    const type = field(page, 'Analysis Type');
    const release = await hold(page, 'edit');
    await type.getByRole('radio', { name: 'Transient' }).click();
    await type.getByRole('radio', { name: 'Transient', checked: true }).waitFor();
    await type.getByRole('radio', { name: 'Steady' }).click();
    await type.getByRole('radio', { name: 'Steady', checked: true }).waitFor();
    release();
    await eventually(async () => (await server.document()).revision, 2);
    assert.equal(await valueAt(server, '/Case/Analysis', 'Analysis Type'), 'Steady');
    await type.getByRole('radio', { name: 'Steady', checked: true }).waitFor();
  }),
);

test(
  'several values that are chosen quickly are all kept',
  withPage(flow, {}, async ({ server, page }) => {
    await treeItem(page, 'Output').click();
    await shows(page, 'Output');
    const row = field(page, 'Extra Variables');
    const before = await valueAt(server, '/Case/Output', 'Extra Variables');
    const release = await hold(page, 'edit');
    await row.getByRole('button', { name: /^Extra Variables/ }).click();
    const free = await row.getByRole('option', { selected: false }).allInnerTexts();
    assert.ok(free.length >= 2);
    for (const name of free.slice(0, 2)) await row.getByRole('option', { name, exact: true }).click();
    await row.getByRole('option', { name: free[1], exact: true, selected: true }).waitFor();
    release();
    const sorted = (value) => value.split(/, */).sort().join(', ');
    const wanted = sorted([before, ...free.slice(0, 2)].join(', '));
    await eventually(async () => sorted(await valueAt(server, '/Case/Output', 'Extra Variables')), wanted);
  }),
);

test(
  'what is typed while an edit is on its way is an edit of its own, and the page takes neither for another’s',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    const told = await watchForOthers(page);
    const release = await hold(page, 'edit');
    await box(page, 'Title').fill('first');
    await box(page, 'Title').press('Enter');
    await box(page, 'Title').fill('second');
    release();
    await eventually(() => valueOfTitle(server), 'first');
    await field(page, 'Title').getByText('set by you').waitFor();
    assert.equal(await box(page, 'Title').inputValue(), 'second');
    await box(page, 'Title').press('Enter');
    await eventually(() => valueOfTitle(server), 'second');
    await page.getByText('step 2').first().waitFor();
    // Three quick edits of one field, the last with the text of the first.
    for (const text of ['one', 'two', 'one']) {
      await box(page, 'Title').fill(text);
      await box(page, 'Title').press('Enter');
    }
    await eventually(async () => (await server.document()).revision, 5);
    await eventually(() => valueOfTitle(server), 'one');
    assert.equal(await box(page, 'Title').inputValue(), 'one');
    assert.deepEqual(await told(), []);
  }),
);

test(
  'Escape and leaving the field take nothing back that is on its way',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    const release = await hold(page, 'edit');
    await box(page, 'Title').fill('on its way');
    await box(page, 'Title').press('Enter');
    await box(page, 'Title').press('Escape');
    assert.equal(await box(page, 'Title').inputValue(), 'on its way');
    await box(page, 'Author').focus();
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    release();
    await eventually(() => valueOfTitle(server), 'on its way');
    assert.equal((await server.document()).steps, 1);
    await treeItem(page, /^Case/).click();
    await shows(page, 'Case');
    await eventually(() => box(page, 'Title').inputValue(), 'on its way');
  }),
);

test(
  'saving right after typing saves what was typed, and the focus stays in the field',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    const release = await hold(page, 'edit');
    await box(page, 'Title').fill('typed last');
    await page.keyboard.press('Control+s');
    await box(page, 'Title').and(page.locator(':focus')).waitFor();
    assert.doesNotMatch(server.saved(), /typed last/);
    release();
    await eventually(() => /Title = typed last/.test(server.saved()), true);
    await page.getByText('not saved', { exact: true }).waitFor({ state: 'detached' });
  }),
);

test(
  'saving names a text that was refused, also when another object is shown',
  withPage(flow, {}, async ({ page }) => {
    await shows(page, 'Case');
    await box(page, 'Maximum Speed').fill('1,5');
    await box(page, 'Maximum Speed').press('Enter');
    await field(page, 'Maximum Speed').getByRole('button', { name: 'Use 1.5' }).waitFor();
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    await page.keyboard.press('Control+s');
    await page.getByText('Saved, but not what is typed in Case / Maximum Speed: it is not in the model.').waitFor();
    await treeItem(page, /^Case/).click();
    await shows(page, 'Case');
    assert.equal(await box(page, 'Maximum Speed').inputValue(), '1,5');
  }),
);

test(
  'who goes on to another field while a parameter is added stays there',
  withPage(flow, {}, async ({ server, page }) => {
    await treeItem(page, /^sink/).click();
    await shows(page, 'sink');
    const before = await valueAt(server, '/Case/Domain:sink', 'Location');
    const release = await hold(page, 'edit');
    await field(page, 'Periodic Directions').getByRole('button', { name: 'Add Periodic Directions' }).click();
    await box(page, 'Location').fill('half a na');
    release();
    await field(page, 'Periodic Directions').getByRole('combobox').first().waitFor();
    await page.getByText('step 1').first().waitFor();
    await box(page, 'Location').and(page.locator(':focus')).waitFor();
    assert.equal(await box(page, 'Location').inputValue(), 'half a na');
    assert.equal(await valueAt(server, '/Case/Domain:sink', 'Location'), before);
  }),
);

test(
  'a unit that is chosen never stands beside a number of the old unit',
  withPage(flow, {}, async ({ server, page }) => {
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    const unit = field(page, 'Length Scale').getByRole('combobox');
    const [old, next] = await unit.locator('option').allInnerTexts();
    assert.equal(await unit.inputValue(), old);
    const release = await hold(page, 'convert');
    await unit.selectOption(next);
    assert.equal(await unit.inputValue(), old);
    assert.equal(await box(page, 'Length Scale').inputValue(), '0.02');
    // A number that is typed meanwhile is meant in the new unit.
    await box(page, 'Length Scale').fill('7');
    release();
    await eventually(() => unit.inputValue(), next);
    assert.equal(await box(page, 'Length Scale').inputValue(), '7');
    assert.equal((await server.document()).steps, 0);
  }),
);

test(
  'an edit of another page between an edit and its answer is shown, and both are made',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    const release = await hold(page, 'edit');
    await box(page, 'Title').fill('mine');
    await box(page, 'Title').press('Enter');
    await editElsewhere(server, { kind: 'add-object', path: '/Case/Material:Spare' });
    release();
    await treeItem(page, /^Spare /).waitFor();
    await eventually(() => valueOfTitle(server), 'mine');
    await tab(page, 'Effects').click();
    await side(page).getByText('by another page').first().waitFor();
    assert.equal((await server.document()).steps, 2);
  }),
);

test(
  'two pages that set the same field at once: the later one is told, and its text is kept',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    const release = await hold(page, 'edit');
    await box(page, 'Title').fill('mine');
    await box(page, 'Title').press('Enter');
    await editElsewhere(server, { kind: 'set-param', path: '/Case', name: 'Title', value: 'theirs' });
    release();
    await field(page, 'Title').getByText('Someone else has changed this meanwhile.').waitFor();
    assert.equal(await box(page, 'Title').inputValue(), 'mine');
    assert.equal(await valueOfTitle(server), 'theirs');
    await box(page, 'Title').press('Enter');
    await eventually(() => valueOfTitle(server), 'mine');
  }),
);

test(
  'an edit in an object that another page removes meanwhile is not lost silently',
  withPage(flow, {}, async ({ server, page }) => {
    await editElsewhere(server, { kind: 'add-object', path: '/Case/Material:Spare' });
    await treeItem(page, /^Spare /).click();
    await shows(page, 'Spare');
    const release = await hold(page, 'edit');
    const name = await form(page).getByRole('textbox').first().evaluate((one) => one.closest('[data-param]').dataset.param);
    await box(page, name).fill('1234');
    await box(page, name).press('Enter');
    await editElsewhere(server, { kind: 'remove-object', path: '/Case/Material:Spare' });
    release();
    await shows(page, 'Case');
    await status(page).getByText(`What you typed in Material:Spare / ${name} is not in the model.`).waitFor();
  }),
);
