// The pictures of README.md and docs/operators.md, taken on the way through the tests where PICTURES names a folder.
import path from "node:path";

/** A picture of the page, or of a part of it. */
export async function takePicture(page, name, part = "body") {
  if (process.env.PICTURES !== undefined) {
    await page.locator(".react-flow__controls-fitview").evaluate((button) => button.click()); // panels differ in height
    await page.waitForTimeout(400); // for what moves on the page
    await page.locator(part).screenshot({ path: path.join(process.env.PICTURES, `${name}.png`) });
  }
}
