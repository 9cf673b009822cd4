// Names and values belong to users. Whatever they are, the page shows them as text, and none of them acts.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { closeBrowser, eventually, field, flow, form, hits, openBrowser, shows, side, tab, tree, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

const markup = '<img src=x onerror="document.title=\'acted\'"><script>document.title="acted"</script>';
const rightToLeft = '\u202Etxet gnorw\u2066';

test(
  'markup in names and values is text everywhere: tree, form, effects, changes and search',
  withPage({ ...flow, text: `Case:\n  Title = ${markup}\n  Material: <b>bold\n    Phase = Gas\n  END # Material:<b>bold\nEND # Case:\n`, name: '<i>x<i>.tdf' }, {}, async ({ page }) => {
    await shows(page, 'Case');
    assert.equal(await field(page, 'Title').getByRole('textbox').inputValue(), markup);
    await tree(page).getByText('<b>bold').first().click();
    await shows(page, '<b>bold');
    await page.getByRole('searchbox').fill('<b>');
    await page.getByRole('navigation', { name: 'Objects' }).getByText('<b>').first().waitFor();
    await page.getByRole('searchbox').fill(markup);
    await page.getByText('Nothing found.').first().waitFor();
    await page.getByRole('searchbox').fill('');
    await tree(page).getByText('Case').first().click();
    await shows(page, 'Case');
    await field(page, 'Title').getByRole('textbox').fill(`${markup} again`);
    await field(page, 'Title').getByRole('textbox').press('Enter');
    await tab(page, 'Effects').click();
    await side(page).getByText(/<img src=x/).first().waitFor();
    await tab(page, 'Changes').click();
    await side(page).getByText(/<img src=x/).first().waitFor();
    assert.equal(await page.evaluate(() => document.querySelectorAll('img, main b, main script, body > script').length), 0);
    assert.notEqual(await page.title(), 'acted');
  }),
);

test(
  'bidirectional marks do not reach beyond the value that has them',
  withPage({ ...flow, text: `Case:\n  Title = ${rightToLeft}\n  Author = ${rightToLeft}\n  Material: ${rightToLeft}\n    Phase = Gas\n  END # Material:${rightToLeft}\nEND # Case:\n` }, {}, async ({ page }) => {
    await shows(page, 'Case');
    await tree(page).getByText('⟨202E⟩txet gnorw⟨2066⟩').waitFor();
    await page.getByRole('searchbox').fill('gnorw');
    await hits(page).getByText('⟨202E⟩txet gnorw⟨2066⟩').waitFor();
    await page.getByRole('searchbox').fill('');
    await tree(page).waitFor();
    await field(page, 'Author').getByRole('textbox').fill('someone');
    await field(page, 'Author').getByRole('textbox').press('Enter');
    await tab(page, 'Changes').click();
    const change = side(page).getByRole('listitem').filter({ hasText: 'Author' });
    await change.waitFor();
    // The marks are shown as what they are, and an element would keep them to itself.
    assert.match(await change.innerText(), /⟨202E⟩txet gnorw⟨2066⟩ → someone/);
    const isolation = await change.locator('span').first().evaluate((one) => getComputedStyle(one).unicodeBidi);
    assert.equal(isolation, 'isolate');
  }),
);

test(
  'a value of a megabyte and a name of 300 letters leave the page usable',
  withPage({ ...flow, text: `Case:\n  Title = ${'long '.repeat(200_000)}\n  Material: ${'n'.repeat(300)}\n    Phase = Gas\n  END # Material:${'n'.repeat(300)}\nEND # Case:\n` }, { width: 400 }, async ({ page }) => {
    await shows(page, 'Case');
    const box = field(page, 'Title').getByRole('textbox');
    await box.waitFor();
    assert.ok((await box.inputValue()).length < 10_000);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), 'the page is not wider than the screen');
    await field(page, 'Title').getByRole('button', { name: 'Edit all 999,999 characters' }).click();
    await eventually(async () => (await box.inputValue()).length, 999_999);
    await box.fill('short');
    await box.press('Enter');
    await field(page, 'Title').getByText('set by you').waitFor();
    assert.equal(await box.inputValue(), 'short');
    assert.ok(await form(page).isVisible());
  }),
);
