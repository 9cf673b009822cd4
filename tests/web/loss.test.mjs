// An edit that would delete what somebody gave: the page asks before, and does what it is told.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { assertAccessible, closeBrowser, eventually, field, flow, openBrowser, shows, side, tab, tree, treeItem, valueAt, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

const model = (server) => valueAt(server, '/Case/Material:Air', 'Viscosity Model');
const law = (page) => tree(page).getByRole('treeitem', { name: 'Sutherland Law' });
const question = (page) => page.getByRole('dialog', { name: 'Set Viscosity Model of Material:Air to Constant?' });

/** Shows the material whose law of viscosity was given with its constants. */
async function air(page) {
  await treeItem(page, /^Air /).click();
  await shows(page, 'Air');
  return field(page, 'Viscosity Model');
}

test(
  'by mouse: the question says what would be deleted; without a yes nothing changes, with a yes undo brings it back',
  withPage(flow, {}, async ({ server, page }) => {
    const row = await air(page);
    const choice = (name) => row.getByRole('radio', { name });
    await choice('Constant').click();
    await question(page).getByText('Nothing has changed yet. This would happen:').waitFor();
    await question(page).getByText('Sutherland Law').first().waitFor();
    await question(page).getByText('Sutherland Constant').first().waitFor();
    await assertAccessible(page, 'the question before a loss');
    assert.equal(await model(server), 'Sutherland');
    await question(page).getByRole('button', { name: 'Leave it as it is' }).click();
    await question(page).waitFor({ state: 'detached' });
    await row.getByRole('radio', { name: 'Sutherland', checked: true }).waitFor();
    assert.equal(await model(server), 'Sutherland');
    assert.equal((await server.document()).steps, 0);

    await choice('Constant').click();
    await question(page).getByRole('button', { name: 'Do it' }).click();
    await row.getByRole('radio', { name: 'Constant', checked: true }).waitFor();
    await eventually(() => model(server), 'Constant');
    await tab(page, 'Effects').click();
    await side(page).getByRole('button', { name: 'Undo this edit' }).click();
    await row.getByRole('radio', { name: 'Sutherland', checked: true }).waitFor();
    await eventually(() => valueAt(server, '/Case/Material:Air/Sutherland Law', 'Sutherland Constant'), '110.4 [K]');
  }),
);

test(
  'by keyboard: the question has the focus, Escape is a no, Enter on the button a yes, and the focus goes back',
  withPage(flow, {}, async ({ server, page }) => {
    const { keyboard } = page;
    const row = await air(page);
    const focused = page.locator(':focus');
    const choose = async () => {
      await row.getByRole('radio', { name: 'Constant' }).focus();
      await keyboard.press('Enter');
      await question(page).waitFor();
      await question(page).locator(':focus').waitFor();
    };
    await choose();
    // No key reaches the page behind the question.
    await keyboard.press('Control+z');
    await keyboard.press('Escape');
    await question(page).waitFor({ state: 'detached' });
    await row.getByRole('radio', { name: 'Constant' }).and(focused).waitFor();
    assert.equal(await model(server), 'Sutherland');

    await choose();
    for (let i = 0; i < 50 && !(await question(page).getByRole('button', { name: 'Do it' }).and(focused).count()); i++) {
      await keyboard.press('Tab');
    }
    await keyboard.press('Enter');
    await question(page).waitFor({ state: 'detached' });
    await eventually(() => model(server), 'Constant');
    await row.getByRole('radio', { name: 'Constant', checked: true }).waitFor();
    assert.equal((await server.document()).steps, 1);
  }),
);
