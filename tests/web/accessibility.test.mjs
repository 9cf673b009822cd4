// axe finds no error in any main state, light and dark, 1280 and 400 pixels wide.
import { after, before, test } from 'node:test';
import { assertAccessible, closeBrowser, flow, openBrowser, withPage } from './harness.mjs';
import { states } from './states.mjs';

before(openBrowser);
after(closeBrowser);

for (const { name, text, go } of states) {
  for (const width of [1280, 400]) {
    test(
      `${name} at ${width} pixels`,
      withPage({ ...flow, text }, { width }, async ({ server, page }) => {
        await go(page, server);
        for (const colorScheme of ['light', 'dark']) {
          await page.emulateMedia({ colorScheme });
          await assertAccessible(page, `${name}, ${colorScheme}, ${width} pixels`);
        }
      }),
    );
  }
}
