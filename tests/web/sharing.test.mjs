// One document in two tabs, and a server that goes away with unsaved edits.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { closeBrowser, eventually, field, flow, form, openBrowser, shows, side, tab, treeItem, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

const box = (page, name) => field(page, name).getByRole('textbox');

test(
  'an edit in one tab shows in the other, and what is typed there is kept',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    const other = await page.context().newPage();
    await other.goto(server.url);
    await shows(other, 'Case');

    await box(other, 'Title').fill('half a ti');
    await box(page, 'Title').fill('Pump 7');
    await box(page, 'Title').press('Enter');
    await field(other, 'Title').getByText('Now Pump 7, by another edit.').waitFor();
    assert.equal(await box(other, 'Title').inputValue(), 'half a ti');
    await field(other, 'Title').getByRole('button', { name: 'Take it' }).click();
    await eventually(() => box(other, 'Title').inputValue(), 'Pump 7');
    await tab(other, 'Effects').click();
    await side(other).getByText('by another page').first().waitFor();

    // Undo is of the document, whoever made the edit.
    await other.getByRole('button', { name: 'Undo', exact: true }).click();
    await eventually(() => box(page, 'Title').inputValue(), 'Heat Sink');
    assert.equal((await server.document()).revision, 2);

    // What the other tab withdraws disappears here, too.
    await treeItem(other, 'Analysis').click();
    await shows(other, 'Analysis');
    await treeItem(page, 'Analysis').click();
    await shows(page, 'Analysis');
    await field(page, 'Analysis Type').getByRole('radio', { name: 'Transient' }).click();
    await field(other, 'Total Time').waitFor();
    await page.getByRole('button', { name: 'Save', exact: true }).click();
    await other.getByText('not saved', { exact: true }).waitFor({ state: 'detached' });
    assert.match(server.saved(), /Analysis Type = Transient/);
  }),
);

test(
  'a killed server: the page says so, keeps what is typed, and a new server brings the unsaved edits back',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    await box(page, 'Title').fill('Pump 7');
    await box(page, 'Title').press('Enter');
    await page.getByText('not saved', { exact: true }).waitFor();
    await box(page, 'Author').fill('half a na');
    await server.kill();
    await page.getByText('The server does not answer.').waitFor();
    assert.equal(await box(page, 'Author').inputValue(), 'half a na');
    assert.equal(await page.getByRole('button', { name: 'Save', exact: true }).isDisabled(), true);
    assert.doesNotMatch(server.saved(), /Pump 7/);

    await server.run();
    await page.getByRole('button', { name: 'Bring them back' }).click();
    await page.getByText('The server does not answer.').waitFor({ state: 'detached' });
    await eventually(() => box(page, 'Title').inputValue(), 'Pump 7');
    assert.equal(await box(page, 'Author').inputValue(), 'half a na');
    await page.getByRole('button', { name: 'Save', exact: true }).click();
    await page.getByText('not saved', { exact: true }).waitFor({ state: 'detached' });
    assert.match(server.saved(), /Title = Pump 7/);
  }),
);

test(
  'an edit during the outage is not lost: it is made when the server is back, once',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    await server.stop();
    await page.getByText('The server does not answer.').waitFor();
    await server.run();
    await page.getByText('The server does not answer.').waitFor({ state: 'detached' });
    await box(page, 'Title').fill('after the outage');
    await box(page, 'Title').press('Enter');
    await page.getByText('not saved', { exact: true }).waitFor();
    const { steps } = await server.document();
    assert.equal(steps, 1);
    assert.ok(await form(page).isVisible());
  }),
);

test(
  'a file that someone else has changed is not written over unasked',
  withPage(flow, {}, async ({ server, page }) => {
    await shows(page, 'Case');
    await box(page, 'Title').fill('mine');
    await box(page, 'Title').press('Enter');
    await page.getByText('not saved', { exact: true }).waitFor();
    writeFileSync(server.file, '/Case/Title = theirs\n');
    await page.keyboard.press('Control+s');
    const dialog = page.getByRole('dialog', { name: 'The file was changed by someone else' });
    await dialog.getByRole('button', { name: 'Do nothing now' }).click();
    assert.equal(server.saved(), '/Case/Title = theirs\n');
    await page.keyboard.press('Control+s');
    await dialog.getByRole('button', { name: 'Keep mine, write over the file' }).click();
    await page.getByText('not saved', { exact: true }).waitFor({ state: 'detached' });
    assert.match(server.saved(), /Title = mine/);
  }),
);
