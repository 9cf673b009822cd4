// The way in: the printed address, the cookie, and what a browser without the token sees.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { assertAccessible, closeBrowser, flow, openBrowser, openPage, Server, withPage } from './harness.mjs';

before(openBrowser);
after(closeBrowser);

test(
  'the printed address opens the editor, and its token is in no address afterwards',
  withPage(flow, {}, async ({ server, page }) => {
    await page.waitForURL(`http://127.0.0.1:${server.port}/`);
    await page.getByText('Analysis').first().waitFor();
    assert.equal(await page.evaluate(() => history.length), 2, 'the blank page and the editor');
    const [cookie] = await page.context().cookies();
    assert.equal(cookie.httpOnly, true);
    assert.equal(cookie.sameSite, 'Strict');
    await page.reload();
    await page.getByText('Analysis').first().waitFor();
  }),
);

test('an address with a wrong token explains itself', async (t) => {
  const server = await Server.start(flow);
  t.after(() => server.remove());
  const page = await openPage(t, { url: 'about:blank' });
  const silent = page.removeAllListeners('console');
  await silent.goto(`http://127.0.0.1:${server.port}/enter`);
  await page.getByText('Open the address that zev has printed').waitFor();
  await assertAccessible(page, 'the entry');
  await page.goto('about:blank');
  await page.goto(server.url.replace(/=.*/, '=wrong'));
  await page.getByText('This token is not valid any more.').waitFor();
});
