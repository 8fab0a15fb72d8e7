// The pages in a browser: what only a browser can tell. Run by script/browser-tests.

import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";
import { after, afterEach, before, beforeEach, test as testOf } from "node:test";
import { chromium } from "playwright-core";

const bin = process.env.LUMENQUEST_BIN;
const pictures = process.env.LUMENQUEST_BROWSER_PICTURES;
const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const folders = mkdtempSync(join(tmpdir(), "lumenquest-browser-"));
const kPlan = "Milky Way <b>over</b> the lake";
const kEvening = "2026-07-14T16:30:00Z";

/** A test that hangs is a failure. */
const test = (name, work) => testOf(name, { timeout: 120_000 }, work);

let browser;
let server;
let page;

/** `lumenquest home serve` in Bled, for a user who has one plan and the standard home screen. */
async function serve(locale = "en_US") {
  const home = mkdtempSync(join(folders, "user-"));
  const env = { ...process.env, XDG_DATA_HOME: join(home, "data"), XDG_CONFIG_HOME: join(home, "config"),
    XDG_CACHE_HOME: join(home, "cache") };
  const command = (...words) => execFileSync(join(bin, "lumenquest"), words, { env });
  const plan = (name, date) => command("plans", "add", name, "--date", date, "--latitude", "46.36",
    "--longitude", "14.09", "--time-zone", "Europe/Ljubljana");
  plan(kPlan, "2026-08-12 23:30");
  let program;
  const start = async (listen, at) => {
    program = spawn(join(bin, "lumenquest"), ["home", "serve", "--listen", listen, "--at", at,
      "--here", "46.36,14.09", "--locale", locale], { env, stdio: ["ignore", "pipe", "inherit"] });
    // Else the end of a program that never began would be waited for.
    program.once("error", (error) => {
      throw error;
    });
    for await (const line of createInterface({ input: program.stdout })) return line.match(/http:\S+\//)[0];
    throw new Error("the server ended");
  };
  const stop = () => new Promise((resolve) => {
    program.once("exit", resolve);
    program.kill();
  });
  const url = await start("127.0.0.1:0", kEvening);
  return {
    url,
    at: (address) => new URL(address, url).href,
    plan,
    stop,
    /** Goes on at another instant, where open pages find it again. */
    async goOn(at) {
      await stop();
      await start(new URL(url).host, at);
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

const idsOf = (opened) =>
  opened.locator("[data-id]").evaluateAll((items) => items.map((item) => item.dataset.id));

before(async () => {
  browser = await chromium.launch({
    executablePath: process.env.CHROMIUM,
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
});

after(async () => {
  await browser?.close();
  rmSync(folders, { recursive: true, force: true });
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
  const plans = page.locator('[data-id="plans"]');
  await plans.locator("a").focus();
  assert.match(await plans.locator("img").getAttribute("alt"), /Milky Way/);
  server.plan("Moonrise", "2026-07-20 20:00");
  await until(async () => /Moonrise/.test(await plans.locator("img").getAttribute("alt")));
  assert.equal(await page.evaluate(() => window.isSamePage), true);
  assert.equal(
    await page.evaluate(() => document.activeElement.closest("[data-id]")?.dataset.id), "plans");
});

test("widgets are added, arranged, themed and removed with the keyboard alone", async () => {
  page = await open("/edit");
  const home = await open("/");
  const tabTo = async (name, key = "Tab") => {
    const focused = () => page.evaluate(() => document.activeElement.getAttribute("aria-label"));
    for (let stops = 0; (await focused()) !== name; ++stops) {
      assert.ok(stops < 100, `${key} never comes to ${name}`);
      await page.keyboard.press(key);
    }
  };
  const said = (text) => page.getByRole("status").filter({ hasText: text }).waitFor();
  await tabTo("Add Moon, Medium");
  await page.keyboard.press("Enter");
  await said("Moon added");
  assert.equal(await page.locator("#placed > li").count(), 6);
  // The focus goes to the new one, to what may be wrong about it.
  assert.equal(
    await page.evaluate(() => document.activeElement.closest("[data-id]").dataset.id), "moon-2");
  assert.equal(await page.evaluate(() => document.activeElement.dataset.action), "place");
  await tabTo("Move Moon, number 6 up");
  await page.keyboard.press(" ");
  await said("Moon is now number 5");
  assert.equal(await page.evaluate(() => document.activeElement.dataset.action), "up");

  await tabTo("Theme of Sun", "Shift+Tab");
  await page.keyboard.type("L");
  await said("Saved");
  await tabTo("Size of Sun", "Shift+Tab");
  await page.keyboard.type("M");
  await page.locator('[data-id="sun"].medium').waitFor();
  await until(async () => (await sourceOf(home, "sun")).includes("scheme=light"));

  await tabTo("Remove Moon, number 2");
  await page.keyboard.press("Enter");
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
  let grip, third;
  // The list is drawn anew when the stream of events opens, and has no box meanwhile.
  await until(async () => (grip = await page.locator('[data-id="sun"] .grip').boundingBox()));
  await until(async () => (third = await page.locator('[data-id="milky-way"]').boundingBox()));
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
  await page.keyboard.press("Escape");
  assert.ok(!(await page.getByRole("dialog").isVisible()));
});

test("an open page of the Moon shows the Moon of another day", async () => {
  page = await open("/moon");
  const pixels = () => page.getByRole("img").first().evaluate((image) => {
    const canvas = Object.assign(document.createElement("canvas"), { width: 180, height: 180 });
    canvas.getContext("2d").drawImage(image, 0, 0, 180, 180);
    return canvas.toDataURL();
  });
  const old = await pixels();
  await server.goOn("2026-07-20T16:30:00Z");
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

// Each with what is done there first. The last is refused before the site is asked.
const kPages = [
  ["home", "/"],
  ["edit", "/edit"],
  ["places", "/edit", async (opened) => {
    await opened.getByRole("button", { name: /^Place of Moon/ }).click();
    await opened.getByRole("combobox", { name: "Search for a place" }).fill("springfield");
    await opened.getByText("Ohio").waitFor();
  }],
  ["sun", "/sun?widget=sun"],
  ["moon", "/moon?widget=moon"],
  ["plans", "/plans"],
  ["plan", "/plans", (opened) => opened.getByRole("link", { name: /Milky Way/ }).click()],
  ["nothing", "/nothing"],
  ["error", "/%zz"],
];

for (const colorScheme of ["dark", "light"]) {
  test(`no findings of axe, and no page is too wide, in the ${colorScheme} scheme`, async () => {
    for (const width of [320, 390, 768, 1280]) {
      const opened = await open("/", { colorScheme, bypassCSP: true, viewport: { width, height: 844 } });
      for (const [name, address, prepare] of kPages) {
        await opened.goto(server.at(address));
        await prepare?.(opened);
        await opened.evaluate(axe);
        const { violations } = await opened.evaluate(() => globalThis.axe.run());
        assert.deepEqual(violations.map((one) => [one.id, one.nodes[0].html]), [], `${name} at ${width}`);
        const overflow = await opened.evaluate(() => document.documentElement.scrollWidth - innerWidth);
        assert.ok(overflow <= 0, `${name} at ${width} is ${overflow} px too wide`);
        if (pictures) {
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

test("pictures follow the user's position, into a folder that was swept as well", async () => {
  const home = mkdtempSync(join(folders, "user-"));
  const env = { ...process.env, XDG_DATA_HOME: join(home, "data"), XDG_CONFIG_HOME: home,
    XDG_CACHE_HOME: join(home, "cache") };
  const frames = join(home, "frames");
  mkdirSync(join(home, "lumenquest"));
  const beAt = (latitude, longitude) =>
    writeFileSync(join(home, "lumenquest/position.json"), JSON.stringify({ latitude, longitude }));
  const tellsOf = (place) => () => existsSync(join(frames, "index.json")) &&
    readFileSync(join(frames, "index.json"), "utf8").includes(place);
  beAt(46.3683, 14.1146);
  const program = spawn(join(bin, "lumenquest"), ["home", "export", frames, "--locale", "en"],
    { env, stdio: ["ignore", "ignore", "inherit"] });
  try {
    await until(tellsOf("Bled"));
    beAt(-33.9249, 18.4241);
    await until(tellsOf("Cape Town"));
    rmSync(frames, { recursive: true });
    execFileSync(join(bin, "lumenquest"), ["home", "set", "sun", "--theme", "light"], { env });
    await until(() => existsSync(join(frames, "sun.png")));
  } finally {
    program.kill();
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
