// The way in: the printed address, the cookie, and what a browser without the token sees.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { assertAccessible, closeBrowser, flow, openBrowser, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

test(
  'the printed address opens the editor, and its token is in no address afterwards',
  withPage(flow, {}, async ({ page }) => {
    await page.getByText('Analysis', { exact: true }).first().waitFor();
    assert.equal(new URL(page.url()).pathname, '/');
    assert.doesNotMatch(page.url(), /token/);
    const [cookie] = await page.context().cookies();
    assert.equal(cookie.httpOnly, true);
    assert.equal(cookie.sameSite, 'Strict');
    await page.reload();
    await page.getByText('Analysis', { exact: true }).first().waitFor();
  }),
);

test(
  'an address without a token or with a wrong one explains itself',
  withPage(flow, {}, async ({ server, page }) => {
    // The way in goes on to the editor, which would interrupt the next address.
    await page.waitForURL(`http://127.0.0.1:${server.port}/`);
    await page.goto('about:blank');
    await page.context().clearCookies();
    await page.goto(`http://127.0.0.1:${server.port}/enter`);
    await page.getByText('Open the address that zev has printed').waitFor();
    await assertAccessible(page, 'the entry');
    await page.goto('about:blank');
    await page.goto(server.url.replace(/=.*/, '=wrong'));
    await page.getByText('This token is not valid any more.').waitFor();
    assert.ok(page.wrong.length > 0 && page.wrong.every((message) => message.includes('401')), page.wrong.join('\n'));
    page.wrong = [];
  }),
);
