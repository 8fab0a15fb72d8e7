// The pages in a browser: what only a browser can tell. Run by script/browser-tests.

import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { after, afterEach, before, beforeEach, test as testOf } from "node:test";
import { chromium } from "playwright-core";

const bin = process.env.LUMENQUEST_BIN;
const pictures = process.env.LUMENQUEST_BROWSER_PICTURES;
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const data = mkdtempSync(join(tmpdir(), "lumenquest-browser-"));
const environment = { ...process.env, XDG_DATA_HOME: data, XDG_CONFIG_HOME: join(data, "none") };
const kPlan = "Milky Way <b>over</b> the lake";

/** A test that hangs is a failure. */
const test = (name, work) => testOf(name, { timeout: 120_000 }, work);

let browser;
let server;
let page;

/** A server with the standard home screen at an evening in July. */
async function serve(locale = "en_US") {
  const program = spawn(join(bin, "home_server"), ["2026-07-14T16:30:00Z", locale], {
    env: environment,
    stdio: ["pipe", "pipe", "inherit"],
  });
  // Else the end of a program that never began would be waited for.
  program.once("error", (error) => {
    throw error;
  });
  const lines = createInterface({ input: program.stdout })[Symbol.asyncIterator]();
  const url = (await lines.next()).value;
  return {
    url,
    at: (address) => new URL(address, url).href,
    async advance(seconds) {
      program.stdin.write(`advance ${seconds}\n`);
      assert.equal((await lines.next()).value, "advanced");
    },
    async write(text) {
      program.stdin.write(`file ${text}\n`);
      assert.equal((await lines.next()).value, "written");
    },
    async stop() {
      const ended = new Promise((resolve) => program.once("exit", resolve));
      program.stdin.end();
      await ended;
    },
  };
}

async function open(address, options = {}) {
  const context = await browser.newContext({ viewport: { width: 390, height: 844 }, ...options });
  const opened = await context.newPage();
  opened.problems = [];
  opened.on("pageerror", (error) => opened.problems.push(error.message));
  opened.on("console", (message) => {
    if (message.type() === "error") opened.problems.push(message.text());
  });
  opened.on("request", (request) => {
    if (!request.url().startsWith(server.url) && !request.url().startsWith("data:")) {
      opened.problems.push(`asks for ${request.url()}`);
    }
  });
  await opened.goto(server.at(address));
  return opened;
}

/** Polls from outside, as the pages' policy allows no scripts from elsewhere. */
async function until(holds) {
  for (let tries = 0; tries < 100; ++tries) {
    if (await holds()) return;
    await new Promise((later) => setTimeout(later, 100));
  }
  assert.fail(`never: ${holds}`);
}

const sourceOf = (opened, id) =>
  opened.locator(`[data-id="${id}"] img`).evaluate((one) => one.currentSrc);

/** As a page's own script changes the home screen. */
const change = (operation, body) => page.evaluate(([to, what]) => fetch(`/api/home/${to}`, {
  method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(what) }), [operation, body]);

const idsOf = (opened) =>
  opened.locator("[data-id]").evaluateAll((items) => items.map((item) => item.dataset.id));

before(async () => {
  execFileSync(join(bin, "lumenquest"), ["plans", "add", kPlan, "--date", "2026-08-12 23:30",
    "--latitude", "46.36", "--longitude", "14.09", "--time-zone", "Europe/Ljubljana"], { env: environment });
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM,
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
});

after(async () => {
  await browser?.close();
  rmSync(data, { recursive: true, force: true });
});

beforeEach(async () => {
  server = await serve();
  page = null;
});

afterEach(async () => {
  for (const context of browser.contexts()) await context.close();
  await server.stop();
  assert.deepEqual(page?.problems ?? [], []);
});

test("the home screen shows all widgets, and each leads to its page", async () => {
  page = await open("/");
  assert.deepEqual(await idsOf(page), ["sun", "moon", "milky-way", "plans", "lumenquest"]);
  for (const image of await page.locator(".face img").all()) {
    assert.ok(await image.evaluate((one) => one.complete && one.naturalWidth > 0));
    assert.notEqual(await image.getAttribute("alt"), "");
  }
  const overflow = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
  assert.ok(overflow <= 0, `${overflow} px wider than the screen`);

  await page.getByRole("link", { name: /Golden hour/ }).first().click();
  await page.waitForURL("**/sun?widget=sun");
  assert.equal(await page.getByRole("heading", { level: 1 }).textContent(), "Sun");
  await page.getByRole("link", { name: "Home screen" }).click();
  // In the large widget two things lead to two pages, and the keyboard finds both.
  const links = page.locator('[data-id="lumenquest"] svg:visible a:not([tabindex="-1"])');
  assert.equal(await links.count(), 2);
  await links.nth(1).focus();
  await page.keyboard.press("Enter");
  await page.waitForURL("**/moon?widget=lumenquest");
  assert.ok(await page.getByRole("img").first().evaluate((one) => one.naturalWidth > 0));
});

test("pictures follow the viewer's colour scheme, and a widget's own theme stays", async () => {
  page = await open("/", { colorScheme: "dark" });
  assert.match(await sourceOf(page, "sun"), /scheme=dark/);
  await page.emulateMedia({ colorScheme: "light" });
  await until(async () => (await sourceOf(page, "sun")).includes("scheme=light"));
  assert.ok(await page.locator(".in-light svg").isVisible());
  assert.ok(!(await page.locator(".in-dark svg").isVisible()));
});

test("a new entry is shown without a reload, the focus where it was", async () => {
  page = await open("/");
  await page.evaluate(() => (window.isSamePage = true));
  const sun = page.locator('[data-id="sun"]');
  await sun.locator("a").focus();
  const old = await sun.locator("img").getAttribute("alt");
  assert.match(old, /Daytime/);
  await server.advance(2.5 * 3600);
  await until(async () => (await sun.locator("img").getAttribute("alt")) !== old);
  assert.match(await sun.locator("img").getAttribute("alt"), /Golden hour\. /);
  assert.equal(await page.evaluate(() => window.isSamePage), true);
  assert.equal(
    await page.evaluate(() => document.activeElement.closest("[data-id]")?.dataset.id), "sun");
});

test("a widget of another size finds its new place on an open page", async () => {
  page = await open("/");
  const width = () => page.locator('[data-id="plans"]').evaluate((one) => one.offsetWidth);
  const small = await width();
  await change("set", { id: "plans", family: "medium" });
  await until(async () => (await width()) > 2 * small);
  assert.equal(await page.locator('.block:has([data-id="plans"]) > .widget').count(), 1);
});

test("many widgets on a wide window stand in three columns under the heading", async () => {
  page = await open("/", { viewport: { width: 1280, height: 900 } });
  for (const kind of ["SunWidget", "MoonWidget", "SunWidget", "MoonWidget"]) {
    await change("add", { kind, family: "medium" });
  }
  await until(async () => (await idsOf(page)).length === 9);
  const middle = async (selector) => {
    const box = await page.locator(selector).boundingBox();
    return box.y + box.height / 2;
  };
  assert.ok(Math.abs((await middle(".edit")) - (await middle("h1"))) < 4, "the button is beside the title");
  const ends = new Map();
  for (const widget of await page.locator("[data-id]").all()) {
    const { x, y, width, height } = await widget.boundingBox();
    const column = Math.floor((x + width / 2) / (1280 / 3));
    ends.set(column, Math.max(ends.get(column) ?? 0, y + height));
  }
  const heights = [...ends.values()];
  assert.equal(heights.length, 3);
  assert.ok(Math.max(...heights) - Math.min(...heights) < 300, `columns end at ${heights}`);
});

test("widgets are added, arranged, themed and removed with the keyboard alone", async () => {
  page = await open("/edit");
  const home = await open("/");
  const press = async (name, key = "Enter") => {
    await page.getByRole("button", { name }).focus();
    await page.keyboard.press(key);
  };
  const said = (text) => page.getByRole("status").filter({ hasText: text }).waitFor();
  await press("Add Moon, Medium");
  await said("Moon added");
  assert.equal(await page.locator("#placed > li").count(), 6);
  // The focus goes to the new one, to what may be wrong about it.
  assert.equal(
    await page.evaluate(() => document.activeElement.closest("[data-id]").dataset.id), "moon-2");
  assert.equal(await page.evaluate(() => document.activeElement.dataset.action), "place");
  await press("Move Moon, number 6 up", " ");
  await said("Moon is now number 5");
  assert.equal(await page.evaluate(() => document.activeElement.dataset.action), "up");

  const theme = page.getByRole("combobox", { name: "Theme of Sun" });
  await theme.selectOption("light");
  await said("Saved");
  await until(async () => (await sourceOf(home, "sun")).includes("scheme=light"));

  await press("Remove Moon, number 2");
  await said("Moon removed");
  assert.equal(await page.evaluate(() => document.activeElement.textContent), "Undo");
  await until(async () => !(await idsOf(home)).includes("moon"));
  await page.keyboard.press("Enter");
  await page.locator('[data-id="moon"]').waitFor();
  assert.deepEqual(await idsOf(page), ["sun", "moon", "milky-way", "lumenquest", "moon-2", "plans"]);
  assert.deepEqual(home.problems, []);
});

test("a widget is dragged by its grip", async () => {
  page = await open("/edit", { viewport: { width: 1280, height: 900 } });
  const grip = await page.locator('[data-id="sun"] .grip').boundingBox();
  const third = await page.locator('[data-id="milky-way"]').boundingBox();
  await page.mouse.move(grip.x + 10, grip.y + 20);
  await page.mouse.down();
  await page.mouse.move(grip.x + 10, third.y + third.height - 10, { steps: 10 });
  await page.mouse.up();
  await page.getByRole("status").filter({ hasText: "Sun is now number 3" }).waitFor();
  await page.reload();
  assert.deepEqual(await idsOf(page), ["moon", "milky-way", "sun", "lumenquest", "plans"]);
});

test("a place is found as one types", async () => {
  page = await open("/edit");
  await page.getByRole("button", { name: /^Place of Moon/ }).click();
  const search = page.getByRole("combobox", { name: "Search for a place" });
  await search.pressSequentially("reykja");
  await page.getByRole("option", { name: /Reykjav/ }).first().waitFor();
  const chosen = page.locator('[role="option"][aria-selected="true"]');
  assert.match(await chosen.textContent(), /Reykjav/);
  await page.keyboard.press("ArrowUp");
  assert.equal(await chosen.textContent(), "My location");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("Enter");
  await page.getByRole("button", { name: /Place of Moon: Reykjav/ }).waitFor();
  assert.equal(await page.evaluate(() => document.activeElement.dataset.action), "place");
  await page.goto(server.at("/moon?widget=moon"));
  await page.getByText("Atlantic/Reykjavik").waitFor();

  await page.goto(server.at("/edit"));
  await page.getByRole("button", { name: /^Place of Moon/ }).click();
  // Places of one name are told apart, to those who hear them too.
  await search.fill("springfield");
  await page.getByRole("option", { name: "Springfield, United States Ohio" }).waitFor();
  const named = await page.locator("#places-list [role=option]").allInnerTexts();
  assert.equal(new Set(named).size, named.length);
  await search.fill("qqqqqq");
  await page.getByText("No place found").waitFor();
  await page.keyboard.press("Escape");
  assert.ok(!(await page.getByRole("dialog").isVisible()));
});

test("Enter right after the text takes what the text finds, and no earlier finding", async () => {
  page = await open("/edit");
  await page.getByRole("button", { name: /^Place of Moon/ }).click();
  const search = page.getByRole("combobox", { name: "Search for a place" });
  await search.fill("helsinki");
  await page.getByRole("option", { name: /Helsinki/ }).first().waitFor();
  await search.fill("reykjavik");
  await search.press("Enter");
  await page.getByRole("button", { name: /Place of Moon: Reykjav/ }).waitFor();

  await page.getByRole("button", { name: /^Place of Moon/ }).click();
  await search.fill("qqqqqq");
  await search.press("Enter");
  await page.getByText("No place found").waitFor();
  await search.press("Enter");
  assert.ok(await page.getByRole("dialog").isVisible(), "nothing found is nothing chosen");
  assert.equal(await search.getAttribute("aria-activedescendant"), null);
  // The Enter that ends a word of an input method is none of ours.
  await search.fill("oslo");
  await page.getByRole("option", { name: /Oslo/ }).first().waitFor();
  await search.evaluate((field) => field.dispatchEvent(
    new KeyboardEvent("keydown", { key: "Enter", isComposing: true, bubbles: true })));
  assert.ok(await page.getByRole("dialog").isVisible());
});

test("the edit page shows new entries, and says that there are no widgets left", async () => {
  page = await open("/edit");
  const thumbnail = page.locator('[data-id="sun"] img');
  const old = await thumbnail.getAttribute("src");
  const theme = page.getByRole("combobox", { name: "Theme of Sun" });
  await theme.focus();
  await theme.evaluate((select) => (select.isSame = true));
  await server.advance(2.5 * 3600);
  await until(async () => (await thumbnail.getAttribute("src")) !== old);
  assert.ok(await theme.evaluate((select) => select.isSame && select === document.activeElement));

  for (let count = 5; count > 0; --count) {
    await page.getByRole("button", { name: /^Remove / }).first().click();
    await until(async () => (await idsOf(page)).length === count - 1);
  }
  await page.getByText("There are no widgets on the home screen.").waitFor();
});

test("a file that is damaged meanwhile is spoken of until it is mended", async () => {
  page = await open("/edit");
  const alert = page.getByRole("alert");
  assert.equal(await alert.textContent(), "");
  await server.write("{");
  await page.evaluate(() => document.dispatchEvent(new Event("visibilitychange")));
  await until(async () => (await alert.textContent()) !== "");
  assert.equal((await idsOf(page)).length, 5);
  await server.write('{"widgets":[{"kind":"SunWidget"}]}');
  await until(async () => (await alert.textContent()) === "");
});

test("a new plan is shown without a reload", async () => {
  page = await open("/plans");
  assert.equal(await page.getByRole("link", { name: /Moonrise/ }).count(), 0);
  execFileSync(join(bin, "lumenquest"), ["plans", "add", "Moonrise over the dunes", "--date",
    "2026-09-01 20:00", "--latitude", "46.36", "--longitude", "14.09"], { env: environment });
  await page.evaluate(() => document.dispatchEvent(new Event("visibilitychange")));
  await page.getByRole("link", { name: /Moonrise/ }).waitFor();
  assert.ok(Number(await page.locator("main").getAttribute("data-refresh")) <= 60);
});

test("an open page of the Moon shows the Moon of another day", async () => {
  page = await open("/moon");
  const pixels = () => page.getByRole("img").first().evaluate((image) => {
    const canvas = Object.assign(document.createElement("canvas"), { width: 180, height: 180 });
    canvas.getContext("2d").drawImage(image, 0, 0, 180, 180);
    return canvas.toDataURL();
  });
  const old = await pixels();
  await server.advance(6 * 86400);
  await page.evaluate(() => document.dispatchEvent(new Event("visibilitychange")));
  await page.getByText("July 20").first().waitFor();
  assert.notEqual(await pixels(), old);
});

test("an error is said, and the list shows what stands", async () => {
  page = await open("/edit");
  // At one stroke: the list is drawn anew when the stream of events opens.
  await page.locator('[data-id="sun"]').evaluate((item) => {
    item.dataset.id = "gone";
    item.querySelector('[aria-label="Move Sun, number 1 down"]').click();
  });
  await page.getByRole("alert").filter({ hasText: "gone" }).waitFor();
  assert.equal((await idsOf(page))[0], "sun");
  // The browser itself notes the refusal, in its own time.
  await until(async () => page.problems.some((problem) => problem.includes("400")));
  page.problems = page.problems.filter((problem) => !problem.includes("400"));
});

test("everything can be read without scripts", async () => {
  page = await open("/", { javaScriptEnabled: false });
  assert.equal(await page.locator("[data-id]").count(), 5);
  await page.locator('[data-id="plans"] a').click();
  await page.getByRole("link", { name: /Milky Way/ }).click();
  assert.equal(await page.getByRole("heading", { level: 1 }).textContent(), kPlan);
  assert.equal(await page.title(), kPlan);
  await page.getByText("Europe/Ljubljana").waitFor();
  await page.goto(server.at("/sun?widget=sun"));
  assert.equal(await page.getByRole("row").count(), 12);
});

// The last is refused before the site is asked.
const kPages = ["/", "/edit", "/sun?widget=sun", "/moon?widget=moon", "/plans", "/nothing", "/%zz"];

for (const colorScheme of ["dark", "light"]) {
  test(`no findings of axe, and no page is too wide, in the ${colorScheme} scheme`, async () => {
    for (const width of [320, 390, 768, 1280]) {
      const opened = await open("/", { colorScheme, bypassCSP: true, viewport: { width, height: 844 } });
      for (const address of kPages) {
        await opened.goto(server.at(address));
        await opened.evaluate(axe);
        const { violations } = await opened.evaluate(() => globalThis.axe.run());
        assert.deepEqual(violations.map((one) => [one.id, one.nodes[0].html]), [], `${address} at ${width}`);
        const overflow = await opened.evaluate(() => document.documentElement.scrollWidth - innerWidth);
        assert.ok(overflow <= 0, `${address} at ${width} is ${overflow} px too wide`);
        if (pictures) {
          const name = address.replace(/\?.*/, "").replaceAll(/[/%]/g, "") || "home";
          await opened.screenshot({ path: join(pictures, `${name}-${width}-${colorScheme}.png`), fullPage: true });
        }
      }
      await opened.context().close();
    }
  });
}

test("what a finger touches is large enough", async () => {
  page = await open("/edit", { hasTouch: true });
  for (const control of await page.locator("button:visible, select:visible, a:visible").all()) {
    const box = await control.boundingBox();
    assert.ok(box.width >= 44 && box.height >= 44,
      `${await control.evaluate((one) => one.outerHTML.slice(0, 80))} is ${box.width} x ${box.height}`);
  }
});

test("Hebrew runs from right to left", async () => {
  await server.stop();
  server = await serve("he");
  page = await open("/sun?widget=sun");
  assert.equal(await page.locator("html").getAttribute("dir"), "rtl");
  assert.equal(await page.locator("html").getAttribute("lang"), "he");
  // The day begins on the right.
  const hours = page.locator(".band text");
  const midnight = await hours.nth(2).boundingBox();
  const evening = await hours.last().boundingBox();
  assert.ok(midnight.x > evening.x);
});
